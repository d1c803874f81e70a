// SPDX-License-Identifier: Apache-2.0
#include "mr_test_helper.h"

using namespace mr;

namespace {

constexpr u32 g_uiMemory = 0;
constexpr u32 g_uiEeprom = 1;

struct OUTCOME_S
{
    u32 uiRet;
    u32 uiCount;
};

bool operator==(const OUTCOME_S &stA, const OUTCOME_S &stB)
{
    return stA.uiRet == stB.uiRet && stA.uiCount == stB.uiCount;
}

constexpr OUTCOME_S g_stFailed = {g_uiFailed, 0};

// Checks the records as a table in memory, each data buffer of its exact size. A record of 5 bytes has a
// buffer all the same; one of no bytes at all is an unused entry.
OUTCOME_S CheckMemory(const std::vector<BYTES> &vecRecords)
{
    const std::unique_ptr<FRU_DATA_S> upData(new FRU_DATA_S{});
    std::vector<std::unique_ptr<u8[]>> vecBuffers;
    for (size_t i = 0; i < vecRecords.size(); ++i) {
        const BYTES &vecRecord = vecRecords[i];
        if (vecRecord.empty()) {
            continue;
        }
        vecBuffers.emplace_back(new u8[vecRecord.size() - 5U]);
        std::copy(vecRecord.begin() + 5, vecRecord.end(), vecBuffers.back().get());
        (void)memcpy(&upData->astMultiRecord[i], vecRecord.data(), 5);
        upData->astMultiRecord[i].pucRecordData = vecBuffers.back().get();
    }
    OUTCOME_S stOutcome = {0, 99};
    stOutcome.uiRet = FRU_checkAllMultiRecords(reinterpret_cast<const u8 *>(upData->astMultiRecord),
                                               g_uiMemory, &stOutcome.uiCount);
    return stOutcome;
}

// Checks the records as bytes of an area, in a buffer of the exact size.
OUTCOME_S CheckEeprom(const std::vector<BYTES> &vecRecords)
{
    BYTES vecBytes;
    for (const BYTES &vecRecord : vecRecords) {
        Append(vecBytes, vecRecord);
    }
    const std::unique_ptr<u8[]> upBytes(new u8[vecBytes.size()]);
    std::copy(vecBytes.begin(), vecBytes.end(), upBytes.get());
    OUTCOME_S stOutcome = {0, 99};
    stOutcome.uiRet = FRU_checkAllMultiRecords(upBytes.get(), g_uiEeprom, &stOutcome.uiCount);
    return stOutcome;
}

struct MODE_S
{
    const char *pcName;
    const char *pcCount; // the two kinds of list spell it differently
    OUTCOME_S (*pfnCheck)(const std::vector<BYTES> &vecRecords);
};

void PrintTo(const MODE_S &stMode, std::ostream *pOut)
{
    *pOut << stMode.pcName;
}

class Check : public testing::TestWithParam<MODE_S>
{
  protected:
    static OUTCOME_S Run(const std::vector<BYTES> &vecRecords)
    {
        fake::Reset();
        return GetParam().pfnCheck(vecRecords);
    }
    static std::string Prefixed(const std::string &strText)
    {
        return "FRU MultiRecord[" + std::string(GetParam().pcName) + "] " + strText;
    }
    // What a list that fails at this index tells, its own message first.
    static LINES Failure(const LINES &vecOwn, u32 uiIndex)
    {
        LINES vecTexts = vecOwn;
        vecTexts.push_back("Failed to find the end of MultiRecords[" + std::string(GetParam().pcName) +
                           "]: " + GetParam().pcCount + ":" + std::to_string(uiIndex) + ".");
        vecTexts.push_back("Invalid FRU MultiRecord format");
        return MessageLines(vecTexts);
    }
};

BYTES Name(u8 ucFormat)
{
    return Record(3, ucFormat, DataOf(2, "name"));
}

TEST_P(Check, OneRecordWithTheEndBit)
{
    EXPECT_EQ(Run({Name(0x82)}), (OUTCOME_S{0, 1}));
    EXPECT_TRUE(fake::Messages().empty());
    EXPECT_EQ(fake::TakeStdout(), Prefixed("touch the end: 0"));
}

TEST_P(Check, CountsUpToTheEndBitAndReadsNoFurther)
{
    EXPECT_EQ(Run({Name(2), Record(0, 2, {1, 2, 3}), Record(0xC0, 0x82, {9}), {0xFF, 0xFF, 9, 9, 9}}),
              (OUTCOME_S{0, 3}));
    EXPECT_TRUE(fake::Messages().empty());
    EXPECT_EQ(fake::TakeStdout(), Prefixed("touch the end: 2"));
}

TEST_P(Check, SixtyFourRecordsWithTheEndBitOnTheLast)
{
    std::vector<BYTES> vecRecords(63, Name(2));
    vecRecords.push_back(Name(0x82));
    EXPECT_EQ(Run(vecRecords), (OUTCOME_S{0, 64}));
    EXPECT_TRUE(fake::Messages().empty());
    EXPECT_EQ(fake::TakeStdout(), Prefixed("touch the end: 63"));
}

TEST_P(Check, SixtyFourRecordsWithoutTheEndBit)
{
    EXPECT_EQ(Run(std::vector<BYTES>(64, Name(2))), g_stFailed);
    EXPECT_EQ(fake::Messages(), Failure({}, 64));
    EXPECT_EQ(fake::TakeStdout(), "");
}

TEST_P(Check, OfEachFormatByteOnlyBitOneIsTested)
{
    for (const u8 ucFormat : {u8{0x03}, u8{0x06}, u8{0x0A}, u8{0x7F}}) {
        EXPECT_EQ(Run({Name(2), Name(ucFormat), Name(static_cast<u8>(ucFormat | 0x80U))}), (OUTCOME_S{0, 3}));
        EXPECT_TRUE(fake::Messages().empty());
    }
    for (const u8 ucFormat : {u8{0x00}, u8{0x01}, u8{0x84}}) {
        EXPECT_EQ(Run({Name(2), Name(ucFormat), Name(0x82)}), g_stFailed);
        char acText[64];
        (void)snprintf(acText, sizeof(acText), "invalid FormatVersion[1]: %#x", ucFormat);
        EXPECT_EQ(fake::Messages(), Failure({Prefixed(acText)}, 1));
        EXPECT_EQ(fake::TakeStdout(), "");
    }
}

TEST_P(Check, HeaderChecksumTellsStoredAndComputed)
{
    BYTES vecBad = Record(3, 0x82, {2, 'a'});
    EXPECT_EQ(vecBad[4], 0xDCU); // 03 82 02 9d
    vecBad[4] = 0x11;
    EXPECT_EQ(Run({Name(2), vecBad}), g_stFailed);
    EXPECT_EQ(fake::Messages(), Failure({Prefixed("header sum check err[1]: 0x11 to 0xdc")}, 1));
    EXPECT_EQ(fake::TakeStdout(), "");
}

TEST_P(Check, RecordChecksumTellsStoredAndComputed)
{
    BYTES vecBad = Record(3, 2, {2, 'a'});
    vecBad[6] = 'b';
    EXPECT_EQ(Run({vecBad, Name(0x82)}), g_stFailed);
    EXPECT_EQ(fake::Messages(), Failure({Prefixed("record_data sum check err[0]: 0x9d to 0x9c")}, 0));
}

TEST_P(Check, ARecordWithoutDataBytesIsValid)
{
    EXPECT_EQ(Run({Record(3, 2, {}), Record(3, 0x82, {})}), (OUTCOME_S{0, 2}));
    EXPECT_TRUE(fake::Messages().empty());
}

TEST_P(Check, TheLongestRecordsAreReadWhole)
{
    EXPECT_EQ(Run({Record(3, 2, BYTES(255, 0x5A)), Record(3, 0x82, BYTES(255, 0xA5))}), (OUTCOME_S{0, 2}));
    EXPECT_TRUE(fake::Messages().empty());
}

TEST_P(Check, NullArguments)
{
    fake::Reset();
    const u32 uiType = std::string(GetParam().pcName) == "Memory" ? g_uiMemory : g_uiEeprom;
    const BYTES vecBytes(sizeof(FRU_MULTIRECORD_S), 0);
    u32 uiCount = 99;
    EXPECT_EQ(FRU_checkAllMultiRecords(nullptr, uiType, &uiCount), 0x81000002U);
    EXPECT_EQ(uiCount, 99U);
    EXPECT_EQ(FRU_checkAllMultiRecords(vecBytes.data(), uiType, nullptr), 0x81000002U);
    EXPECT_EQ(FRU_checkAllMultiRecords(nullptr, uiType, nullptr), 0x81000002U);
    EXPECT_EQ(fake::Messages(), (LINES{Null("FRU_checkAllMultiRecords", "pucBuf"),
                                       Null("FRU_checkAllMultiRecords", "puiOutCount"),
                                       Null("FRU_checkAllMultiRecords", "pucBuf")}));
}

INSTANTIATE_TEST_SUITE_P(Lists, Check,
                         testing::Values(MODE_S{"Memory", "Count", CheckMemory},
                                         MODE_S{"EEPROM", "count", CheckEeprom}),
                         [](const auto &stInfo) { return std::string(stInfo.param.pcName); });

TEST(CheckMemory, AnEmptyTableIsValid)
{
    fake::Reset();
    EXPECT_EQ(CheckMemory({}), (OUTCOME_S{0, 0}));
    EXPECT_TRUE(fake::Messages().empty());
    EXPECT_EQ(fake::TakeStdout(), "");
}

TEST(CheckMemory, AnUnusedFirstEntryOfFormatTwoIsNotAnEmptyTable)
{
    for (const u8 ucFormat : {u8{0x02}, u8{0x82}}) {
        fake::Reset();
        const std::unique_ptr<FRU_DATA_S> upData(new FRU_DATA_S{});
        upData->astMultiRecord[0].ucRecordFormat = ucFormat;
        u32 uiCount = 99;
        EXPECT_EQ(FRU_checkAllMultiRecords(reinterpret_cast<const u8 *>(upData->astMultiRecord), g_uiMemory,
                                           &uiCount),
                  g_uiFailed);
        EXPECT_EQ(uiCount, 0U);
        EXPECT_EQ(fake::Messages(), MessageLines({"FRU MultiRecord[Memory] invalid null point[0].",
                                                  "Failed to find the end of MultiRecords[Memory]: Count:0.",
                                                  "Invalid FRU MultiRecord format"}));
    }
}

TEST(CheckMemory, AFirstEntryOfAnotherFormatWithDataIsNotAnEmptyTable)
{
    fake::Reset();
    EXPECT_EQ(CheckMemory({Name(0x83)}), (OUTCOME_S{0, 1})); // and passes, as bit 1 alone is tested
    fake::Reset();
    EXPECT_EQ(CheckMemory({Name(0x81)}), g_stFailed);
    EXPECT_EQ(fake::Messages(), MessageLines({"FRU MultiRecord[Memory] invalid FormatVersion[0]: 0x81",
                                              "Failed to find the end of MultiRecords[Memory]: Count:0.",
                                              "Invalid FRU MultiRecord format"}));
}

TEST(CheckMemory, AListWithoutTheEndBitFailsAtTheFirstUnusedEntry)
{
    fake::Reset();
    EXPECT_EQ(CheckMemory({Name(2), Name(2), {}, Name(0x82)}), g_stFailed);
    EXPECT_EQ(fake::Messages(), MessageLines({"FRU MultiRecord[Memory] invalid null point[2].",
                                              "Failed to find the end of MultiRecords[Memory]: Count:2.",
                                              "Invalid FRU MultiRecord format"}));
}

TEST(CheckEeprom, AnAreaWhoseFirstFormatIsNotTwoHasNoRecords)
{
    for (const u8 ucFormat : {u8{0x00}, u8{0x03}, u8{0x83}, u8{0xFF}}) {
        fake::Reset();
        EXPECT_EQ(CheckEeprom({{3, ucFormat}}), (OUTCOME_S{0, 0})); // two bytes are enough to see that
        EXPECT_TRUE(fake::Messages().empty());
        EXPECT_EQ(fake::TakeStdout(), "");
    }
}

TEST(CheckType, AnyOtherIsRefusedAndTheCountStays)
{
    fake::Reset();
    const BYTES vecBytes(8, 0);
    u32 uiCount = 99;
    EXPECT_EQ(FRU_checkAllMultiRecords(vecBytes.data(), 2, &uiCount), g_uiFailed);
    EXPECT_EQ(uiCount, 99U);
    EXPECT_EQ(fake::Messages(), LINES{Message("Unknown FRU MultiRecords check type: 0x2")});
}

} // namespace
