// SPDX-License-Identifier: Apache-2.0
// The desk's own: what RPC calls and operation-log entries leave in the journals.
#include <csignal>
#include <fcntl.h>
#include <nlohmann/json.hpp>
#include <regex>
#include <set>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include "bmc_mrpc.h"
#include "bmc_operatelog.h"
#include "bmcfru_host.h"
#include "controller.h"

namespace {

using controller::ReadLines;
using nlohmann::json;

class Journals : public controller::ContractTest
{
  protected:
    // The lines without their times, whose form is checked.
    static std::vector<json> Entries(const char *pcJournal)
    {
        static const std::regex regexTime(R"(\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{3}Z)");
        std::vector<json> vecEntries;
        for (const std::string &strLine : ReadLines(pcJournal)) {
            json jsonEntry = json::parse(strLine, nullptr, false);
            EXPECT_TRUE(jsonEntry.is_object()) << strLine;
            EXPECT_TRUE(std::regex_match(jsonEntry.value("time", ""), regexTime)) << strLine;
            jsonEntry.erase("time");
            vecEntries.push_back(jsonEntry);
        }
        return vecEntries;
    }
};

TEST_F(Journals, FruEvents)
{
    const u8 aucLabel[16] = {3, 0, 0, 0, 48, 2, 0, 0, 20, 1};
    const u8 aucClear[16] = {4, 0, 0, 0, 7, 1};
    const u8 aucOther[16] = {0, 0, 0, 0x80, 255, 255};
    for (const u8 *pucEvent : {aucLabel, aucClear, aucOther}) {
        ASSERT_EQ(MRPC_Call(630, 0, 16, pucEvent, 0, nullptr), 0U);
    }
    EXPECT_EQ(Entries(BMCHOST_EVENT_JOURNAL), (std::vector<json>{{{"service", 630},
                                                                  {"method", 0},
                                                                  {"event", "labelWritten"},
                                                                  {"kind", 3},
                                                                  {"componentType", 48},
                                                                  {"instance", 2},
                                                                  {"labelId", 276}},
                                                                 {{"service", 630},
                                                                  {"method", 0},
                                                                  {"event", "cleared"},
                                                                  {"kind", 4},
                                                                  {"componentType", 7},
                                                                  {"instance", 1},
                                                                  {"labelId", 0}},
                                                                 {{"service", 630},
                                                                  {"method", 0},
                                                                  {"event", "fruEvent"},
                                                                  {"kind", 0x80000000U},
                                                                  {"componentType", 255},
                                                                  {"instance", 255},
                                                                  {"labelId", 0}}}));
}

TEST_F(Journals, ChangedDevices)
{
    u8 aucDevice[184] = {};
    aucDevice[0] = 5;
    (void)memcpy(aucDevice + 14, "MainBoard", 9);
    ASSERT_EQ(MRPC_Call(636, 0, sizeof(aucDevice), aucDevice, 0, nullptr), 0U);
    (void)memset(aucDevice + 14, 'N', 16); // a name without its NUL ends with its field
    aucDevice[30] = 'X';
    ASSERT_EQ(MRPC_Call(636, 0, sizeof(aucDevice), aucDevice, 0, nullptr), 0U);
    (void)memcpy(aucDevice + 14, "\xFF\"\n", 4); // neither UTF-8 nor fit for a line as it is
    ASSERT_EQ(MRPC_Call(636, 0, sizeof(aucDevice), aucDevice, 0, nullptr), 0U);
    const json jsonCommon = {{"service", 636}, {"method", 0}, {"event", "deviceChanged"}, {"deviceId", 5}};
    std::vector<json> vecWanted(3, jsonCommon);
    vecWanted[0]["name"] = "MainBoard";
    vecWanted[1]["name"] = "NNNNNNNNNNNNNNNN";
    vecWanted[2]["name"] = "\xEF\xBF\xBD\"\n";
    EXPECT_EQ(Entries(BMCHOST_EVENT_JOURNAL), vecWanted);
}

TEST_F(Journals, FeatureUpdatesWithTheBlockBesideThem)
{
    std::string strBlock(1334, 'b');
    strBlock[0] = '\0';
    ASSERT_EQ(MRPC_Call(29, 4, 1334, strBlock.data(), 10000, nullptr), 0U);
    EXPECT_EQ(controller::ReadFile(BMCHOST_FEATURE_UPDATE), strBlock);
    strBlock[0] = 'c';
    ASSERT_EQ(MRPC_Call(29, 4, 1334, strBlock.data(), 10000, nullptr), 0U);
    EXPECT_EQ(controller::ReadFile(BMCHOST_FEATURE_UPDATE), strBlock);
    const json jsonEntry = {{"service", 29}, {"method", 4}, {"event", "featureUpdate"}, {"bytes", 1334}};
    EXPECT_EQ(Entries(BMCHOST_EVENT_JOURNAL), std::vector<json>(2, jsonEntry));
}

TEST_F(Journals, OemNotices)
{
    ASSERT_EQ(MRPC_Call(29, 5, 0, nullptr, 0, nullptr), 0U);
    EXPECT_EQ(Entries(BMCHOST_EVENT_JOURNAL),
              (std::vector<json>{{{"service", 29}, {"method", 5}, {"event", "oemNotice"}}}));
}

TEST_F(Journals, RefusedCallsAndQueriesLeaveNothing)
{
    EXPECT_NE(MRPC_Call(630, 0, 15, "123456789012345", 0, nullptr), 0U);
    EXPECT_NE(MRPC_Call(1, 2, 0, nullptr, 0, nullptr), 0U);
    EXPECT_EQ(MRPC_Call(29, 3, 0, nullptr, 0, nullptr), 0U);
    EXPECT_TRUE(ReadLines(BMCHOST_EVENT_JOURNAL).empty());
}

TEST_F(Journals, AFeatureListBeyondItsLimitFails)
{
    controller::WriteFile(BMCHOST_FEATURE_LIST, "[\"" + std::string(size_t{1} << 20U, 'x') + "\"]");
    MRPC_MSG_S *pstRes = nullptr;
    EXPECT_NE(MRPC_Call(29, 3, 0, nullptr, 0, &pstRes), 0U);
    EXPECT_NE(controller::Messages().back().find("larger than is accepted"), std::string::npos);
}

TEST_F(Journals, FeatureListsThatAreNoneFail)
{
    for (const char *pcContent : {"", "{}", "[1]", "[\"success\", null]", "[\"success\"", "\"success\""}) {
        controller::WriteFile(BMCHOST_FEATURE_LIST, pcContent);
        MRPC_MSG_S *pstRes = nullptr;
        EXPECT_NE(MRPC_Call(29, 3, 0, nullptr, 0, &pstRes), 0U) << pcContent;
        EXPECT_EQ(pstRes, nullptr);
    }
}

TEST_F(Journals, OperationLogEntries)
{
    ASSERT_EQ(OPERATELOG_AddLogComm(17, 99, "Set FRU successfully, Device ID: 0.", 1, 0xFFFFFFFFU, 321, 12),
              0U);
    ASSERT_EQ(OPERATELOG_AddLogComm(17, 67, nullptr, 0, 0, 0, 0), 0U);
    EXPECT_EQ(
        Entries(BMCHOST_OPERATE_JOURNAL),
        (std::vector<json>{
            {{"module", 17},
             {"result", 99},
             {"text", "Set FRU successfully, Device ID: 0."},
             {"args", {1, 0xFFFFFFFFU}},
             {"line", 321},
             {"source", 12}},
            {{"module", 17}, {"result", 67}, {"text", ""}, {"args", {0, 0}}, {"line", 0}, {"source", 0}}}));
}

TEST_F(Journals, ProcessesAppendAtOnceWithoutMixing)
{
    constexpr u32 uiProcesses = 4;
    constexpr u32 uiEach = 100;
    std::vector<pid_t> vecPids;
    for (u32 uiProcess = 0; uiProcess < uiProcesses; ++uiProcess) {
        vecPids.push_back(controller::Spawn([uiProcess] {
            const std::string strText(100U + uiProcess * 1500U, static_cast<char>('a' + uiProcess));
            u32 uiFailed = 0;
            for (u32 i = 0; i < uiEach; ++i) {
                uiFailed |= OPERATELOG_AddLogComm(uiProcess, i, strText.c_str(), 0, 0, 0, 0);
            }
            return uiFailed == 0U ? 0 : 1;
        }));
    }
    for (const pid_t iPid : vecPids) {
        EXPECT_EQ(controller::Await(iPid), 0);
    }
    std::vector<u32> vecNext(uiProcesses);
    for (const json &jsonEntry : Entries(BMCHOST_OPERATE_JOURNAL)) {
        const u32 uiProcess = jsonEntry["module"];
        EXPECT_EQ(jsonEntry["result"], vecNext.at(uiProcess)++); // each process's own in order
        EXPECT_EQ(jsonEntry["text"],
                  std::string(100U + uiProcess * 1500U, static_cast<char>('a' + uiProcess)));
    }
    EXPECT_EQ(vecNext, std::vector<u32>(uiProcesses, uiEach));
}

TEST_F(Journals, ATornLineOfADeadProcessDoesNotSpoilTheNext)
{
    controller::WriteFile(BMCHOST_OPERATE_JOURNAL, "{\"time\":\"2024");
    ASSERT_EQ(OPERATELOG_AddLogComm(17, 99, "whole", 0, 0, 1, 12), 0U);
    const std::vector<std::string> vecLines = ReadLines(BMCHOST_OPERATE_JOURNAL);
    ASSERT_EQ(vecLines.size(), 2U);
    EXPECT_EQ(vecLines[0], "{\"time\":\"2024");
    EXPECT_EQ(json::parse(vecLines[1])["text"], "whole");
}

TEST_F(Journals, AnEntryThatDoesNotFitLeavesNothingOfItself)
{
    ASSERT_EQ(OPERATELOG_AddLogComm(17, 99, "first", 0, 0, 1, 12), 0U);
    const std::string strBefore = controller::ReadFile(BMCHOST_OPERATE_JOURNAL);
    const pid_t iPid = controller::Spawn([&strBefore] {
        const struct rlimit stLimit = {strBefore.size() + 20U, strBefore.size() + 20U};
        (void)signal(SIGXFSZ, SIG_IGN);
        return setrlimit(RLIMIT_FSIZE, &stLimit) == 0 &&
                       OPERATELOG_AddLogComm(17, 99, "second", 0, 0, 1, 12) != 0U
                   ? 0
                   : 1;
    });
    EXPECT_EQ(controller::Await(iPid), 0);
    EXPECT_EQ(controller::ReadFile(BMCHOST_OPERATE_JOURNAL), strBefore);
}

TEST_F(Journals, BeginAnewAtTheirLimitAndKeepTheOneBefore)
{
    const std::string strFormer = BMCHOST_OPERATE_JOURNAL BMCHOST_JOURNAL_FORMER;
    controller::WriteFile(strFormer, "the one before\n");
    controller::WriteFile(BMCHOST_OPERATE_JOURNAL, std::string(BMCHOST_JOURNAL_MAX - 10U, 'x'));
    ASSERT_EQ(OPERATELOG_AddLogComm(17, 99, "first of the new one", 0, 0, 1, 12), 0U);
    ASSERT_EQ(OPERATELOG_AddLogComm(17, 99, "second", 0, 0, 1, 12), 0U);
    EXPECT_EQ(Entries(BMCHOST_OPERATE_JOURNAL).size(), 2U);
    EXPECT_EQ(controller::ReadFile(strFormer).size(), BMCHOST_JOURNAL_MAX - 10U);
}

TEST_F(Journals, ProcessesThatRotateAtOnceLoseNothing)
{
    controller::WriteFile(BMCHOST_OPERATE_JOURNAL, std::string(BMCHOST_JOURNAL_MAX - 5000U, 'x') + "\n");
    std::vector<pid_t> vecPids;
    for (u32 uiProcess = 0; uiProcess < 4U; ++uiProcess) {
        vecPids.push_back(controller::Spawn([] {
            u32 uiFailed = 0;
            for (u32 i = 0; i < 50U; ++i) {
                uiFailed |= OPERATELOG_AddLogComm(17, 99, "an entry of some length", 0, 0, 1, 12);
            }
            return uiFailed == 0U ? 0 : 1;
        }));
    }
    for (const pid_t iPid : vecPids) {
        EXPECT_EQ(controller::Await(iPid), 0);
    }
    const size_t uiBefore = ReadLines(BMCHOST_OPERATE_JOURNAL BMCHOST_JOURNAL_FORMER).size() - 1U;
    EXPECT_EQ(Entries(BMCHOST_OPERATE_JOURNAL).size() + uiBefore, 200U);
}

TEST_F(Journals, AreNotWrittenThroughALink)
{
    controller::WriteFile("/elsewhere", "kept");
    controller::WriteFile("/var/log/x", "");
    ASSERT_EQ(symlink("../../elsewhere", controller::RealPath(BMCHOST_OPERATE_JOURNAL).c_str()), 0);
    EXPECT_NE(OPERATELOG_AddLogComm(17, 99, "text", 0, 0, 1, 12), 0U);
    EXPECT_EQ(controller::ReadFile("/elsewhere"), "kept");
}

TEST_F(Journals, WaitForALockNoLongerThanTheirPatience)
{
    ASSERT_EQ(OPERATELOG_AddLogComm(17, 99, "text", 0, 0, 1, 12), 0U);
    const int iFd = open(controller::RealPath("/var/lock/operate.jsonl.lock").c_str(), O_RDWR | O_CLOEXEC);
    struct stat stStat = {};
    ASSERT_EQ(fstat(iFd, &stStat), 0);
    EXPECT_EQ(stStat.st_mode & 07777U, 0600U); // nobody else can hold it
    ASSERT_EQ(flock(iFd, LOCK_EX), 0);
    EXPECT_NE(OPERATELOG_AddLogComm(17, 99, "text", 0, 0, 1, 12), 0U);
    EXPECT_NE(controller::Messages().back().find("another process holds the lock"), std::string::npos);
    (void)close(iFd);
    EXPECT_EQ(OPERATELOG_AddLogComm(17, 99, "text", 0, 0, 1, 12), 0U);
}

TEST_F(Journals, ThatCannotBeWrittenFailTheCall)
{
    controller::WriteFile("/var", "a file where a directory must be");
    const u8 aucEvent[16] = {3};
    const u8 aucBlock[1334] = {};
    EXPECT_NE(MRPC_Call(630, 0, 16, aucEvent, 0, nullptr), 0U);
    EXPECT_NE(MRPC_Call(29, 4, 1334, aucBlock, 0, nullptr), 0U);
    EXPECT_NE(OPERATELOG_AddLogComm(17, 99, "text", 0, 0, 1, 12), 0U);
    EXPECT_EQ(controller::Messages().size(), 3U);
}

} // namespace
