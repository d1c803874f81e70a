// SPDX-License-Identifier: Apache-2.0
#include <cstring>

#include <gtest/gtest.h>

#include "fake/fake_platform.h"
#include "lib_fru.h"
#include "one_device.h"
#include "support/image_builder.h"

namespace {

struct GETTER_S
{
    const char *pcName;
    u32 (*pfnGet)(u32 uiSize, char *pcOut);
    const char *pcPointer;
    bool bDirect;
    u8 ucComponentType;
    const char *pcSerial; // in image::FullImage()
    const char *pcFailure;
};

const GETTER_S g_astGetter[] = {
    {"LIB_FRU_GetBaseboardChassisSN", LIB_FRU_GetBaseboardChassisSN, "pucChassisSN", false, 0, "CH-SN",
     "Fail to get baseboard fru data! Ret:"},
    {"LIB_FRU_GetBaseboardProductSN", LIB_FRU_GetBaseboardProductSN, "pucProductSN", false, 0, "P-SN",
     "Fail to get baseboard fru data! Ret:"},
    {"LIB_FRU_GetMainBoardSN", LIB_FRU_GetMainBoardSN, "pucBoardSN", false, 0, "B-SN",
     "Fail to get baseboard fru data! Ret:"},
    {"LIB_FRU_GetBmcCardSN", LIB_FRU_GetBmcCardSN, "pucBoardSN", false, 0x30, "B-SN",
     "Fail to get BMC card fru data! Ret:"},
    {"LIB_FRU_GetBaseboardProductSNByI2C", LIB_FRU_GetBaseboardProductSNByI2C, "pucProductSN", true, 0,
     "P-SN", "Fail to get baseboard fru data! Ret:"},
    {"LIB_FRU_GetMainBoardSNByI2C", LIB_FRU_GetMainBoardSNByI2C, "pucBoardSN", true, 0, "B-SN",
     "Fail to get baseboard fru data! Ret:"},
    {"LIB_FRU_GetBmcCardSNByI2C", LIB_FRU_GetBmcCardSNByI2C, "pucBoardSN", true, 0x30, "B-SN",
     "Fail to get BMC card fru data! Ret:"},
};

class SerialNumbers : public testing::TestWithParam<GETTER_S>
{
  protected:
    void SetUp() override
    {
        fake::Reset();
        (void)memset(m_acOut, '?', sizeof(m_acOut));
    }

    // Puts the image where the getter looks for it, and nowhere else.
    static void PutImage(const image::BYTES &vecImage)
    {
        const GETTER_S &stGetter = GetParam();
        if (stGetter.bDirect) {
            fake::HwObjects() = std::vector<HW_FRU_OBJECT_S>{
                {stGetter.ucComponentType, 0, static_cast<u16>(vecImage.size()), 1, "chip"}};
            fake::EepromByName("chip") = vecImage;
        } else {
            one_device::Put(3, stGetter.ucComponentType, 0, vecImage);
        }
    }

    bool OutputUntouched() const
    {
        return std::string(m_acOut, sizeof(m_acOut)) == std::string(sizeof(m_acOut), '?');
    }

    char m_acOut[24];
};

TEST_P(SerialNumbers, NullIsReported)
{
    const GETTER_S &stGetter = GetParam();
    EXPECT_EQ(stGetter.pfnGet(10, nullptr), LIB_FRU_ERR_NULL_POINTER);
    EXPECT_EQ(fake::Messages(),
              std::vector<std::string>{fake::NullMessage("lib_fru.c", stGetter.pcName, stGetter.pcPointer)});
    EXPECT_TRUE(fake::Calls().empty());
}

TEST_P(SerialNumbers, CopiesItsField)
{
    PutImage(image::FullImage());
    const u32 uiBefore = fake::LiveAllocations();
    EXPECT_EQ(GetParam().pfnGet(sizeof(m_acOut), m_acOut), FRU_OK);
    EXPECT_STREQ(m_acOut, GetParam().pcSerial);
    EXPECT_TRUE(one_device::OwnMessages().empty());
    EXPECT_EQ(fake::LiveAllocations(), uiBefore);
    EXPECT_EQ(fake::Calls("HW_").empty(), !GetParam().bDirect);
    EXPECT_EQ(fake::Calls("DB_").empty(), GetParam().bDirect);
}

TEST_P(SerialNumbers, CutsToTheSize)
{
    PutImage(image::FullImage());
    EXPECT_EQ(GetParam().pfnGet(3, m_acOut), FRU_OK);
    EXPECT_EQ(std::string(m_acOut, 4), std::string(GetParam().pcSerial, 2) + '\0' + '?');
    (void)memset(m_acOut, '?', sizeof(m_acOut));
    EXPECT_EQ(GetParam().pfnGet(1, m_acOut), FRU_OK);
    EXPECT_EQ(std::string(m_acOut, 2), std::string(1, '\0') + '?');
    (void)memset(m_acOut, '?', sizeof(m_acOut));
    EXPECT_EQ(GetParam().pfnGet(0, m_acOut), FRU_OK);
    EXPECT_TRUE(OutputUntouched());
}

TEST_P(SerialNumbers, AbsentFieldIsAnEmptyText)
{
    PutImage(image::Image({}));
    EXPECT_EQ(GetParam().pfnGet(sizeof(m_acOut), m_acOut), FRU_OK);
    EXPECT_STREQ(m_acOut, "");
    EXPECT_TRUE(fake::Messages().empty());
}

TEST_P(SerialNumbers, RecordThatCannotBeHad)
{
    const GETTER_S &stGetter = GetParam();
    EXPECT_EQ(stGetter.pfnGet(sizeof(m_acOut), m_acOut), LIB_FRU_ERR_READ);
    EXPECT_TRUE(OutputUntouched());
    const std::string strCode = stGetter.bDirect ? "0x8100001d" : "0x29000003";
    ASSERT_FALSE(fake::Messages().empty());
    EXPECT_EQ(fake::Messages().back(), "0/4 lib_fru.c: " + std::string(stGetter.pcFailure) + strCode);
}

TEST_P(SerialNumbers, DamagedImage)
{
    const GETTER_S &stGetter = GetParam();
    image::BYTES vecImage = image::FullImage();
    vecImage[vecImage[4] * 8U] = 2U; // the version of the last info area: the others have been decoded
    PutImage(vecImage);
    const u32 uiBefore = fake::LiveAllocations();
    const u32 uiRet = stGetter.pfnGet(sizeof(m_acOut), m_acOut);
    EXPECT_EQ(fake::LiveAllocations(), uiBefore);
    if (stGetter.bDirect) {
        EXPECT_EQ(uiRet, FRU_OK);
        EXPECT_STREQ(m_acOut, "");
        EXPECT_EQ(fake::Messages().back().rfind("0/4 lib_fru.c: Interpret FRU Data failed! Ret:", 0), 0U);
    } else {
        EXPECT_EQ(uiRet, LIB_FRU_ERR_READ);
        EXPECT_TRUE(OutputUntouched());
        EXPECT_EQ(fake::Messages().back().rfind("0/4 lib_fru.c: " + std::string(stGetter.pcFailure), 0), 0U);
    }
}

TEST_P(SerialNumbers, SurvivesEveryFailure)
{
    u32 uiRet = 0;
    fake::Sweep(
        [&] {
            // Small, for every 16 bytes are a chunk with calls of its own.
            image::AREAS_S stAreas;
            const std::string strSerial = GetParam().pcSerial;
            if (strSerial == "CH-SN") {
                stAreas.vecChassis = image::ChassisArea(0x17U, image::Texts({"PN", strSerial}));
            } else if (strSerial == "B-SN") {
                stAreas.vecBoard =
                    image::BoardArea(25U, {1, 2, 3}, image::Texts({"", "", strSerial, "", ""}));
            } else {
                stAreas.vecProduct =
                    image::ProductArea(25U, image::Texts({"", "", "", "", strSerial, "", ""}));
            }
            PutImage(image::Image(stAreas));
            (void)memset(m_acOut, '?', sizeof(m_acOut));
        },
        [&] { uiRet = GetParam().pfnGet(sizeof(m_acOut), m_acOut); },
        [&](const fake::FAULT_S *pstFault) {
            if (uiRet == FRU_OK) {
                // On the direct path an image that does not decode for want of memory is an empty one.
                const bool bEmpty = pstFault != nullptr && GetParam().bDirect;
                EXPECT_STREQ(m_acOut, bEmpty ? "" : GetParam().pcSerial);
            } else {
                EXPECT_NE(pstFault, nullptr);
                EXPECT_EQ(uiRet, LIB_FRU_ERR_READ);
                EXPECT_TRUE(OutputUntouched());
            }
        });
}

INSTANTIATE_TEST_SUITE_P(All, SerialNumbers, testing::ValuesIn(g_astGetter),
                         [](const testing::TestParamInfo<GETTER_S> &stInfo) {
                             return std::string(stInfo.param.pcName);
                         });

TEST(SerialNumbersNormally, AskForInstanceZeroWithoutRecovery)
{
    fake::Reset();
    one_device::Put(3, 0, 1, image::FullImage());
    char acOut[8] = {};
    EXPECT_EQ(LIB_FRU_GetMainBoardSN(sizeof(acOut), acOut), LIB_FRU_ERR_READ);
    fake::Reset();
    image::BYTES vecImage = image::FullImage();
    vecImage[0] = 0xFF;
    one_device::Put(3, 0, 0, vecImage);
    EXPECT_EQ(LIB_FRU_GetMainBoardSN(sizeof(acOut), acOut), LIB_FRU_ERR_READ);
    for (const std::string &strMessage : fake::Messages()) {
        EXPECT_EQ(strMessage.find("Start to recover"), std::string::npos);
    }
    EXPECT_TRUE(fake::Calls("EEPROM write").empty());
}

} // namespace
