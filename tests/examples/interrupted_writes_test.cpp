// SPDX-License-Identifier: Apache-2.0
// What a cut leaves of a plain label write, and that the safe one leaves the old or the new image, wherever
// it is cut and wherever its repair is cut.
#include <algorithm>

#include <gtest/gtest.h>

#include "label_case.h"
#include "lib_fru_codec.h"

namespace {

using cut::CASE_S;
using cut::DeviceOf;
using cut::Expect;
using cut::EXPECTED_S;
using cut::g_astCases;
using cut::g_ucFaultMarks;
using cut::ImageOn;
using cut::IsInOrder;
using cut::LASTING_S;
using cut::POINT_S;
using cut::Repair;
using cut::RUN_S;
using cut::StartOf;
using cut::WritePlainly;
using cut::WriteSafely;
using fake::BYTES;
using label::DEVICE_S;

// What a cut does to a database: it keeps all puts, loses those of the last call, or everything, when the FRU
// service fills it again from whatever the chip has.
enum class DATABASE_E
{
    KEPT,
    BEHIND,
    REFILLED,
};

LASTING_S AfterPowerUp(const DEVICE_S &stDevice, LASTING_S stLeft, const LASTING_S &stStart,
                       DATABASE_E eDatabase)
{
    if (eDatabase == DATABASE_E::BEHIND) {
        stLeft.mapDb = stStart.mapDb;
    } else if (eDatabase == DATABASE_E::REFILLED) {
        stLeft.mapDb[cut::ImageKey(stDevice)] = ImageOn(stDevice, stLeft.vecChip);
        stLeft.mapDb[cut::StatusKey(stDevice)] = {0U};
    }
    return stLeft;
}

std::string Where(const std::vector<std::string> &vecChanges, const POINT_S &stPoint)
{
    return std::string("cut ") + cut::HowName(stPoint.eHow) + " " + std::to_string(stPoint.uiNth) + ": " +
           vecChanges[stPoint.uiNth - 1U];
}

class InterruptedWrites : public testing::TestWithParam<CASE_S>
{};

INSTANTIATE_TEST_SUITE_P(Labels, InterruptedWrites, testing::ValuesIn(g_astCases),
                         [](const auto &stParam) { return std::string(stParam.param.pcName); });

TEST_P(InterruptedWrites, UncutWriteLeavesWhatTheLibraryLeavesOnTheChip)
{
    const CASE_S &stCase = GetParam();
    const DEVICE_S stDevice = DeviceOf(stCase);
    const LASTING_S stStart = StartOf(stDevice);
    const EXPECTED_S stExpected = Expect(stCase, stStart);
    const RUN_S stRun = cut::Run(stDevice, stStart, [&] { return WriteSafely(stCase, stDevice); });
    EXPECT_FALSE(stRun.bCut);
    EXPECT_EQ(stRun.uiResult, FRU_OK);
    EXPECT_EQ(stRun.stLeft.vecChip, stExpected.vecNewChip);
    EXPECT_TRUE(IsInOrder(stExpected, stRun.stLeft));
    EXPECT_EQ(stRun.stLeft.mapDb.at(cut::StatusKey(stDevice)), BYTES{g_ucFaultMarks});
    EXPECT_EQ(std::count(stRun.vecChanges.begin(), stRun.vecChanges.end(), "tell 630/0"), 1);
}

TEST_P(InterruptedWrites, EveryCutEndsInTheOldOrTheNewImage)
{
    const CASE_S &stCase = GetParam();
    const DEVICE_S stDevice = DeviceOf(stCase);
    const LASTING_S stStart = StartOf(stDevice);
    const EXPECTED_S stExpected = Expect(stCase, stStart);
    const auto fnWrite = [&] { return WriteSafely(stCase, stDevice); };
    const std::vector<std::string> vecChanges = cut::Run(stDevice, stStart, fnWrite).vecChanges;
    u32 uiTried = 0U;
    u32 uiInOrder = 0U;
    u32 uiOld = 0U;
    for (const POINT_S &stPoint : cut::Points(vecChanges)) {
        const RUN_S stCut = cut::Run(stDevice, stStart, fnWrite, stPoint);
        ASSERT_TRUE(stCut.bCut);
        for (const DATABASE_E eDatabase : {DATABASE_E::KEPT, DATABASE_E::BEHIND, DATABASE_E::REFILLED}) {
            SCOPED_TRACE(Where(vecChanges, stPoint) + ", database " +
                         std::to_string(static_cast<int>(eDatabase)));
            const LASTING_S stLeft = AfterPowerUp(stDevice, stCut.stLeft, stStart, eDatabase);
            const RUN_S stRepaired = cut::Run(stDevice, stLeft, Repair);
            EXPECT_EQ(stRepaired.uiResult, FRU_OK);
            ++uiTried;
            uiInOrder += IsInOrder(stExpected, stRepaired.stLeft) ? 1U : 0U;
            uiOld += stRepaired.stLeft.vecChip == stExpected.vecOldChip ? 1U : 0U;
        }
    }
    EXPECT_EQ(uiInOrder, uiTried);
    EXPECT_GE(uiTried, 90U);
    EXPECT_GT(uiOld, 0U);
    EXPECT_GT(uiTried - uiOld, uiOld); // once a byte is written it goes forward
    RecordProperty("cuts", static_cast<int>(uiTried));
}

TEST_P(InterruptedWrites, EveryCutOfTheRepairEndsInTheOldOrTheNewImage)
{
    const CASE_S &stCase = GetParam();
    const DEVICE_S stDevice = DeviceOf(stCase);
    const LASTING_S stStart = StartOf(stDevice);
    const EXPECTED_S stExpected = Expect(stCase, stStart);
    const auto fnWrite = [&] { return WriteSafely(stCase, stDevice); };
    const std::vector<std::string> vecChanges = cut::Run(stDevice, stStart, fnWrite).vecChanges;
    u32 uiTried = 0U;
    u32 uiInOrder = 0U;
    for (const POINT_S &stPoint : cut::Points(vecChanges)) {
        SCOPED_TRACE(Where(vecChanges, stPoint));
        const LASTING_S stLeft = cut::Run(stDevice, stStart, fnWrite, stPoint).stLeft;
        const std::vector<std::string> vecRepair = cut::Run(stDevice, stLeft, Repair).vecChanges;
        for (const POINT_S &stAgain : cut::Points(vecRepair)) {
            SCOPED_TRACE(Where(vecRepair, stAgain));
            const RUN_S stCut = cut::Run(stDevice, stLeft, Repair, stAgain);
            ASSERT_TRUE(stCut.bCut);
            const RUN_S stRepaired = cut::Run(stDevice, stCut.stLeft, Repair);
            EXPECT_EQ(stRepaired.uiResult, FRU_OK);
            ++uiTried;
            uiInOrder += IsInOrder(stExpected, stRepaired.stLeft) ? 1U : 0U;
        }
    }
    EXPECT_EQ(uiInOrder, uiTried);
    EXPECT_GE(uiTried, 200U);
    RecordProperty("second_cuts", static_cast<int>(uiTried));
}

// docs/interrupted-writes.md says what happens in which order; this holds it to it.
TEST(PlainWrite, ChangesThingsInThisOrder)
{
    const CASE_S &stCase = g_astCases[0];
    const DEVICE_S stDevice = DeviceOf(stCase);
    LASTING_S stStart = StartOf(stDevice);
    stStart.optSerial.reset();
    const RUN_S stRun = cut::Run(stDevice, stStart, [&] { return WritePlainly(stCase, stDevice); });
    std::vector<std::string> vecExpected;
    u32 uiAt = stDevice.usStartOffset;
    for (const u32 uiChunk : {127U, 127U, 127U, 127U, 20U}) {
        vecExpected.push_back("EEPROM " + std::to_string(uiAt) + "+" + std::to_string(uiChunk));
        vecExpected.emplace_back("put 0x10810200");
        vecExpected.emplace_back("tell 636/0");
        uiAt += uiChunk;
    }
    for (const char *pcChange :
         {"put 0x10810200", "make directory", "empty serial number", "copy serial number", "tell 630/0"}) {
        vecExpected.emplace_back(pcChange);
    }
    EXPECT_EQ(stRun.vecChanges, vecExpected);
    // Behind the image the chip keeps what it had, and the cache has zeros.
    EXPECT_EQ(ImageOn(stDevice, stRun.stLeft.vecChip).back(), 0xA5U);
    EXPECT_EQ(stRun.stLeft.mapDb.at(cut::ImageKey(stDevice)).back(), 0U);
}

TEST(PlainWrite, CutsLeaveTornImagesThatTheLibraryDoesNotRecover)
{
    u32 uiTorn = 0U;
    u32 uiGoodHeader = 0U;
    u32 uiDecodes = 0U;
    u32 uiInTrustedCache = 0U;
    for (const CASE_S &stCase : g_astCases) {
        const DEVICE_S stDevice = DeviceOf(stCase);
        const LASTING_S stStart = StartOf(stDevice);
        const EXPECTED_S stExpected = Expect(stCase, stStart);
        const auto fnWrite = [&] { return WritePlainly(stCase, stDevice); };
        const std::vector<std::string> vecChanges = cut::Run(stDevice, stStart, fnWrite).vecChanges;
        for (const POINT_S &stPoint : cut::Points(vecChanges)) {
            const LASTING_S stLeft = cut::Run(stDevice, stStart, fnWrite, stPoint).stLeft;
            if (stLeft.vecChip == stExpected.vecOldChip || stLeft.vecChip == stExpected.vecNewChip) {
                continue;
            }
            ++uiTorn;
            const BYTES vecTorn = ImageOn(stDevice, stLeft.vecChip);
            const bool bDecodes = label::Decode(vecTorn).count("image") == 0U;
            uiGoodHeader += FRU_ANALYZER_CheckValidHeader(vecTorn.data()) == FRU_OK ? 1U : 0U;
            uiDecodes += bDecodes ? 1U : 0U;
            const BYTES &vecCache = stLeft.mapDb.at(cut::ImageKey(stDevice));
            uiInTrustedCache += vecCache != stExpected.vecOldCache ? 1U : 0U;
            EXPECT_EQ(stLeft.mapDb.at(cut::StatusKey(stDevice)).at(0) & 1U, 0U);
        }
    }
    EXPECT_GT(uiTorn, 50U);
    // Only a torn first page lets the library's own recovery begin.
    EXPECT_EQ(uiGoodHeader + std::size(g_astCases), uiTorn);
    EXPECT_GT(uiDecodes, 0U); // and nothing tells that these are torn
    EXPECT_GT(uiInTrustedCache, 0U);
    RecordProperty("torn", static_cast<int>(uiTorn));
    RecordProperty("torn_that_decode", static_cast<int>(uiDecodes));
}

} // namespace
