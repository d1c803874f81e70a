// SPDX-License-Identifier: Apache-2.0
#include "commands/label_batch.h"

#include <chrono>
#include <iostream>
#include <optional>
#include <unistd.h>

#include "terminal/console.h"
#include "toolkit/base/file.h"
#include "toolkit/base/text.h"
#include "toolkit/edit/result_file.h"

namespace {

using CLOCK = std::chrono::steady_clock;

bool IsJsonName(const std::string &strPath)
{
    const size_t uiDot = strPath.rfind('.');
    const std::string strEnd = uiDot == std::string::npos ? "" : strPath.substr(uiDot);
    return strEnd == ".json" || strEnd == ".jsonl";
}

// Where results go: standard output, and the file that a later run reads.
class Results
{
  public:
    Results(const SESSION_S &stSession, const LABEL_BATCH_S &stOptions, BATCH_S &stBatch)
        : m_bJson(stSession.bJson), m_bJsonFile(IsJsonName(stOptions.strResults)), m_stBatch(stBatch)
    {
        if (stOptions.strResults.empty()) {
            return;
        }
        m_optFile.emplace(stOptions.strResults);
        if (!m_optFile->Lines().empty()) {
            const std::string strName = EscapeText(stOptions.strResults);
            SkipDone(stBatch, stOptions.stBatch, ParseResults(m_optFile->Lines(), strName), strName);
        }
    }
    void Tell(const BATCH_ROW_S &stRow)
    {
        if (!m_bJson && m_uiTold++ == 0U) {
            Print(BatchHeading(m_stBatch) + "\n");
        }
        Print((m_bJson ? BatchJson(stRow).dump() : BatchLine(m_stBatch, stRow)) + "\n");
        (void)FlushOutput(); // a failure is told at the end
    }
    void Keep(const BATCH_ROW_S &stRow)
    {
        if (!m_optFile.has_value()) {
            return;
        }
        if (!m_bJsonFile && m_optFile->Lines().empty() && m_uiKept == 0U) {
            m_optFile->Append(BatchHeading(m_stBatch));
        }
        m_uiKept++;
        m_optFile->Append(m_bJsonFile ? BatchJson(stRow).dump() : BatchLine(m_stBatch, stRow));
    }

  private:
    const bool m_bJson;
    const bool m_bJsonFile;
    const BATCH_S &m_stBatch;
    std::optional<ResultFile> m_optFile;
    size_t m_uiTold = 0;
    size_t m_uiKept = 0;
};

// How far it is, on standard error: a line that changes on a terminal, and one at the end everywhere.
class Pace
{
  public:
    explicit Pace(size_t uiRows)
        : m_uiRows(uiRows), m_stStart(CLOCK::now()), m_bTerminal(isatty(STDERR_FILENO) == 1)
    {}
    void Step()
    {
        m_uiDone++;
        if (m_bTerminal) {
            std::cerr << "\r" << m_uiDone << " of " << Count(m_uiRows, "row") << ", " << Rate() << "\x1b[K"
                      << std::flush;
        }
    }
    void End(const BATCH_S &stBatch, bool bDryRun) const
    {
        std::vector<std::string> vecParts;
        const std::pair<BatchState, const char *> STATES[] = {
            {BatchState::Written, "written"},     {BatchState::WouldWrite, "would be written"},
            {BatchState::Unchanged, "unchanged"}, {BatchState::Done, "done before"},
            {BatchState::Refused, "refused"},     {BatchState::Failed, "failed"},
            {BatchState::Open, "not tried"}};
        for (const auto &[enState, pcWord] : STATES) {
            const size_t uiCount = stBatch.Count(enState);
            if (uiCount != 0U) {
                vecParts.push_back(std::to_string(uiCount) + " " + pcWord);
            }
        }
        std::cerr << (m_bTerminal ? "\r\x1b[K" : "") << Count(stBatch.vecRows.size(), "row") << ": "
                  << Join(vecParts, ", ") << (bDryRun || m_uiDone == 0U ? "" : "; " + Rate()) << "\n";
    }

  private:
    std::string Rate() const
    {
        const double fSeconds = std::chrono::duration<double>(CLOCK::now() - m_stStart).count();
        return Format("%.1f a second", static_cast<double>(m_uiDone) / std::max(fSeconds, 0.001));
    }
    const size_t m_uiRows;
    const CLOCK::time_point m_stStart;
    const bool m_bTerminal;
    size_t m_uiDone = 0;
};

// A line for a value; somebody at a terminal is told what is awaited, and at once what is wrong with it.
std::optional<std::string> Scan(const SESSION_S &stSession, const BATCH_OPTIONS_S &stOptions, size_t uiRows,
                                const BATCH_ROW_S &stRow, const std::string &strLabel)
{
    const bool bTerminal = isatty(STDIN_FILENO) == 1;
    std::string strLine;
    while (true) {
        if (bTerminal) {
            std::cerr << Format("row %zu of %zu, ", stRow.uiNumber, uiRows) << EscapeText(stRow.strDevice)
                      << ", " << strLabel << ": " << std::flush;
        }
        if (!std::getline(std::cin, strLine)) {
            return std::nullopt;
        }
        while (!strLine.empty() && strLine.back() == '\r') {
            strLine.pop_back(); // scanners end their lines so
        }
        if (!bTerminal) {
            return strLine;
        }
        try {
            CheckScanned(stSession, stRow, strLabel, strLine, stOptions);
            return strLine;
        } catch (const Error &stError) {
            std::cerr << "  " << stError.what() << "\n";
        }
    }
}

std::vector<BATCH_TEMPLATE_S> ParseTemplates(const std::vector<std::string> &vecTexts)
{
    std::vector<BATCH_TEMPLATE_S> vecTemplates;
    for (const std::string &strText : vecTexts) {
        const size_t uiEquals = strText.find('=');
        if (uiEquals == std::string::npos) {
            FailUsage("--template '" + EscapeText(strText) +
                      "' is not NAME=TEXT; accepted: such as \"Product Serial Number={SKU}-{counter:05}\"");
        }
        vecTemplates.push_back(
            {FindLabel(strText.substr(0, uiEquals)).strName, strText.substr(uiEquals + 1U)});
    }
    return vecTemplates;
}

// The first that went wrong decides about the exit code.
void TellFailures(const BATCH_S &stBatch, bool bNothing, bool bResults)
{
    const size_t uiBad = stBatch.Count(BatchState::Refused) + stBatch.Count(BatchState::Failed);
    for (const BATCH_ROW_S &stRow : stBatch.vecRows) {
        if (stRow.enState == BatchState::Refused || stRow.enState == BatchState::Failed) {
            const std::string strMore = uiBad == 1U ? "" : Format(" (the first of %zu)", uiBad);
            const bool bOpen = stBatch.Count(BatchState::Open) != 0U;
            Fail(stRow.enClass, stRow.strWhere + strMore + ": " + stRow.strMessage +
                                    (bNothing            ? "; nothing was written"
                                     : bOpen && bResults ? "; the same command goes on there"
                                                         : ""));
        }
    }
}

} // namespace

bool LABEL_BATCH_S::IsGiven() const
{
    return !strFrom.empty() || !strResults.empty() || !vecTemplates.empty() || !stBatch.vecScanned.empty() ||
           stBatch.bKeepGoing;
}

void AddLabelBatchOptions(const Command &stCommand, LABEL_BATCH_S &stOptions)
{
    stCommand
        .AddOption(
            "--from", stOptions.strFrom,
            "many devices: a table with the columns root, device and labels' names (CSV, or JSON objects; -: "
            "standard input); every row is checked before the first is written")
        .Placeholder("FILE");
    stCommand
        .AddOption(
            "--template", stOptions.vecTemplates,
            "with --from: a label's value made of a row's columns and a counter, such as {SKU}-{counter:05}")
        .Placeholder("NAME=TEXT")
        .Repeated();
    stCommand.AddOption("--counter", stOptions.stBatch.uiCounter, "with --from: the first row's counter (1)")
        .Placeholder("N");
    stCommand
        .AddOption("--scan", stOptions.stBatch.vecScanned,
                   "with --from: a label whose values are scanned: a line of standard input for each row")
        .Placeholder("NAME")
        .Repeated();
    stCommand
        .AddOption(
            "--results", stOptions.strResults,
            "with --from: also keep the results there (CSV, *.jsonl: JSON); rows that are done there are left out, so the same "
            "command goes on where it stopped")
        .Placeholder("FILE");
    stCommand.AddFlag("--keep-going", stOptions.stBatch.bKeepGoing,
                      "with --from: write the other rows when one is refused or fails");
}

void RunLabelBatch(const SESSION_S &stSession, LABEL_BATCH_S stOptions)
{
    BATCH_OPTIONS_S &stWays = stOptions.stBatch;
    if (stOptions.strFrom.empty()) {
        FailUsage(
            "--template, --scan, --results and --keep-going belong to a table; accepted: them with --from FILE");
    }
    if (IsStream(stOptions.strFrom) && stOptions.strFrom == STANDARD_INPUT && !stWays.vecScanned.empty()) {
        FailUsage("--from - and --scan both want standard input; accepted: one of them");
    }
    stWays.vecTemplates = ParseTemplates(stOptions.vecTemplates);
    const std::vector<u8> vecTable = ReadNamedFile(stOptions.strFrom);
    const std::string strName = NamedFileTitle(stOptions.strFrom);
    BATCH_S stBatch =
        MakeBatch(ParseRows(std::string(vecTable.begin(), vecTable.end()), strName), strName, stWays);
    LABEL_BATCH_S stKept = stOptions;
    stKept.strResults =
        stWays.bDryRun ? "" : stOptions.strResults; // a dry run writes nothing, and leaves nothing out
    Results stResults(stSession, stKept, stBatch);
    ScanBatch(stBatch, stWays, [&](const BATCH_ROW_S &stRow, const std::string &strLabel) {
        return Scan(stSession, stWays, stBatch.vecRows.size(), stRow, strLabel);
    });
    CheckBatch(stSession, stBatch, stWays);
    const bool bNothing = stBatch.Count(BatchState::Refused) != 0U && !stWays.bKeepGoing && !stWays.bDryRun;
    Pace stPace(stBatch.Count(BatchState::Open));
    bool bStopped = bNothing;
    for (BATCH_ROW_S &stRow : stBatch.vecRows) {
        if (stRow.enState == BatchState::Open && !bStopped) {
            WriteBatchRow(stSession, stRow, stWays);
            stPace.Step();
            stResults.Keep(stRow);
            bStopped = stRow.enState == BatchState::Failed && !stWays.bKeepGoing;
        }
        if (stRow.enState != BatchState::Open && stRow.enState != BatchState::Done) {
            stResults.Tell(stRow);
        }
    }
    stPace.End(stBatch, stWays.bDryRun);
    TellFailures(stBatch, bNothing || stWays.bDryRun, !stKept.strResults.empty());
}
