// SPDX-License-Identifier: Apache-2.0
// Plays every exported call of the library with every allocation and every platform call that it makes failing in turn,
// once and from then on, in every way that the platform's contract knows, and prints a table of what came of it.
//
// usage: prove_faults [--stride K] [--call NAME] [--json FILE] [--exports FILE]
//   --stride K     every K-th fault only (1: all)
//   --call NAME    this call only
//   --json FILE    the table as JSON lines: {"call":...} for each call, {"rule":...} for each rule, {"total":...}
//   --exports FILE version script with the exported names; by default the library's own
//
// Columns: scenarios; faults injected, "fail" (the call fails), "short" (half of the bytes), "torn" (half of the bytes, and
// a failure), "late" (a semaphore that is not had in time); "told": runs that reported a failure, and how many of them
// left a half-written state; "half": runs that reported success on a half-written state (an EEPROM that is neither old nor new,
// or a cache that is not its EEPROM's); "lost": runs that reported success and lack something else (a file, a notice, a
// part of the answer). The names are those of the rules that say why. A call that waits (database, EEPROM, RPC) fails when it
// is late, which is "fail". Exit status 1: a leak, a crash, a success that no rule names, an exported call without a
// scenario, or, with all faults, a rule that nothing met.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <regex>
#include <set>
#include <sstream>

#include <nlohmann/json.hpp>

#include "prove/fault_run.h"

namespace {

using prove::CASE_S;
using prove::CASES;
using prove::TALLY_S;

struct OPTIONS_S
{
    u32 uiStride = 1U;
    std::string strCall;
    std::string strJson;
    std::string strExports = BMCFRU_EXPORTS;
};

OPTIONS_S ParseOptions(int iArgc, char **ppcArgv)
{
    OPTIONS_S stOptions;
    for (int i = 1; i < iArgc; i += 2) {
        const std::string strName = ppcArgv[i];
        const char *pcValue = i + 1 < iArgc ? ppcArgv[i + 1] : nullptr;
        if (pcValue != nullptr && strName == "--stride" && atoi(pcValue) > 0) {
            stOptions.uiStride = static_cast<u32>(atoi(pcValue));
        } else if (pcValue != nullptr && strName == "--call") {
            stOptions.strCall = pcValue;
        } else if (pcValue != nullptr && strName == "--json") {
            stOptions.strJson = pcValue;
        } else if (pcValue != nullptr && strName == "--exports") {
            stOptions.strExports = pcValue;
        } else {
            (void)fprintf(stderr,
                          "usage: prove_faults [--stride K] [--call NAME] [--json FILE] [--exports FILE]\n");
            exit(2);
        }
    }
    return stOptions;
}

// The functions that a version script exports.
std::set<std::string> ExportedCalls(const std::string &strPath)
{
    std::ifstream stream(strPath);
    std::set<std::string> setNames;
    const std::regex reName("^\\s*(\\w+);");
    for (std::string strLine; std::getline(stream, strLine) && strLine.find("local:") == std::string::npos;) {
        std::smatch match;
        if (std::regex_search(strLine, match, reName) && match.str(1).rfind("g_", 0) != 0) {
            setNames.insert(match.str(1));
        }
    }
    return setNames;
}

CASES AllCases()
{
    CASES vecCases;
    prove::AddCodecCases(vecCases);
    prove::AddCacheCases(vecCases);
    prove::AddAccessCases(vecCases);
    prove::AddWriteCases(vecCases);
    prove::AddOemCases(vecCases);
    prove::AddHardwareCases(vecCases);
    prove::AddDiagnosticsCases(vecCases);
    prove::AddLabelCases(vecCases);
    prove::AddSetterCases(vecCases);
    prove::AddMultiRecordCases(vecCases);
    return vecCases;
}

// Every exported call has a case, every case is of an exported call, and every rule that a case names is one.
std::vector<std::string> CheckCompleteness(const CASES &vecCases, const std::string &strExports)
{
    std::vector<std::string> vecProblems;
    std::set<std::string> setLeft = ExportedCalls(strExports);
    if (setLeft.empty()) {
        vecProblems.push_back(strExports + ": no exported names");
    }
    const std::set<std::string> setExported = setLeft;
    std::set<std::string> setRules;
    for (const prove::RULE_S &stRule : prove::Rules()) {
        setRules.insert(stRule.pcName);
    }
    for (const CASE_S &stCase : vecCases) {
        (void)setLeft.erase(stCase.strCall);
        if (setExported.count(stCase.strCall) == 0U) {
            vecProblems.push_back(stCase.strCall + ": has a scenario and is not exported");
        }
        for (const char *pcRule : stCase.vecRules) {
            if (setRules.count(pcRule) == 0U) {
                vecProblems.push_back(stCase.strCall + ": there is no rule " + pcRule);
            }
        }
    }
    for (const std::string &strName : setLeft) {
        vecProblems.push_back(strName + ": exported, and no scenario");
    }
    return vecProblems;
}

u32 Injected(const TALLY_S &stTally, size_t uiHow)
{
    u32 uiSum = 0;
    for (const auto &auiKind : stTally.uiInjected) {
        uiSum += auiKind[uiHow][0] + auiKind[uiHow][1];
    }
    return uiSum;
}

std::string RuleNames(const TALLY_S &stTally)
{
    std::string strNames;
    for (size_t i = 0; i < prove::Rules().size(); ++i) {
        if (stTally.uiRuleMet[i] != 0U) {
            strNames += (strNames.empty() ? "" : ", ") + std::string(prove::Rules()[i].pcName);
        }
    }
    return strNames;
}

void PrintHead()
{
    (void)printf("%-36s %5s %6s %5s %5s %4s %5s %5s %6s %5s %5s %5s  %s\n", "call", "scen.", "fail", "short",
                 "torn", "late", "leaks", "crash", "told", "half", "half!", "lost", "rules");
}

void PrintRow(const std::string &strName, const TALLY_S &stTally)
{
    (void)printf("%-36s %5u %6u %5u %5u %4u %5u %5u %6u %5u %5u %5u  %s\n", strName.c_str(),
                 stTally.uiScenarios, Injected(stTally, 0U), Injected(stTally, 1U), Injected(stTally, 2U),
                 Injected(stTally, 3U), stTally.uiLeaks, stTally.uiCrashes, stTally.uiRefused,
                 stTally.uiRefusedHalf, stTally.uiHalfWritten, stTally.uiIncomplete,
                 RuleNames(stTally).c_str());
    (void)fflush(stdout);
}

nlohmann::ordered_json JsonRow(const char *pcKey, const std::string &strName, const TALLY_S &stTally)
{
    nlohmann::ordered_json stInjected = nlohmann::ordered_json::object();
    for (int i = 0; i < fake::g_iKinds; ++i) {
        for (u32 uiHow = 0; uiHow < prove::HOWS; ++uiHow) {
            const u32(&auiTimes)[2] = stTally.uiInjected[i][uiHow];
            if (auiTimes[0] != 0U) {
                stInjected[fake::KindName(static_cast<fake::KIND_E>(i))][fake::HowName(
                    static_cast<fake::HOW_E>(uiHow))] = {{"once", auiTimes[0]}, {"fromThenOn", auiTimes[1]}};
            }
        }
    }
    nlohmann::ordered_json stRules = nlohmann::ordered_json::object();
    for (size_t i = 0; i < prove::Rules().size(); ++i) {
        if (stTally.uiRuleMet[i] != 0U) {
            stRules[prove::Rules()[i].pcName] = stTally.uiRuleMet[i];
        }
    }
    return {{pcKey, strName},
            {"scenarios", stTally.uiScenarios},
            {"injected", stInjected},
            {"leaks", stTally.uiLeaks},
            {"crashes", stTally.uiCrashes},
            {"told", stTally.uiRefused},
            {"toldHalfWritten", stTally.uiRefusedHalf},
            {"halfWritten", stTally.uiHalfWritten},
            {"incomplete", stTally.uiIncomplete},
            {"unexplained", stTally.uiUnexplained},
            {"rules", stRules}};
}

nlohmann::ordered_json JsonRule(size_t uiRule, const TALLY_S &stTotal)
{
    std::vector<std::string> vecParts;
    for (u32 i = 0; i < prove::PARTS; ++i) {
        if ((stTotal.uiPartsMet[uiRule] & (1U << i)) != 0U) {
            vecParts.push_back(prove::PartName(1U << i));
        }
    }
    const prove::RULE_S &stRule = prove::Rules()[uiRule];
    return {{"rule", stRule.pcName},
            {"met", stTotal.uiRuleMet[uiRule]},
            {"differs", vecParts},
            {"reason", stRule.pcReason}};
}

void PrintRules(const TALLY_S &stTotal)
{
    (void)printf("\nWhat is reported as success by a rule of the library's own:\n");
    for (size_t i = 0; i < prove::Rules().size(); ++i) {
        if (stTotal.uiRuleMet[i] != 0U) {
            (void)printf("%-28s %6u  %s\n", prove::Rules()[i].pcName, stTotal.uiRuleMet[i],
                         prove::Rules()[i].pcReason);
        }
    }
}

struct RESULT_S
{
    TALLY_S stTotal{};
    std::vector<std::string> vecProblems;
    std::vector<nlohmann::ordered_json> vecJson;
};

void PlayAll(const CASES &vecCases, const OPTIONS_S &stOptions, RESULT_S &stResult)
{
    PrintHead();
    for (size_t i = 0; i < vecCases.size();) {
        const std::string strCall = vecCases[i].strCall;
        TALLY_S stSum{};
        for (; i < vecCases.size() && vecCases[i].strCall == strCall; ++i) {
            if (stOptions.strCall.empty() || stOptions.strCall == strCall) {
                const prove::RUN_S stRun = prove::RunCase(vecCases[i], stOptions.uiStride);
                prove::Add(stSum, stRun.stTally);
                stResult.vecProblems.insert(stResult.vecProblems.end(), stRun.vecProblems.begin(),
                                            stRun.vecProblems.end());
            }
        }
        if (stSum.uiScenarios != 0U) {
            PrintRow(strCall, stSum);
            stResult.vecJson.push_back(JsonRow("call", strCall, stSum));
            prove::Add(stResult.stTotal, stSum);
        }
    }
    PrintRow("total", stResult.stTotal);
}

} // namespace

int main(int iArgc, char **ppcArgv)
{
    const OPTIONS_S stOptions = ParseOptions(iArgc, ppcArgv);
    CASES vecCases = AllCases();
    std::stable_sort(vecCases.begin(), vecCases.end(), [](const CASE_S &stLeft, const CASE_S &stRight) {
        return stLeft.strCall < stRight.strCall;
    });
    RESULT_S stResult;
    stResult.vecProblems = CheckCompleteness(vecCases, stOptions.strExports);
    PlayAll(vecCases, stOptions, stResult);
    PrintRules(stResult.stTotal);
    const bool bWhole = stOptions.uiStride == 1U && stOptions.strCall.empty();
    for (size_t i = 0; i < prove::Rules().size(); ++i) {
        stResult.vecJson.push_back(JsonRule(i, stResult.stTotal));
        if (bWhole && stResult.stTotal.uiRuleMet[i] == 0U) {
            stResult.vecProblems.push_back(std::string(prove::Rules()[i].pcName) +
                                           ": a rule that nothing met");
        }
    }
    stResult.vecJson.push_back(
        JsonRow("total", std::to_string(vecCases.size()) + " scenarios", stResult.stTotal));
    if (!stOptions.strJson.empty()) {
        std::ofstream stream(stOptions.strJson);
        for (const nlohmann::ordered_json &stRow : stResult.vecJson) {
            stream << stRow.dump() << '\n';
        }
    }
    for (const std::string &strProblem : stResult.vecProblems) {
        (void)fprintf(stderr, "%s\n", strProblem.c_str());
    }
    return stResult.vecProblems.empty() ? 0 : 1;
}
