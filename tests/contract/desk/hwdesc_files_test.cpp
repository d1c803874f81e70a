// SPDX-License-Identifier: Apache-2.0
// The desk's own: how large a hardware description may be.
#include "bmc_hwdesc.h"
#include "controller.h"

namespace {

class HwDescFiles : public controller::ContractTest
{};

TEST_F(HwDescFiles, BeyondTheirLimitAreRefused)
{
    const std::string strGood = controller::HwDescription({{"0", "0", "2048", "1", "baseboard"}});
    HW_NAMESPACE_S *pstSpace = HW_NewNameSpace();
    HW_OBJECT_LIST_S stList = {};
    controller::WriteFile("/conf/large.xml", strGood + std::string((1U << 20U) + 1U - strGood.size(), '\n'));
    EXPECT_NE(HW_LoadXml(pstSpace, "/conf/large.xml"), 0U);
    EXPECT_NE(controller::Messages().back().find("larger than is accepted"), std::string::npos);
    controller::WriteFile("/conf/full.xml", strGood + std::string((1U << 20U) - strGood.size(), '\n'));
    EXPECT_EQ(HW_LoadXml(pstSpace, "/conf/full.xml"), 0U);
    EXPECT_EQ(HW_GetObjectList(pstSpace, "FRU", &stList), 0U);
    EXPECT_EQ(stList.uiCount, 1U);
    HW_FreeNameSpace(pstSpace);
}

} // namespace
