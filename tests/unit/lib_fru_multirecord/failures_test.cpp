// SPDX-License-Identifier: Apache-2.0
// Every allocation and platform call failing in turn: no crash, nothing left behind, a documented result, and
// a chip that holds either what it held or a whole merged image, or a message that says it does not.
#include "mr_test_helper.h"
#include "support/mixture.h"

using namespace mr;

namespace {

const BYTES g_vecUrl = Record(3, 2, DataOf(1, "http://bmc"));
const BYTES g_vecName = Record(3, 2, DataOf(2, "name"));
const BYTES g_vecLongName = Record(3, 2, DataOf(2, "a much longer name"));
const BYTES g_vecPing = Record(3, 2, DataOf(3, "10.0.0.1"));

// Every read of 16 bytes is a step of its own, so the FRU is small here.
BYTES SmallImage(const std::vector<BYTES> &vecRecords)
{
    return Image(vecRecords, 96);
}

struct SCENARIO_S
{
    std::vector<BYTES> vecOnDevice;
    std::vector<BYTES> vecQueued;
    std::string strName;               // the update's value; empty: a merge alone
    std::vector<BYTES> vecMerged;      // with the update
    std::vector<BYTES> vecMergedOther; // when the update could not be queued
    bool bFirstUse = false;            // of a store that nobody has initialised
};

// Chip and cache hold bytes of the old or of a merged image and no others. When they are not both the whole
// merged image, something says so; only a chip that fails in a write is left with a part of it.
void CheckDevice(const SCENARIO_S &stScenario, const fake::FAULT_S *pstFault)
{
    const BYTES vecOld = SmallImage(stScenario.vecOnDevice);
    const BYTES vecNew = SmallImage(stScenario.vecMerged);
    const BYTES vecOther = SmallImage(stScenario.vecMergedOther);
    const BYTES vecCache = fake::Db()[0x10810200];
    const bool bChipFault = pstFault != nullptr && pstFault->eKind == fake::KIND_E::EEPROM;
    EXPECT_TRUE(bChipFault || Chip() == vecOld || Chip() == vecNew || Chip() == vecOther);
    EXPECT_TRUE(image::IsMixtureOf(Chip(), {vecOld, vecNew}) ||
                image::IsMixtureOf(Chip(), {vecOld, vecOther}));
    EXPECT_TRUE(vecCache == vecOld || vecCache == vecNew || vecCache == vecOther);
    EXPECT_TRUE(!fake::Messages().empty() || (Chip() == vecNew && vecCache == vecNew));
}

void CheckOutcome(const SCENARIO_S &stScenario, u32 uiRet, const fake::FAULT_S *pstFault)
{
    const bool bClockFault = pstFault != nullptr && (pstFault->eKind == fake::KIND_E::CLOCK ||
                                                     pstFault->eKind == fake::KIND_E::SEMAPHORE);
    if (pstFault == nullptr) {
        EXPECT_EQ(uiRet, 0U);
        EXPECT_EQ(Chip(), SmallImage(stScenario.vecMerged));
        EXPECT_EQ(fake::Messages(), LINES{});
    }
    CheckDevice(stScenario, pstFault);
    if (uiRet == 0U) {
        EXPECT_EQ(QueuedCount(), 0U);
    } else {
        EXPECT_EQ(uiRet, g_uiFailed);
        EXPECT_GE(QueuedCount(), stScenario.vecQueued.size());
        EXPECT_EQ(Chip(), SmallImage(stScenario.vecOnDevice));
        EXPECT_EQ(fake::Calls("EEPROM write"), LINES{});
        EXPECT_FALSE(fake::Messages().empty());
    }
    if (g_stInnerMRStore.ucInited == 1U) {
        // Posted once for every wait; the merge posts after a failed wait as well.
        EXPECT_TRUE(SemValue() == 1 || (bClockFault && SemValue() == 2));
    } else {
        EXPECT_TRUE(stScenario.bFirstUse && IsStoreZero());
    }
    DestroyQuietly();
    EXPECT_TRUE(IsStoreZero());
}

void Play(const SCENARIO_S &stScenario)
{
    u32 uiRet = 0;
    fake::Sweep(
        [&] {
            PutMainFru(SmallImage(stScenario.vecOnDevice));
            ASSERT_EQ(stScenario.bFirstUse ? 0U : FRU_initMultiRecords(), 0U);
            for (const BYTES &vecRecord : stScenario.vecQueued) {
                PutQueued(vecRecord);
            }
        },
        [&] {
            uiRet = stScenario.strName.empty() ? FRU_syncAllMultiRecords() : Update(2, stScenario.strName);
        },
        [&](const fake::FAULT_S *pstFault) { CheckOutcome(stScenario, uiRet, pstFault); });
}

TEST(Failures, UpdateOfAFruWithoutAnArea)
{
    Play({{}, {g_vecUrl}, "name", {g_vecUrl, g_vecName}, {g_vecUrl}});
}

TEST(Failures, UpdateThatReplacesOnTheDevice)
{
    Play({{g_vecUrl, g_vecName},
          {g_vecPing},
          "a much longer name",
          {g_vecUrl, g_vecLongName, g_vecPing},
          {g_vecUrl, g_vecName, g_vecPing}});
}

TEST(Failures, UpdateThatReplacesInTheStore)
{
    Play({{g_vecUrl}, {g_vecName}, "a much longer name", {g_vecUrl, g_vecLongName}, {g_vecUrl, g_vecName}});
}

TEST(Failures, MergeOfSeveral)
{
    const std::vector<BYTES> vecMerged = {g_vecUrl, g_vecPing, g_vecName};
    Play({{g_vecUrl}, {g_vecPing, g_vecName}, "", vecMerged, vecMerged});
}

TEST(Failures, MergeOfWhatIsThereAlready)
{
    const std::vector<BYTES> vecMerged = {g_vecUrl, g_vecName};
    Play({vecMerged, {g_vecName, g_vecUrl}, "", vecMerged, vecMerged});
}

TEST(Failures, FirstUseOfTheStore)
{
    Play({{}, {}, "name", {g_vecName}, {}, true});
}

TEST(Failures, Destroy)
{
    fake::Sweep(
        [] {
            PutQueued(g_vecName);
            PutQueued(g_vecUrl);
        },
        [] { FRU_destroyMultiRecords(); },
        [](const fake::FAULT_S *pstFault) {
            if (pstFault == nullptr) {
                EXPECT_TRUE(IsStoreZero());
            } else {
                EXPECT_EQ(QueuedCount(), 2U);
                EXPECT_EQ(SemValue(), 1);
            }
            DestroyQuietly();
            EXPECT_TRUE(IsStoreZero());
        });
}

} // namespace
