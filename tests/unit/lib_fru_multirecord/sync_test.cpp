// SPDX-License-Identifier: Apache-2.0
#include "lib_fru_multirecord/store.h"
#include "mr_test_helper.h"

using namespace mr;

namespace {

constexpr int64_t g_iSecond = 1000000000;
constexpr char g_acFailed[] = "Failed to sync FRU MultiRecords data!";
constexpr char g_acTouch0[] = "FRU MultiRecord[Memory] touch the end: 0";
constexpr char g_acNoNeed[] = "There is no need to update FRU MutiRecords data as equal!";

const BYTES g_vecUrl = Record(3, 2, DataOf(1, "http://bmc"));
const BYTES g_vecName = Record(3, 2, DataOf(2, "name"));
const BYTES g_vecPing = Record(3, 2, DataOf(3, "10.0.0.1"));
const BYTES g_vecOther = Record(0xC0, 2, {2, 9, 9, 9});

class Sync : public STORE_TEST
{
  protected:
    // Runs a merge of these queued records into an image of those.
    static u32 Run(const std::vector<BYTES> &vecOnDevice, const std::vector<BYTES> &vecQueued)
    {
        PutMainFru(Image(vecOnDevice));
        for (const BYTES &vecRecord : vecQueued) {
            PutQueued(vecRecord);
        }
        fake::TakeStdout();
        return FRU_syncAllMultiRecords();
    }
    // A merge that failed: nothing written, everything still queued, the lock free.
    static void ExpectFailed(const std::vector<BYTES> &vecOnDevice, u32 uiQueued)
    {
        EXPECT_EQ(fake::Calls("EEPROM write"), LINES{});
        EXPECT_EQ(Chip(), Image(vecOnDevice));
        EXPECT_EQ(QueuedCount(), uiQueued);
        EXPECT_EQ(SemValue(), 1);
    }
    // A merge that succeeded: the image there, the store empty, the lock free.
    static void ExpectDone(const std::vector<BYTES> &vecOnDevice)
    {
        EXPECT_EQ(Chip(), Image(vecOnDevice));
        EXPECT_EQ(fake::Db()[0x10810200], Image(vecOnDevice));
        EXPECT_EQ(fake::Messages(), LINES{});
        EXPECT_EQ(QueuedCount(), 0U);
        EXPECT_EQ(SemValue(), 1);
    }
};

TEST_F(Sync, AnEmptyStoreTouchesNoDevice)
{
    fake::SetTime(1000, 5);
    EXPECT_EQ(Run({g_vecName}, {}), 0U);
    EXPECT_EQ(fake::Calls(), LINES{});
    EXPECT_EQ(fake::Messages(), LINES{});
    EXPECT_EQ(fake::TakeStdout(), "");
    EXPECT_EQ(fake::Waits(), std::vector<int64_t>{5 * g_iSecond});
    EXPECT_EQ(SemValue(), 1);
}

TEST_F(Sync, WithoutASemaphoreItFails)
{
    PutMainFru(Image({}));
    fake::Arm({fake::KIND_E::SEMAPHORE, 1, true});
    EXPECT_EQ(FRU_syncAllMultiRecords(), g_uiFailed);
    EXPECT_EQ(fake::Messages(), LINES{Message("Failed to create sem for FRU MultiRecords")});
    EXPECT_EQ(fake::Calls(), LINES{});
}

TEST_F(Sync, AFruThatCannotBeReadKeepsTheQueue)
{
    PutMainFru(Image({}));
    PutQueued(g_vecName);
    fake::Arm({fake::KIND_E::EEPROM, 1, false});
    EXPECT_EQ(FRU_syncAllMultiRecords(), g_uiFailed);
    const LINES vecMessages = fake::Messages();
    ASSERT_FALSE(vecMessages.empty());
    EXPECT_EQ(vecMessages.back(), Message("Failed to get fru data! Ret:0x29000001."));
    ExpectFailed({}, 1);
}

TEST_F(Sync, ADamagedFruIsNotRecovered)
{
    PutMainFru(Image({g_vecName}));
    FRU_DEVICE_INFO_S stInfo = {};
    (void)memcpy(&stInfo, fake::Db()[0x10810000].data(), sizeof(stInfo));
    (void)std::strcpy(stInfo.acImageFilePath, "/opt/fru/bmc.bin");
    (void)memcpy(fake::Db()[0x10810000].data(), &stInfo, sizeof(stInfo));
    fake::WriteFile("/opt/fru/bmc.bin", Image({}));
    fake::Eeprom(g_ucBus, g_ucAddress)[7] ^= 0xFFU;
    PutQueued(g_vecUrl);
    EXPECT_EQ(FRU_syncAllMultiRecords(), g_uiFailed);
    EXPECT_EQ(fake::Calls("EEPROM write"), LINES{});
    EXPECT_EQ(QueuedCount(), 1U);
}

// Another thread's destroy, say. The decoder's report of the board area is the moment.
TEST_F(Sync, AQueueEmptiedWhileTheFruIsReadLeavesNothingToMerge)
{
    for (const bool bArea : {false, true}) {
        image::AREAS_S stAreas;
        stAreas.vecBoard = image::BoardArea(25, {1, 2, 3}, image::Texts({"M", "N", "S", "P", "F"}));
        stAreas.vecMultiRecord = bArea ? List({g_vecUrl}) : BYTES{};
        PutMainFru(image::Image(stAreas));
        PutQueued(g_vecName);
        (void)fake::TakeStdout();
        fake::SetLogHook([](const std::string &) { FRU_emptyInnerStore(); });
        EXPECT_EQ(FRU_syncAllMultiRecords(), 0U);
        fake::SetLogHook({});
        EXPECT_EQ(fake::Calls("EEPROM write"), LINES{});
        EXPECT_EQ(fake::TakeStdout(), "");
        EXPECT_EQ(fake::Messages().size(), bArea ? 2U : 1U); // the decoder's
    }
}

TEST_F(Sync, ReadsTheMainFruFromTheDeviceAndWritesItOnce)
{
    EXPECT_EQ(Run({}, {g_vecName}), 0U);
    ExpectDone({g_vecName});
    EXPECT_EQ(fake::TakeStdout(), g_acTouch0);
    EXPECT_EQ(fake::Calls("EEPROM read").size(), 1U + (g_uiFruSize - 8U) / 16U + 1U);
    EXPECT_EQ(fake::Calls("EEPROM write"),
              LINES{"EEPROM write type=9 bus=1 addr=0xa0 switch=0 off=0 len=24 -> 24"});
}

// ---- a FRU without a MultiRecord area

TEST_F(Sync, AFruWithoutAnAreaGetsOneInQueueOrder)
{
    EXPECT_EQ(Run({}, {g_vecPing, g_vecUrl, g_vecName}), 0U);
    ExpectDone({g_vecPing, g_vecUrl, g_vecName});
    EXPECT_EQ(fake::TakeStdout(), "FRU MultiRecord[Memory] touch the end: 2");
}

TEST_F(Sync, ANewAreaHoldsSixtyFourRecords)
{
    std::vector<BYTES> vecRecords;
    for (u32 i = 0; i < 64U; ++i) {
        vecRecords.push_back(Record(3, 2, {static_cast<u8>(0x80U + i), 'x'}));
    }
    EXPECT_EQ(Run({}, vecRecords), 0U);
    ExpectDone(vecRecords);
    EXPECT_EQ(fake::TakeStdout(), "FRU MultiRecord[Memory] touch the end: 63");
    // 8 + 64 * 7 bytes, each written once, in chunks.
    EXPECT_EQ(fake::Calls("EEPROM write").size(), 4U);
}

TEST_F(Sync, TheOtherAreasStayAsTheyAre)
{
    FRU_DATA_S stData = {};
    u8 aucName[] = "Rack server";
    stData.stCommonHeader.ucProductInfoAreaStartOffset = 1;
    stData.stProductInfo.ucFormatVersion = 1;
    stData.stProductInfo.pucProductName = aucName;
    u8 aucEmpty[] = "";
    stData.stProductInfo.pucMfrName = aucEmpty;
    stData.stProductInfo.pucProductPartNum = aucEmpty;
    stData.stProductInfo.pucProductVersion = aucEmpty;
    stData.stProductInfo.pucProductSerialNum = aucEmpty;
    stData.stProductInfo.pucAssetTag = aucEmpty;
    stData.stProductInfo.pucFRUFileID = aucEmpty;
    BYTES vecImage(g_uiFruSize);
    const i32 iLength = FRU_ANALYZER_ConvertToArray(&stData, g_uiFruSize, vecImage.data());
    ASSERT_GT(iLength, 8);
    PutMainFru(vecImage);
    PutQueued(g_vecName);
    EXPECT_EQ(FRU_syncAllMultiRecords(), 0U);
    BYTES vecExpected = vecImage;
    const size_t uiAt = static_cast<size_t>(iLength);
    vecExpected[5] = static_cast<u8>(uiAt / 8U);
    vecExpected[7] = ZeroCheckSum(BYTES(vecExpected.begin(), vecExpected.begin() + 7));
    const BYTES vecList = List({g_vecName});
    std::copy(vecList.begin(), vecList.end(), vecExpected.begin() + iLength);
    EXPECT_EQ(Chip(), vecExpected);
    EXPECT_EQ(fake::Messages(),
              LINES{"0/7 lib_fru_analyzer.c: ProductInfoArea CustomField count is 0, length is 3."});
}

TEST_F(Sync, ANewAreaWithoutMemoryFails)
{
    for (const u32 uiRecord : {0U, 1U}) {
        fake::Reset();
        DestroyQuietly();
        PutMainFru(Image({}));
        PutQueued(g_vecPing);
        PutQueued(g_vecName);
        // The read takes two buffers ahead of the records, their copy a third.
        fake::Arm({fake::KIND_E::ALLOC, 4U + uiRecord, false});
        EXPECT_EQ(FRU_syncAllMultiRecords(), g_uiFailed);
        EXPECT_EQ(
            fake::Messages(),
            MessageLines({"Failed to distribute memory",
                          "Fail to add MultiRecord! index:" + std::to_string(uiRecord) + ".", g_acFailed}));
        ExpectFailed({}, 2);
    }
}

TEST_F(Sync, WithoutMemoryForTheCopyOfTheQueueItFails)
{
    PutMainFru(Image({}));
    PutQueued(g_vecPing);
    PutQueued(g_vecName);
    fake::Arm({fake::KIND_E::ALLOC, 3, false});
    EXPECT_EQ(FRU_syncAllMultiRecords(), g_uiFailed);
    EXPECT_EQ(fake::Messages(), MessageLines({"Failed to distribute memory", g_acFailed}));
    ExpectFailed({}, 2);
}

TEST_F(Sync, ANewAreaFailsAtAnEmptySlot)
{
    PutMainFru(Image({}));
    PutQueued(g_vecPing);
    PutQueued(g_vecName);
    std::free(g_stInnerMRStore.apstRecords[1]);
    g_stInnerMRStore.apstRecords[1] = nullptr;
    EXPECT_EQ(FRU_syncAllMultiRecords(), g_uiFailed);
    EXPECT_EQ(fake::Messages(), (LINES{Null("FRU_addSingleMultiRecord", "pstInnerBuf"),
                                       Message("Fail to add MultiRecord! index:1."), Message(g_acFailed)}));
    ExpectFailed({}, 2);
}

TEST_F(Sync, ANewAreaIsCheckedBeforeItIsWritten)
{
    BYTES vecBad = g_vecPing;
    vecBad[3] = static_cast<u8>(vecBad[3] + 1U);
    vecBad = WithEnd(vecBad, false);
    EXPECT_EQ(Run({}, {g_vecName, vecBad}), g_uiFailed);
    const LINES vecMessages = fake::Messages();
    ASSERT_EQ(vecMessages.size(), 4U);
    EXPECT_NE(vecMessages[0].find("FRU MultiRecord[Memory] record_data sum check err[1]: "),
              std::string::npos);
    EXPECT_EQ(LINES(vecMessages.begin() + 1, vecMessages.end()),
              MessageLines({"Failed to find the end of MultiRecords[Memory]: Count:1.",
                            "Invalid FRU MultiRecord format", g_acFailed}));
    ExpectFailed({}, 2);
}

// ---- a FRU with a MultiRecord area

TEST_F(Sync, ANewSubTypeIsAddedAndTheEndMarkMoves)
{
    EXPECT_EQ(Run({g_vecOther, g_vecUrl}, {g_vecName, g_vecPing}), 0U);
    ExpectDone({g_vecOther, g_vecUrl, g_vecName, g_vecPing});
    EXPECT_EQ(fake::TakeStdout(), "FRU MultiRecord[Memory] touch the end: 1");
}

TEST_F(Sync, TheSameSubTypeIsReplacedAtItsPlace)
{
    for (const std::string &strValue :
         {std::string("eman"), std::string("n"), std::string(""), std::string(250, 'x')}) {
        fake::Reset();
        const BYTES vecNew = Record(3, 2, DataOf(2, strValue));
        EXPECT_EQ(Run({g_vecOther, g_vecName, g_vecPing}, {vecNew}), 0U);
        // The device keeps what lay behind a shorter image.
        const size_t uiLength = 8U + (List({g_vecOther, vecNew, g_vecPing}).size() + 7U) / 8U * 8U;
        BYTES vecExpected = Image({g_vecOther, vecNew, g_vecPing});
        EXPECT_EQ(fake::Db()[0x10810200], vecExpected);
        const BYTES vecBefore = Image({g_vecOther, g_vecName, g_vecPing});
        std::copy(vecBefore.begin() + static_cast<long>(uiLength), vecBefore.end(),
                  vecExpected.begin() + static_cast<long>(uiLength));
        EXPECT_EQ(Chip(), vecExpected);
        EXPECT_EQ(fake::Messages(), LINES{});
        EXPECT_EQ(QueuedCount(), 0U);
        EXPECT_EQ(fake::TakeStdout(), "FRU MultiRecord[Memory] touch the end: 2");
    }
}

TEST_F(Sync, TheLastRecordReplacedGetsTheEndMarkBack)
{
    const BYTES vecNew = Record(3, 2, DataOf(2, "eman"));
    EXPECT_EQ(Run({g_vecUrl, g_vecName}, {vecNew}), 0U);
    ExpectDone({g_vecUrl, vecNew});
}

TEST_F(Sync, TheOnlyRecordReplacedKeepsTheEndMark)
{
    EXPECT_EQ(Run({g_vecName}, {Record(3, 2, DataOf(2, "eman"))}), 0U);
    ExpectDone({Record(3, 2, DataOf(2, "eman"))});
}

TEST_F(Sync, RecordsOfOtherTypesAreNeverTheSame)
{
    EXPECT_EQ(Run({g_vecOther}, {g_vecName}), 0U); // both begin with the byte 2
    ExpectDone({g_vecOther, g_vecName});
}

TEST_F(Sync, EqualRecordsAreNotWrittenAndLeaveTheStore)
{
    EXPECT_EQ(Run({g_vecUrl, g_vecName}, {g_vecName, g_vecUrl}), 0U);
    EXPECT_EQ(fake::Calls("EEPROM write"), LINES{});
    ExpectDone({g_vecUrl, g_vecName});
    EXPECT_EQ(fake::TakeStdout(), "FRU MultiRecord[Memory] touch the end: 1" + std::string(g_acNoNeed));
}

TEST_F(Sync, OneChangeAmongEqualRecordsIsWritten)
{
    EXPECT_EQ(Run({g_vecUrl, g_vecName}, {g_vecName, g_vecPing, g_vecUrl}), 0U);
    ExpectDone({g_vecUrl, g_vecName, g_vecPing});
    EXPECT_EQ(fake::TakeStdout(), "FRU MultiRecord[Memory] touch the end: 1");
    EXPECT_EQ(fake::Calls("EEPROM write").size(), 1U);
}

TEST_F(Sync, AnAreaThatIsNoValidListFails)
{
    const std::vector<BYTES> vecOnDevice = {g_vecName, Record(3, 0, DataOf(1, "url"))};
    EXPECT_EQ(Run(vecOnDevice, {g_vecPing}), g_uiFailed);
    EXPECT_EQ(fake::Messages(),
              MessageLines({"FRU MultiRecord[Memory] invalid FormatVersion[1]: 0x80",
                            "Failed to find the end of MultiRecords[Memory]: Count:1.",
                            "Invalid FRU MultiRecord format", "Check multirecords failed.", g_acFailed}));
    ExpectFailed(vecOnDevice, 1);
}

TEST_F(Sync, AnAreaThatCouldNotBeDecodedFails)
{
    BYTES vecImage = Image({g_vecName});
    vecImage[14] = 'X';
    PutMainFru(vecImage);
    PutQueued(g_vecPing);
    EXPECT_EQ(FRU_syncAllMultiRecords(), g_uiFailed);
    const LINES vecMessages = fake::Messages();
    ASSERT_EQ(vecMessages.size(), 7U);
    EXPECT_EQ(vecMessages[1], "0/7 lib_fru_analyzer.c: Failed to get MultiRecordArea!");
    EXPECT_EQ(LINES(vecMessages.begin() + 2, vecMessages.end()),
              MessageLines({"FRU MultiRecord[Memory] invalid null point[0].",
                            "Failed to find the end of MultiRecords[Memory]: Count:0.",
                            "Invalid FRU MultiRecord format", "Check multirecords failed.", g_acFailed}));
    EXPECT_EQ(Chip(), vecImage);
    EXPECT_EQ(fake::Calls("EEPROM write"), LINES{});
    EXPECT_EQ(QueuedCount(), 1U);
}

TEST_F(Sync, AnEmptySlotFails)
{
    PutMainFru(Image({g_vecUrl}));
    PutQueued(g_vecPing);
    PutQueued(g_vecName);
    std::free(g_stInnerMRStore.apstRecords[1]);
    g_stInnerMRStore.apstRecords[1] = nullptr;
    EXPECT_EQ(FRU_syncAllMultiRecords(), g_uiFailed);
    EXPECT_EQ(fake::Messages(),
              (LINES{Null("FRU_tellMultiRecordExistFlag", "pstInnerBuf"),
                     Message("Tell the position and exist flag failed."), Message(g_acFailed)}));
    ExpectFailed({g_vecUrl}, 2);
}

TEST_F(Sync, RecordsOfTheSameUnknownTypeCannotBeCompared)
{
    EXPECT_EQ(Run({g_vecUrl, g_vecOther}, {Record(0xC0, 2, {1})}), g_uiFailed);
    EXPECT_EQ(fake::Messages(), MessageLines({"Unknown ucRecordTypeID: 0xc0", "Err while comparing: index:1.",
                                              "Tell the position and exist flag failed.", g_acFailed}));
    ExpectFailed({g_vecUrl, g_vecOther}, 1);
}

std::vector<BYTES> FullTable()
{
    std::vector<BYTES> vecRecords;
    for (u32 i = 0; i < 63U; ++i) {
        vecRecords.push_back(Record(0xC0, 2, {static_cast<u8>(i), 'x'}));
    }
    vecRecords.push_back(g_vecUrl);
    return vecRecords;
}

TEST_F(Sync, AFullTableLeavesTheRecordOut)
{
    EXPECT_EQ(Run(FullTable(), {g_vecName}), 0U);
    EXPECT_EQ(fake::Messages(), LINES{Message("Not enough space to add MultiRecord: ucRecIndex:64.")});
    EXPECT_EQ(fake::TakeStdout(), "FRU MultiRecord[Memory] touch the end: 63" + std::string(g_acNoNeed));
    EXPECT_EQ(fake::Calls("EEPROM write"), LINES{});
    EXPECT_EQ(Chip(), Image(FullTable()));
    EXPECT_EQ(QueuedCount(), 0U);
    EXPECT_EQ(SemValue(), 1);
}

TEST_F(Sync, AFullTableIsWrittenWhenAnotherRecordChanged)
{
    const BYTES vecNew = Record(3, 2, DataOf(1, "HTTP://BMC"));
    EXPECT_EQ(Run(FullTable(), {g_vecName, vecNew, g_vecPing}), 0U);
    EXPECT_EQ(fake::Messages(), MessageLines({"Not enough space to add MultiRecord: ucRecIndex:64.",
                                              "Not enough space to add MultiRecord: ucRecIndex:64."}));
    std::vector<BYTES> vecExpected = FullTable();
    vecExpected.back() = vecNew;
    EXPECT_EQ(Chip(), Image(vecExpected));
    EXPECT_EQ(fake::TakeStdout(), "FRU MultiRecord[Memory] touch the end: 63");
    EXPECT_EQ(QueuedCount(), 0U);
}

TEST_F(Sync, TheSixtyFourthPlaceIsUsed)
{
    std::vector<BYTES> vecRecords = FullTable();
    vecRecords.pop_back();
    EXPECT_EQ(Run(vecRecords, {g_vecName}), 0U);
    vecRecords.push_back(g_vecName);
    ExpectDone(vecRecords);
}

TEST_F(Sync, WithoutMemoryForAnAddedOrLongerRecordItFails)
{
    for (const BYTES &vecNew : {g_vecPing, Record(3, 2, DataOf(1, std::string(60, 'x')))}) {
        fake::Reset();
        DestroyQuietly();
        PutMainFru(Image({g_vecUrl}));
        PutQueued(vecNew);
        // The read takes two buffers, the decoded record one, the copy of the queue one.
        fake::Arm({fake::KIND_E::ALLOC, 5, false});
        EXPECT_EQ(FRU_syncAllMultiRecords(), g_uiFailed);
        EXPECT_EQ(fake::Messages(), MessageLines({"Failed to distribute memory",
                                                  "Err happen while updating, return!", g_acFailed}));
        ExpectFailed({g_vecUrl}, 1);
    }
}

TEST_F(Sync, AMergeThatFailsHalfwayWritesNothing)
{
    EXPECT_EQ(Run({g_vecUrl, g_vecOther}, {g_vecName, Record(3, 2, {})}), g_uiFailed); // no room for 0 bytes
    EXPECT_EQ(fake::Messages(),
              (LINES{"0/3 lib_fru_multirecord.c: Invalid MALLOC size (size is 0)is detected",
                     Message("Failed to distribute memory"), Message("Err happen while updating, return!"),
                     Message(g_acFailed)}));
    ExpectFailed({g_vecUrl, g_vecOther}, 2);
}

TEST_F(Sync, A256ByteValueGetsIntoAnExistingAreaUnchecked)
{
    // The added record is not looked at again, on purpose: its checksum covers bytes that are not there.
    BYTES vecValue(256, 0);
    vecValue[255] = 1;
    PutMainFru(Image({g_vecUrl}));
    EXPECT_EQ(mr::Update(2, vecValue), 0U);
    BYTES vecRecord = Record(3, 2, {2});
    vecRecord[3] = 0xFD;
    EXPECT_EQ(Chip(), Image({g_vecUrl, WithEnd(vecRecord, false)}));
    EXPECT_EQ(fake::Messages(), LINES{});
}

// ---- write

TEST_F(Sync, AnImageThatCannotBeEncodedKeepsTheQueue)
{
    PutMainFru(Image({}, 24)); // 8 bytes and 16 for the record: the encoder wants one more
    PutQueued(g_vecName);
    EXPECT_EQ(FRU_syncAllMultiRecords(), g_uiFailed);
    const LINES vecMessages = fake::Messages();
    ASSERT_GE(vecMessages.size(), 2U);
    EXPECT_EQ(vecMessages[vecMessages.size() - 2U], "5/2 lib_fru.c: Failed to convert FRU data to array!");
    EXPECT_EQ(vecMessages.back(), Message("Failed to create FRU bin data! Ret:0x29000007."));
    EXPECT_EQ(Chip(), Image({}, 24));
    EXPECT_EQ(fake::Calls("EEPROM write"), LINES{});
    EXPECT_EQ(QueuedCount(), 1U);
    EXPECT_EQ(SemValue(), 1);
}

TEST_F(Sync, ADeviceThatRefusesTheBytesCountsAsWritten)
{
    PutMainFru(Image({}));
    PutQueued(g_vecName);
    const u32 uiReads = 1U + (g_uiFruSize - 8U) / 16U + 1U;
    fake::SetEepromResult(uiReads + 1U, -1);
    EXPECT_EQ(FRU_syncAllMultiRecords(), 0U); // the array write tells of it in the log only
    EXPECT_EQ(fake::Calls("EEPROM write").size(), 1U);
    EXPECT_EQ(QueuedCount(), 0U);
    EXPECT_EQ(SemValue(), 1);
}

// ---- lock

TEST_F(Sync, AfterATimeOutItMergesAndPostsLikeAHolder)
{
    PutMainFru(Image({}));
    PutQueued(g_vecName);
    fake::SetPatience(5);
    {
        const HOLDER holder;
        EXPECT_EQ(FRU_syncAllMultiRecords(), 0U);
        EXPECT_EQ(fake::Messages(), LINES{Message("FRU Inner sem timeout: 0x5")});
        EXPECT_EQ(Chip(), Image({g_vecName}));
        EXPECT_EQ(QueuedCount(), 0U);
        EXPECT_EQ(SemValue(), 1); // posted once
    }
    EXPECT_EQ(SemValue(), 2);
}

TEST_F(Sync, WhatOthersMergedWhileTheDeviceWasReadIsNotMergedAgain)
{
    // Its records lie behind its end, which the decoder tells; the hook is another thread's merge at that moment.
    BYTES vecImage = {1, 0, 0, 0, 0, 0xF0, 0};
    vecImage.push_back(ZeroCheckSum(vecImage));
    vecImage.resize(g_uiFruSize);
    PutMainFru(vecImage);
    PutQueued(g_vecName);
    fake::SetLogHook([](const std::string &strMessage) {
        if (strMessage.find("Failed to get MultiRecordArea!") != std::string::npos) {
            FRU_emptyInnerStore();
        }
    });
    EXPECT_EQ(FRU_syncAllMultiRecords(), 0U);
    fake::SetLogHook(nullptr);
    EXPECT_EQ(QueuedCount(), 0U);
    EXPECT_EQ(fake::Calls("EEPROM write"), LINES{});
    EXPECT_EQ(Chip(), vecImage);
    EXPECT_EQ(SemValue(), 1);
}

TEST_F(Sync, WithoutAClockItMergesAndPostsAsWell)
{
    PutMainFru(Image({}));
    PutQueued(g_vecName);
    fake::Arm({fake::KIND_E::CLOCK, 1, false});
    EXPECT_EQ(FRU_syncAllMultiRecords(), 0U);
    EXPECT_EQ(fake::Messages(), LINES{Message("Failed to get current time!")});
    EXPECT_EQ(Chip(), Image({g_vecName}));
    EXPECT_EQ(SemValue(), 2);
}

} // namespace
