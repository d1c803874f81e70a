// SPDX-License-Identifier: Apache-2.0
// Recovery of a damaged device from its stored image: when it runs, what it writes, how each of
// its steps fails.
#include <gtest/gtest.h>

#include "lib_fru/ipmi/ipmi_handlers.h"
#include "lib_fru/ipmi/recovery.h"
#include "lib_fru_access.h"
#include "lib_fru_cache.h"
#include "stored_image.h"

namespace {

using device::BYTES;
using device::Line;
using device::LINES;
using device::OwnMessages;
using device::RECORD;

constexpr char g_acPath[] = "/opt/fru/psu.bin";

const std::string g_strInvalidHeader = Line(5, 2, "Invalid header! Device ID[0x21].");
const std::string g_strStart = Line(5, 6, "Start to recover fru data. Cnt[1] ID[0x21].");
const std::string g_strNotRestored = Line(4, 4, "Failed to recover fru! Device ID[0x21]");
const std::string g_strFailed = Line(5, 2, "Failed to recover fru data! ID[0x21].");
const std::string g_strCheckFailed = Line(5, 4, "Check and recover fru data failed! Ret:0x81000001.");
const std::string g_strReadFailed = Line(5, 4, "Fail to read fru data! ComponentType:0x5 Instance:0x2.");

// The chain of a recovery that failed, around what it says itself.
LINES FailureChain(const LINES &vecOwn, bool bNotRestored = true)
{
    LINES vecLines = {g_strInvalidHeader, g_strStart};
    vecLines.insert(vecLines.end(), vecOwn.begin(), vecOwn.end());
    if (bNotRestored) {
        vecLines.push_back(g_strNotRestored);
    }
    vecLines.insert(vecLines.end(), {g_strFailed, g_strCheckFailed, g_strReadFailed});
    return vecLines;
}

u32 Get(RECORD &stRecord, u8 ucReadMode = 2)
{
    return LIB_FRU_GetFRUData(device::g_ucType, device::g_ucInstance, ucReadMode, 0, stRecord.Get());
}

// A damaged image of uiSize bytes on the device and in the cache.
BYTES Damaged(size_t uiSize = 64)
{
    BYTES vecImage = device::BoardImage(uiSize, "OLD!");
    vecImage[0] = 0xFF;
    return vecImage;
}

void ProvideDamaged(size_t uiSize = 64)
{
    device::Provision(Damaged(uiSize));
}

void Start(size_t uiSize = 64)
{
    fake::Reset();
    ProvideDamaged(uiSize);
}

void ExpectUntouched(size_t uiSize = 64)
{
    EXPECT_EQ(device::Chip(), device::ChipWith(Damaged(uiSize)));
    EXPECT_EQ(device::Cached(), Damaged(uiSize));
    EXPECT_TRUE(fake::Calls("EEPROM write").empty());
    EXPECT_TRUE(fake::Calls("DB_Put").empty());
}

TEST(Recovery, AStoredImageRestoresDeviceAndCache)
{
    for (const u8 ucStatus : {u8{0}, u8{1}}) {
        Start();
        device::PutStatus(ucStatus);
        const BYTES vecStored = device::BoardImage(64, "GOOD");
        fake::WriteFile(g_acPath, vecStored);
        RECORD stRecord;
        EXPECT_EQ(Get(stRecord), 0U);
        EXPECT_EQ(device::Text(stRecord->stBoardInfo.pucBoardProductName), "GOOD");
        EXPECT_EQ(device::Chip(), device::ChipWith(vecStored));
        EXPECT_EQ(device::Cached(), vecStored);
        EXPECT_EQ(OwnMessages(), (LINES{g_strInvalidHeader, g_strStart}));
        EXPECT_EQ(fake::Calls("EEPROM write"), LINES{device::Eeprom("write", 0x40, 64, 64)});
        EXPECT_EQ(fake::Calls("DB_Put"), LINES{device::DbPut(0x10810221U, 64)});
        EXPECT_TRUE(fake::RpcRequests().empty());
    }
}

TEST(Recovery, ReadingStartsAnewAtTheHeader)
{
    Start();
    device::PutStatus(1);
    fake::WriteFile(g_acPath, device::BoardImage(64, "GOOD"));
    RECORD stRecord;
    EXPECT_EQ(Get(stRecord), 0U);
    EXPECT_EQ(fake::Calls("EEPROM"),
              (LINES{device::Eeprom("read", 0x40, 8, 8), device::Eeprom("write", 0x40, 64, 64),
                     device::Eeprom("read", 0x40, 8, 8), device::Eeprom("read", 0x48, 16, 16),
                     device::Eeprom("read", 0x58, 16, 16), device::Eeprom("read", 0x68, 16, 16),
                     device::Eeprom("read", 0x78, 8, 8)}));
}

TEST(Recovery, TheRecordIsFetchedAgain)
{
    Start();
    fake::WriteFile(g_acPath, device::BoardImage(64, "GOOD"));
    EXPECT_EQ(FRU_RecoverFRUData(device::g_ucID), FRU_CC_OK);
    EXPECT_EQ(device::Calls(),
              (LINES{device::DbGet(0x10810021U, 184), "BMC_GetFileSize /opt/fru/psu.bin -> 64",
                     "BMC_ReadFile /opt/fru/psu.bin 64 -> 0", device::Eeprom("write", 0x40, 64, 64),
                     device::DbPut(0x10810221U, 64)}));
    EXPECT_EQ(fake::Messages(), LINES{g_strStart});
}

TEST(Recovery, AHeaderThatStaysInvalidIsNotRecoveredTwice)
{
    Start();
    fake::WriteFile(g_acPath, Damaged());
    RECORD stRecord;
    EXPECT_EQ(Get(stRecord), 0x29000001U);
    EXPECT_EQ(OwnMessages(),
              (LINES{g_strInvalidHeader, g_strStart, g_strInvalidHeader, g_strCheckFailed, g_strReadFailed}));
    EXPECT_EQ(fake::Calls("EEPROM write").size(), 1U);
    EXPECT_TRUE(stRecord.IsEmpty());
}

TEST(Recovery, AStoredImageDamagedBehindItsHeaderFailsTheDecoding)
{
    Start();
    BYTES vecStored = device::BoardImage(64, "GOOD");
    vecStored[20] ^= 0x10U;
    fake::WriteFile(g_acPath, vecStored);
    RECORD stRecord;
    EXPECT_EQ(Get(stRecord), 0x29000001U);
    EXPECT_EQ(OwnMessages(), (LINES{g_strInvalidHeader, g_strStart,
                                    Line(5, 2, "Fail to interpret fru data! Ret:0x29000001.")}));
    EXPECT_EQ(device::Cached(), vecStored);
}

TEST(Recovery, AMissingStoredImage)
{
    Start();
    RECORD stRecord;
    EXPECT_EQ(Get(stRecord), 0x29000001U);
    EXPECT_EQ(OwnMessages(), FailureChain({Line(4, 4, "Failed to get file[/opt/fru/psu.bin] size[-1]!")}));
    ExpectUntouched();
    EXPECT_TRUE(fake::Calls("BMC_ReadFile").empty());
}

TEST(Recovery, AnEmptyStoredImage)
{
    Start();
    fake::WriteFile(g_acPath, {});
    RECORD stRecord;
    EXPECT_EQ(Get(stRecord), 0x29000001U);
    EXPECT_EQ(OwnMessages(), FailureChain({Line(4, 4, "Failed to calloc memory! Size[0]")}));
    EXPECT_EQ(fake::TakeStdout(),
              "Invalid CALLOC size (size or nmemb is 0 )is detected"
              "Invalid CALLOC size (size or nmemb is 0)is detected in # FRU_RecoverFRUData lib_fru.c\n");
    ExpectUntouched();
}

TEST(Recovery, NoMemoryForTheStoredImage)
{
    Start();
    fake::WriteFile(g_acPath, device::BoardImage(48));
    // Two allocations read the header: image and response; the cached image of its chunk is the third.
    fake::Arm({fake::KIND_E::ALLOC, 4, false});
    RECORD stRecord;
    EXPECT_EQ(Get(stRecord), 0x29000001U);
    fake::Disarm();
    EXPECT_EQ(OwnMessages(), FailureChain({Line(4, 4, "Failed to calloc memory! Size[0x30]")}));
    EXPECT_EQ(fake::TakeStdout(), "");
    ExpectUntouched();
}

TEST(Recovery, AnUnreadableStoredImage)
{
    Start();
    fake::WriteFile(g_acPath, device::BoardImage(64));
    fake::SetFileSize(g_acPath, 65); // the file ends before its size
    RECORD stRecord;
    EXPECT_EQ(Get(stRecord), 0x29000001U);
    EXPECT_EQ(OwnMessages(),
              FailureChain({Line(4, 4, "Read fru bin file:/opt/fru/psu.bin failed! Ret:0x81000001.")}));
    ExpectUntouched();
}

TEST(Recovery, ADeviceThatDoesNotTakeTheImage)
{
    Start();
    fake::WriteFile(g_acPath, device::BoardImage(48));
    fake::SetEepromResult(1, -3);
    RECORD stRecord;
    EXPECT_EQ(Get(stRecord), 0x29000001U);
    EXPECT_EQ(OwnMessages(),
              FailureChain(
                  {Line(4, 4, "Fail to write Device ID[0x21] i2c device SwitchLevel[7] Bus[3] Addr[0xa2]."),
                   Line(4, 4, "Write FRU data to EEPROM failed! Offset[0x40] Size[0x30].")}));
    EXPECT_EQ(device::Cached(), Damaged());
}

TEST(Recovery, AWriteOf203BytesCountsAsAnAbsentDevice)
{
    Start(256);
    fake::WriteFile(g_acPath, BYTES(203, 0x11));
    RECORD stRecord;
    EXPECT_EQ(Get(stRecord), 0x29000001U);
    EXPECT_EQ(OwnMessages(), FailureChain({}));
    EXPECT_EQ(device::Cached(), Damaged(256));
    EXPECT_EQ(fake::Calls("EEPROM write"), LINES{device::Eeprom("write", 0x40, 203, 203)});
}

TEST(Recovery, AShortWriteIsNotNoticed)
{
    Start();
    fake::WriteFile(g_acPath, device::BoardImage(64, "GOOD"));
    fake::SetEepromResult(1, 10);
    RECORD stRecord;
    EXPECT_EQ(Get(stRecord), 0U);
    EXPECT_EQ(OwnMessages(), (LINES{g_strInvalidHeader, g_strStart}));
}

TEST(Recovery, ACacheThatCannotBeStored)
{
    Start();
    fake::WriteFile(g_acPath, device::BoardImage(64, "GOOD"));
    RECORD stRecord;
    // Table, record, then for the header record, status and image, the record again, and the put: the 14th.
    fake::Arm({fake::KIND_E::DB, 14, false});
    EXPECT_EQ(Get(stRecord), 0x29000001U);
    fake::Disarm();
    EXPECT_EQ(OwnMessages(), FailureChain({Line(4, 4, "Put FRU data to db failed! Ret:0x81000001.")}));
    EXPECT_EQ(device::Chip(), device::ChipWith(device::BoardImage(64, "GOOD")));
    EXPECT_EQ(device::Cached(), Damaged());
}

TEST(Recovery, ARecordThatIsGoneMeanwhile)
{
    Start();
    fake::WriteFile(g_acPath, device::BoardImage(64, "GOOD"));
    RECORD stRecord;
    fake::Arm({fake::KIND_E::DB, 12, false});
    EXPECT_EQ(Get(stRecord), 0x29000001U);
    fake::Disarm();
    EXPECT_EQ(OwnMessages(), FailureChain({Line(4, 4, "Fail to find FRU Device ID[0x21]!")}, false));
    ExpectUntouched();
}

TEST(Recovery, CompletionCodes)
{
    fake::Reset();
    EXPECT_EQ(FRU_RecoverFRUData(device::g_ucID), FRU_CC_NOT_PRESENT);
    EXPECT_EQ(fake::Messages(),
              (LINES{g_strStart, Line(4, 4, "Fail to find FRU Device ID[0x21]!"), g_strFailed}));
    Start();
    EXPECT_EQ(FRU_RecoverFRUData(device::g_ucID), FRU_CC_ACCESS_FAILED);
    fake::WriteFile(g_acPath, device::BoardImage(64, "GOOD"));
    EXPECT_EQ(FRU_RecoverFRUData(device::g_ucID), FRU_CC_OK);
}

TEST(Recovery, TheFilesSizeRulesNotTheFrus)
{
    // Longer than the FRU: bytes behind it are overwritten, and the cached image has the file's length.
    Start();
    const BYTES vecStored = device::BoardImage(80, "GOOD");
    fake::WriteFile(g_acPath, vecStored);
    EXPECT_EQ(FRU_RecoverFRUData(device::g_ucID), FRU_CC_OK);
    EXPECT_EQ(device::Part(device::Chip(), 0x40, 80), vecStored);
    EXPECT_EQ(device::Cached(), vecStored);
    // Shorter: the rest of the FRU stays.
    Start();
    fake::WriteFile(g_acPath, device::BareHeader());
    RECORD stRecord;
    EXPECT_EQ(Get(stRecord), 0U);
    EXPECT_EQ(device::Part(device::Chip(), 0x40, 8), device::BareHeader());
    EXPECT_EQ(device::Part(device::Chip(), 0x48, 56), device::Part(Damaged(), 8, 56));
    EXPECT_EQ(device::Cached(), device::BareHeader());
}

TEST(Recovery, TheFilesSizeIsCutTo16Bits)
{
    for (const u32 uiMore : {0U, 64U}) {
        Start();
        fake::WriteFile(g_acPath, BYTES(0x10000U + uiMore, 0x22));
        EXPECT_EQ(FRU_RecoverFRUData(device::g_ucID), FRU_CC_OK);
        EXPECT_EQ(fake::Calls("BMC_ReadFile"),
                  LINES{"BMC_ReadFile /opt/fru/psu.bin " + std::to_string(0x10000U + uiMore) + " -> 0"});
        EXPECT_EQ(fake::Calls("EEPROM write"),
                  LINES{device::Eeprom("write", 0x40, uiMore, static_cast<i32>(uiMore))});
        EXPECT_EQ(device::Cached(), BYTES(uiMore, 0x22));
    }
}

TEST(Recovery, TheMessageOfAFailedWriteHasTheWholeFileSize)
{
    Start();
    fake::WriteFile(g_acPath, BYTES(0x10005U, 0x22));
    fake::SetEepromResult(1, -1);
    EXPECT_EQ(FRU_RecoverFRUData(device::g_ucID), FRU_CC_ACCESS_FAILED);
    EXPECT_EQ(fake::Messages()[2],
              Line(4, 4, "Write FRU data to EEPROM failed! Offset[0x40] Size[0x10005]."));
}

TEST(Recovery, APathWithoutItsNulEndsWithItsMember)
{
    Start();
    FRU_DEVICE_INFO_S stInfo = device::Info(64);
    const std::string strPath = "/opt/" + std::string(123, 'p');
    (void)memcpy(stInfo.acImageFilePath, strPath.data(), sizeof(stInfo.acImageFilePath));
    stInfo.ucBusNumber = 15; // a byte that would be read on
    device::PutInfo(stInfo);
    EXPECT_EQ(FRU_RecoverFRUData(device::g_ucID), FRU_CC_ACCESS_FAILED);
    EXPECT_EQ(fake::Calls("BMC_GetFileSize"), LINES{"BMC_GetFileSize " + strPath + " -> -1"});
    EXPECT_EQ(fake::Messages()[1], Line(4, 4, "Failed to get file[" + strPath + "] size[-1]!"));
}

TEST(Recovery, ADatabaseOnlyDeviceIsRestoredAllTheSame)
{
    Start();
    FRU_DEVICE_INFO_S stInfo = device::Info(64);
    stInfo.ucDatabaseOnly = 1;
    device::PutInfo(stInfo);
    fake::WriteFile(g_acPath, device::BoardImage(64, "GOOD"));
    RECORD stRecord;
    EXPECT_EQ(Get(stRecord), 0U);
    EXPECT_EQ(device::Text(stRecord->stBoardInfo.pucBoardProductName), "GOOD");
    EXPECT_EQ(fake::Calls("EEPROM"), LINES{device::Eeprom("write", 0x40, 64, 64)});
}

// ---- sweeps

void SweepRecovery(const std::function<void()> &fnSetup, bool bRestores, const BYTES &vecStored)
{
    RECORD stRecord;
    u32 uiRet = 0;
    fake::Sweep(
        [&] {
            ProvideDamaged();
            fnSetup();
        },
        [&] { uiRet = Get(stRecord); },
        [&](const fake::FAULT_S *pstFault) {
            if (uiRet == 0U) {
                EXPECT_TRUE(bRestores);
                EXPECT_EQ(device::Text(stRecord->stBoardInfo.pucBoardProductName), "GOOD");
            } else {
                EXPECT_TRUE(!bRestores || pstFault != nullptr);
                EXPECT_TRUE(uiRet == 0x29000001U || uiRet == 0x29000003U || uiRet == 0x29000004U ||
                            uiRet == 0x29000008U);
                EXPECT_FALSE(fake::Messages().empty());
            }
            // The device changes by the one write of the stored image and by nothing else.
            const LINES vecWrites = fake::Calls("EEPROM write");
            EXPECT_LE(vecWrites.size(), 1U);
            if (vecWrites.empty() || vecWrites[0] == device::Eeprom("write", 0x40, 64, -1)) {
                EXPECT_EQ(device::Chip(), device::ChipWith(Damaged()));
            } else if (vecWrites[0] == device::Eeprom("write", 0x40, 64, 64)) {
                EXPECT_EQ(device::Chip(), device::ChipWith(vecStored));
            }
            EXPECT_TRUE(device::Cached() == Damaged() || device::Cached() == vecStored);
            EXPECT_LE(fake::Calls("BMC_GetFileSize").size(), 1U);
            stRecord.Release();
        });
}

TEST(Recovery, SweepOverASuccess)
{
    const BYTES vecStored = device::BoardImage(64, "GOOD");
    SweepRecovery([&] { fake::WriteFile(g_acPath, vecStored); }, true, vecStored);
}

TEST(Recovery, SweepOverASuccessOnTheDevicePath)
{
    const BYTES vecStored = device::BoardImage(64, "GOOD");
    SweepRecovery(
        [&] {
            fake::WriteFile(g_acPath, vecStored);
            device::PutStatus(1);
        },
        true, vecStored);
}

TEST(Recovery, SweepOverAMissingFile)
{
    SweepRecovery([] {}, false, {});
}

TEST(Recovery, SweepOverADamagedFile)
{
    SweepRecovery([] { fake::WriteFile(g_acPath, Damaged()); }, false, Damaged());
}

TEST(Recovery, SweepOverAnUnreachableDevice)
{
    SweepRecovery(
        [] {
            fake::WriteFile(g_acPath, device::BoardImage(64, "GOOD"));
            FRU_DEVICE_INFO_S stInfo = device::Info(64);
            stInfo.ucBusNumber = 16; // the cache answers the reads
            device::PutInfo(stInfo);
        },
        false, device::BoardImage(64, "GOOD"));
}

} // namespace
