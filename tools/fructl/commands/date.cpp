// SPDX-License-Identifier: Apache-2.0
// fructl date: manufacturing dates between text and the three bytes of the board area.
#include "commands/commands.h"
#include "lib_fru.h"
#include "terminal/console.h"
#include "terminal/json_out.h"
#include "toolkit/base/error.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/diagnostics.h"
#include "toolkit/image/record.h"

namespace {

constexpr u32 UTC = 0U;

std::vector<u8> BytesOf(const std::string &strDate)
{
    // The label's rule decides what is a date, as for the label "Mfg.Date".
    if (isLabelValueMfgDateNormal(strDate.c_str()) != 1) {
        FailUsage(EscapeText(strDate) +
                  " is refused; accepted: YYYY-MM-DD or YYYY-M-D, with or without a time "
                  "(HH:MM:SS or H:M:S, filled with zeros like the date), up to the year 2025");
    }
    Record stRecord;
    const u32 uiRet = LIB_FRU_CaclMfgDateTime(strDate.c_str(), stRecord.Data());
    if (uiRet != FRU_OK) {
        Fail(EscapeText(strDate) + " cannot be converted: " + StatusText(uiRet) + DiagnosticHint());
    }
    const u8 *pucDate = stRecord.Data()->stBoardInfo.aucMfgDateTime;
    return {pucDate[0], pucDate[1], pucDate[2]};
}

std::vector<u8> ParseBytes(const std::vector<std::string> &vecTexts)
{
    std::vector<u8> vecBytes;
    for (const std::string &strText : vecTexts) {
        const std::optional<u32> optByte = ParseNumber("0x" + strText, 0xFFU);
        if (optByte.has_value()) {
            vecBytes.push_back(static_cast<u8>(*optByte));
        }
    }
    if (vecBytes.size() != 3U || vecTexts.size() != 3U) {
        FailUsage("--bytes " + EscapeText(Join(vecTexts, " ")) +
                  " is refused; accepted: three bytes in hex, the least significant first");
    }
    return vecBytes;
}

void RunDate(const SESSION_S &stSession, const std::string &strDate, const std::vector<std::string> &vecTexts)
{
    if (strDate.empty() == vecTexts.empty()) {
        FailUsage("date takes either a date or --bytes; 'fructl date --help' tells more");
    }
    const std::vector<u8> vecBytes = vecTexts.empty() ? BytesOf(strDate) : ParseBytes(vecTexts);
    char acText[32] = "";
    const u32 uiRet = LIB_FRU_FormatMfgDate(vecBytes.data(), UTC, acText);
    if (uiRet != FRU_OK) {
        Fail("the bytes cannot be converted: " + StatusText(uiRet) + DiagnosticHint());
    }
    const u32 uiMinutes =
        vecBytes[0] | static_cast<u32>(vecBytes[1]) << 8U | static_cast<u32>(vecBytes[2]) << 16U;
    if (stSession.bJson) {
        PrintJson({{"bytes", HexBytes(vecBytes)}, {"minutes", uiMinutes}, {"text", acText}});
    } else {
        Print(Format("%s UTC  =  %s  =  %u minutes since 1996-01-01\n", acText, HexBytes(vecBytes).c_str(),
                     uiMinutes));
    }
}

} // namespace

void AddDateCommand(const Command &stParent, SESSION_S &stSession)
{
    const auto pstDate = std::make_shared<std::string>();
    const auto pstBytes = std::make_shared<std::vector<std::string>>();
    const Command stCommand = stParent.Add("date", "Convert a manufacturing date to its three bytes and back",
                                           "fructl date 2024-05-17\nfructl date \"2024-5-17 8:30:0\"\n"
                                           "fructl date --bytes 00 2d e3");
    stCommand.AddOption("DATE", *pstDate, "a date as the label Mfg.Date takes it, in UTC");
    stCommand.AddOption("--bytes", *pstBytes, "three bytes in hex, the least significant first")
        .Placeholder("HEX")
        .Words(3, 3);
    stCommand.Run([&stSession, pstDate, pstBytes] { RunDate(stSession, *pstDate, *pstBytes); });
}
