// SPDX-License-Identifier: Apache-2.0
// The safe label write where something fails, where the chip is another one, and where there is nothing to
// write.
#include <cstring>
#include <set>

#include <gtest/gtest.h>

#include "label_case.h"

namespace {

using cut::CASE_S;
using cut::DeviceOf;
using cut::Expect;
using cut::EXPECTED_S;
using cut::HOW_E;
using cut::IsInOrder;
using cut::LASTING_S;
using cut::Repair;
using cut::RUN_S;
using cut::StartOf;
using cut::WriteSafely;
using fake::BYTES;
using label::DEVICE_S;

struct WORLD_S
{
    const CASE_S &stCase = cut::g_stRiserCase;
    DEVICE_S stDevice = DeviceOf(stCase);
    LASTING_S stStart = StartOf(stDevice);
    EXPECTED_S stExpected = Expect(stCase, stStart);
};

bool IsOld(const WORLD_S &stWorld)
{
    return cut::Lasting(stWorld.stDevice).vecChip == stWorld.stExpected.vecOldChip;
}

// The result says which image is in force, and where it does not a repair without faults makes it one of the
// two.
void CheckOutcome(const WORLD_S &stWorld, u32 uiResult)
{
    if (uiResult == FRU_OK) {
        EXPECT_FALSE(IsOld(stWorld));
        EXPECT_TRUE(IsInOrder(stWorld.stExpected, cut::Lasting(stWorld.stDevice)));
    } else if (uiResult != SAFE_ERR_PENDING) {
        EXPECT_TRUE(IsOld(stWorld));
    }
    EXPECT_EQ(Repair(), FRU_OK);
    EXPECT_TRUE(IsInOrder(stWorld.stExpected, cut::Lasting(stWorld.stDevice)));
}

TEST(SafeLabelWrite, EveryFailingCallEndsInTheOldOrTheNewImage)
{
    const WORLD_S stWorld;
    std::set<u32> setResults;
    u32 uiResult = 0U;
    fake::Sweep([&] { cut::Start(stWorld.stDevice, stWorld.stStart); },
                [&] { uiResult = WriteSafely(stWorld.stCase, stWorld.stDevice); },
                [&](const fake::FAULT_S * /*pstFault*/) {
                    setResults.insert(uiResult);
                    CheckOutcome(stWorld, uiResult);
                });
    for (const u32 uiSeen : {FRU_OK, SAFE_ERR_DEVICE, SAFE_ERR_CACHE, SAFE_ERR_REFUSED, SAFE_ERR_PENDING}) {
        EXPECT_EQ(setResults.count(uiSeen), 1U) << uiSeen;
    }
}

TEST(SafeLabelWrite, EveryFailingJournalCallEndsInTheOldOrTheNewImage)
{
    const WORLD_S stWorld;
    const u32 auiExpected[] = {SAFE_ERR_JOURNAL, SAFE_ERR_JOURNAL, SAFE_ERR_PENDING, FRU_OK};
    for (u32 i = 0U; i < std::size(auiExpected); ++i) {
        SCOPED_TRACE(i);
        cut::Start(stWorld.stDevice, stWorld.stStart);
        cut::FailJournalCall(i + 1U);
        const u32 uiResult = WriteSafely(stWorld.stCase, stWorld.stDevice);
        EXPECT_EQ(uiResult, auiExpected[i]);
        cut::FailJournalCall(0U);
        CheckOutcome(stWorld, uiResult);
    }
}

TEST(SafeLabelWrite, ChipThatDoesNotTakeTheNewImageHasTheOldOneBack)
{
    const WORLD_S stWorld;
    const BYTES &vecOld = stWorld.stExpected.vecOldChip;
    const BYTES &vecNew = stWorld.stExpected.vecNewChip;
    u32 uiStuck = 0U;
    for (u32 i = 0U; i < vecOld.size(); ++i) {
        if (vecOld[i] == vecNew[i]) {
            continue;
        }
        ++uiStuck;
        cut::Start(stWorld.stDevice, stWorld.stStart);
        cut::StickByte(i);
        EXPECT_EQ(WriteSafely(stWorld.stCase, stWorld.stDevice), SAFE_ERR_REFUSED);
        EXPECT_TRUE(IsOld(stWorld));
        EXPECT_TRUE(IsInOrder(stWorld.stExpected, cut::Lasting(stWorld.stDevice)));
    }
    EXPECT_GT(uiStuck, 10U);
}

// The image of a write that was cut in its third chunk.
LASTING_S CutInTheMiddle(const WORLD_S &stWorld)
{
    const auto fnWrite = [&] { return WriteSafely(stWorld.stCase, stWorld.stDevice); };
    const RUN_S stWhole = cut::Run(stWorld.stDevice, stWorld.stStart, fnWrite);
    u32 uiNth = 0U;
    u32 uiChunks = 0U;
    while (uiChunks < 4U) {
        uiChunks += stWhole.vecChanges.at(uiNth++).rfind("EEPROM", 0U) == 0U ? 1U : 0U;
    }
    return cut::Run(stWorld.stDevice, stWorld.stStart, fnWrite, {uiNth, HOW_E::HALF}).stLeft;
}

TEST(SafeLabelWrite, AnotherBoardIsNotOverwritten)
{
    const WORLD_S stWorld;
    const LASTING_S stCut = CutInTheMiddle(stWorld);
    ASSERT_NE(stCut.vecChip, stWorld.stExpected.vecOldChip);
    ASSERT_NE(stCut.vecChip, stWorld.stExpected.vecNewChip);

    // The same model with a serial number of the same length, and a chip that is erased.
    const CASE_S stOther = {"", false, "Product Serial Number", "new product.serial"};
    const RUN_S stTwin =
        cut::Run(stWorld.stDevice, stWorld.stStart, [&] { return WriteSafely(stOther, stWorld.stDevice); });
    ASSERT_EQ(stTwin.uiResult, FRU_OK);
    BYTES vecErased = stCut.vecChip;
    std::fill_n(vecErased.begin() + stWorld.stDevice.usStartOffset, stWorld.stDevice.usSize, u8{0xFF});
    for (const BYTES &vecChip : {stTwin.stLeft.vecChip, vecErased}) {
        LASTING_S stSwapped = stCut;
        stSwapped.vecChip = vecChip;
        const RUN_S stRepair = cut::Run(stWorld.stDevice, stSwapped, Repair);
        EXPECT_EQ(stRepair.uiResult, SAFE_ERR_FOREIGN);
        EXPECT_TRUE(stRepair.vecChanges.empty());
        const RUN_S stWrite = cut::Run(stWorld.stDevice, stSwapped,
                                       [&] { return WriteSafely(stWorld.stCase, stWorld.stDevice); });
        EXPECT_EQ(stWrite.uiResult, SAFE_ERR_FOREIGN);
        EXPECT_TRUE(stWrite.vecChanges.empty());
    }

    // The board is put back.
    const RUN_S stBack = cut::Run(stWorld.stDevice, stCut, Repair);
    EXPECT_EQ(stBack.uiResult, FRU_OK);
    EXPECT_TRUE(IsInOrder(stWorld.stExpected, stBack.stLeft));
}

TEST(SafeLabelWrite, DeviceThatHasMovedIsNotTouched)
{
    const WORLD_S stWorld;
    LASTING_S stMoved = CutInTheMiddle(stWorld);
    FRU_DEVICE_INFO_S stInfo;
    BYTES &vecRecord = stMoved.mapDb.at(0x10810000U | stWorld.stDevice.ucDeviceID);
    (void)memcpy(&stInfo, vecRecord.data(), sizeof(stInfo));
    stInfo.usStartOffset = 0U;
    (void)memcpy(vecRecord.data(), &stInfo, sizeof(stInfo));
    const RUN_S stRepair = cut::Run(stWorld.stDevice, stMoved, Repair);
    EXPECT_EQ(stRepair.uiResult, SAFE_ERR_FOREIGN);
    EXPECT_TRUE(stRepair.vecChanges.empty());
}

TEST(SafeLabelWrite, RepairWaitsForTheDeviceRecord)
{
    const WORLD_S stWorld;
    const LASTING_S stCut = CutInTheMiddle(stWorld);
    LASTING_S stEarly = stCut;
    stEarly.mapDb.clear();
    const RUN_S stRepair = cut::Run(stWorld.stDevice, stEarly, Repair);
    EXPECT_EQ(stRepair.uiResult, SAFE_ERR_PENDING);
    EXPECT_TRUE(stRepair.vecChanges.empty());
}

TEST(SafeLabelWrite, EarlierChangeIsRepairedFirst)
{
    const WORLD_S stWorld;
    const CASE_S stNext = {"", false, "Board Serial Number", "another serial"};
    const RUN_S stRun = cut::Run(stWorld.stDevice, CutInTheMiddle(stWorld),
                                 [&] { return WriteSafely(stNext, stWorld.stDevice); });
    EXPECT_EQ(stRun.uiResult, FRU_OK);
    label::FIELDS mapFields = label::Decode(cut::ImageOn(stWorld.stDevice, stRun.stLeft.vecChip));
    EXPECT_EQ(mapFields["product.serial"], stWorld.stCase.pcValue);
    EXPECT_EQ(mapFields["board.serial"], stNext.pcValue);
}

u32 WriteBlock(FRU_SET_PARA_S stBlock)
{
    return WriteLabelSafely(&cut::Journal(), &stBlock);
}

TEST(SafeLabelWrite, WhatCannotBeWrittenChangesNothing)
{
    const WORLD_S stWorld;
    const FRU_SET_PARA_S stGood =
        label::Request(stWorld.stDevice, stWorld.stCase.pcLabel, stWorld.stCase.pcValue);
    FRU_SET_PARA_S stUnknown = stGood;
    stUnknown.ucInstance = 77U;
    FRU_SET_PARA_S stEndless = stGood;
    (void)memset(stEndless.acLabelValue, 'A', sizeof(stEndless.acLabelValue));
    LASTING_S stDamaged = stWorld.stStart;
    stDamaged.vecChip.at(stWorld.stDevice.usStartOffset + 300U) ^= 1U;
    LASTING_S stCacheOnly = stWorld.stStart;
    stCacheOnly.mapDb.at(0x10810000U | stWorld.stDevice.ucDeviceID)
        .at(offsetof(FRU_DEVICE_INFO_S, ucDatabaseOnly)) = 1U;
    const struct
    {
        u32 uiExpected;
        FRU_SET_PARA_S stBlock;
        const LASTING_S &stStart;
    } astCases[] = {
        {LIB_FRU_ERR_NO_DEVICE_ID, stUnknown, stWorld.stStart},
        {LIB_FRU_ERR_LABEL, label::Request(stWorld.stDevice, "No Such Label", "value"), stWorld.stStart},
        {LIB_FRU_ERR_LABEL, label::Request(stWorld.stDevice, "Language Code", "137"), stWorld.stStart},
        {LIB_FRU_ERR_LABEL, stEndless, stWorld.stStart},
        {SAFE_ERR_DAMAGED, stGood, stDamaged},
        {SAFE_ERR_DEVICE, stGood, stCacheOnly},
    };
    for (const auto &stCase : astCases) {
        SCOPED_TRACE(stCase.uiExpected);
        const RUN_S stRun =
            cut::Run(stWorld.stDevice, stCase.stStart, [&] { return WriteBlock(stCase.stBlock); });
        EXPECT_EQ(stRun.uiResult, stCase.uiExpected);
        EXPECT_EQ(stRun.stLeft.vecChip, stCase.stStart.vecChip);
        EXPECT_TRUE(stRun.stLeft.vecJournal.empty());
        for (const std::string &strChange : stRun.vecChanges) {
            EXPECT_EQ(strChange.rfind("put 0x10810", 0U), 0U)
                << strChange; // the cache may be aligned with the chip
        }
    }
}

TEST(SafeLabelWrite, CacheThatSaysSomethingElseIsNotWrittenOntoTheChip)
{
    const WORLD_S stWorld;
    LASTING_S stStart = stWorld.stStart;
    stStart.mapDb.at(cut::ImageKey(stWorld.stDevice)) =
        label::Encode({false, true, true, false, 0U, 0U, 0U}, stWorld.stDevice.usSize);
    const RUN_S stRun =
        cut::Run(stWorld.stDevice, stStart, [&] { return WriteSafely(stWorld.stCase, stWorld.stDevice); });
    EXPECT_EQ(stRun.uiResult, FRU_OK);
    EXPECT_EQ(stRun.stLeft.vecChip, stWorld.stExpected.vecNewChip);
    EXPECT_TRUE(IsInOrder(stWorld.stExpected, stRun.stLeft));
}

} // namespace
