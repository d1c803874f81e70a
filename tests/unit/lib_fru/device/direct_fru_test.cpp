// SPDX-License-Identifier: Apache-2.0
#include <cstring>

#include <gtest/gtest.h>

#include "fake/fake_platform.h"
#include "lib_fru.h"
#include "one_device.h"
#include "support/image_builder.h"

namespace {

const char *const g_pcLoad = "HW_LoadXml /conf/hw/ProductPath/Baseboard.xml -> 0";

const char *Chars(const u8 *pucText)
{
    return reinterpret_cast<const char *>(pucText);
}

image::BYTES BoardOnly(const std::string &strSerial)
{
    image::AREAS_S stAreas;
    stAreas.vecBoard = image::BoardArea(25, {1, 2, 3}, image::Texts({"MF", "NA", strSerial, "PN", "FI"}));
    return image::Image(stAreas);
}

class DirectFru : public testing::Test
{
  protected:
    void SetUp() override
    {
        fake::Reset();
        PutObject(image::FullImage());
    }

    void TearDown() override
    {
        FRU_ANALYZER_SafeFree(&m_stData);
    }

    // An object of type 0 whose image begins at 0x20 of the chip "eeprom_base".
    static void PutObject(const image::BYTES &vecImage)
    {
        fake::HwObjects() =
            std::vector<HW_FRU_OBJECT_S>{{0, 0x20, static_cast<u16>(vecImage.size()), 3, "eeprom_base"}};
        fake::BYTES vecChip(0x20 + vecImage.size(), 0xEE);
        std::copy(vecImage.begin(), vecImage.end(), vecChip.begin() + 0x20);
        fake::EepromByName("eeprom_base") = vecChip;
    }

    static std::vector<std::string> WholeJourney(const std::string &strRead)
    {
        return {"HW_NewNameSpace", g_pcLoad, "HW_GetObjectList FRU -> 0", strRead, "HW_FreeNameSpace"};
    }

    FRU_DATA_S m_stData = {};
};

TEST_F(DirectFru, NullIsReported)
{
    EXPECT_EQ(LIB_FRU_GetBaseboardFRUDataByI2C(0, nullptr), LIB_FRU_ERR_NULL_POINTER);
    EXPECT_EQ(fake::Messages(), std::vector<std::string>{fake::NullMessage(
                                    "lib_fru.c", "LIB_FRU_GetBaseboardFRUDataByI2C", "pstFRUData")});
    EXPECT_TRUE(fake::Calls().empty());
}

TEST_F(DirectFru, ReadsAndDecodesTheImagePastTableAndCache)
{
    const size_t uiSize = image::FullImage().size();
    EXPECT_EQ(LIB_FRU_GetBaseboardFRUDataByI2C(0, &m_stData), FRU_OK);
    EXPECT_TRUE(one_device::OwnMessages().empty());
    EXPECT_STREQ(Chars(m_stData.stBoardInfo.pucBoardSerialNum), "B-SN");
    EXPECT_STREQ(Chars(m_stData.stProductInfo.pucProductSerialNum), "P-SN");
    EXPECT_EQ(fake::Calls(), WholeJourney("EEPROM read type=3 name=eeprom_base off=0x20 len=" +
                                          std::to_string(uiSize) + " -> " + std::to_string(uiSize)));
}

TEST_F(DirectFru, TheFirstObjectOfTheTypeIsUsed)
{
    const image::BYTES vecFirst = BoardOnly("FIRST");
    fake::HwObjects() = std::vector<HW_FRU_OBJECT_S>{
        {1, 0, 8, 3, "other"},
        {0x30, 0, static_cast<u16>(vecFirst.size()), 4, "card"},
        {0x30, 0, 8, 3, "other"},
    };
    fake::EepromByName("card") = vecFirst;
    EXPECT_EQ(LIB_FRU_GetBaseboardFRUDataByI2C(0x30, &m_stData), FRU_OK);
    EXPECT_STREQ(Chars(m_stData.stBoardInfo.pucBoardSerialNum), "FIRST");
    EXPECT_EQ(fake::Calls("EEPROM").size(), 1U);
    EXPECT_EQ(fake::Calls("EEPROM")[0].rfind("EEPROM read type=4 name=card off=0 ", 0), 0U);
}

TEST_F(DirectFru, WithoutANameSpace)
{
    fake::Arm({fake::KIND_E::HWDESC, 1, false});
    EXPECT_EQ(LIB_FRU_GetBaseboardFRUDataByI2C(0, &m_stData), FRU_ERR_HW_NAMESPACE);
    EXPECT_EQ(fake::Messages(), std::vector<std::string>{"0/4 lib_fru.c: Failed to create namespace."});
    EXPECT_EQ(fake::Calls(), std::vector<std::string>{"HW_NewNameSpace -> null"});
}

TEST_F(DirectFru, WithoutTheXml)
{
    fake::HwObjects().reset();
    EXPECT_EQ(LIB_FRU_GetBaseboardFRUDataByI2C(0, &m_stData), FRU_ERR_HW_XML);
    EXPECT_EQ(fake::Messages(), std::vector<std::string>{"0/4 lib_fru.c: Failed to load baseBoard.xml."});
    EXPECT_EQ(fake::Calls(),
              (std::vector<std::string>{"HW_NewNameSpace",
                                        "HW_LoadXml /conf/hw/ProductPath/Baseboard.xml -> 0x81000001",
                                        "HW_FreeNameSpace"}));
}

TEST_F(DirectFru, WithoutAnObjectList)
{
    fake::Arm({fake::KIND_E::HWDESC, 3, false});
    EXPECT_EQ(LIB_FRU_GetBaseboardFRUDataByI2C(0, &m_stData), FRU_ERR_FAILED);
    EXPECT_EQ(fake::Messages(),
              std::vector<std::string>{"0/4 lib_fru.c: Failed to get fru object list! Ret:0x81000001."});
    EXPECT_EQ(fake::Calls(),
              (std::vector<std::string>{"HW_NewNameSpace", g_pcLoad, "HW_GetObjectList FRU -> 0x81000001",
                                        "HW_FreeNameSpace"}));
}

TEST_F(DirectFru, WithoutAnObjectOfTheType)
{
    // A number beyond a byte is compared whole.
    for (const u32 uiType : {0x30U, 0x100U, 0xFFFFFF00U}) {
        fake::Reset();
        PutObject(image::FullImage());
        EXPECT_EQ(LIB_FRU_GetBaseboardFRUDataByI2C(uiType, &m_stData), FRU_ERR_HW_NO_OBJECT);
        EXPECT_EQ(fake::Messages(),
                  std::vector<std::string>{"0/4 lib_fru.c: Failed to get BaseboardFRU xml node"});
        EXPECT_EQ(fake::Calls(), (std::vector<std::string>{"HW_NewNameSpace", g_pcLoad,
                                                           "HW_GetObjectList FRU -> 0", "HW_FreeNameSpace"}));
    }
}

TEST_F(DirectFru, WithAnEmptyObjectList)
{
    fake::HwObjects() = std::vector<HW_FRU_OBJECT_S>{};
    EXPECT_EQ(LIB_FRU_GetBaseboardFRUDataByI2C(0, &m_stData), FRU_ERR_HW_NO_OBJECT);
}

TEST_F(DirectFru, ImageSizeZero)
{
    PutObject({});
    EXPECT_EQ(LIB_FRU_GetBaseboardFRUDataByI2C(0, &m_stData), FRU_ERR_NO_MEMORY);
    EXPECT_EQ(fake::Messages(),
              (std::vector<std::string>{"0/3 lib_fru.c: Invalid MALLOC size (size is 0)is detected",
                                        "0/4 lib_fru.c: Malloc FRU buf size failed!"}));
    EXPECT_EQ(fake::TakeStdout(),
              "Invalid MALLOC size (size is 0)is detected in # LIB_FRU_GetBaseboardFRUDataByI2C lib_fru.c\n");
    EXPECT_EQ(fake::Calls(), (std::vector<std::string>{"HW_NewNameSpace", g_pcLoad,
                                                       "HW_GetObjectList FRU -> 0", "HW_FreeNameSpace"}));
}

TEST_F(DirectFru, WithoutMemory)
{
    fake::Arm({fake::KIND_E::ALLOC, 1, false});
    EXPECT_EQ(LIB_FRU_GetBaseboardFRUDataByI2C(0, &m_stData), FRU_ERR_NO_MEMORY);
    EXPECT_EQ(fake::Messages(), std::vector<std::string>{"0/4 lib_fru.c: Malloc FRU buf size failed!"});
    EXPECT_EQ(fake::TakeStdout(), "");
    EXPECT_TRUE(fake::Calls("EEPROM").empty());
}

TEST_F(DirectFru, ReadOfAnotherCount)
{
    const i32 iSize = static_cast<i32>(image::FullImage().size());
    for (const i32 iCount : {-1, 0, iSize - 1, iSize + 1}) {
        fake::Reset();
        PutObject(image::FullImage());
        fake::SetEepromResult(1, iCount);
        EXPECT_EQ(LIB_FRU_GetBaseboardFRUDataByI2C(0, &m_stData), FRU_ERR_FAILED);
        EXPECT_EQ(fake::Messages(), std::vector<std::string>{"0/4 lib_fru.c: read fru failed!"});
        EXPECT_EQ(fake::Calls("HW_FreeNameSpace").size(), 1U);
        EXPECT_EQ(m_stData.stCommonHeader.ucFormatVersion, 0U);
    }
}

TEST_F(DirectFru, AnImageThatDoesNotDecodeIsAnEmptyRecordAndASuccess)
{
    image::BYTES vecImage = image::FullImage();
    vecImage[7] ^= 1U;
    PutObject(vecImage);
    EXPECT_EQ(LIB_FRU_GetBaseboardFRUDataByI2C(0, &m_stData), FRU_OK);
    EXPECT_EQ(one_device::OwnMessages(),
              std::vector<std::string>{"0/4 lib_fru.c: Interpret FRU Data failed! Ret:0x29000002."});
    EXPECT_TRUE(m_stData.stBoardInfo.pucBoardSerialNum == nullptr);
    EXPECT_EQ(fake::Calls("HW_FreeNameSpace").size(), 1U);
}

TEST_F(DirectFru, WhatWasDecodedBeforeTheDamageIsReleased)
{
    // The board area is sound, the product area after it is not.
    image::BYTES vecImage = image::FullImage();
    vecImage[vecImage[4] * 8U] = 2U;
    PutObject(vecImage);
    const u32 uiBefore = fake::LiveAllocations();
    EXPECT_EQ(LIB_FRU_GetBaseboardFRUDataByI2C(0, &m_stData), FRU_OK);
    EXPECT_EQ(fake::LiveAllocations(), uiBefore);
    EXPECT_TRUE(m_stData.stBoardInfo.pucBoardSerialNum == nullptr);
    EXPECT_TRUE(m_stData.stProductInfo.pucProductSerialNum == nullptr);
    EXPECT_EQ(fake::Messages().back().rfind("0/4 lib_fru.c: Interpret FRU Data failed! Ret:", 0), 0U);
}

TEST_F(DirectFru, SurvivesEveryFailure)
{
    u32 uiRet = 0;
    fake::Sweep(
        [&] {
            // No MultiRecords: the decoder does without one that finds no memory.
            image::AREAS_S stAreas = image::FullAreas();
            stAreas.vecMultiRecord.clear();
            PutObject(image::Image(stAreas));
            (void)memset(&m_stData, 0, sizeof(m_stData));
        },
        [&] { uiRet = LIB_FRU_GetBaseboardFRUDataByI2C(0, &m_stData); },
        [&](const fake::FAULT_S *pstFault) {
            const bool bSerial = m_stData.stBoardInfo.pucBoardSerialNum != nullptr;
            if (pstFault == nullptr) {
                EXPECT_EQ(uiRet, FRU_OK);
                EXPECT_TRUE(bSerial);
            } else if (pstFault->eKind == fake::KIND_E::ALLOC) {
                EXPECT_EQ(uiRet, pstFault->uiNth == 1U ? FRU_ERR_NO_MEMORY : FRU_OK);
                EXPECT_FALSE(bSerial);
            } else if (pstFault->eKind == fake::KIND_E::EEPROM) {
                EXPECT_EQ(uiRet, FRU_ERR_FAILED);
            } else {
                const u32 auiExpected[] = {FRU_ERR_HW_NAMESPACE, FRU_ERR_HW_XML, FRU_ERR_FAILED};
                EXPECT_EQ(uiRet, auiExpected[pstFault->uiNth - 1U]);
            }
            const size_t uiSpaces =
                fake::Calls("HW_NewNameSpace").size() - fake::Calls("HW_NewNameSpace -> null").size();
            EXPECT_EQ(fake::Calls("HW_FreeNameSpace").size(), uiSpaces);
            FRU_ANALYZER_SafeFree(&m_stData);
        });
}

} // namespace
