// SPDX-License-Identifier: Apache-2.0
// State, journals, standard output, faults and the sweep.
#include <array>
#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <regex>

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "fake/fake_files.h"
#include "fake/fake_state.h"

namespace fake {
namespace {

std::recursive_mutex g_mtxState;
std::optional<FAULT_S> g_optFault;
std::array<std::atomic<u32>, g_iKinds> g_aCounts;
int g_iCaptured = -1; // the memory file that takes standard output
int g_iTerminal = -1; // what standard output was before

void BeginCapture()
{
    (void)fflush(stdout);
    if (g_iCaptured < 0) {
        g_iTerminal = dup(STDOUT_FILENO);
        g_iCaptured = memfd_create("stdout", MFD_CLOEXEC);
    }
    (void)dup2(g_iCaptured, STDOUT_FILENO);
    (void)ftruncate(g_iCaptured, 0);
    (void)lseek(g_iCaptured, 0, SEEK_SET);
}

std::string ReplaceLines(const std::string &strText)
{
    // Line numbers change with every edit of the sources; tests are about the rest.
    static const std::regex g_reLine("Line:[1-9][0-9]*$|-[1-9][0-9]*L\\]|detected in [1-9][0-9]* ");
    std::string strOut;
    std::sregex_iterator itMatch(strText.begin(), strText.end(), g_reLine);
    size_t uiFrom = 0;
    for (; itMatch != std::sregex_iterator(); ++itMatch) {
        const std::string strHit = itMatch->str();
        strOut += strText.substr(uiFrom, static_cast<size_t>(itMatch->position()) - uiFrom);
        strOut += strHit[0] == 'L' ? "Line:#" : strHit[0] == '-' ? "-#L]" : "detected in # ";
        uiFrom = static_cast<size_t>(itMatch->position()) + strHit.size();
    }
    return strOut + strText.substr(uiFrom);
}

std::string ReadCaptured()
{
    (void)fflush(stdout);
    std::string strText;
    if (g_iCaptured < 0) {
        return strText;
    }
    char acChunk[512];
    off_t iAt = 0;
    for (ssize_t iGot; (iGot = pread(g_iCaptured, acChunk, sizeof(acChunk), iAt)) > 0; iAt += iGot) {
        strText.append(acChunk, static_cast<size_t>(iGot));
    }
    (void)ftruncate(g_iCaptured, 0);
    (void)lseek(g_iCaptured, 0, SEEK_SET);
    return strText;
}

void GiveBackStdout()
{
    if (g_iTerminal >= 0) {
        (void)fflush(stdout);
        (void)dup2(g_iTerminal, STDOUT_FILENO);
    }
}

// gtest prints through standard output. Listeners hear of a failure in the order in which they were added and
// of a test's end in the reverse one, so it takes one before gtest's own printer and one behind it.
class BEFORE_FAILURE : public testing::EmptyTestEventListener
{
    void OnTestPartResult(const testing::TestPartResult & /*result*/) override
    {
        GiveBackStdout();
    }
};

class AT_TEST_END : public testing::EmptyTestEventListener
{
    void OnTestEnd(const testing::TestInfo & /*info*/) override
    {
        Disarm();
        GiveBackStdout();
    }
};

[[maybe_unused]] const bool g_bGuarded = [] {
    testing::TestEventListeners &listeners = testing::UnitTest::GetInstance()->listeners();
    testing::TestEventListener *pPrinter = listeners.Release(listeners.default_result_printer());
    listeners.Append(new BEFORE_FAILURE);
    listeners.Append(pPrinter);
    listeners.Append(new AT_TEST_END);
    return true;
}();

std::string FaultText(const FAULT_S &stFault)
{
    return std::string("with ") + KindName(stFault.eKind) + " call " + std::to_string(stFault.uiNth) + " " +
           HowName(stFault.eHow) + (stFault.bFromThenOn ? " from then on" : " once");
}

// The ways in which a platform call of a kind can fail.
std::vector<HOW_E> WaysOf(KIND_E eKind)
{
    switch (eKind) {
    case KIND_E::EEPROM:
        return {HOW_E::FAIL, HOW_E::SHORT, HOW_E::TORN};
    case KIND_E::FILE_CALL:
        return {HOW_E::FAIL, HOW_E::SHORT};
    case KIND_E::SEMAPHORE:
        return {HOW_E::FAIL, HOW_E::LATE};
    default:
        return {HOW_E::FAIL};
    }
}

// One run of a sweep.
void ExpectNothingLeft(const SCENARIO_S &stScenario, const FAULT_S *pstFault, COUNTS *paCounts = nullptr)
{
    SCOPED_TRACE(pstFault == nullptr ? "without a fault" : FaultText(*pstFault));
    EXPECT_EQ(Play(stScenario, pstFault, paCounts), 0) << "buffers left behind";
}

} // namespace

STATE_S &State()
{
    static STATE_S g_stState;
    return g_stState;
}

void Reset()
{
    Disarm();
    State() = STATE_S{};
    ResetFiles();
    for (auto &uiCount : g_aCounts) {
        uiCount = 0;
    }
    BeginCapture();
}

const std::vector<MESSAGE_S> &RawMessages()
{
    return State().vecMessages;
}

std::vector<std::string> Messages()
{
    std::vector<std::string> vecLines;
    for (const MESSAGE_S &stMessage : State().vecMessages) {
        const std::string strModule =
            stMessage.uiModule == 24U ? "" : "[" + std::to_string(stMessage.uiModule) + "]";
        vecLines.push_back(strModule + std::to_string(stMessage.uiCategory) + "/" +
                           std::to_string(stMessage.uiSeverity) + " " + stMessage.strFile + ": " +
                           ReplaceLines(stMessage.strText));
    }
    return vecLines;
}

std::string NullMessage(const std::string &strFile, const std::string &strFunction,
                        const std::string &strPointer)
{
    return "[0]0/7 " + strFile + ": Pointer " + strPointer + " is Null, File:" + strFile +
           " Func:" + strFunction + " Line:#";
}

std::string TakeStdout()
{
    return ReplaceLines(ReadCaptured());
}

std::vector<std::string> Calls(const std::string &strPrefix)
{
    std::vector<std::string> vecLines;
    for (const std::string &strCall : State().vecCalls) {
        if (strCall.compare(0, strPrefix.size(), strPrefix) == 0) {
            vecLines.push_back(strCall);
        }
    }
    return vecLines;
}

void Journal(const char *pcFormat, ...)
{
    char acLine[1024];
    va_list vaArgs;
    va_start(vaArgs, pcFormat);
    (void)vsnprintf(acLine, sizeof(acLine), pcFormat, vaArgs);
    va_end(vaArgs);
    const std::lock_guard<std::recursive_mutex> lock(g_mtxState);
    State().vecCalls.emplace_back(acLine);
}

const char *KindName(KIND_E eKind)
{
    static const char *const g_apcNames[g_iKinds] = {"ALLOC",  "DB",         "EEPROM",   "FILE",
                                                     "RPC",    "OPERATELOG", "INI",      "CAPABILITY",
                                                     "HWDESC", "CLOCK",      "SEMAPHORE"};
    return g_apcNames[static_cast<int>(eKind)];
}

const char *HowName(HOW_E eHow)
{
    return eHow == HOW_E::FAIL    ? "failing"
           : eHow == HOW_E::SHORT ? "short"
           : eHow == HOW_E::TORN  ? "torn"
                                  : "late";
}

void Arm(const FAULT_S &stFault)
{
    for (auto &uiCount : g_aCounts) {
        uiCount = 0;
    }
    g_optFault = stFault;
}

void Disarm()
{
    g_optFault.reset();
}

u32 Count(KIND_E eKind)
{
    return g_aCounts[static_cast<size_t>(eKind)];
}

std::optional<HOW_E> Fault(KIND_E eKind)
{
    const u32 uiCall = ++g_aCounts[static_cast<size_t>(eKind)];
    if (!g_optFault || g_optFault->eKind != eKind || g_optFault->uiNth == 0U) {
        return std::nullopt;
    }
    const bool bHit = g_optFault->bFromThenOn ? uiCall >= g_optFault->uiNth : uiCall == g_optFault->uiNth;
    return bHit ? std::optional<HOW_E>(g_optFault->eHow) : std::nullopt;
}

std::vector<FAULT_S> FaultsOf(const COUNTS &aCounts)
{
    std::vector<FAULT_S> vecFaults;
    for (size_t i = 0; i < aCounts.size(); ++i) {
        const KIND_E eKind = static_cast<KIND_E>(i);
        for (u32 n = 1; n <= aCounts[i]; ++n) {
            for (const bool bFromThenOn : {false, true}) {
                for (const HOW_E eHow : WaysOf(eKind)) {
                    vecFaults.push_back({eKind, n, bFromThenOn, eHow});
                }
            }
        }
    }
    return vecFaults;
}

i32 Play(const SCENARIO_S &stScenario, const FAULT_S *pstFault, COUNTS *paCounts)
{
    Reset();
    const u32 uiBefore = LiveAllocations();
    stScenario.fnSetup();
    Arm(pstFault == nullptr ? FAULT_S{KIND_E::ALLOC, 0, false} : *pstFault);
    stScenario.fnRun();
    for (size_t i = 0; paCounts != nullptr && i < paCounts->size(); ++i) {
        (*paCounts)[i] = Count(static_cast<KIND_E>(i));
    }
    Disarm();
    stScenario.fnCheck(pstFault);
    return static_cast<i32>(LiveAllocations()) - static_cast<i32>(uiBefore);
}

void Sweep(const std::function<void()> &fnSetup, const std::function<void()> &fnRun,
           const std::function<void(const FAULT_S *)> &fnCheck)
{
    const SCENARIO_S stScenario{fnSetup, fnRun, fnCheck};
    COUNTS aCounts{};
    ExpectNothingLeft(stScenario, nullptr, &aCounts);
    for (const FAULT_S &stFault : FaultsOf(aCounts)) {
        if (stFault.eHow != HOW_E::TORN && !testing::Test::HasFatalFailure()) {
            ExpectNothingLeft(stScenario, &stFault);
        }
    }
}

} // namespace fake
