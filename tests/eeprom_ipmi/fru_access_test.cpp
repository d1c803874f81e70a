// SPDX-License-Identifier: Apache-2.0
// The commands for a FRU behind another controller, which this file plays with all its moods.
#include "eeprom/ipmi/fru_access.h"

#include <algorithm>
#include <deque>
#include <numeric>

#include <gtest/gtest.h>

namespace {

using ipmi::ANSWER_S;
using ipmi::AREA_S;
using ipmi::FruAccess;
using ipmi::Outcome;
using ipmi::RESULT_S;

constexpr u8 AREA_INFO = 0x10;
constexpr u8 READ_DATA = 0x11;
constexpr u8 WRITE_DATA = 0x12;
constexpr u8 FRU_ID = 7;

struct ASKED_S
{
    u8 ucCommand;
    u32 uiOffset; // bytes
    u32 uiCount;  // bytes
};

// A controller with one FRU. What it is asked stays in a list.
class OtherSide
{
  public:
    explicit OtherSide(size_t uiSize) : vecBytes(uiSize)
    {
        std::iota(vecBytes.begin(), vecBytes.end(), u8{3});
    }

    std::vector<u8> vecBytes;
    bool bWords = false;
    bool bCountsBytes = false; // tells bytes where words are meant
    u32 uiReadMax = 255;       // bytes in one command
    u32 uiWriteMax = 255;
    u8 ucTooMany = 0xC8;
    u32 uiTellsAtMost = 255;      // bytes that a read brings and a write takes, without a word
    std::deque<ANSWER_S> deqOdd;  // instead of an answer, one after the other
    std::deque<ANSWER_S> deqOdds; // the same, for writes alone
    bool bProtected = false;

    std::vector<ASKED_S> vecAsked;
    std::vector<u32> vecWaits;

    FruAccess Access(u32 uiChunk = 32U)
    {
        return FruAccess(
            {[this](u8 ucCommand, const std::vector<u8> &vecData) { return Ask(ucCommand, vecData); },
             [this](u32 uiMs) { vecWaits.push_back(uiMs); }},
            uiChunk);
    }

    std::vector<u32> Counts(u8 ucCommand) const
    {
        std::vector<u32> vecCounts;
        for (const ASKED_S &stAsked : vecAsked) {
            if (stAsked.ucCommand == ucCommand) {
                vecCounts.push_back(stAsked.uiCount);
            }
        }
        return vecCounts;
    }

  private:
    static ANSWER_S Code(u8 ucCompletion, std::vector<u8> vecData = {})
    {
        ANSWER_S stAnswer;
        stAnswer.bCame = true;
        stAnswer.ucCompletion = ucCompletion;
        stAnswer.vecData = std::move(vecData);
        return stAnswer;
    }

    static ANSWER_S Take(std::deque<ANSWER_S> &deqAnswers)
    {
        ANSWER_S stAnswer = deqAnswers.front();
        deqAnswers.pop_front();
        return stAnswer;
    }

    ANSWER_S Ask(u8 ucCommand, const std::vector<u8> &vecData)
    {
        const u32 uiUnit = bWords ? 2U : 1U;
        ASKED_S stAsked = {ucCommand, 0U, 0U};
        if (ucCommand != AREA_INFO) {
            stAsked.uiOffset = (vecData.at(1) | static_cast<u32>(vecData.at(2)) << 8U) * uiUnit;
            stAsked.uiCount =
                ucCommand == READ_DATA ? vecData.at(3) * uiUnit : static_cast<u32>(vecData.size()) - 3U;
        }
        vecAsked.push_back(stAsked);
        if (!deqOdd.empty()) {
            return Take(deqOdd);
        }
        if (vecData.at(0) != FRU_ID) {
            return Code(0xCB);
        }
        if (ucCommand == AREA_INFO) {
            return Code(0, {static_cast<u8>(vecBytes.size()), static_cast<u8>(vecBytes.size() >> 8U),
                            static_cast<u8>(bWords ? 1U : 0U)});
        }
        return ucCommand == READ_DATA ? Read(stAsked) : Write(stAsked, vecData);
    }

    u8 Told(u32 uiCount) const
    {
        return static_cast<u8>(bWords && !bCountsBytes ? uiCount / 2U : uiCount);
    }

    ANSWER_S Read(const ASKED_S &stAsked) const
    {
        if (stAsked.uiCount > uiReadMax) {
            return Code(ucTooMany);
        }
        if (stAsked.uiOffset + stAsked.uiCount > vecBytes.size()) {
            return Code(0xC9);
        }
        const u32 uiCount = std::min(stAsked.uiCount, uiTellsAtMost);
        std::vector<u8> vecAnswer = {Told(uiCount)};
        vecAnswer.insert(vecAnswer.end(), vecBytes.begin() + stAsked.uiOffset,
                         vecBytes.begin() + stAsked.uiOffset + uiCount);
        return Code(0, vecAnswer);
    }

    ANSWER_S Write(const ASKED_S &stAsked, const std::vector<u8> &vecData)
    {
        if (!deqOdds.empty()) {
            return Take(deqOdds);
        }
        if (stAsked.uiCount > uiWriteMax) {
            return Code(ucTooMany);
        }
        if (bProtected || stAsked.uiOffset + stAsked.uiCount > vecBytes.size()) {
            return Code(bProtected ? 0x80 : 0xC9);
        }
        const u32 uiCount = std::min(stAsked.uiCount, uiTellsAtMost);
        std::copy_n(vecData.begin() + 3, uiCount, vecBytes.begin() + stAsked.uiOffset);
        return Code(0, {Told(uiCount)});
    }
};

ANSWER_S Completed(u8 ucCompletion, std::vector<u8> vecData = {})
{
    ANSWER_S stAnswer;
    stAnswer.bCame = true;
    stAnswer.ucCompletion = ucCompletion;
    stAnswer.vecData = std::move(vecData);
    return stAnswer;
}

ANSWER_S Lost(bool bBrokeOff)
{
    ANSWER_S stAnswer;
    stAnswer.bBrokeOff = bBrokeOff;
    stAnswer.strWhy = bBrokeOff ? "the session broke off" : "nobody answers";
    return stAnswer;
}

std::vector<u8> ReadAll(OtherSide &stOther, FruAccess &stAccess)
{
    std::vector<u8> vecBytes(stOther.vecBytes.size());
    const RESULT_S stResult = stAccess.Read(FRU_ID, 0U, static_cast<u32>(vecBytes.size()), vecBytes.data());
    EXPECT_EQ(stResult.enOutcome, Outcome::Done) << stResult.strWhy;
    EXPECT_EQ(stResult.uiCount, vecBytes.size());
    return vecBytes;
}

std::vector<u8> Pattern(size_t uiSize)
{
    std::vector<u8> vecBytes(uiSize);
    std::generate(vecBytes.begin(), vecBytes.end(),
                  [uc = u8{0}]() mutable { return uc = static_cast<u8>(uc * 5U + 17U); });
    return vecBytes;
}

RESULT_S WriteAt(FruAccess &stAccess, u32 uiOffset, const std::vector<u8> &vecBytes)
{
    return stAccess.Write(FRU_ID, uiOffset, static_cast<u32>(vecBytes.size()), vecBytes.data());
}

TEST(IpmiFru, TheAreaIsAskedForOnce)
{
    OtherSide stOther(300);
    FruAccess stAccess = stOther.Access();
    AREA_S stArea;
    EXPECT_EQ(stAccess.Area(FRU_ID, &stArea).enOutcome, Outcome::Done);
    EXPECT_EQ(stAccess.Area(FRU_ID, &stArea).enOutcome, Outcome::Done);
    EXPECT_EQ(stArea.uiSize, 300U);
    EXPECT_FALSE(stArea.bWords);
    EXPECT_EQ(stOther.vecAsked.size(), 1U);
}

TEST(IpmiFru, ReadsInChunksOfTheSizeItBeginsWith)
{
    OtherSide stOther(80);
    FruAccess stAccess = stOther.Access(32U);
    EXPECT_EQ(ReadAll(stOther, stAccess), stOther.vecBytes);
    EXPECT_EQ(stOther.Counts(READ_DATA), (std::vector<u32>{32, 32, 16}));
}

TEST(IpmiFru, AChunkThatIsTooLongBecomesLessAndStaysSo)
{
    for (const u8 ucTooMany : {u8{0xC7}, u8{0xC8}, u8{0xCA}}) {
        OtherSide stOther(64);
        stOther.uiReadMax = 20;
        stOther.uiWriteMax = 5;
        stOther.ucTooMany = ucTooMany;
        FruAccess stAccess = stOther.Access(64U);
        EXPECT_EQ(ReadAll(stOther, stAccess), stOther.vecBytes);
        EXPECT_EQ(stOther.Counts(READ_DATA), (std::vector<u32>{64, 32, 16, 16, 16, 16}));
        EXPECT_EQ(ReadAll(stOther, stAccess), stOther.vecBytes);
        EXPECT_EQ(stOther.Counts(READ_DATA).size(), 10U);
        const std::vector<u8> vecNew = Pattern(20);
        EXPECT_EQ(WriteAt(stAccess, 8U, vecNew).uiCount, 20U);
        EXPECT_TRUE(std::equal(vecNew.begin(), vecNew.end(), stOther.vecBytes.begin() + 8));
        EXPECT_EQ(stOther.Counts(WRITE_DATA), (std::vector<u32>{20, 10, 5, 5, 5, 5}));
    }
}

TEST(IpmiFru, AControllerThatTakesOneByteGetsOneByte)
{
    OtherSide stOther(20);
    stOther.uiReadMax = 1;
    FruAccess stAccess = stOther.Access(32U);
    EXPECT_EQ(ReadAll(stOther, stAccess), stOther.vecBytes);
}

TEST(IpmiFru, ALengthThatNeverSuitsEnds)
{
    OtherSide stOther(20);
    stOther.uiReadMax = 0;
    FruAccess stAccess = stOther.Access(8U);
    u8 aucBytes[20] = {};
    const RESULT_S stResult = stAccess.Read(FRU_ID, 0U, sizeof(aucBytes), aucBytes);
    EXPECT_EQ(stResult.enOutcome, Outcome::Refused);
    EXPECT_EQ(stResult.strWhy,
              "Read FRU Data was answered with completion code 0xc8, too many bytes at once");
    EXPECT_EQ(stOther.Counts(READ_DATA), (std::vector<u32>{8, 4, 2, 1}));
}

TEST(IpmiFru, FewerBytesThanAskedForAreGoneOnFrom)
{
    OtherSide stOther(50);
    stOther.uiTellsAtMost = 12;
    FruAccess stAccess = stOther.Access();
    EXPECT_EQ(ReadAll(stOther, stAccess), stOther.vecBytes);
    const std::vector<u8> vecNew = Pattern(30);
    EXPECT_EQ(WriteAt(stAccess, 10U, vecNew).uiCount, 30U);
    EXPECT_TRUE(std::equal(vecNew.begin(), vecNew.end(), stOther.vecBytes.begin() + 10));
}

TEST(IpmiFru, AnAnswerIsShortAtTheEndOnly)
{
    OtherSide stOther(50);
    FruAccess stAccess = stOther.Access();
    std::vector<u8> vecBytes(100, 0xEE);
    EXPECT_EQ(stAccess.Read(FRU_ID, 40U, 60U, vecBytes.data()).uiCount, 10U);
    EXPECT_EQ(vecBytes[10], 0xEE);
    EXPECT_EQ(stAccess.Read(FRU_ID, 50U, 10U, vecBytes.data()).uiCount, 0U);
    EXPECT_EQ(stAccess.Read(FRU_ID, 0xFFFFFFF0U, 0x20U, vecBytes.data()).uiCount, 0U);
    EXPECT_EQ(stAccess.Write(FRU_ID, 45U, 60U, vecBytes.data()).uiCount, 5U);
    EXPECT_EQ(stAccess.Write(FRU_ID, 51U, 60U, vecBytes.data()).uiCount, 0U);
}

TEST(IpmiFru, WordsAreAskedForByWordOffsets)
{
    for (const bool bCountsBytes : {false, true}) {
        OtherSide stOther(70);
        stOther.bWords = true;
        stOther.bCountsBytes = bCountsBytes;
        FruAccess stAccess = stOther.Access(33U);
        EXPECT_EQ(ReadAll(stOther, stAccess), stOther.vecBytes);
        EXPECT_EQ(stOther.Counts(READ_DATA), (std::vector<u32>{32, 32, 6}));
    }
}

TEST(IpmiFru, HalfWordsKeepTheirOtherHalf)
{
    OtherSide stOther(64);
    stOther.bWords = true;
    FruAccess stAccess = stOther.Access(8U);
    std::vector<u8> vecWanted = stOther.vecBytes;
    const std::vector<u8> vecNew = Pattern(18);
    std::copy(vecNew.begin(), vecNew.end(), vecWanted.begin() + 5);
    EXPECT_EQ(WriteAt(stAccess, 5U, vecNew).uiCount, 18U);
    EXPECT_EQ(stOther.vecBytes, vecWanted);
    EXPECT_EQ(stOther.Counts(WRITE_DATA), (std::vector<u32>{8, 8, 4}));
    std::vector<u8> vecRead(7);
    EXPECT_EQ(stAccess.Read(FRU_ID, 9U, 7U, vecRead.data()).uiCount, 7U);
    EXPECT_TRUE(std::equal(vecRead.begin(), vecRead.end(), vecWanted.begin() + 9));
}

TEST(IpmiFru, WhoIsBusyIsAskedAgainWithLongerPauses)
{
    for (const u8 ucBusy : {u8{0x81}, u8{0xC0}, u8{0xC3}}) {
        OtherSide stOther(20);
        FruAccess stAccess = stOther.Access();
        stOther.deqOdd = {Completed(ucBusy), Completed(ucBusy), Completed(ucBusy)};
        EXPECT_EQ(ReadAll(stOther, stAccess), stOther.vecBytes);
        EXPECT_EQ(stOther.vecWaits, (std::vector<u32>{5, 10, 20}));
    }
}

TEST(IpmiFru, WhoStaysBusyIsGivenUp)
{
    OtherSide stOther(20);
    FruAccess stAccess = stOther.Access();
    stOther.deqOdds.assign(1000, Completed(0x81));
    const RESULT_S stResult = WriteAt(stAccess, 0U, {1});
    EXPECT_EQ(stResult.enOutcome, Outcome::Busy);
    EXPECT_EQ(stResult.strWhy, "Write FRU Data was answered with completion code 0x81, the FRU is busy");
    const u32 uiWaited = std::accumulate(stOther.vecWaits.begin(), stOther.vecWaits.end(), 0U);
    EXPECT_GE(uiWaited, 8000U);
    EXPECT_LT(uiWaited, 9000U);
    EXPECT_LT(stOther.vecWaits.size(), 30U);
}

TEST(IpmiFru, ASessionThatBreaksOffIsBegunAnewOnceForACommand)
{
    OtherSide stOther(20);
    FruAccess stAccess = stOther.Access();
    stOther.deqOdd = {Lost(true)};
    EXPECT_EQ(ReadAll(stOther, stAccess), stOther.vecBytes);
    stOther.deqOdds = {Lost(true)};
    EXPECT_EQ(WriteAt(stAccess, 3U, {9, 8, 7}).uiCount, 3U);
    EXPECT_EQ(stOther.Counts(WRITE_DATA), (std::vector<u32>{3, 3})); // the same bytes at the same place
    stOther.deqOdds = {Lost(true), Lost(true)};
    const RESULT_S stResult = WriteAt(stAccess, 3U, {9, 8, 7});
    EXPECT_EQ(stResult.enOutcome, Outcome::Lost);
    EXPECT_EQ(stResult.strWhy, "the session broke off");
}

TEST(IpmiFru, WhereNoSessionBeginsNothingIsTriedAgain)
{
    OtherSide stOther(20);
    FruAccess stAccess = stOther.Access();
    stOther.deqOdd = {Lost(false), Lost(false)};
    AREA_S stArea;
    EXPECT_EQ(stAccess.Area(FRU_ID, &stArea).enOutcome, Outcome::Lost);
    EXPECT_EQ(stOther.vecAsked.size(), 1U);
}

TEST(IpmiFru, RefusalsAreToldAsWhatTheyAre)
{
    OtherSide stOther(20);
    FruAccess stAccess = stOther.Access();
    AREA_S stArea;
    const RESULT_S stAbsent = stAccess.Area(8, &stArea);
    EXPECT_EQ(stAbsent.enOutcome, Outcome::NoFru);
    EXPECT_EQ(stAbsent.strWhy,
              "Get FRU Inventory Area Info was answered with completion code 0xcb, there is none");
    stOther.bProtected = true;
    const RESULT_S stProtected = WriteAt(stAccess, 0U, {1});
    EXPECT_EQ(stProtected.enOutcome, Outcome::Protected);
    EXPECT_EQ(stProtected.strWhy, "Write FRU Data was answered with completion code 0x80, write-protected");
    stOther.deqOdds = {Completed(0xD4)};
    const RESULT_S stPrivilege = WriteAt(stAccess, 0U, {1});
    EXPECT_EQ(stPrivilege.enOutcome, Outcome::Refused);
    EXPECT_EQ(stPrivilege.strWhy,
              "Write FRU Data was answered with completion code 0xd4, the user's privilege "
              "does not suffice");
    stOther.deqOdds = {Completed(0xE7)};
    EXPECT_EQ(WriteAt(stAccess, 0U, {1}).strWhy, "Write FRU Data was answered with completion code 0xe7");
}

TEST(IpmiFru, AnswersThatMakeNoSenseAreRefused)
{
    OtherSide stOther(20);
    u8 aucBytes[20] = {};
    const std::vector<std::pair<ANSWER_S, std::string>> vecOdd = {
        {Completed(0, {}), "Read FRU Data was answered with no byte"},
        {Completed(0, {0}), "Read FRU Data was answered with no byte"},
        {Completed(0, {5, 1, 2}), "Read FRU Data was answered with another count than it has bytes"},
    };
    for (const auto &[stAnswer, strWhy] : vecOdd) {
        FruAccess stAccess = stOther.Access();
        AREA_S stArea;
        ASSERT_EQ(stAccess.Area(FRU_ID, &stArea).enOutcome, Outcome::Done);
        stOther.deqOdd = {stAnswer};
        const RESULT_S stResult = stAccess.Read(FRU_ID, 0U, sizeof(aucBytes), aucBytes);
        EXPECT_EQ(stResult.enOutcome, Outcome::Refused);
        EXPECT_EQ(stResult.strWhy, strWhy);
    }
    FruAccess stAccess = stOther.Access();
    AREA_S stArea;
    stOther.deqOdd = {Completed(0, {1, 2})};
    EXPECT_EQ(stAccess.Area(FRU_ID, &stArea).strWhy,
              "Get FRU Inventory Area Info was answered with too few bytes");
    stOther.deqOdds = {Completed(0, {0})};
    EXPECT_EQ(WriteAt(stAccess, 0U, {1}).strWhy, "Write FRU Data was answered with no byte written");
}

TEST(IpmiFru, MoreBytesThanAskedForAreNotTaken)
{
    OtherSide stOther(4);
    FruAccess stAccess = stOther.Access();
    AREA_S stArea;
    ASSERT_EQ(stAccess.Area(FRU_ID, &stArea).enOutcome, Outcome::Done);
    stOther.deqOdd = {Completed(0, {6, 1, 2, 3, 4, 5, 6})};
    u8 aucBytes[6] = {};
    EXPECT_EQ(stAccess.Read(FRU_ID, 0U, 4U, aucBytes).uiCount, 4U);
    EXPECT_EQ(aucBytes[4], 0U);
}

} // namespace
