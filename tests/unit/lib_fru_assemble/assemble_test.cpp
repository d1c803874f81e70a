// SPDX-License-Identifier: Apache-2.0
#include "lib_fru_assembly.h"

#include <cstdlib>
#include <cstring>
#include <ctime>
#include <memory>

#include <gtest/gtest.h>

#include "fake/fake_platform.h"
#include "lib_fru_codec.h"
#include "support/image_builder.h"

namespace {

using BYTES = fake::BYTES;
using LINES = std::vector<std::string>;
using SLOTS = std::map<u32, std::string>;

constexpr char g_acNoBoard[] = "0/6 lib_fru_assemble.c: Don't need assemble board info.";
constexpr char g_acNoProduct[] = "0/6 lib_fru_assemble.c: Don't need assemble product info.";
constexpr char g_acBoardFailed[] = "0/4 lib_fru_assemble.c: Assemble board info failed!";
constexpr char g_acProductFailed[] = "0/4 lib_fru_assemble.c: Assemble product info failed!";
constexpr char g_acBadDate[] = "0/4 lib_fru_assemble.c: Caculate MfgDateTime failed! Ret:0x81000001.";
constexpr char g_acNotEncoded[] =
    "0/4 lib_fru_assemble.c: Fail to convert FRU data to array! Ret:0xffffffff.";
constexpr char g_acNoDateFields[] = "0/4 lib_fru.c: Sscanf failed! Ret:0xffffffff.";
constexpr u32 g_uiKey = 0x10810205;

const SLOTS g_mapAll = {{0, "not read"},    {1, "not read"},    {2, "not read"}, {3, "1996-01-02 00:01:59"},
                        {4, "Board maker"}, {5, "Board"},       {6, "B-0001"},   {7, "B-PART"},
                        {8, "Maker"},       {9, "Rack server"}, {10, "P-PART"},  {11, "V1"},
                        {12, "SN-0001"},    {13, "Asset 100%s"}};

// The block of texts, in a heap buffer of its exact size; a text of 128 characters fills its
// slot, without NUL.
std::unique_ptr<FRU_ASSEMBLE_LABEL_S> Labels(const SLOTS &mapSlots)
{
    std::unique_ptr<FRU_ASSEMBLE_LABEL_S> upLabels(new FRU_ASSEMBLE_LABEL_S{});
    for (const auto &[uiSlot, strText] : mapSlots) {
        (void)std::memcpy(upLabels->acSlot[uiSlot], strText.data(), strText.size());
    }
    return upLabels;
}

u32 Assemble(const SLOTS &mapSlots, u16 usSize = 256)
{
    FRU_DEVICE_INFO_S stInfo;
    (void)std::memset(&stInfo, 0xFF, sizeof(stInfo)); // no other member is read
    stInfo.ucDeviceID = 5;
    stInfo.usSize = usSize;
    return FRU_AssembleBin(&stInfo, Labels(mapSlots).get());
}

// An image of these header offsets and areas, each area given without its fill and checksum.
BYTES Image(BYTES vecImage, const std::vector<BYTES> &vecAreas, size_t uiSize)
{
    vecImage.push_back(image::ZeroCheckSum(vecImage));
    for (BYTES vecArea : vecAreas) {
        vecArea.resize((vecArea.size() + 8U) / 8U * 8U - 1U);
        vecArea.push_back(image::ZeroCheckSum(vecArea));
        for (const u8 ucByte : vecArea) {
            vecImage.push_back(ucByte);
        }
    }
    vecImage.resize(uiSize);
    return vecImage;
}

LINES Stored(u16 usSize)
{
    return {"DB_Open", "DB_Put 0x10810205 " + std::to_string(usSize) + " lib_fru_db.c -> 0"};
}

std::string Null(const std::string &strFunction, const std::string &strPointer)
{
    return fake::NullMessage("lib_fru_assemble.c", strFunction, strPointer);
}

class Assembly : public testing::Test
{
  protected:
    void SetUp() override
    {
        (void)setenv("TZ", "UTC", 1);
        tzset();
        fake::Reset();
        m_uiLive = fake::LiveAllocations();
    }
    void TearDown() override
    {
        fake::Disarm();
        EXPECT_EQ(fake::LiveAllocations(), m_uiLive);
    }

  private:
    u32 m_uiLive = 0;
};

TEST_F(Assembly, NullArguments)
{
    const FRU_DEVICE_INFO_S stInfo = {};
    EXPECT_EQ(FRU_AssembleBin(nullptr, Labels({}).get()), 0x81000002U);
    EXPECT_EQ(FRU_AssembleBin(&stInfo, nullptr), 0x81000002U);
    EXPECT_EQ(FRU_AssembleBin(nullptr, nullptr), 0x81000002U);
    EXPECT_EQ(fake::Messages(),
              (LINES{Null("FRU_AssembleBin", "pstFRUInfo"), Null("FRU_AssembleBin", "pstFRULabel"),
                     Null("FRU_AssembleBin", "pstFRUInfo")}));
    EXPECT_EQ(fake::Calls(), LINES{});
}

TEST_F(Assembly, NoTextsGiveACommonHeaderAlone)
{
    EXPECT_EQ(Assemble({}), 0U);
    EXPECT_EQ(fake::Messages(), (LINES{g_acNoBoard, g_acNoProduct}));
    EXPECT_EQ(fake::Calls(), Stored(256));
    EXPECT_EQ(fake::Db()[g_uiKey], Image({1, 0, 0, 0, 0, 0, 0}, {}, 256));
    EXPECT_EQ(fake::TakeStdout(), "");
}

TEST_F(Assembly, SlotsZeroToTwoAreNotRead)
{
    const std::string strFull(128, 'x');
    EXPECT_EQ(Assemble({{0, strFull}, {1, strFull}, {2, strFull}}), 0U);
    EXPECT_EQ(fake::Messages(), (LINES{g_acNoBoard, g_acNoProduct}));
    EXPECT_EQ(fake::Db()[g_uiKey], Image({1, 0, 0, 0, 0, 0, 0}, {}, 256));
}

TEST_F(Assembly, ADateAloneGivesABoardAreaOfEmptyTexts)
{
    EXPECT_EQ(Assemble({{3, "1996-01-02 00:01:59"}}), 0U);
    EXPECT_EQ(
        fake::Messages(),
        (LINES{
            "0/6 lib_fru_assemble.c: BoardMfr[:1] BoardPartNum[:1] BoardProductName[:1] BoardSerialNum[:1]",
            g_acNoProduct}));
    // A day and a minute: 1441.
    EXPECT_EQ(
        fake::Db()[g_uiKey],
        Image({1, 0, 0, 1, 0, 0, 0}, {{1, 2, 0, 0xA1, 0x05, 0, 0xC0, 0xC0, 0xC0, 0xC0, 0xC0, 0xC1}}, 256));
}

TEST_F(Assembly, EachBoardTextAloneGivesABoardArea)
{
    const BYTES vecOrder = {4, 5, 6, 7}; // as the fields lie in the area
    for (u32 i = 0; i < vecOrder.size(); ++i) {
        fake::Reset();
        EXPECT_EQ(Assemble({{vecOrder[i], "ab"}}), 0U);
        const char *const apcShown[] = {
            "BoardMfr[ab:3] BoardPartNum[:1] BoardProductName[:1] BoardSerialNum[:1]",
            "BoardMfr[:1] BoardPartNum[:1] BoardProductName[ab:3] BoardSerialNum[:1]",
            "BoardMfr[:1] BoardPartNum[:1] BoardProductName[:1] BoardSerialNum[ab:3]",
            "BoardMfr[:1] BoardPartNum[ab:3] BoardProductName[:1] BoardSerialNum[:1]"};
        // An empty date is a bad date; it does not stop the assembly.
        EXPECT_EQ(fake::Messages(),
                  (LINES{g_acNoDateFields, g_acBadDate, "0/6 lib_fru_assemble.c: " + std::string(apcShown[i]),
                         g_acNoProduct}));
        BYTES vecArea = {1, 2, 0, 0, 0, 0};
        for (u32 k = 0; k < 5U; ++k) {
            for (const u8 ucByte : k == i ? BYTES{0xC2, 'a', 'b'} : BYTES{0xC0}) {
                vecArea.push_back(ucByte);
            }
        }
        vecArea.push_back(0xC1);
        EXPECT_EQ(fake::Db()[g_uiKey], Image({1, 0, 0, 1, 0, 0, 0}, {vecArea}, 256));
    }
}

TEST_F(Assembly, EachProductTextAloneGivesAProductArea)
{
    const BYTES vecOrder = {8, 9, 10, 11, 12, 13}; // as the fields lie in the area
    for (u32 i = 0; i < vecOrder.size(); ++i) {
        fake::Reset();
        EXPECT_EQ(Assemble({{vecOrder[i], "ab"}}), 0U);
        const char *const apcShown[] = {"ProductMfrName[", "ProductName[",      "ProductPartNum[",
                                        "ProductVersion[", "ProductSerialNum[", "AssetTag["};
        std::string strShown = "0/6 lib_fru_assemble.c:";
        for (u32 k = 0; k < 6U; ++k) {
            strShown += " " + std::string(apcShown[k]) + (k == i ? "ab:3]" : ":1]");
        }
        EXPECT_EQ(fake::Messages(), (LINES{g_acNoBoard, strShown}));
        BYTES vecArea = {1, 2, 0};
        for (u32 k = 0; k < 7U; ++k) {
            for (const u8 ucByte : k == i ? BYTES{0xC2, 'a', 'b'} : BYTES{0xC0}) {
                vecArea.push_back(ucByte);
            }
        }
        vecArea.push_back(0xC1);
        EXPECT_EQ(fake::Db()[g_uiKey], Image({1, 0, 0, 0, 1, 0, 0}, {vecArea}, 256));
    }
}

TEST_F(Assembly, ATextOfOneCharacterIsEnoughForAnArea)
{
    for (const u32 uiSlot : {4U, 8U}) {
        fake::Reset();
        EXPECT_EQ(Assemble({{uiSlot, "x"}}), 0U);
        const BYTES vecImage = fake::Db()[g_uiKey];
        EXPECT_EQ(vecImage[3], uiSlot == 4U ? 1U : 0U);
        EXPECT_EQ(vecImage[4], uiSlot == 8U ? 1U : 0U);
    }
}

TEST_F(Assembly, AllTextsCanBeDecodedAgain)
{
    EXPECT_EQ(Assemble(g_mapAll), 0U);
    EXPECT_EQ(fake::Messages(),
              (LINES{"0/6 lib_fru_assemble.c: BoardMfr[Board maker:12] BoardPartNum[B-PART:7] "
                     "BoardProductName[Board:6] "
                     "BoardSerialNum[B-0001:7]",
                     "0/6 lib_fru_assemble.c: ProductMfrName[Maker:6] ProductName[Rack server:12] "
                     "ProductPartNum[P-PART:7] ProductVersion[V1:3] ProductSerialNum[SN-0001:8] "
                     "AssetTag[Asset 100%s:12]"}));
    EXPECT_EQ(fake::Calls(), Stored(256));
    FRU_DATA_S stData = {};
    const BYTES vecImage = fake::Db()[g_uiKey];
    ASSERT_EQ(FRU_ANALYZER_InterpretFRUData(vecImage.data(), 256, &stData), 0U);
    const auto fnText = [](const u8 *pucText) {
        return std::string(reinterpret_cast<const char *>(pucText));
    };
    EXPECT_EQ(stData.stCommonHeader.ucInternalUseAreaStartOffset, 0U);
    EXPECT_EQ(stData.stCommonHeader.ucChassisInfoAreaStartOffset, 0U);
    EXPECT_EQ(stData.stCommonHeader.ucMultiRecordAreaStartOffset, 0U);
    EXPECT_EQ(stData.stBoardInfo.ucFormatVersion, 1U);
    EXPECT_EQ(stData.stBoardInfo.ucLanguage, 0U);
    EXPECT_EQ(BYTES(stData.stBoardInfo.aucMfgDateTime, stData.stBoardInfo.aucMfgDateTime + 3),
              (BYTES{0xA1, 5, 0}));
    EXPECT_EQ(fnText(stData.stBoardInfo.pucBoardMfr), "Board maker");
    EXPECT_EQ(fnText(stData.stBoardInfo.pucBoardProductName), "Board");
    EXPECT_EQ(fnText(stData.stBoardInfo.pucBoardSerialNum), "B-0001");
    EXPECT_EQ(fnText(stData.stBoardInfo.pucBoardPartNum), "B-PART");
    EXPECT_EQ(fnText(stData.stBoardInfo.pucFRUFileID), "");
    EXPECT_EQ(stData.stBoardInfo.ucCustomFieldCount, 0U);
    EXPECT_EQ(stData.stProductInfo.ucFormatVersion, 1U);
    EXPECT_EQ(stData.stProductInfo.ucLanguage, 0U);
    EXPECT_EQ(fnText(stData.stProductInfo.pucMfrName), "Maker");
    EXPECT_EQ(fnText(stData.stProductInfo.pucProductName), "Rack server");
    EXPECT_EQ(fnText(stData.stProductInfo.pucProductPartNum), "P-PART");
    EXPECT_EQ(fnText(stData.stProductInfo.pucProductVersion), "V1");
    EXPECT_EQ(fnText(stData.stProductInfo.pucProductSerialNum), "SN-0001");
    EXPECT_EQ(fnText(stData.stProductInfo.pucAssetTag), "Asset 100%s");
    EXPECT_EQ(fnText(stData.stProductInfo.pucFRUFileID), "");
    EXPECT_EQ(stData.stProductInfo.ucCustomFieldCount, 0U);
    FRU_ANALYZER_SafeFree(&stData);
}

TEST_F(Assembly, ABadDateDoesNotStopIt)
{
    EXPECT_EQ(Assemble({{3, "2023/05/07"}}), 0U);
    EXPECT_EQ(
        fake::Messages(),
        (LINES{
            "0/4 lib_fru.c: Sscanf failed! Ret:0x1.", g_acBadDate,
            "0/6 lib_fru_assemble.c: BoardMfr[:1] BoardPartNum[:1] BoardProductName[:1] BoardSerialNum[:1]",
            g_acNoProduct}));
    EXPECT_EQ(fake::Db()[g_uiKey],
              Image({1, 0, 0, 1, 0, 0, 0}, {{1, 2, 0, 0, 0, 0, 0xC0, 0xC0, 0xC0, 0xC0, 0xC0, 0xC1}}, 256));
}

TEST_F(Assembly, ADateThatFillsItsSlotIsReadNoFurther)
{
    EXPECT_EQ(Assemble({{3, "1996-01-02" + std::string(118, ' ')}, {4, "12:00:00"}}), 0U);
    EXPECT_EQ(fake::Db()[g_uiKey][11], 0xA0U); // a day, without the next slot's time
    EXPECT_EQ(fake::Db()[g_uiKey][12], 0x05U);
}

// ---- lengths

TEST_F(Assembly, ATextOf63CharactersIsTheLongestThatCanBeEncoded)
{
    EXPECT_EQ(Assemble({{9, std::string(63, 'x')}}), 0U);
    EXPECT_EQ(fake::Db()[g_uiKey][12], 0xFFU); // type/length of the name, after an empty manufacturer
    fake::Reset();
    EXPECT_EQ(Assemble({{9, std::string(64, 'x')}}), 0x81000001U);
    EXPECT_EQ(fake::Messages().back(), g_acNotEncoded);
    EXPECT_EQ(fake::Calls(), LINES{});
}

TEST_F(Assembly, ATextOf127CharactersHasTheSizeByte128)
{
    const std::string strLong(127, 'x');
    EXPECT_EQ(Assemble({{13, strLong}}), 0x81000001U);
    const LINES vecMessages = fake::Messages();
    ASSERT_GE(vecMessages.size(), 3U);
    EXPECT_EQ(vecMessages[1], "0/6 lib_fru_assemble.c: ProductMfrName[:1] ProductName[:1] ProductPartNum[:1] "
                              "ProductVersion[:1] ProductSerialNum[:1] AssetTag[" +
                                  strLong + ":128]");
    EXPECT_EQ(vecMessages.back(), g_acNotEncoded);
    EXPECT_EQ(fake::Calls(), LINES{});
}

struct MEMBER_S
{
    u32 uiSlot;
    const char *pcName;
};

// In the order of their allocation.
const MEMBER_S g_astBoard[] = {{4, "pucBoardMfr"},
                               {7, "pucBoardPartNum"},
                               {5, "pucBoardProductName"},
                               {6, "pucBoardSerialNum"},
                               {0, "pucFRUFileID"}};
const MEMBER_S g_astProduct[] = {
    {8, "pucMfrName"},   {9, "pucProductName"},       {10, "pucProductPartNum"}, {11, "pucProductVersion"},
    {13, "pucAssetTag"}, {12, "pucProductSerialNum"}, {0, "pucFRUFileID"}};

constexpr char g_acGuard[] = "Invalid CALLOC size (size or nmemb is 0 )is detected"
                             "Invalid CALLOC size (size or nmemb is 0)is detected in # ";

TEST_F(Assembly, ABoardTextWithoutATerminatorIsRefusedLikeASizeOfZero)
{
    for (u32 i = 0; i < 4U; ++i) {
        fake::Reset();
        SLOTS mapSlots = g_mapAll;
        mapSlots[g_astBoard[i].uiSlot] = std::string(128, 'x');
        EXPECT_EQ(Assemble(mapSlots), 0x81000001U);
        EXPECT_EQ(fake::Messages(),
                  (LINES{Null("FRU_AssembleBoardInfo", "pstBoardInfo->" + std::string(g_astBoard[i].pcName)),
                         g_acBoardFailed}));
        EXPECT_EQ(fake::TakeStdout(), std::string(g_acGuard) + "FRU_AssembleBoardInfo lib_fru_assemble.c\n");
        EXPECT_EQ(fake::Calls(), LINES{});
    }
}

TEST_F(Assembly, AProductTextWithoutATerminatorIsRefusedLikeASizeOfZero)
{
    for (u32 i = 0; i < 6U; ++i) {
        fake::Reset();
        EXPECT_EQ(Assemble({{g_astProduct[i].uiSlot, std::string(128, 'x')}}), 0x81000001U);
        EXPECT_EQ(fake::Messages(), (LINES{g_acNoBoard,
                                           Null("FRU_AssembleProductInfo",
                                                "pstProductInfo->" + std::string(g_astProduct[i].pcName)),
                                           g_acProductFailed}));
        EXPECT_EQ(fake::TakeStdout(),
                  std::string(g_acGuard) + "FRU_AssembleProductInfo lib_fru_assemble.c\n");
        EXPECT_EQ(fake::Calls(), LINES{});
    }
}

// ---- memory

TEST_F(Assembly, EachBoardBufferWithoutMemoryNamesItsMember)
{
    for (u32 i = 0; i < 5U; ++i) {
        fake::Reset();
        fake::Arm({fake::KIND_E::ALLOC, i + 1U, false});
        EXPECT_EQ(Assemble(g_mapAll), 0x81000001U);
        EXPECT_EQ(fake::Messages(),
                  (LINES{Null("FRU_AssembleBoardInfo", "pstBoardInfo->" + std::string(g_astBoard[i].pcName)),
                         g_acBoardFailed}));
        EXPECT_EQ(fake::TakeStdout(), "");
        EXPECT_EQ(fake::Calls(), LINES{});
    }
}

TEST_F(Assembly, EachProductBufferWithoutMemoryNamesItsMember)
{
    for (u32 i = 0; i < 7U; ++i) {
        fake::Reset();
        fake::Arm({fake::KIND_E::ALLOC, i + 1U, false});
        EXPECT_EQ(Assemble({{9, "Rack server"}}), 0x81000001U);
        EXPECT_EQ(fake::Messages(), (LINES{g_acNoBoard,
                                           Null("FRU_AssembleProductInfo",
                                                "pstProductInfo->" + std::string(g_astProduct[i].pcName)),
                                           g_acProductFailed}));
        EXPECT_EQ(fake::Calls(), LINES{});
    }
}

// ---- FRU size

TEST_F(Assembly, TheImageHasTheSizeOfTheFru)
{
    EXPECT_EQ(Assemble({{3, "1996-01-02"}}, 32), 0U);
    EXPECT_EQ(fake::Calls(), Stored(32));
    EXPECT_EQ(fake::Db()[g_uiKey], Image({1, 0, 0, 1, 0, 0, 0},
                                         {{1, 2, 0, 0xA0, 0x05, 0, 0xC0, 0xC0, 0xC0, 0xC0, 0xC0, 0xC1}}, 32));
    fake::Reset();
    EXPECT_EQ(Assemble({}, 8), 0U);
    EXPECT_EQ(fake::Db()[g_uiKey], Image({1, 0, 0, 0, 0, 0, 0}, {}, 8));
}

TEST_F(Assembly, ASizeAbove256IsRefusedBeforeTheImageIsBuilt)
{
    for (const u16 usSize : {u16{257}, u16{0xFFFF}}) {
        fake::Reset();
        EXPECT_EQ(Assemble({}, usSize), 0x81000001U);
        EXPECT_EQ(fake::Messages(), (LINES{g_acNoBoard, g_acNoProduct, g_acNotEncoded}));
        EXPECT_EQ(fake::Calls(), LINES{});
    }
}

TEST_F(Assembly, ASizeBelow8OrTooSmallForTheAreasIsRefused)
{
    EXPECT_EQ(Assemble({}, 7), 0x81000001U);
    ASSERT_EQ(fake::Messages().size(), 4U);
    EXPECT_EQ(fake::Messages()[3], g_acNotEncoded);
    EXPECT_EQ(Assemble({}, 0), 0x81000001U);
    fake::Reset();
    EXPECT_EQ(Assemble(g_mapAll, 64), 0x81000001U);
    EXPECT_EQ(fake::Messages().back(), g_acNotEncoded);
    EXPECT_EQ(fake::Calls(), LINES{});
}

// ---- cache

TEST_F(Assembly, ACacheThatRefusesTheImageTellsItsCode)
{
    fake::Arm({fake::KIND_E::DB, 1, false});
    EXPECT_EQ(Assemble({}), 0x81000001U);
    EXPECT_EQ(
        fake::Messages(),
        (LINES{g_acNoBoard, g_acNoProduct, fake::NullMessage("lib_fru_db.c", "FRU_DB_PutFRUData", "pDb"),
               "0/4 lib_fru_assemble.c: Put FRU Data to db failed! DeviceID:0x5 Ret:0x81000005."}));
    fake::Reset();
    fake::Arm({fake::KIND_E::DB, 2, false});
    EXPECT_EQ(Assemble({}), 0x81000001U);
    EXPECT_EQ(fake::Messages(),
              (LINES{g_acNoBoard, g_acNoProduct,
                     "0/4 lib_fru_assemble.c: Put FRU Data to db failed! DeviceID:0x5 Ret:0x81000001."}));
}

TEST_F(Assembly, WhateverFailsNothingIsLeftBehindOrHalfStored)
{
    u32 uiRet = 0;
    fake::Sweep([] {}, [&] { uiRet = Assemble(g_mapAll); },
                [&](const fake::FAULT_S *pstFault) {
                    if (pstFault == nullptr) {
                        EXPECT_EQ(uiRet, 0U);
                        EXPECT_EQ(fake::Db().count(g_uiKey), 1U);
                    } else {
                        EXPECT_EQ(uiRet, 0x81000001U);
                        EXPECT_EQ(fake::Db().count(g_uiKey), 0U);
                    }
                });
}

} // namespace
