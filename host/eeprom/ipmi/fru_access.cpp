// SPDX-License-Identifier: Apache-2.0
#include "eeprom/ipmi/fru_access.h"

#include <algorithm>
#include <cstdio>

namespace ipmi {

namespace {

constexpr u8 g_ucGetArea = 0x10;
constexpr u8 g_ucReadData = 0x11;
constexpr u8 g_ucWriteData = 0x12;

constexpr u8 g_ucOk = 0x00;
constexpr u8 g_ucWriteProtected = 0x80;
constexpr u8 g_ucFruBusy = 0x81;
constexpr u8 g_ucNodeBusy = 0xC0;
constexpr u8 g_ucInvalidCommand = 0xC1;
constexpr u8 g_ucTimeout = 0xC3;
constexpr u8 g_ucLengthInvalid = 0xC7;
constexpr u8 g_ucLengthExceeded = 0xC8;
constexpr u8 g_ucOutOfRange = 0xC9;
constexpr u8 g_ucCannotReturnLength = 0xCA;
constexpr u8 g_ucNotPresent = 0xCB;
constexpr u8 g_ucInvalidField = 0xCC;
constexpr u8 g_ucNoPrivilege = 0xD4;
constexpr u8 g_ucNotInThisState = 0xD5;

// A chip's write cycle takes 5 ms; a controller that is busy with itself takes seconds.
constexpr u32 g_uiFirstPauseMs = 5;
constexpr u32 g_uiLongestPauseMs = 640;
constexpr u32 g_uiBusyPatienceMs = 8000;
// The same bytes at the same place: a command whose answer was lost may be given once more.
constexpr u32 g_uiSessions = 2;

const char *MeaningOf(u8 ucCompletion)
{
    switch (ucCompletion) {
    case g_ucWriteProtected:
        return "write-protected";
    case g_ucFruBusy:
        return "the FRU is busy";
    case g_ucNodeBusy:
        return "the controller is busy";
    case g_ucInvalidCommand:
        return "it does not know the command";
    case g_ucTimeout:
        return "it took too long";
    case g_ucLengthInvalid:
        return "wrong length";
    case g_ucLengthExceeded:
    case g_ucCannotReturnLength:
        return "too many bytes at once";
    case g_ucOutOfRange:
        return "beyond the FRU's end";
    case g_ucNotPresent:
        return "there is none";
    case g_ucInvalidField:
        return "a byte of the request is invalid";
    case g_ucNoPrivilege:
        return "the user's privilege does not suffice";
    case g_ucNotInThisState:
        return "not in its present state";
    default:
        return "";
    }
}

const char *NameOf(u8 ucCommand)
{
    return ucCommand == g_ucGetArea    ? "Get FRU Inventory Area Info"
           : ucCommand == g_ucReadData ? "Read FRU Data"
                                       : "Write FRU Data";
}

std::string CodeText(u8 ucCommand, u8 ucCompletion)
{
    char acText[128];
    const char *pcMeaning = MeaningOf(ucCompletion);
    (void)snprintf(acText, sizeof(acText), "%s was answered with completion code 0x%02x%s%s",
                   NameOf(ucCommand), static_cast<unsigned>(ucCompletion), *pcMeaning == '\0' ? "" : ", ",
                   pcMeaning);
    return acText;
}

bool IsBusy(u8 ucCompletion)
{
    return ucCompletion == g_ucFruBusy || ucCompletion == g_ucNodeBusy || ucCompletion == g_ucTimeout;
}

RESULT_S Refused(u8 ucCommand, u8 ucCompletion)
{
    const Outcome enOutcome = ucCompletion == g_ucNotPresent       ? Outcome::NoFru
                              : IsBusy(ucCompletion)               ? Outcome::Busy
                              : ucCompletion == g_ucWriteProtected ? Outcome::Protected
                                                                   : Outcome::Refused;
    return {enOutcome, 0U, CodeText(ucCommand, ucCompletion)};
}

RESULT_S Odd(u8 ucCommand, const char *pcWhat)
{
    return {Outcome::Refused, 0U, std::string(NameOf(ucCommand)) + " was answered with " + pcWhat};
}

u32 UnitOf(const AREA_S &stArea)
{
    return stArea.bWords ? 2U : 1U;
}

// Of the bytes that are left, as many as one command may carry.
u32 CountOf(u32 uiLeft, u32 uiChunk, u32 uiUnit)
{
    return std::min(uiLeft, std::max(uiChunk / uiUnit * uiUnit, uiUnit));
}

// Ahead of every read and write: which FRU, and where, in the units of its area.
constexpr u32 g_uiHead = 3;

std::vector<u8> Request(u8 ucFru, const AREA_S &stArea, u32 uiOffset, u32 uiMore)
{
    const u32 uiAt = uiOffset / UnitOf(stArea);
    std::vector<u8> vecRequest(g_uiHead + uiMore);
    vecRequest[0] = ucFru;
    vecRequest[1] = static_cast<u8>(uiAt & 0xFFU);
    vecRequest[2] = static_cast<u8>(uiAt >> 8U);
    return vecRequest;
}

bool IsLength(u8 ucCompletion)
{
    return ucCompletion == g_ucLengthInvalid || ucCompletion == g_ucLengthExceeded ||
           ucCompletion == g_ucCannotReturnLength;
}

// After a refusal of so many bytes: whether fewer are worth an attempt.
bool Shrink(u32 *puiChunk, u32 uiRefused, u32 uiUnit)
{
    if (uiRefused <= uiUnit) {
        return false;
    }
    *puiChunk = std::max(uiRefused / 2U / uiUnit * uiUnit, uiUnit);
    return true;
}

// What the area holds of a range, with the words at its ends.
struct RANGE_S
{
    u32 uiFirst;
    u32 uiAhead;  // bytes ahead of what was asked for
    u32 uiCount;  // bytes of what was asked for
    u32 uiLength; // bytes from uiFirst on
};

RANGE_S RangeOf(const AREA_S &stArea, u32 uiOffset, u32 uiLength)
{
    const u32 uiLeft = uiOffset < stArea.uiSize ? stArea.uiSize - uiOffset : 0U;
    const u32 uiUnit = UnitOf(stArea);
    RANGE_S stRange = {uiOffset / uiUnit * uiUnit, uiOffset % uiUnit, std::min(uiLength, uiLeft), 0U};
    stRange.uiLength = (stRange.uiAhead + stRange.uiCount + uiUnit - 1U) / uiUnit * uiUnit;
    return stRange;
}

} // namespace

FruAccess::FruAccess(LINK_S stLink, u32 uiChunk)
    : m_stLink(std::move(stLink)), m_uiReadChunk(uiChunk), m_uiWriteChunk(uiChunk)
{}

// One command, until the controller has time for it; the answer may be a refusal of the length.
RESULT_S FruAccess::Ask(u8 ucCommand, const std::vector<u8> &vecData, ANSWER_S *pstAnswer)
{
    u32 uiPauseMs = g_uiFirstPauseMs;
    u32 uiWaitedMs = 0;
    u32 uiSessions = 1;
    while (true) {
        *pstAnswer = m_stLink.fnAsk(ucCommand, vecData);
        if (!pstAnswer->bCame) {
            if (!pstAnswer->bBrokeOff || uiSessions == g_uiSessions) {
                return {pstAnswer->bDenied ? Outcome::Denied : Outcome::Lost, 0U, pstAnswer->strWhy};
            }
            ++uiSessions;
            continue;
        }
        if (!IsBusy(pstAnswer->ucCompletion)) {
            return {};
        }
        if (uiWaitedMs >= g_uiBusyPatienceMs) {
            return Refused(ucCommand, pstAnswer->ucCompletion);
        }
        m_stLink.fnWait(uiPauseMs);
        uiWaitedMs += uiPauseMs;
        uiPauseMs = std::min(uiPauseMs * 2U, g_uiLongestPauseMs);
    }
}

RESULT_S FruAccess::Area(u8 ucFru, AREA_S *pstArea)
{
    const auto itKnown = m_mapAreas.find(ucFru);
    if (itKnown != m_mapAreas.end()) {
        *pstArea = itKnown->second;
        return {};
    }
    ANSWER_S stAnswer;
    RESULT_S stResult = Ask(g_ucGetArea, {ucFru}, &stAnswer);
    if (stResult.enOutcome != Outcome::Done) {
        return stResult;
    }
    if (stAnswer.ucCompletion != g_ucOk) {
        return Refused(g_ucGetArea, stAnswer.ucCompletion);
    }
    constexpr size_t uiAnswerLength = 3;
    if (stAnswer.vecData.size() < uiAnswerLength) {
        return Odd(g_ucGetArea, "too few bytes");
    }
    pstArea->uiSize = stAnswer.vecData[0] | static_cast<u32>(stAnswer.vecData[1]) << 8U;
    pstArea->bWords = (stAnswer.vecData[2] & 1U) != 0U;
    m_mapAreas[ucFru] = *pstArea;
    return {};
}

RESULT_S FruAccess::ReadWhole(u8 ucFru, const AREA_S &stArea, u32 uiOffset, std::vector<u8> *pvecBytes)
{
    const u32 uiUnit = UnitOf(stArea);
    u32 uiDone = 0;
    while (uiDone < pvecBytes->size()) {
        u32 uiCount = CountOf(static_cast<u32>(pvecBytes->size()) - uiDone, m_uiReadChunk, uiUnit);
        std::vector<u8> vecRequest = Request(ucFru, stArea, uiOffset + uiDone, 1U);
        vecRequest[g_uiHead] = static_cast<u8>(uiCount / uiUnit);
        ANSWER_S stAnswer;
        RESULT_S stResult = Ask(g_ucReadData, vecRequest, &stAnswer);
        if (stResult.enOutcome != Outcome::Done) {
            return stResult;
        }
        if (stAnswer.ucCompletion != g_ucOk) {
            if (IsLength(stAnswer.ucCompletion) && Shrink(&m_uiReadChunk, uiCount, uiUnit)) {
                continue;
            }
            return Refused(g_ucReadData, stAnswer.ucCompletion);
        }
        // What came counts, not the count that is told: some controllers tell bytes where they mean words.
        const u32 uiCame = stAnswer.vecData.empty() ? 0U : static_cast<u32>(stAnswer.vecData.size()) - 1U;
        const u32 uiTold = stAnswer.vecData.empty() ? 0U : stAnswer.vecData[0];
        if (uiTold == 0U || (uiTold != uiCame && uiTold * uiUnit != uiCame)) {
            return Odd(g_ucReadData, uiTold == 0U ? "no byte" : "another count than it has bytes");
        }
        uiCount = std::min(uiCame / uiUnit * uiUnit, uiCount);
        if (uiCount == 0U) {
            return Odd(g_ucReadData, "half a word");
        }
        std::copy_n(stAnswer.vecData.begin() + 1, uiCount, pvecBytes->begin() + uiDone);
        uiDone += uiCount;
    }
    return {};
}

RESULT_S FruAccess::WriteWhole(u8 ucFru, const AREA_S &stArea, u32 uiOffset, const std::vector<u8> &vecBytes)
{
    const u32 uiUnit = UnitOf(stArea);
    u32 uiDone = 0;
    while (uiDone < vecBytes.size()) {
        const u32 uiCount = CountOf(static_cast<u32>(vecBytes.size()) - uiDone, m_uiWriteChunk, uiUnit);
        std::vector<u8> vecRequest = Request(ucFru, stArea, uiOffset + uiDone, uiCount);
        std::copy_n(vecBytes.begin() + uiDone, uiCount, vecRequest.begin() + g_uiHead);
        ANSWER_S stAnswer;
        RESULT_S stResult = Ask(g_ucWriteData, vecRequest, &stAnswer);
        if (stResult.enOutcome != Outcome::Done) {
            return stResult;
        }
        if (stAnswer.ucCompletion != g_ucOk) {
            if (IsLength(stAnswer.ucCompletion) && Shrink(&m_uiWriteChunk, uiCount, uiUnit)) {
                continue;
            }
            return Refused(g_ucWriteData, stAnswer.ucCompletion);
        }
        const u32 uiTold = stAnswer.vecData.empty() ? 0U : stAnswer.vecData[0];
        // All of it, in words or in bytes; or less, and the rest comes next.
        const u32 uiWritten = uiTold == uiCount ? uiCount : std::min(uiTold * uiUnit, uiCount);
        if (uiWritten == 0U) {
            return Odd(g_ucWriteData, "no byte written");
        }
        uiDone += uiWritten;
    }
    return {};
}

RESULT_S FruAccess::Read(u8 ucFru, u32 uiOffset, u32 uiLength, u8 *pucBuf)
{
    AREA_S stArea;
    RESULT_S stResult = Area(ucFru, &stArea);
    const RANGE_S stRange = RangeOf(stArea, uiOffset, uiLength);
    if (stResult.enOutcome != Outcome::Done || stRange.uiCount == 0U) {
        return stResult;
    }
    std::vector<u8> vecBytes(stRange.uiLength);
    stResult = ReadWhole(ucFru, stArea, stRange.uiFirst, &vecBytes);
    if (stResult.enOutcome == Outcome::Done) {
        stResult.uiCount = stRange.uiCount;
        std::copy_n(vecBytes.begin() + stRange.uiAhead, stRange.uiCount, pucBuf);
    }
    return stResult;
}

RESULT_S FruAccess::Write(u8 ucFru, u32 uiOffset, u32 uiLength, const u8 *pucBuf)
{
    AREA_S stArea;
    RESULT_S stResult = Area(ucFru, &stArea);
    const RANGE_S stRange = RangeOf(stArea, uiOffset, uiLength);
    if (stResult.enOutcome != Outcome::Done || stRange.uiCount == 0U) {
        return stResult;
    }
    std::vector<u8> vecBytes(stRange.uiLength);
    if (stRange.uiLength != stRange.uiCount) {
        stResult = ReadWhole(ucFru, stArea, stRange.uiFirst, &vecBytes); // half words keep their other half
    }
    if (stResult.enOutcome == Outcome::Done) {
        std::copy_n(pucBuf, stRange.uiCount, vecBytes.begin() + stRange.uiAhead);
        stResult = WriteWhole(ucFru, stArea, stRange.uiFirst, vecBytes);
    }
    stResult.uiCount = stResult.enOutcome == Outcome::Done ? stRange.uiCount : 0U;
    return stResult;
}

} // namespace ipmi
