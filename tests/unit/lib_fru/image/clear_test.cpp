// SPDX-License-Identifier: Apache-2.0
// Clearing a FRU: the trial read, the erase, what follows it, and the sentence for the operation log.
#include <gtest/gtest.h>

#include "fru_device.h"
#include "lib_fru_access.h"

namespace {

using device::BYTES;
using device::Line;
using device::LINES;
using device::Null;

constexpr char g_acFailed[] = "Failed to clear PSU2 FRU.";
constexpr char g_acCleared[] = "Cleared PSU2 FRU successfully.";
constexpr char g_acSerialNumberFile[] = "/mnt/sdmmc0p4/board/ProductSerialNumber";
constexpr char g_acEvent[] = "MRPC 630/0 len=16";

FRU_CLEAR_PARA_S Para(u8 ucComponentType = device::g_ucType, u8 ucInstance = device::g_ucInstance)
{
    FRU_CLEAR_PARA_S stPara;
    (void)memset(&stPara, 0xA5, sizeof(stPara));
    stPara.ucComponentType = ucComponentType;
    stPara.ucInstance = ucInstance;
    return stPara;
}

void Start(size_t uiSize = 64, u8 ucDeviceID = device::g_ucID)
{
    fake::Reset();
    device::Provision(device::Pattern(uiSize), ucDeviceID);
}

u32 Clear(FRU_CLEAR_PARA_S &stPara)
{
    return LIB_FRU_ClearFRUElectronicLabel(&stPara);
}

// A clear that failed behind the preset sentence: nothing was told to anyone.
void ExpectFailed(const FRU_CLEAR_PARA_S &stPara)
{
    EXPECT_STREQ(stPara.acOperateLog, g_acFailed);
    EXPECT_STREQ(stPara.acFRUName, "PSU2");
    EXPECT_EQ(stPara.ucOperateLogType, 12U);
    EXPECT_EQ(device::Cached(), device::Pattern(device::Cached().size()));
    EXPECT_TRUE(fake::RpcRequests().empty());
}

TEST(Clear, ErasesDeviceAndCacheAndTellsOfIt)
{
    Start();
    FRU_CLEAR_PARA_S stPara = Para();
    EXPECT_EQ(Clear(stPara), 0U);
    EXPECT_EQ(device::Chip(), device::ChipWith(BYTES(64, 0xFF)));
    EXPECT_EQ(device::Cached(), BYTES(64, 0xFF));
    EXPECT_STREQ(stPara.acOperateLog, g_acCleared);
    EXPECT_STREQ(stPara.acFRUName, "PSU2");
    EXPECT_EQ(stPara.ucOperateLogType, 12U);
    EXPECT_EQ(stPara.ucComponentType, device::g_ucType);
    EXPECT_EQ(u32{stPara.uiReserved}, 0xA5A5A5A5U);
    EXPECT_EQ(fake::Messages(), LINES{Line(4, 6, "Clear FRU data successfully! FRUDeviceID:0x21.")});
    LINES vecCalls = device::Calls();
    ASSERT_EQ(vecCalls.size(), 6U);
    EXPECT_EQ(vecCalls[5].rfind(g_acEvent, 0), 0U);
    vecCalls.pop_back();
    EXPECT_EQ(vecCalls, (LINES{device::DbGet(device::g_uiKeyTable, 3703), device::DbGet(0x10810021U, 184),
                               device::Eeprom("read", 0x40, 64, 64), device::Eeprom("write", 0x40, 64, 64),
                               device::DbPut(0x10810221U, 64)}));
    ASSERT_EQ(fake::RpcRequests().size(), 1U);
    EXPECT_EQ(fake::RpcRequests()[0].vecRequest, (BYTES{4, 0, 0, 0, 5, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
}

TEST(Clear, NullBlock)
{
    fake::Reset();
    EXPECT_EQ(LIB_FRU_ClearFRUElectronicLabel(nullptr), 0x29002408U);
    EXPECT_EQ(fake::Messages(), LINES{Null("LIB_FRU_ClearFRUElectronicLabel", "pstFRUClearPara")});
    EXPECT_TRUE(fake::Calls().empty());
}

TEST(Clear, UnknownComponentLeavesTheBlockAlone)
{
    fake::Reset();
    device::PutTable(device::Table({}));
    FRU_CLEAR_PARA_S stPara = Para(0x11, 0x12);
    EXPECT_EQ(Clear(stPara), 0x29000004U);
    EXPECT_EQ(device::Bytes(stPara), device::Bytes(Para(0x11, 0x12)));
    EXPECT_EQ(fake::Messages(),
              (LINES{Line(5, 4, "Fail to find Component[0x11] Instance[18] fru device id!"),
                     Line(0, 4, "Fail to find ComponentType:0x11 Instance:0x12 Device ID!"),
                     Line(0, 2, "ComponentType[0x11] Instance[18] FRU NAME does not exist!")}));
}

TEST(Clear, DeviceWithoutARecordLeavesTheBlockAlone)
{
    Start();
    fake::Db().erase(0x10810021U);
    FRU_CLEAR_PARA_S stPara = Para();
    EXPECT_EQ(Clear(stPara), 0x29000004U);
    EXPECT_EQ(device::Bytes(stPara), device::Bytes(Para()));
    EXPECT_EQ(fake::Messages(),
              (LINES{Line(0, 4, "FRU ID[0x21] does not exist!"),
                     Line(0, 2, "ComponentType[0x5] Instance[2] FRU NAME does not exist!")}));
}

TEST(Clear, EmptyFru)
{
    Start(0);
    FRU_CLEAR_PARA_S stPara = Para();
    EXPECT_EQ(Clear(stPara), 0x29000008U);
    EXPECT_EQ(fake::Messages(), LINES{Line(4, 4, "Failed to calloc memory of ResBuf! Size[0].")});
    EXPECT_EQ(fake::TakeStdout(), "Invalid CALLOC size (size or nmemb is 0 )is detected"
                                  "Invalid CALLOC size (size or nmemb is 0)is detected in # "
                                  "LIB_FRU_ClearFRUElectronicLabel lib_fru.c\n");
    ExpectFailed(stPara);
}

TEST(Clear, OutOfMemory)
{
    Start();
    FRU_CLEAR_PARA_S stPara = Para();
    fake::Arm({fake::KIND_E::ALLOC, 1, false});
    EXPECT_EQ(Clear(stPara), 0x29000008U);
    fake::Disarm();
    EXPECT_EQ(fake::Messages(), LINES{Line(4, 4, "Failed to calloc memory of ResBuf! Size[0x40].")});
    EXPECT_EQ(fake::TakeStdout(), "");
    EXPECT_TRUE(fake::Calls("EEPROM").empty());
    ExpectFailed(stPara);
}

TEST(Clear, UnreachableDevice)
{
    Start();
    fake::SetEepromResult(1, -1);
    FRU_CLEAR_PARA_S stPara = Para();
    EXPECT_EQ(Clear(stPara), 0x29000004U);
    EXPECT_EQ(
        fake::Messages(),
        (LINES{
            Line(4, 4,
                 "Fail to read Device ID[0x21] i2c device SwitchLevel[7] Bus[3] Addr[0xa2] "
                 "Ret:0xffffffff."),
            Line(
                4, 4,
                "Failed to read FRU Device data! Unaccessible: ID[0x21] StartOffset[0x40] MaxSize[0x40].")}));
    EXPECT_EQ(device::Chip(), device::ChipWith(device::Pattern(64)));
    EXPECT_EQ(fake::Calls("EEPROM").size(), 1U);
    ExpectFailed(stPara);
}

TEST(Clear, AReadOf203BytesCountsAsAnAbsentDevice)
{
    for (const u32 uiSize : {64U, 203U}) {
        Start(uiSize);
        fake::SetEepromResult(1, 203);
        FRU_CLEAR_PARA_S stPara = Para();
        EXPECT_EQ(Clear(stPara), 0x29000004U);
        EXPECT_EQ(fake::Messages(),
                  LINES{Line(4, 4,
                             "FRU is not present, fru device not found! CC[0xcb] CountToRead[" +
                                 device::Hex(uiSize + 2U) + "] CountReturn[0xcb].")});
        EXPECT_EQ(device::Chip(), device::ChipWith(device::Pattern(uiSize)));
        ExpectFailed(stPara);
    }
}

TEST(Clear, ADeviceThatAnswersShortIsLeftAlone)
{
    Start();
    device::Chip().resize(0x40 + 60);
    const BYTES vecChip = device::Chip();
    FRU_CLEAR_PARA_S stPara = Para();
    EXPECT_EQ(Clear(stPara), 0x29000004U);
    EXPECT_EQ(fake::Messages(),
              LINES{Line(4, 4, "FRU CountToRead != CountReturn, CountToRead[0x40] CountReturned[0x3c].")});
    EXPECT_EQ(device::Chip(), vecChip);
    ExpectFailed(stPara);
}

TEST(Clear, AWriteThatFails)
{
    Start();
    fake::SetEepromResult(2, -6);
    FRU_CLEAR_PARA_S stPara = Para();
    EXPECT_EQ(Clear(stPara), 0x29000005U);
    EXPECT_EQ(fake::Messages(),
              (LINES{Line(4, 4, "Fail to write Device ID[0x21] i2c device SwitchLevel[7] Bus[3] Addr[0xa2]."),
                     Line(4, 4, "Failed to write FRU Device data! Unaccessible: ID[0x21] length[0x40].")}));
    ExpectFailed(stPara);
}

TEST(Clear, AWriteThatStopsShort)
{
    Start();
    fake::SetEepromResult(2, 63);
    FRU_CLEAR_PARA_S stPara = Para();
    EXPECT_EQ(Clear(stPara), 0x29000005U);
    EXPECT_EQ(
        fake::Messages(),
        LINES{Line(4, 4, "FRU write CountToRead != CountReturned, CountToRead[0x40] CountReturned[0x3f].")});
    ExpectFailed(stPara);
}

TEST(Clear, AWriteOf203BytesIsNothingSpecial)
{
    Start(64);
    fake::SetEepromResult(2, 203);
    FRU_CLEAR_PARA_S stPara = Para();
    EXPECT_EQ(Clear(stPara), 0x29000005U);
    EXPECT_EQ(
        fake::Messages(),
        LINES{Line(4, 4, "FRU write CountToRead != CountReturned, CountToRead[0x40] CountReturned[0xcb].")});
}

TEST(Clear, AnAnswerOfNoBytesIsShortAndNoFailureOfTheDevice)
{
    Start();
    fake::SetEepromResult(1, 0);
    FRU_CLEAR_PARA_S stPara = Para();
    EXPECT_EQ(Clear(stPara), 0x29000004U);
    EXPECT_EQ(fake::Messages(),
              LINES{Line(4, 4, "FRU CountToRead != CountReturn, CountToRead[0x40] CountReturned[0].")});
    ExpectFailed(stPara);
    Start();
    fake::SetEepromResult(2, 0);
    stPara = Para();
    EXPECT_EQ(Clear(stPara), 0x29000005U);
    EXPECT_EQ(
        fake::Messages(),
        LINES{Line(4, 4, "FRU write CountToRead != CountReturned, CountToRead[0x40] CountReturned[0].")});
    ExpectFailed(stPara);
}

TEST(Clear, ACacheThatCannotBeStoredFailsNothing)
{
    Start();
    FRU_CLEAR_PARA_S stPara = Para();
    fake::Arm({fake::KIND_E::DB, 6, false}); // table, record, then the put
    EXPECT_EQ(Clear(stPara), 0U);
    fake::Disarm();
    EXPECT_EQ(fake::Messages(), (LINES{Line(4, 4, "Put FRU data buf to db failed! Ret:0x81000001."),
                                       Line(4, 6, "Clear FRU data successfully! FRUDeviceID:0x21.")}));
    EXPECT_STREQ(stPara.acOperateLog, g_acCleared);
    EXPECT_EQ(fake::Calls(g_acEvent).size(), 1U);
}

TEST(Clear, AnEventThatFailsFailsNothing)
{
    Start();
    fake::SetRpcAnswer(630, 0, 7);
    FRU_CLEAR_PARA_S stPara = Para();
    EXPECT_EQ(Clear(stPara), 0U);
    EXPECT_STREQ(stPara.acOperateLog, g_acCleared);
}

TEST(Clear, TheBaseboardLosesItsSerialNumberAndIsAnnounced)
{
    Start(64, 0);
    fake::MakeDirectory("/mnt/sdmmc0p4/board");
    fake::MakeDirectory("/var/network");
    fake::WriteFile(g_acSerialNumberFile, {'S', 'N', '1'});
    FRU_CLEAR_PARA_S stPara = Para();
    EXPECT_EQ(Clear(stPara), 0U);
    const auto optFile = fake::ReadFile(g_acSerialNumberFile);
    ASSERT_TRUE(optFile.has_value());
    EXPECT_EQ(*optFile, BYTES(80, 0));
    ASSERT_EQ(fake::RpcRequests().size(), 2U);
    EXPECT_EQ(fake::Calls("MRPC")[0], "MRPC 636/0 len=184 timeout=0 -> 0");
    EXPECT_EQ(fake::RpcRequests()[0].vecRequest, device::Bytes(device::Info(64, 0)));
    EXPECT_FALSE(fake::RpcRequests()[0].bWantsAnswer);
    EXPECT_EQ(fake::Calls("MRPC")[1].rfind(g_acEvent, 0), 0U);
    EXPECT_EQ(fake::Messages().back(), Line(4, 6, "Clear FRU data successfully! FRUDeviceID:0."));
    for (const std::string &strMessage : fake::Messages()) {
        EXPECT_EQ(strMessage.find("failed"), std::string::npos) << strMessage;
    }
    EXPECT_EQ(device::Cached(0), BYTES(64, 0xFF));
}

TEST(Clear, ASerialNumberThatStaysFailsNothing)
{
    Start(64, 0);
    FRU_CLEAR_PARA_S stPara = Para();
    fake::Arm({fake::KIND_E::FILE_CALL, 1, true});
    EXPECT_EQ(Clear(stPara), 0U);
    fake::Disarm();
    const LINES vecMessages = fake::Messages();
    ASSERT_GE(vecMessages.size(), 2U);
    EXPECT_EQ(vecMessages[vecMessages.size() - 2U].rfind(
                  "4/4 lib_fru.c: Clear Baseboard product SN failed! Ret:0x", 0),
              0U);
    EXPECT_EQ(vecMessages.back(), Line(4, 6, "Clear FRU data successfully! FRUDeviceID:0."));
    EXPECT_EQ(fake::RpcRequests().size(), 2U);
    EXPECT_STREQ(stPara.acOperateLog, g_acCleared);
}

TEST(Clear, OtherDevicesKeepTheSerialNumber)
{
    Start();
    fake::WriteFile(g_acSerialNumberFile, {'S', 'N', '1'});
    FRU_CLEAR_PARA_S stPara = Para();
    EXPECT_EQ(Clear(stPara), 0U);
    EXPECT_EQ(*fake::ReadFile(g_acSerialNumberFile), (BYTES{'S', 'N', '1'}));
    EXPECT_TRUE(fake::Calls("MRPC 636").empty());
}

TEST(Clear, ADatabaseOnlyDeviceIsErasedAllTheSame)
{
    Start();
    FRU_DEVICE_INFO_S stInfo = device::Info(64);
    stInfo.ucDatabaseOnly = 1;
    device::PutInfo(stInfo);
    FRU_CLEAR_PARA_S stPara = Para();
    EXPECT_EQ(Clear(stPara), 0U);
    EXPECT_EQ(device::Chip(), device::ChipWith(BYTES(64, 0xFF)));
}

TEST(Clear, AFruNameWithoutItsNulIsCutTo15Characters)
{
    Start();
    FRU_DEVICE_INFO_S stInfo = device::Info(64);
    (void)memcpy(stInfo.acFRUName, "ABCDEFGHIJKLMNOP", sizeof(stInfo.acFRUName));
    device::PutInfo(stInfo);
    FRU_CLEAR_PARA_S stPara = Para();
    EXPECT_EQ(Clear(stPara), 0U);
    EXPECT_STREQ(stPara.acFRUName, "ABCDEFGHIJKLMNO");
    EXPECT_STREQ(stPara.acOperateLog, "Cleared ABCDEFGHIJKLMNO FRU successfully.");
}

// ---- the sentence

TEST(ClearLog, SixIsSuccessAndAnythingElseFailure)
{
    for (const i32 iResult : {6, 4, 0, 5, 7, -1, 1000}) {
        fake::Reset();
        FRU_CLEAR_PARA_S stPara = Para();
        (void)memset(stPara.acFRUName, 0, sizeof(stPara.acFRUName));
        (void)strcpy(stPara.acFRUName, "PSU2");
        FRU_AddClearFRULog(iResult, &stPara);
        EXPECT_STREQ(stPara.acOperateLog, iResult == 6 ? g_acCleared : g_acFailed);
        EXPECT_EQ(stPara.ucOperateLogType, 0xA5U);
        EXPECT_TRUE(fake::Messages().empty());
        EXPECT_TRUE(fake::Calls().empty());
    }
}

TEST(ClearLog, NullBlock)
{
    fake::Reset();
    FRU_AddClearFRULog(6, nullptr);
    EXPECT_EQ(fake::Messages(), LINES{Null("FRU_AddClearFRULog", "pstFRUClearPara")});
}

TEST(ClearLog, ANameWithoutItsNulEndsWithItsMember)
{
    fake::Reset();
    FRU_CLEAR_PARA_S stPara = Para();
    (void)memset(stPara.acFRUName, 'N', sizeof(stPara.acFRUName));
    FRU_AddClearFRULog(4, &stPara);
    EXPECT_STREQ(stPara.acOperateLog, "Failed to clear NNNNNNNNNNNNNNNN FRU.");
}

TEST(ClearLog, ANameIsNeverAFormat)
{
    fake::Reset();
    FRU_CLEAR_PARA_S stPara = Para();
    (void)strcpy(stPara.acFRUName, "%s%n%x");
    FRU_AddClearFRULog(6, &stPara);
    EXPECT_STREQ(stPara.acOperateLog, "Cleared %s%n%x FRU successfully.");
}

// ---- sweeps

void SweepClear(u8 ucDeviceID)
{
    FRU_CLEAR_PARA_S stPara;
    u32 uiRet = 0;
    fake::Sweep(
        [&] {
            device::Provision(device::Pattern(64), ucDeviceID);
            fake::MakeDirectory("/mnt/sdmmc0p4/board");
            fake::MakeDirectory("/var/network");
            stPara = Para();
        },
        [&] { uiRet = Clear(stPara); },
        [&](const fake::FAULT_S *pstFault) {
            const bool bErased = device::Chip() == device::ChipWith(BYTES(64, 0xFF));
            if (uiRet == 0U) {
                EXPECT_TRUE(bErased);
                EXPECT_STREQ(stPara.acOperateLog, g_acCleared);
                return;
            }
            EXPECT_NE(pstFault, nullptr);
            EXPECT_TRUE(uiRet == 0x29000004U || uiRet == 0x29000005U || uiRet == 0x29000008U);
            EXPECT_FALSE(bErased);
            if (uiRet != 0x29000005U) {
                EXPECT_EQ(device::Chip(), device::ChipWith(device::Pattern(64)));
            }
            EXPECT_EQ(device::Cached(ucDeviceID), device::Pattern(64));
            EXPECT_TRUE(fake::RpcRequests().empty());
            // The sentence is that of a failure, or untouched when there was no record.
            if (static_cast<u8>(stPara.acOperateLog[0]) != 0xA5U) {
                EXPECT_STREQ(stPara.acOperateLog, g_acFailed);
            } else {
                EXPECT_EQ(device::Bytes(stPara), device::Bytes(Para()));
            }
        });
}

TEST(Clear, Sweep)
{
    SweepClear(device::g_ucID);
}

TEST(Clear, SweepOfTheBaseboard)
{
    SweepClear(0);
}

} // namespace
