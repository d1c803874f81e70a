// SPDX-License-Identifier: Apache-2.0
// fructl journal: writes that were cut short and could not be mended.
#include "toolkit/controller/journal.h"
#include "commands/commands.h"
#include "commands/raw.h"
#include "terminal/console.h"
#include "terminal/json_out.h"
#include "toolkit/base/error.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/root_lock.h"

namespace {

constexpr u32 NUMBER_MAX = 999999U;

std::string TitlesOf(const JOURNAL_ENTRY_S &stEntry)
{
    if (!stEntry.strUnreadable.empty()) {
        return "unreadable";
    }
    std::vector<std::string> vecTitles;
    for (const DEVICE_CHANGE_S &stChange : stEntry.vecDevices) {
        vecTitles.push_back(stChange.strTitle);
    }
    return Join(vecTitles, ", ");
}

std::string WhatStays(const JOURNAL_ENTRY_S &stEntry)
{
    return stEntry.strUnreadable.empty()
               ? TitlesOf(stEntry) + " stays as it is, and its history has the image before the write"
               : "'fructl verify' tells which device is not in order";
}

void RunList(const SESSION_S &stSession)
{
    RequireController(stSession); // mends what can be mended
    Table stTable({">NUMBER", "BEGUN", "DEVICE", "COMMAND"});
    Json stEntries = Json::array();
    for (const JOURNAL_ENTRY_S &stEntry : ReadJournal()) {
        stTable.Row({Format("%u", stEntry.uiNumber), stEntry.strTime, TitlesOf(stEntry), stEntry.strCommand});
        stEntries.push_back({{"number", stEntry.uiNumber},
                             {"time", stEntry.strTime},
                             {"devices", TitlesOf(stEntry)},
                             {"command", stEntry.strCommand}});
    }
    if (stSession.bJson) {
        PrintJson({{"entries", stEntries}});
    } else {
        Print(stEntries.empty() ? "no write is unfinished\n" : stTable.Text());
    }
}

void RunDiscard(const SESSION_S &stSession, const std::string &strNumber, bool bDryRun)
{
    const u32 uiNumber = NumberOption("NUMBER", strNumber, NUMBER_MAX);
    const RootLock stLock(stSession);
    for (const JOURNAL_ENTRY_S &stEntry : ReadJournal()) {
        if (stEntry.uiNumber == uiNumber) {
            if (!bDryRun) {
                RemoveJournal(uiNumber);
            }
            Print(stSession.bJson ? ""
                                  : Format(bDryRun ? "nothing was written; entry %u would be given up; "
                                                   : "entry %u is given up; ",
                                           uiNumber) +
                                        WhatStays(stEntry) + "\n");
            if (stSession.bJson) {
                PrintJson({{"discarded", uiNumber}, {"dryRun", bDryRun}});
            }
            return;
        }
    }
    Fail(ErrorClass::NotFound,
         Format("the journal has no entry %u; 'fructl journal list' lists what there is", uiNumber));
}

} // namespace

void AddJournalCommand(const Command &stParent, SESSION_S &stSession)
{
    const Command stJournal = stParent.Add("journal", "Writes that were cut short and are not mended yet",
                                           "fructl journal list\nfructl journal discard 1");
    stJournal.RequireCommand();
    stJournal
        .Add("list", "Mend what can be mended, and list what is left",
             "fructl journal list\nfructl journal list --json")
        .Run([&stSession] { RunList(stSession); });
    const auto pstrNumber = std::make_shared<std::string>();
    const Command stDiscard =
        stJournal.Add("discard", "Give an entry up: its device stays as it is", "fructl journal discard 1");
    stDiscard.AddOption("NUMBER", *pstrNumber, "as 'fructl journal list' tells it").Required();
    const auto pbDryRun = std::make_shared<bool>(false);
    stDiscard.AddFlag("-n,--dry-run", *pbDryRun, "say what would be given up, and write nothing");
    stDiscard.Run([&stSession, pstrNumber, pbDryRun] { RunDiscard(stSession, *pstrNumber, *pbDryRun); });
}
