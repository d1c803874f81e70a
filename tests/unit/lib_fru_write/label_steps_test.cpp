// SPDX-License-Identifier: Apache-2.0
#include <cstdlib>
#include <cstring>

#include <gtest/gtest.h>

#include "label_texts.h"
#include "label_world.h"
#include "lib_fru_codec.h"
#include "lib_fru_labels.h"

namespace {

using label::DEVICE_S;
using label::IMAGE_S;
using label::Line;
using label::LINES;
using label::Null;
using label::Request;

// A record that releases itself.
struct RECORD_S
{
    FRU_DATA_S stData = {};
    RECORD_S() = default;
    ~RECORD_S()
    {
        FRU_ANALYZER_SafeFree(&stData);
    }
    RECORD_S(const RECORD_S &) = delete;
    RECORD_S &operator=(const RECORD_S &) = delete;
};

const char *Text(const u8 *pucText)
{
    return reinterpret_cast<const char *>(pucText);
}

IMAGE_S WithoutProduct()
{
    IMAGE_S stImage;
    stImage.bProduct = false;
    return stImage;
}

// ---- reading

TEST(GetLabel, NullArgumentsAreReportedTheBlockFirst)
{
    fake::Reset();
    const FRU_SET_PARA_S stBlock = {};
    RECORD_S stRecord;
    EXPECT_EQ(FRU_GetElectronicLabel(nullptr, nullptr), 0x81000002U);
    EXPECT_EQ(FRU_GetElectronicLabel(nullptr, &stRecord.stData), 0x81000002U);
    EXPECT_EQ(FRU_GetElectronicLabel(&stBlock, nullptr), 0x81000002U);
    EXPECT_EQ(fake::Messages(), (LINES{Null("FRU_GetElectronicLabel", "pstFRUSetPara"),
                                       Null("FRU_GetElectronicLabel", "pstFRUSetPara"),
                                       Null("FRU_GetElectronicLabel", "pstFRUData")}));
    EXPECT_TRUE(fake::Calls().empty());
}

TEST(GetLabel, ARecordWithAProductAreaIsGivenAsRead)
{
    fake::Reset();
    const DEVICE_S stDevice;
    label::Provision(stDevice, label::Encode({}, stDevice.usSize));
    const FRU_SET_PARA_S stBlock = Request(stDevice, "FRU File ID", "new");
    RECORD_S stRecord;
    EXPECT_EQ(FRU_GetElectronicLabel(&stBlock, &stRecord.stData), 0U);
    EXPECT_STREQ(Text(stRecord.stData.stProductInfo.pucMfrName), "old product.manufacturer");
    EXPECT_EQ(stRecord.stData.stProductInfo.ucLanguage, 26U);
    EXPECT_EQ(stRecord.stData.stProductInfo.ucCustomFieldCount, 4U);
    EXPECT_TRUE(label::LabelMessages().empty());
}

TEST(GetLabel, AMissingProductAreaIsMadeOfEmptyTexts)
{
    fake::Reset();
    const DEVICE_S stDevice;
    label::Provision(stDevice, label::Encode(WithoutProduct(), stDevice.usSize));
    const FRU_SET_PARA_S stBlock = Request(stDevice, "FRU File ID", "new");
    RECORD_S stRecord;
    stRecord.stData.stProductInfo.ucAreaLength = 9U; // what the caller left there
    stRecord.stData.stProductInfo.ucLanguage = 25U;
    EXPECT_EQ(FRU_GetElectronicLabel(&stBlock, &stRecord.stData), 0U);
    EXPECT_EQ(stRecord.stData.stCommonHeader.ucProductInfoAreaStartOffset, 1U);
    const FRU_PRODUCT_INFO_S &stProduct = stRecord.stData.stProductInfo;
    EXPECT_EQ(stProduct.ucFormatVersion, 1U);
    EXPECT_EQ(stProduct.ucAreaLength, 0U);
    EXPECT_EQ(stProduct.ucLanguage, 0U);
    EXPECT_EQ(stProduct.ucMfrNameLen, 0U); // unlike its neighbours
    EXPECT_EQ(stProduct.ucProductNameLen, 1U);
    EXPECT_EQ(stProduct.ucProductPartNumLen, 1U);
    EXPECT_EQ(stProduct.ucProductVersionLen, 1U);
    EXPECT_EQ(stProduct.ucProductSerialNumLen, 1U);
    EXPECT_EQ(stProduct.ucAssetTagLen, 1U);
    EXPECT_EQ(stProduct.ucFRUFileIDLen, 1U);
    const u8 *const apucTexts[] = {stProduct.pucMfrName,          stProduct.pucProductName,
                                   stProduct.pucProductPartNum,   stProduct.pucProductVersion,
                                   stProduct.pucProductSerialNum, stProduct.pucAssetTag,
                                   stProduct.pucFRUFileID};
    for (const u8 *pucText : apucTexts) {
        ASSERT_NE(pucText, nullptr);
        EXPECT_STREQ(Text(pucText), "");
    }
    const bool bNoFields = stProduct.ppucCustomFields == nullptr;
    EXPECT_TRUE(bNoFields);
    EXPECT_EQ(stProduct.ucCustomFieldCount, 0U);
    EXPECT_STREQ(Text(stRecord.stData.stBoardInfo.pucBoardMfr), "old board.manufacturer");
    EXPECT_TRUE(label::LabelMessages().empty());
}

TEST(GetLabel, AMissingProductAreaOfABaseboardHasNoCustomFieldsEither)
{
    fake::Reset();
    DEVICE_S stDevice;
    stDevice.strImagePath = "/opt/fru/BaseBoard.bin"; // presets four slots in the record
    label::Provision(stDevice, label::Encode(WithoutProduct(), stDevice.usSize));
    const FRU_SET_PARA_S stBlock = Request(stDevice, "FRU File ID", "new");
    RECORD_S stRecord;
    EXPECT_EQ(FRU_GetElectronicLabel(&stBlock, &stRecord.stData), 0U);
    EXPECT_EQ(stRecord.stData.stProductInfo.ucCustomFieldCount, 0U);
}

TEST(GetLabel, NoMemoryForAnyOfTheEmptyTextsFailsAndReleasesTheRecord)
{
    fake::Reset();
    const DEVICE_S stDevice;
    const fake::BYTES vecImage = label::Encode(WithoutProduct(), stDevice.usSize);
    label::Provision(stDevice, vecImage);
    const FRU_SET_PARA_S stBlock = Request(stDevice, "FRU File ID", "new");
    u32 uiAllocations = 0;
    {
        RECORD_S stRecord;
        fake::Arm({fake::KIND_E::ALLOC, 0, false});
        EXPECT_EQ(FRU_GetElectronicLabel(&stBlock, &stRecord.stData), 0U);
        uiAllocations = fake::Count(fake::KIND_E::ALLOC);
    }
    for (u32 i = uiAllocations - 6U; i <= uiAllocations; ++i) {
        fake::Reset();
        label::Provision(stDevice, vecImage);
        const u32 uiLive = fake::LiveAllocations();
        FRU_DATA_S stData = {};
        fake::Arm({fake::KIND_E::ALLOC, i, false});
        EXPECT_EQ(FRU_GetElectronicLabel(&stBlock, &stData), 0x81000001U);
        fake::Disarm();
        EXPECT_EQ(fake::LiveAllocations(), uiLive);
        EXPECT_EQ(label::LabelMessages(),
                  LINES{Line(2U, "Set product area default value failed! Ret:0x81000001.")});
    }
}

TEST(GetLabel, AnUnreadableDeviceIsToldWithTheReadersCode)
{
    fake::Reset();
    DEVICE_S stDevice;
    const FRU_SET_PARA_S stBlock = Request(stDevice, "FRU File ID", "new");
    RECORD_S stRecord;
    EXPECT_EQ(FRU_GetElectronicLabel(&stBlock, &stRecord.stData), 0x81000001U);
    EXPECT_EQ(label::LabelMessages(), LINES{Line(2U, "Get FRU data failed! Ret:0x29000003.")});

    fake::Reset();
    fake::BYTES vecImage = label::Encode({}, stDevice.usSize);
    vecImage[9] ^= 0xFFU; // the internal-use area stays readable, the chassis area's checksum does not hold
    vecImage[static_cast<size_t>(vecImage[2]) * 8U + 5U] ^= 0x01U;
    label::Provision(stDevice, vecImage);
    const u32 uiLive = fake::LiveAllocations();
    EXPECT_EQ(FRU_GetElectronicLabel(&stBlock, &stRecord.stData), 0x81000001U);
    EXPECT_EQ(label::LabelMessages(), LINES{Line(2U, "Get FRU data failed! Ret:0x29000001.")});
    EXPECT_EQ(fake::LiveAllocations(), uiLive); // what had been decoded is released
}

// ---- checking

TEST(CheckLabel, ANullBlockIsReported)
{
    fake::Reset();
    EXPECT_EQ(FRU_CheckElectronicLabel(nullptr), 0x81000002U);
    EXPECT_EQ(fake::Messages(), LINES{Null("FRU_CheckElectronicLabel", "pstFRUSetPara")});
}

FRU_SET_PARA_S Counted(const std::string &strName, const std::string &strValue, u8 ucFieldFlag = 7U)
{
    FRU_SET_PARA_S stBlock = Request({}, strName, strValue);
    stBlock.ucFieldFlag = ucFieldFlag;
    stBlock.uiLabelValueLen = static_cast<u32>(strValue.size());
    return stBlock;
}

TEST(CheckLabel, AValidRequestPassesUnchanged)
{
    fake::Reset();
    FRU_SET_PARA_S stBlock = Counted("Board Serial Number", "SN-1");
    const FRU_SET_PARA_S stBefore = stBlock;
    EXPECT_EQ(FRU_CheckElectronicLabel(&stBlock), 0U);
    EXPECT_EQ(memcmp(&stBlock, &stBefore, sizeof(stBlock)), 0);
    EXPECT_TRUE(fake::Messages().empty());
}

TEST(CheckLabel, AMacAddressIsUpperCasedInTheBlock)
{
    fake::Reset();
    FRU_SET_PARA_S stBlock = Counted("Chassis MAC Address", "00a0c9141e3f");
    EXPECT_EQ(FRU_CheckElectronicLabel(&stBlock), 0U);
    EXPECT_STREQ(stBlock.acLabelValue, "00A0C9141E3F");
}

TEST(CheckLabel, AnInvalidNameIsToldAndTheValueNotLookedAt)
{
    fake::Reset();
    FRU_SET_PARA_S stBlock = Counted("Board Serial Number", "", 4U);
    EXPECT_EQ(FRU_CheckElectronicLabel(&stBlock), 0x81000001U);
    EXPECT_EQ(fake::Messages(), LINES{Line(2U, "Label name[Board Serial Number] is invalid!")});
}

TEST(CheckLabel, ANameWithoutATerminatorIsAnUnknownName)
{
    fake::Reset();
    FRU_SET_PARA_S stBlock = Counted(std::string(64U, 'n'), "value");
    EXPECT_EQ(FRU_CheckElectronicLabel(&stBlock), 0x81000001U);
    EXPECT_EQ(fake::Messages(), (LINES{Line(4U, "Find Electronic label Name Failed! LabelId:0x24\n"),
                                       Line(2U, "Label name[" + std::string(64U, 'n') + "] is invalid!")}));
}

TEST(CheckLabel, AnInvalidValueIsToldWithValueAndLength)
{
    fake::Reset();
    FRU_SET_PARA_S stBlock = Counted("Board Part Number", "0123456789ABCDEF");
    EXPECT_EQ(FRU_CheckElectronicLabel(&stBlock), 0x81000001U);
    EXPECT_EQ(fake::Messages(), (LINES{Line(2U, "Label Value Size:16 invalid!"),
                                       Line(2U, "Label value[0123456789ABCDEF] length[16] is invalid!")}));
}

TEST(CheckLabel, AValueWithoutATerminatorIsAnInvalidValue)
{
    fake::Reset();
    const std::string strValue(80U, 'v');
    FRU_SET_PARA_S stBlock = Counted("Product Asset Tag", strValue);
    const LINES vecRefused = {Line(2U, "Label Value Size:80 invalid!"),
                              Line(2U, "Label value[" + strValue + "] length[80] is invalid!")};
    EXPECT_EQ(FRU_CheckElectronicLabel(&stBlock), 0x81000001U);
    EXPECT_EQ(fake::Messages(), vecRefused);

    // Not even a catalogue that allows so long a value makes it valid.
    fake::Reset();
    g_astDIAG_FruLabel[22].uiMaxLen = 100U;
    EXPECT_EQ(FRU_CheckElectronicLabel(&stBlock), 0x81000001U);
    g_astDIAG_FruLabel[22].uiMaxLen = 63U;
    EXPECT_EQ(fake::Messages(), LINES{vecRefused[1]});
}

// ---- replacing

TEST(ReplaceLabel, NullArgumentsAreReportedTheBlockFirst)
{
    fake::Reset();
    const FRU_SET_PARA_S stBlock = {};
    RECORD_S stRecord;
    EXPECT_EQ(FRU_ReplaceElectronicLabel(nullptr, nullptr), 0x81000002U);
    EXPECT_EQ(FRU_ReplaceElectronicLabel(nullptr, &stRecord.stData), 0x81000002U);
    EXPECT_EQ(FRU_ReplaceElectronicLabel(&stBlock, nullptr), 0x81000002U);
    EXPECT_EQ(fake::Messages(), (LINES{Null("FRU_ReplaceElectronicLabel", "pstFRUSetPara"),
                                       Null("FRU_ReplaceElectronicLabel", "pstFRUSetPara"),
                                       Null("FRU_ReplaceElectronicLabel", "pstFRUData")}));
}

FRU_SET_PARA_S WithID(u32 uiLabelID, const std::string &strValue)
{
    FRU_SET_PARA_S stBlock = Counted("name is not looked at", strValue);
    stBlock.uiLabelID = uiLabelID;
    return stBlock;
}

TEST(ReplaceLabel, AnUnknownIdIsTold)
{
    for (const u32 uiLabelID : {0U, 30U, 36U, 0xFFFFFFFFU}) {
        fake::Reset();
        const FRU_SET_PARA_S stBlock = WithID(uiLabelID, "value");
        RECORD_S stRecord;
        EXPECT_EQ(FRU_ReplaceElectronicLabel(&stBlock, &stRecord.stData), 0x81000001U);
        EXPECT_EQ(fake::Messages(), LINES{Line(2U, "Find fru label replace failed! Ret:0x81000001.")});
    }
}

TEST(ReplaceLabel, AnEmptyTableKnowsNoId)
{
    fake::Reset();
    const FRU_SET_PARA_S stBlock = WithID(11U, "value");
    RECORD_S stRecord;
    g_uiDIAG_FruLabelMaxNum = 0U;
    EXPECT_EQ(FRU_ReplaceElectronicLabel(&stBlock, &stRecord.stData), 0x81000001U);
    g_uiDIAG_FruLabelMaxNum = 34U;
    EXPECT_EQ(fake::Messages(), LINES{Line(2U, "Find fru label replace failed! Ret:0x81000001.")});
}

TEST(ReplaceLabel, ALabelWithoutASetterChangesNothing)
{
    for (const u32 uiLabelID : {29U, 31U, 32U, 33U, 34U, 35U}) {
        fake::Reset();
        const FRU_SET_PARA_S stBlock = WithID(uiLabelID, "value");
        RECORD_S stRecord;
        fake::Arm({fake::KIND_E::ALLOC, 0, false});
        EXPECT_EQ(FRU_ReplaceElectronicLabel(&stBlock, &stRecord.stData), 0U);
        EXPECT_EQ(fake::Count(fake::KIND_E::ALLOC), 0U);
        const FRU_DATA_S stZero = {};
        EXPECT_EQ(memcmp(&stRecord.stData, &stZero, sizeof(stZero)), 0);
        EXPECT_TRUE(fake::Messages().empty());
    }
}

TEST(ReplaceLabel, ATextSettersCopyBelongsToTheRecord)
{
    fake::Reset();
    const u32 uiLive = fake::LiveAllocations();
    {
        const FRU_SET_PARA_S stBlock = WithID(11U, "Maker");
        RECORD_S stRecord;
        EXPECT_EQ(FRU_ReplaceElectronicLabel(&stBlock, &stRecord.stData), 0U);
        EXPECT_STREQ(Text(stRecord.stData.stBoardInfo.pucBoardMfr), "Maker");
        EXPECT_EQ(fake::LiveAllocations(), uiLive + 1U);
    }
    EXPECT_EQ(fake::LiveAllocations(), uiLive);
    EXPECT_TRUE(fake::Messages().empty());
}

TEST(ReplaceLabel, ALanguageOrDateSettersCopyIsReleased)
{
    for (const auto &[uiLabelID, pcValue] :
         {std::pair<u32, const char *>{9U, "25"}, {17U, "26"}, {10U, "2024-01-02"}}) {
        fake::Reset();
        const u32 uiLive = fake::LiveAllocations();
        const FRU_SET_PARA_S stBlock = WithID(uiLabelID, pcValue);
        RECORD_S stRecord;
        EXPECT_EQ(FRU_ReplaceElectronicLabel(&stBlock, &stRecord.stData), 0U);
        EXPECT_EQ(fake::LiveAllocations(), uiLive);
        EXPECT_TRUE(fake::Messages().empty());
    }
}

TEST(ReplaceLabel, ARefusedCopyIsReleasedAndTold)
{
    fake::Reset();
    const u32 uiLive = fake::LiveAllocations();
    const FRU_SET_PARA_S stBlock = WithID(25U, "type");
    RECORD_S stRecord;
    EXPECT_EQ(FRU_ReplaceElectronicLabel(&stBlock, &stRecord.stData), 0x81000001U);
    EXPECT_EQ(fake::LiveAllocations(), uiLive);
    EXPECT_EQ(fake::Messages(),
              (LINES{Null("setProductNodeType", "pstFRUData->stProductInfo.ppucCustomFields"),
                     Line(2U, "Replace fru label failed! Ret:0x81000002.")}));
}

TEST(ReplaceLabel, NoMemoryForTheCopyIsReportedUnderBothNames)
{
    fake::Reset();
    const FRU_SET_PARA_S stBlock = WithID(11U, "Maker");
    RECORD_S stRecord;
    fake::Arm({fake::KIND_E::ALLOC, 1, false});
    EXPECT_EQ(FRU_ReplaceElectronicLabel(&stBlock, &stRecord.stData), 0x81000002U);
    fake::Disarm();
    EXPECT_EQ(fake::Messages(), (LINES{Null("FRU_MallocLabelValue", "pucLabelValue"),
                                       Null("FRU_ReplaceElectronicLabel", "pucLabelValue")}));
    EXPECT_EQ(fake::TakeStdout(), "");
}

TEST(ReplaceLabel, ALengthThatWrapsIsARefusedSize)
{
    fake::Reset();
    FRU_SET_PARA_S stBlock = WithID(11U, "Maker");
    stBlock.uiLabelValueLen = 0xFFFFFFFFU;
    RECORD_S stRecord;
    EXPECT_EQ(FRU_ReplaceElectronicLabel(&stBlock, &stRecord.stData), 0x81000002U);
    EXPECT_EQ(fake::Messages(), (LINES{Line(3U, "Invalid MALLOC size (size is 0)is detected"),
                                       Null("FRU_MallocLabelValue", "pucLabelValue"),
                                       Null("FRU_ReplaceElectronicLabel", "pucLabelValue")}));
    EXPECT_EQ(fake::TakeStdout(),
              "Invalid MALLOC size (size is 0)is detected in # FRU_MallocLabelValue lib_fru_write.c\n");
}

TEST(ReplaceLabel, AWrongLengthNeitherReadsPastTheBlockNorLosesTheTerminator)
{
    const std::string strValue(80U, 'v');
    for (const u32 uiLength : {0U, 1U, 79U, 80U, 81U, 500U}) {
        fake::Reset();
        FRU_SET_PARA_S stBlock = WithID(11U, strValue);
        stBlock.uiLabelValueLen = uiLength;
        RECORD_S stRecord;
        EXPECT_EQ(FRU_ReplaceElectronicLabel(&stBlock, &stRecord.stData), 0U);
        EXPECT_STREQ(Text(stRecord.stData.stBoardInfo.pucBoardMfr),
                     strValue.substr(0, uiLength < 80U ? uiLength : 80U).c_str());
    }
}

// ---- writing back

TEST(SetLabel, NullArgumentsAreReportedTheBlockFirst)
{
    fake::Reset();
    const FRU_SET_PARA_S stBlock = {};
    const FRU_DATA_S stData = {};
    EXPECT_EQ(FRU_SetElectronicLabel(nullptr, nullptr), static_cast<i32>(0x81000002U));
    EXPECT_EQ(FRU_SetElectronicLabel(nullptr, &stData), static_cast<i32>(0x81000002U));
    EXPECT_EQ(FRU_SetElectronicLabel(&stBlock, nullptr), static_cast<i32>(0x81000002U));
    EXPECT_EQ(fake::Messages(), (LINES{Null("FRU_SetElectronicLabel", "pstFRUSetPara"),
                                       Null("FRU_SetElectronicLabel", "pstFRUSetPara"),
                                       Null("FRU_SetElectronicLabel", "pstFRUData")}));
    EXPECT_TRUE(fake::Calls().empty());
}

TEST(SetLabel, WritesTheRecordToDeviceAndCache)
{
    fake::Reset();
    const DEVICE_S stDevice;
    const fake::BYTES vecImage = label::Encode({}, stDevice.usSize);
    label::Provision(stDevice, vecImage);
    const FRU_SET_PARA_S stBlock = Request(stDevice, "not looked at", "not looked at");
    RECORD_S stRecord;
    ASSERT_EQ(FRU_GetElectronicLabel(&stBlock, &stRecord.stData), 0U);
    stRecord.stData.stBoardInfo.ucLanguage = 99U;
    EXPECT_EQ(FRU_SetElectronicLabel(&stBlock, &stRecord.stData), 0);
    EXPECT_TRUE(label::LabelMessages().empty());
    label::FIELDS mapExpected = label::Decode(vecImage);
    mapExpected["board.language"] = "99";
    EXPECT_EQ(label::Decode(label::OnChip(stDevice)), mapExpected);
    EXPECT_TRUE(label::CacheMatchesChip(stDevice));
}

TEST(SetLabel, AFailedWriteIsToldWithTheWritersCode)
{
    fake::Reset();
    const FRU_SET_PARA_S stBlock = Request({}, "FRU File ID", "new");
    const FRU_DATA_S stData = {};
    EXPECT_EQ(FRU_SetElectronicLabel(&stBlock, &stData), static_cast<i32>(0x81000001U));
    EXPECT_EQ(label::LabelMessages(), LINES{Line(2U, "Write FRU array data failed! Ret:0x29000003.")});
}

// ---- side effects

TEST(UpdateInfo, OnlyTheProductSerialNumberHasASideEffect)
{
    for (u32 uiLabelID = 0U; uiLabelID <= 40U; ++uiLabelID) {
        fake::Reset();
        fake::MakeDirectory("/mnt/sdmmc0p4/board");
        FRU_UpdateFRUInfo(uiLabelID, "SERIAL", 6U);
        EXPECT_EQ(fake::ReadFile("/mnt/sdmmc0p4/board/ProductSerialNumber"),
                  uiLabelID == 20U ? std::optional(label::Bytes("SERIAL")) : std::nullopt);
        EXPECT_EQ(fake::Calls().empty(), uiLabelID != 20U);
        EXPECT_TRUE(fake::Messages().empty());
    }
}

TEST(UpdateInfo, AFailedMirrorIsToldAsAWarning)
{
    fake::Reset();
    fake::Arm({fake::KIND_E::FILE_CALL, 1, true});
    FRU_UpdateFRUInfo(20U, "SERIAL", 6U);
    fake::Disarm();
    EXPECT_EQ(fake::Messages().back(), Line(4U, "Update Product SN failed! Ret:0x81000001."));
    EXPECT_EQ(fake::Messages().size(), 4U);
}

TEST(UpdateInfo, ANullValueIsReportedWhateverTheLabel)
{
    fake::Reset();
    FRU_UpdateFRUInfo(20U, nullptr, 6U);
    FRU_UpdateFRUInfo(1U, nullptr, 0U);
    EXPECT_EQ(fake::Messages(),
              (LINES{Null("FRU_UpdateFRUInfo", "pcLabelValue"), Null("FRU_UpdateFRUInfo", "pcLabelValue")}));
    EXPECT_TRUE(fake::Calls().empty());
}

} // namespace
