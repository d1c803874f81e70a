// SPDX-License-Identifier: Apache-2.0
#include "mr_test_helper.h"

using namespace mr;

namespace {

constexpr char g_acGuardLog[] = "0/3 lib_fru_multirecord.c: Invalid MALLOC size (size is 0)is detected";

class SingleRecord : public STORE_TEST
{};

BYTES Counting(size_t uiLength)
{
    BYTES vecBytes(uiLength);
    for (size_t i = 0; i < uiLength; ++i) {
        vecBytes[i] = static_cast<u8>(i * 7U + 1U);
    }
    return vecBytes;
}

// Builds a record from a value in a buffer of its exact size, uiLength told apart from it.
FRU_INNER_MR_BUFFER Generate(u8 ucType, u8 ucSubType, u32 uiLength, const BYTES &vecValue)
{
    const std::unique_ptr<u8[]> upValue(new u8[vecValue.size()]);
    std::copy(vecValue.begin(), vecValue.end(), upValue.get());
    FRU_MR_PARAM_S stParam = {};
    stParam.ucRecordTypeID = ucType;
    stParam.ucSubType = ucSubType;
    stParam.uiLength = uiLength;
    stParam.pucBuf = upValue.get();
    return FRU_INNER_MR_BUFFER(FRU_generateSingleInnerMultiRecord(&stParam));
}

BYTES BytesOf(const FRU_INNER_MR_BUFFER &upRecord, size_t uiCount)
{
    const auto *pucRecord = reinterpret_cast<const u8 *>(upRecord.get());
    return BYTES(pucRecord, pucRecord + uiCount);
}

BYTES EntryHeader(const FRU_MULTIRECORD_S &stEntry)
{
    return {stEntry.ucRecordTypeID, stEntry.ucRecordFormat, stEntry.ucRecordLength, stEntry.ucRecordChecksum,
            stEntry.ucHeaderChecksum};
}

// An inner record in a buffer of its exact size.
struct INNER_S
{
    explicit INNER_S(const BYTES &vecRecord) : upBytes(new u8[vecRecord.size()])
    {
        std::copy(vecRecord.begin(), vecRecord.end(), upBytes.get());
    }
    const FRU_INNER_MR_S *Get() const
    {
        return reinterpret_cast<const FRU_INNER_MR_S *>(upBytes.get());
    }
    std::unique_ptr<u8[]> upBytes;
};

// ---- GUID order

TEST(Guid, StoredOrder)
{
    fake::Reset();
    u8 aucSource[16];
    u8 aucStored[16] = {};
    for (u32 i = 0; i < 16U; ++i) {
        aucSource[i] = static_cast<u8>(i);
    }
    FRU_ConvertGUIDToStandardOrder(aucSource, aucStored);
    EXPECT_EQ(BYTES(aucStored, aucStored + 16),
              (BYTES{0x0C, 0x0D, 0x0E, 0x0F, 0x0A, 0x0B, 0x08, 0x09, 7, 6, 5, 4, 3, 2, 1, 0}));
    EXPECT_EQ(aucSource[12], 12U);
    EXPECT_TRUE(fake::Messages().empty());
}

TEST(Guid, InPlace)
{
    fake::Reset();
    u8 aucGuid[16];
    for (u32 i = 0; i < 16U; ++i) {
        aucGuid[i] = static_cast<u8>(i);
    }
    FRU_ConvertGUIDToStandardOrder(aucGuid, aucGuid);
    EXPECT_EQ(BYTES(aucGuid, aucGuid + 16),
              (BYTES{0x0C, 0x0D, 0x0E, 0x0F, 0x0A, 0x0B, 0x08, 0x09, 7, 6, 5, 4, 3, 2, 1, 0}));
}

TEST(Guid, NullArgumentsWriteNothing)
{
    fake::Reset();
    u8 aucGuid[16] = {1, 2, 3};
    FRU_ConvertGUIDToStandardOrder(nullptr, aucGuid);
    EXPECT_EQ(aucGuid[0], 1U);
    FRU_ConvertGUIDToStandardOrder(aucGuid, nullptr);
    FRU_ConvertGUIDToStandardOrder(nullptr, nullptr);
    EXPECT_EQ(fake::Messages(), (LINES{Null("FRU_ConvertGUIDToStandardOrder", "pstSrcBuf"),
                                       Null("FRU_ConvertGUIDToStandardOrder", "pstDestBuf"),
                                       Null("FRU_ConvertGUIDToStandardOrder", "pstSrcBuf")}));
}

// ---- builder

TEST_F(SingleRecord, BuildsEverySubTypeButTheGuidAlike)
{
    for (u8 ucSubType = 1; ucSubType <= 6; ++ucSubType) {
        const auto upRecord = Generate(3, ucSubType, 4, {'n', 'a', 'm', 'e'});
        ASSERT_NE(upRecord, nullptr);
        EXPECT_EQ(BytesOf(upRecord, 10), Record(3, 2, DataOf(ucSubType, "name")));
    }
    EXPECT_TRUE(fake::Messages().empty());
}

TEST_F(SingleRecord, BuildsAKnownRecordByteForByte)
{
    const auto upRecord = Generate(3, 2, 4, {'n', 'a', 'm', 'e'});
    ASSERT_NE(upRecord, nullptr);
    // 02 'n' 'a' 'm' 'e' sum to 0x1a3, so 0x5d; 03 02 05 5d sum to 0x67, so 0x99.
    EXPECT_EQ(BytesOf(upRecord, 10), (BYTES{0x03, 0x02, 0x05, 0x5D, 0x99, 0x02, 'n', 'a', 'm', 'e'}));
}

TEST_F(SingleRecord, BuildsAGuidInStoredOrder)
{
    BYTES vecGuid(16);
    for (u32 i = 0; i < 16U; ++i) {
        vecGuid[i] = static_cast<u8>(i);
    }
    const auto upRecord = Generate(3, 7, 16, vecGuid);
    ASSERT_NE(upRecord, nullptr);
    EXPECT_EQ(BytesOf(upRecord, 22),
              Record(3, 2, {7, 0x0C, 0x0D, 0x0E, 0x0F, 0x0A, 0x0B, 0x08, 0x09, 7, 6, 5, 4, 3, 2, 1, 0}));
}

TEST_F(SingleRecord, AGuidIsWrittenWholeWhateverItsLengthSays)
{
    const BYTES vecGuid = Counting(16);
    const auto upShort = Generate(3, 7, 1, vecGuid);
    ASSERT_NE(upShort, nullptr);
    EXPECT_EQ(BytesOf(upShort, 7), Record(3, 2, {7, vecGuid[12]}));
    EXPECT_EQ(BytesOf(upShort, 22)[21], vecGuid[0]);
    const auto upLong = Generate(3, 7, 20, vecGuid);
    ASSERT_NE(upLong, nullptr);
    BYTES vecData = {7};
    for (const u32 uiSource : {12U, 13U, 14U, 15U, 10U, 11U, 8U, 9U, 7U, 6U, 5U, 4U, 3U, 2U, 1U, 0U}) {
        vecData.push_back(vecGuid[uiSource]);
    }
    vecData.resize(21);
    EXPECT_EQ(BytesOf(upLong, 26), Record(3, 2, vecData));
}

TEST_F(SingleRecord, The254thByteIsTheLastThatTheLengthByteCounts)
{
    const BYTES vecValue = Counting(254);
    const auto upRecord = Generate(3, 1, 254, vecValue);
    ASSERT_NE(upRecord, nullptr);
    BYTES vecData = {1};
    Append(vecData, vecValue);
    EXPECT_EQ(BytesOf(upRecord, 260), Record(3, 2, vecData));
}

TEST_F(SingleRecord, ALengthByteThatWrapsIsKeptAndTheChecksumCoversAll)
{
    for (const u32 uiLength : {255U, 256U}) {
        const BYTES vecValue = Counting(uiLength);
        const auto upRecord = Generate(3, 1, uiLength, vecValue);
        ASSERT_NE(upRecord, nullptr);
        const BYTES vecRecord = BytesOf(upRecord, uiLength + 6U);
        BYTES vecData = {1};
        Append(vecData, vecValue);
        EXPECT_EQ(vecRecord[2], uiLength - 255U);
        EXPECT_EQ(vecRecord[3], ZeroCheckSum(vecData));
        EXPECT_EQ(vecRecord[4], ZeroCheckSum(BYTES(vecRecord.begin(), vecRecord.begin() + 4)));
        EXPECT_EQ(BYTES(vecRecord.begin() + 5, vecRecord.end()), vecData);
    }
    EXPECT_TRUE(fake::Messages().empty());
}

TEST_F(SingleRecord, LongerValuesAreRefusedAndNeverAllocated)
{
    const std::pair<u32, const char *> aCases[] = {{257U, "0x101"},
                                                   {0x7FFFFFFFU, "0x7fffffff"},
                                                   {0xFFFFFFF7U, "0xfffffff7"},
                                                   {0xFFFFFFFCU, "0xfffffffc"},
                                                   {0xFFFFFFFFU, "0xffffffff"}};
    for (const auto &[uiLength, pcShown] : aCases) {
        fake::Reset();
        EXPECT_EQ(Generate(3, 1, uiLength, {1}), nullptr);
        EXPECT_EQ(fake::Messages(), LINES{Message(std::string("Invalid length! exceeds: ") + pcShown + ".")});
        EXPECT_EQ(fake::TakeStdout(), "");
        EXPECT_EQ(fake::Count(fake::KIND_E::ALLOC), 1U);
    }
}

TEST_F(SingleRecord, ALengthThatWrapsTheSizeToZeroEndsInTheAllocationGuard)
{
    for (const u32 uiLength : {0xFFFFFFF8U, 0xFFFFFFF9U, 0xFFFFFFFAU, 0xFFFFFFFBU}) {
        fake::Reset();
        EXPECT_EQ(Generate(1, 8, uiLength, {1}), nullptr); // ahead of the type and all else
        EXPECT_EQ(fake::Messages(), (LINES{g_acGuardLog, Message("Fail to distribute memory!")}));
        EXPECT_EQ(fake::TakeStdout(), "Invalid MALLOC size (size is 0)is detected in # "
                                      "FRU_generateSingleInnerMultiRecord lib_fru_multirecord.c\n");
        EXPECT_EQ(fake::Count(fake::KIND_E::ALLOC), 0U);
    }
}

TEST_F(SingleRecord, OtherTypesAreRefused)
{
    for (const u8 ucType : {u8{0}, u8{1}, u8{2}, u8{4}, u8{0xC0}}) {
        fake::Reset();
        EXPECT_EQ(Generate(ucType, 1, 4, Counting(4)), nullptr);
        char acText[64];
        (void)snprintf(acText, sizeof(acText), "Unknown MultiRecord type: %#x", ucType);
        EXPECT_EQ(fake::Messages(), LINES{Message(acText)});
    }
}

TEST_F(SingleRecord, OtherSubTypesAreRefused)
{
    for (const u8 ucSubType : {u8{0}, u8{8}, u8{0xFF}}) {
        fake::Reset();
        EXPECT_EQ(Generate(3, ucSubType, 4, Counting(4)), nullptr);
        char acText[64];
        (void)snprintf(acText, sizeof(acText), "Unknown MultiRecord SubType: %#x", ucSubType);
        EXPECT_EQ(fake::Messages(), LINES{Message(acText)});
    }
}

TEST_F(SingleRecord, TypeIsCheckedBeforeLengthAndLengthBeforeSubType)
{
    EXPECT_EQ(Generate(1, 8, 257, {1}), nullptr);
    EXPECT_EQ(Generate(3, 8, 257, {1}), nullptr);
    EXPECT_EQ(Generate(3, 8, 1, {1}), nullptr);
    EXPECT_EQ(fake::Messages(),
              MessageLines({"Unknown MultiRecord type: 0x1", "Invalid length! exceeds: 0x101.",
                            "Unknown MultiRecord SubType: 0x8"}));
}

TEST_F(SingleRecord, MemoryIsAllocatedBeforeTheChecks)
{
    fake::Arm({fake::KIND_E::ALLOC, 1, true});
    EXPECT_EQ(Generate(1, 8, 257, {1}), nullptr);
    EXPECT_EQ(fake::Messages(), LINES{Message("Fail to distribute memory!")});
}

// ---- copy into a FRU table

TEST_F(SingleRecord, AddCopiesHeaderAndDataIntoAHeapBuffer)
{
    const BYTES vecRecord = Record(3, 2, DataOf(2, "name"));
    const INNER_S stInner(vecRecord);
    FRU_MULTIRECORD_S stEntry = {};
    EXPECT_EQ(FRU_addSingleMultiRecord(&stEntry, stInner.Get()), 0U);
    u8 *pucData = stEntry.pucRecordData;
    ASSERT_NE(pucData, nullptr);
    EXPECT_EQ(EntryHeader(stEntry), BYTES(vecRecord.begin(), vecRecord.begin() + 5));
    // Rounded up to a multiple of 4, the rest zero.
    EXPECT_EQ(BYTES(pucData, pucData + 8), (BYTES{2, 'n', 'a', 'm', 'e', 0, 0, 0}));
    EXPECT_TRUE(fake::Messages().empty());
    std::free(pucData);
}

TEST_F(SingleRecord, AddOfARecordWithoutDataEndsInTheAllocationGuard)
{
    const INNER_S stInner(Record(3, 2, {}));
    FRU_MULTIRECORD_S stEntry = {};
    EXPECT_EQ(FRU_addSingleMultiRecord(&stEntry, stInner.Get()), g_uiFailed);
    EXPECT_EQ(fake::Messages(), (LINES{g_acGuardLog, Message("Failed to distribute memory")}));
    EXPECT_EQ(fake::TakeStdout(), "Invalid MALLOC size (size is 0)is detected in # FRU_addSingleMultiRecord "
                                  "lib_fru_multirecord.c\n");
    EXPECT_EQ(EntryHeader(stEntry), BYTES(5, 0));
}

TEST_F(SingleRecord, AddWithoutMemoryLeavesTheEntry)
{
    const INNER_S stInner(Record(3, 2, DataOf(2, "name")));
    FRU_MULTIRECORD_S stEntry = {};
    fake::Arm({fake::KIND_E::ALLOC, 1, false});
    EXPECT_EQ(FRU_addSingleMultiRecord(&stEntry, stInner.Get()), g_uiFailed);
    EXPECT_EQ(fake::Messages(), LINES{Message("Failed to distribute memory")});
    EXPECT_EQ(EntryHeader(stEntry), BYTES(5, 0));
    u8 *pucData = stEntry.pucRecordData;
    EXPECT_EQ(pucData, nullptr);
}

TEST_F(SingleRecord, AddRefusesNullArguments)
{
    const INNER_S stInner(Record(3, 2, DataOf(2, "name")));
    FRU_MULTIRECORD_S stEntry = {};
    EXPECT_EQ(FRU_addSingleMultiRecord(nullptr, stInner.Get()), 0x81000002U);
    EXPECT_EQ(FRU_addSingleMultiRecord(&stEntry, nullptr), 0x81000002U);
    EXPECT_EQ(fake::Messages(), (LINES{Null("FRU_addSingleMultiRecord", "pstFRUBuf"),
                                       Null("FRU_addSingleMultiRecord", "pstInnerBuf")}));
}

// ---- replacement in a FRU table

// A table entry as the decoder leaves it: a heap buffer of exactly the length byte's size.
FRU_MULTIRECORD_S Entry(const BYTES &vecRecord)
{
    FRU_MULTIRECORD_S stEntry = {};
    (void)memcpy(&stEntry, vecRecord.data(), 5);
    u8 *pucData = static_cast<u8 *>(std::malloc(vecRecord.size() - 5U));
    std::copy(vecRecord.begin() + 5, vecRecord.end(), pucData);
    stEntry.pucRecordData = pucData;
    return stEntry;
}

TEST_F(SingleRecord, UpdateReplacesInPlaceWhatIsNotLonger)
{
    for (const char *pcValue : {"eman", "n"}) {
        FRU_MULTIRECORD_S stEntry = Entry(Record(3, 0x82, DataOf(2, "name")));
        u8 *pucBefore = stEntry.pucRecordData;
        const BYTES vecRecord = Record(3, 2, DataOf(2, pcValue));
        const INNER_S stInner(vecRecord);
        EXPECT_EQ(FRU_updateSingleMultiRecord(&stEntry, stInner.Get()), 0U);
        u8 *pucData = stEntry.pucRecordData;
        EXPECT_EQ(pucData, pucBefore);
        EXPECT_EQ(EntryHeader(stEntry), BYTES(vecRecord.begin(), vecRecord.begin() + 5));
        EXPECT_EQ(BYTES(pucData, pucData + vecRecord.size() - 5U), DataOf(2, pcValue));
        std::free(pucData);
    }
    EXPECT_TRUE(fake::Messages().empty());
}

TEST_F(SingleRecord, UpdateWithLongerDataGetsALargerBuffer)
{
    FRU_MULTIRECORD_S stEntry = Entry(Record(3, 0x82, DataOf(2, "n")));
    const std::string strLong(200, 'x');
    const BYTES vecRecord = Record(3, 2, DataOf(2, strLong));
    const INNER_S stInner(vecRecord);
    EXPECT_EQ(FRU_updateSingleMultiRecord(&stEntry, stInner.Get()), 0U);
    u8 *pucData = stEntry.pucRecordData;
    EXPECT_EQ(EntryHeader(stEntry), BYTES(vecRecord.begin(), vecRecord.begin() + 5));
    EXPECT_EQ(BYTES(pucData, pucData + 201), DataOf(2, strLong));
    std::free(pucData);
}

TEST_F(SingleRecord, UpdateWithoutMemoryLeavesTheEntry)
{
    const BYTES vecBefore = Record(3, 0x82, DataOf(2, "n"));
    FRU_MULTIRECORD_S stEntry = Entry(vecBefore);
    const INNER_S stInner(Record(3, 2, DataOf(2, "longer")));
    fake::Arm({fake::KIND_E::ALLOC, 1, false});
    EXPECT_EQ(FRU_updateSingleMultiRecord(&stEntry, stInner.Get()), g_uiFailed);
    EXPECT_EQ(fake::Messages(), LINES{Message("Failed to distribute memory")});
    u8 *pucData = stEntry.pucRecordData;
    EXPECT_EQ(EntryHeader(stEntry), BYTES(vecBefore.begin(), vecBefore.begin() + 5));
    EXPECT_EQ(BYTES(pucData, pucData + 2), DataOf(2, "n"));
    std::free(pucData);
}

TEST_F(SingleRecord, UpdateRefusesANullEntryAndAnEntryWithoutData)
{
    const INNER_S stInner(Record(3, 2, DataOf(2, "name")));
    FRU_MULTIRECORD_S stEntry = {};
    EXPECT_EQ(FRU_updateSingleMultiRecord(nullptr, stInner.Get()), 0x81000002U);
    EXPECT_EQ(FRU_updateSingleMultiRecord(&stEntry, stInner.Get()), 0x81000002U);
    EXPECT_EQ(fake::Messages(), (LINES{Null("FRU_updateSingleMultiRecord", "pstDataBuf"),
                                       Null("FRU_updateSingleMultiRecord", "pstDataBuf->pucRecordData")}));
    EXPECT_EQ(EntryHeader(stEntry), BYTES(5, 0));
}

} // namespace
