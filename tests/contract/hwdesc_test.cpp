// SPDX-License-Identifier: Apache-2.0
// Hardware description.
#include <memory>

#include "bmc_hwdesc.h"
#include "controller.h"

namespace {

using controller::HW_OBJECT_TEXT_S;

constexpr char g_acPath[] = "/conf/hw/ProductPath/Baseboard.xml";
const HW_OBJECT_TEXT_S g_stGood = {"0", "0", "2048", "1", "baseboard"};

class HwDesc : public controller::ContractTest
{
  protected:
    u32 Load(const std::vector<HW_OBJECT_TEXT_S> &vecObjects)
    {
        controller::WriteFile(g_acPath, controller::HwDescription(vecObjects));
        return HW_LoadXml(m_upSpace.get(), g_acPath);
    }

    HW_OBJECT_LIST_S List()
    {
        HW_OBJECT_LIST_S stList = {99, nullptr};
        EXPECT_EQ(HW_GetObjectList(m_upSpace.get(), "FRU", &stList), 0U);
        return stList;
    }

    std::unique_ptr<HW_NAMESPACE_S, decltype(&HW_FreeNameSpace)> m_upSpace{HW_NewNameSpace(),
                                                                           HW_FreeNameSpace};
};

TEST_F(HwDesc, ANewNameSpaceIsEmpty)
{
    ASSERT_NE(m_upSpace, nullptr);
    EXPECT_EQ(List().uiCount, 0U);
}

TEST_F(HwDesc, GivesTheObjectsInTheFilesOrder)
{
    ASSERT_EQ(
        Load({g_stGood, {"48", "0x100", "256", "8", "bmc-card"}, {"255", "65535", "0xFFFF", "255", "x y"}}),
        0U);
    const HW_OBJECT_LIST_S stList = List();
    ASSERT_EQ(stList.uiCount, 3U);
    EXPECT_EQ(stList.pstObject[0].ucComponentType, 0U);
    EXPECT_EQ(stList.pstObject[0].usOffset, 0U);
    EXPECT_EQ(stList.pstObject[0].usSize, 2048U);
    EXPECT_EQ(stList.pstObject[0].ucSelector, 1U);
    EXPECT_STREQ(stList.pstObject[0].pcDeviceName, "baseboard");
    EXPECT_EQ(stList.pstObject[1].ucComponentType, 48U);
    EXPECT_EQ(stList.pstObject[1].usOffset, 0x100U);
    EXPECT_EQ(stList.pstObject[1].usSize, 256U);
    EXPECT_EQ(stList.pstObject[1].ucSelector, 8U);
    EXPECT_STREQ(stList.pstObject[1].pcDeviceName, "bmc-card");
    EXPECT_EQ(stList.pstObject[2].ucComponentType, 255U);
    EXPECT_EQ(stList.pstObject[2].usOffset, 65535U);
    EXPECT_EQ(stList.pstObject[2].usSize, 65535U);
    EXPECT_EQ(stList.pstObject[2].ucSelector, 255U);
    EXPECT_STREQ(stList.pstObject[2].pcDeviceName, "x y");
}

TEST_F(HwDesc, AFileWithoutObjectsLoads)
{
    ASSERT_EQ(Load({}), 0U);
    EXPECT_EQ(List().uiCount, 0U);
}

TEST_F(HwDesc, ASecondFileJoinsTheFirst)
{
    for (u32 uiFile = 0; uiFile < 40U; ++uiFile) {
        HW_OBJECT_TEXT_S stObject = g_stGood;
        stObject.strComponentType = std::to_string(uiFile);
        stObject.strDeviceName = "device-" + std::to_string(uiFile);
        ASSERT_EQ(Load({stObject}), 0U);
    }
    const HW_OBJECT_LIST_S stList = List();
    ASSERT_EQ(stList.uiCount, 40U);
    for (u32 i = 0; i < 40U; ++i) {
        EXPECT_EQ(stList.pstObject[i].ucComponentType, i);
        EXPECT_EQ(stList.pstObject[i].pcDeviceName, "device-" + std::to_string(i));
    }
}

TEST_F(HwDesc, ValuesThatAreNoneOrOutOfRangeFailTheFileWhole)
{
    ASSERT_EQ(Load({g_stGood}), 0U);
    const std::pair<std::string HW_OBJECT_TEXT_S::*, std::vector<const char *>> astBad[] = {
        {&HW_OBJECT_TEXT_S::strComponentType, {"256", "-1", "", "abc", "1x", " 1", "0x", "4294967296"}},
        {&HW_OBJECT_TEXT_S::strOffset, {"65536", "0x10000", "", "1.5", "+1", "99999999999999999999999"}},
        {&HW_OBJECT_TEXT_S::strSize, {"65536", "", "2K", "0xG"}},
        {&HW_OBJECT_TEXT_S::strSelector, {"256", "", "9", "12", "0x0F"}},
        {&HW_OBJECT_TEXT_S::strDeviceName, {""}}};
    for (const auto &[pMember, vecValues] : astBad) {
        for (const char *pcValue : vecValues) {
            HW_OBJECT_TEXT_S stBad = g_stGood;
            stBad.*pMember = pcValue;
            const size_t uiMessages = controller::Messages().size();
            EXPECT_NE(Load({g_stGood, stBad, g_stGood}), 0U) << pcValue;
            EXPECT_EQ(controller::Messages().size(), uiMessages + 1U) << pcValue;
            EXPECT_EQ(List().uiCount, 1U) << pcValue;
        }
    }
}

TEST_F(HwDesc, FilesThatCannotBeReadFail)
{
    EXPECT_NE(HW_LoadXml(m_upSpace.get(), "/conf/hw/ProductPath/None.xml"), 0U);
    EXPECT_NE(HW_LoadXml(m_upSpace.get(), "/conf"), 0U);
    for (const char *pcContent : {"", "no xml", "<hardware><FRU></hardware>", "<hardware>"}) {
        controller::WriteFile(g_acPath, pcContent);
        EXPECT_NE(HW_LoadXml(m_upSpace.get(), g_acPath), 0U) << pcContent;
    }
    EXPECT_EQ(List().uiCount, 0U);
}

TEST_F(HwDesc, RefusesNullPointersAndUnknownClasses)
{
    ASSERT_EQ(Load({g_stGood}), 0U);
    HW_OBJECT_LIST_S stList = {99, nullptr};
    EXPECT_NE(HW_LoadXml(nullptr, g_acPath), 0U);
    EXPECT_NE(HW_LoadXml(m_upSpace.get(), nullptr), 0U);
    EXPECT_NE(HW_GetObjectList(nullptr, "FRU", &stList), 0U);
    EXPECT_NE(HW_GetObjectList(m_upSpace.get(), nullptr, &stList), 0U);
    EXPECT_NE(HW_GetObjectList(m_upSpace.get(), "FRU", nullptr), 0U);
    EXPECT_NE(HW_GetObjectList(m_upSpace.get(), "Fan", &stList), 0U);
    EXPECT_EQ(stList.uiCount, 99U);
    HW_FreeNameSpace(nullptr);
}

} // namespace
