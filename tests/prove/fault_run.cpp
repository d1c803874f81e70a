// SPDX-License-Identifier: Apache-2.0
#include "prove/fault_run.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <sstream>

#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include "prove/world.h"

namespace prove {
namespace {

constexpr unsigned HANG_S = 1800U; // cuts off a hang, nothing else
constexpr size_t TEXT_MAX = 16384U;

// What a process that plays a case leaves behind, also when it crashes.
struct SHARED_S
{
    TALLY_S stTally;
    fake::COUNTS aCounts;
    u32 uiAt;               // of the list of faults
    char acWhole[TEXT_MAX]; // what the call gives back without a fault
    char acProblems[TEXT_MAX];
};

SHARED_S &Shared()
{
    static SHARED_S *const PST_SHARED = static_cast<SHARED_S *>(
        mmap(nullptr, sizeof(SHARED_S), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
    return *PST_SHARED;
}

std::string FaultText(const fake::FAULT_S *pstFault)
{
    if (pstFault == nullptr) {
        return "without a fault";
    }
    return std::string("with ") + fake::KindName(pstFault->eKind) + " call " +
           std::to_string(pstFault->uiNth) + " " + fake::HowName(pstFault->eHow) +
           (pstFault->bFromThenOn ? " from then on" : " once");
}

void Problem(const CASE_S &stCase, const fake::FAULT_S *pstFault, const std::string &strWhat)
{
    const std::string strLine =
        stCase.strCall + " (" + stCase.strAbout + ") " + FaultText(pstFault) + ": " + strWhat + "\n";
    const size_t uiUsed = strlen(Shared().acProblems);
    if (uiUsed + strLine.size() < TEXT_MAX) {
        (void)strcpy(Shared().acProblems + uiUsed, strLine.c_str());
    }
}

std::string PartNames(u32 uiParts)
{
    std::string strNames;
    for (u32 i = 0; i < PARTS; ++i) {
        if ((uiParts & (1U << i)) != 0U) {
            strNames += (strNames.empty() ? "" : ", ") + std::string(PartName(1U << i));
        }
    }
    return strNames;
}

bool IsLogged(const char *pcMessage)
{
    const auto &vecMessages = fake::RawMessages();
    return pcMessage == nullptr ||
           std::any_of(vecMessages.begin(), vecMessages.end(), [&](const fake::MESSAGE_S &stOne) {
               return stOne.strText.find(pcMessage) != std::string::npos;
           });
}

// One process's view of a case.
class Player
{
  public:
    explicit Player(const CASE_S &stCase) : m_stCase(stCase) {}

    // Without a fault: how many calls it makes, what stands then, what it gives back.
    void PlayWhole()
    {
        fake::COUNTS aCounts{};
        Count(fake::Play(Scenario(), nullptr, &aCounts), nullptr);
        Shared().aCounts = aCounts;
    }

    void PlayFault(const fake::FAULT_S &stFault)
    {
        Count(fake::Play(Scenario(), &stFault), &stFault);
    }

  private:
    fake::SCENARIO_S Scenario()
    {
        return {[this] { Setup(); }, [this] { m_bSuccess = m_stCase.fnCall(); },
                [this](const fake::FAULT_S *pstFault) { Check(pstFault); }};
    }

    void Setup()
    {
        MakeWorld();
        if (m_stCase.fnSetup) {
            m_stCase.fnSetup();
        }
        m_stBefore = Snapshot();
    }

    void Check(const fake::FAULT_S *pstFault)
    {
        const SNAPSHOT_S stNow = Snapshot();
        const std::string strOutput = m_bSuccess && m_stCase.fnOutput ? m_stCase.fnOutput() : "";
        if (pstFault == nullptr) {
            m_stWhole = stNow;
            (void)strncpy(Shared().acWhole, strOutput.c_str(), TEXT_MAX - 1U);
            if (!m_bSuccess) {
                Problem(m_stCase, nullptr, "the call fails");
            }
        } else {
            // A process that never played it whole: a call that keeps its answer changes nothing else.
            const SNAPSHOT_S &stWhole = m_stCase.bProcessEach ? m_stBefore : m_stWhole;
            Judge(*pstFault, Differences(m_stBefore, stWhole, stNow), strOutput);
        }
        if (m_stCase.fnRelease) {
            m_stCase.fnRelease();
        }
    }

    void Judge(const fake::FAULT_S &stFault, u32 uiParts, const std::string &strOutput)
    {
        TALLY_S &stTally = Shared().stTally;
        const bool bHalf = (uiParts & PARTS_HALF_WRITTEN) != 0U;
        if (!m_bSuccess) {
            ++stTally.uiRefused;
            stTally.uiRefusedHalf += bHalf ? 1U : 0U;
            return;
        }
        uiParts |= strOutput.substr(0, TEXT_MAX - 1U) != Shared().acWhole ? u32{PART_OUTPUT} : 0U;
        if (uiParts == 0U) {
            return;
        }
        ++(bHalf ? stTally.uiHalfWritten : stTally.uiIncomplete);
        const u32 uiLeft = uiParts & ~Explained(stFault, uiParts);
        if (uiLeft != 0U) {
            ++stTally.uiUnexplained;
            Problem(m_stCase, &stFault,
                    "success, and no rule names what differs: " + PartNames(uiLeft) + " [" +
                        strOutput.substr(0, 100) + "]");
        }
    }

    // Which of these parts the case's rules explain after this fault and with what was logged.
    u32 Explained(const fake::FAULT_S &stFault, u32 uiParts) const
    {
        u32 uiExplained = 0;
        for (size_t i = 0; i < Rules().size(); ++i) {
            const RULE_S &stRule = Rules()[i];
            const bool bNamed =
                std::any_of(m_stCase.vecRules.begin(), m_stCase.vecRules.end(),
                            [&](const char *pcName) { return strcmp(pcName, stRule.pcName) == 0; });
            const u32 uiNow = uiParts & stRule.uiParts & ~uiExplained;
            if (bNamed && uiNow != 0U && (stRule.uiKinds & Kind(stFault.eKind)) != 0U &&
                IsLogged(stRule.pcMessage)) {
                uiExplained |= uiNow;
                ++Shared().stTally.uiRuleMet[i];
                Shared().stTally.uiPartsMet[i] |= uiNow;
            }
        }
        return uiExplained;
    }

    void Count(i32 iLeft, const fake::FAULT_S *pstFault)
    {
        if (pstFault != nullptr) {
            const size_t uiHow = static_cast<size_t>(pstFault->eHow);
            ++Shared().stTally.uiInjected[static_cast<size_t>(pstFault->eKind)][uiHow]
                                         [pstFault->bFromThenOn ? 1U : 0U];
        }
        if (iLeft != 0) {
            ++Shared().stTally.uiLeaks;
            Problem(m_stCase, pstFault, std::to_string(iLeft) + " buffers left behind");
        }
    }

    const CASE_S &m_stCase;
    SNAPSHOT_S m_stBefore;
    SNAPSHOT_S m_stWhole;
    bool m_bSuccess = false;
};

// Runs it in a process of its own. False: the process did not come to its end.
bool InChild(const std::function<void()> &fnRun)
{
    (void)fflush(nullptr);
    const pid_t iChild = fork();
    if (iChild == 0) {
        (void)alarm(HANG_S);
        fnRun();
        _exit(0);
    }
    int iStatus = 0;
    return iChild > 0 && waitpid(iChild, &iStatus, 0) == iChild && iStatus == 0;
}

void PlayFrom(const CASE_S &stCase, const std::vector<fake::FAULT_S> &vecFaults, u32 uiStride)
{
    Player player(stCase);
    if (!stCase.bProcessEach) {
        const fake::COUNTS aCounts = Shared().aCounts;
        player.PlayWhole();
        Shared().aCounts = aCounts;
    }
    const u32 uiFirst = Shared().uiAt;
    for (u32 i = uiFirst; i < vecFaults.size() && (!stCase.bProcessEach || i == uiFirst); i += uiStride) {
        Shared().uiAt = i;
        player.PlayFault(vecFaults[i]);
    }
    Shared().uiAt = stCase.bProcessEach ? uiFirst + uiStride : static_cast<u32>(vecFaults.size());
}

} // namespace

void Add(TALLY_S &stSum, const TALLY_S &stOne)
{
    for (size_t i = 0; i < static_cast<size_t>(fake::g_iKinds) * HOWS * 2U; ++i) {
        (&stSum.uiInjected[0][0][0])[i] += (&stOne.uiInjected[0][0][0])[i];
    }
    stSum.uiScenarios += stOne.uiScenarios;
    stSum.uiLeaks += stOne.uiLeaks;
    stSum.uiCrashes += stOne.uiCrashes;
    stSum.uiRefused += stOne.uiRefused;
    stSum.uiRefusedHalf += stOne.uiRefusedHalf;
    stSum.uiHalfWritten += stOne.uiHalfWritten;
    stSum.uiIncomplete += stOne.uiIncomplete;
    stSum.uiUnexplained += stOne.uiUnexplained;
    for (size_t i = 0; i < RULES_MAX; ++i) {
        stSum.uiRuleMet[i] += stOne.uiRuleMet[i];
        stSum.uiPartsMet[i] |= stOne.uiPartsMet[i];
    }
}

RUN_S RunCase(const CASE_S &stCase, u32 uiStride)
{
    (void)fake::RealPath("/"); // the directory of files is this process's, and its to remove
    SHARED_S &stShared = Shared();
    stShared = SHARED_S{};
    if (!InChild([&] { Player(stCase).PlayWhole(); })) {
        ++stShared.stTally.uiCrashes;
        Problem(stCase, nullptr, "crashed");
    }
    const std::vector<fake::FAULT_S> vecFaults = fake::FaultsOf(stShared.aCounts);
    while (stShared.uiAt < vecFaults.size()) {
        if (!InChild([&] { PlayFrom(stCase, vecFaults, uiStride); })) {
            ++stShared.stTally.uiCrashes;
            Problem(stCase, &vecFaults[stShared.uiAt], "crashed");
            stShared.uiAt += uiStride;
        }
    }
    stShared.stTally.uiScenarios = 1U;
    RUN_S stRun{stShared.stTally, {}};
    std::istringstream stream(stShared.acProblems);
    for (std::string strLine; std::getline(stream, strLine);) {
        stRun.vecProblems.push_back(strLine);
    }
    return stRun;
}

} // namespace prove
