// SPDX-License-Identifier: Apache-2.0
// fructl date: manufacturing dates between text and the three bytes of the board area.
#include "commands/commands.h"
#include "terminal/console.h"
#include "terminal/json_out.h"
#include "toolkit/base/error.h"
#include "toolkit/base/json.h"
#include "toolkit/base/text.h"
#include "toolkit/image/mfg_date.h"

namespace {

struct DATE_S
{
    std::string strDate;
    std::vector<std::string> vecBytes;
    bool bWrap = false;
};

u32 MinutesOf(const std::string &strDate, bool bWrap)
{
    const MFG_DATE_S stDate = ParseMfgDate(strDate, bWrap);
    if (!stDate.strWhyNot.empty()) {
        FailRefused("'" + EscapeText(strDate) + "' is refused: " + stDate.strWhyNot +
                    "; accepted: " + MFG_DATES_ACCEPTED);
    }
    return stDate.uiMinutes;
}

u32 ParseBytes(const std::vector<std::string> &vecTexts)
{
    std::vector<u8> vecBytes;
    for (const std::string &strText : vecTexts) {
        const std::optional<u32> optByte = ParseNumber("0x" + strText, 0xFFU);
        if (optByte.has_value()) {
            vecBytes.push_back(static_cast<u8>(*optByte));
        }
    }
    if (vecBytes.size() != MFG_DATE_BYTES || vecTexts.size() != MFG_DATE_BYTES) {
        FailRefused("--bytes " + EscapeText(Join(vecTexts, " ")) +
                    " is refused; accepted: three bytes in hex, the least significant first");
    }
    return MfgDateMinutes(vecBytes.data());
}

Json TextOrNull(const std::string &strText)
{
    return strText.empty() ? Json(nullptr) : Json(strText);
}

void RunDate(const SESSION_S &stSession, const DATE_S &stOptions)
{
    if (stOptions.strDate.empty() == stOptions.vecBytes.empty()) {
        FailUsage("date takes either a date or --bytes; 'fructl date --help' tells more");
    }
    const u32 uiMinutes = stOptions.vecBytes.empty() ? MinutesOf(stOptions.strDate, stOptions.bWrap)
                                                     : ParseBytes(stOptions.vecBytes);
    std::vector<u8> vecBytes(MFG_DATE_BYTES);
    StoreMfgDate(uiMinutes, vecBytes.data());
    const std::string strText = MfgDateText(uiMinutes);
    const std::string strOther = OtherMfgDateText(uiMinutes);
    const std::string strWhyNoLabel = WhyNoLabelDate(strText);
    if (stSession.bJson) {
        PrintJson({{"bytes", HexBytes(vecBytes)},
                   {"minutes", uiMinutes},
                   {"text", uiMinutes == 0U ? Json(nullptr) : Json(strText)},
                   {"otherReading", TextOrNull(strOther)},
                   {"labelRefuses", TextOrNull(strWhyNoLabel)}});
        return;
    }
    Print(Format("%s%s  =  %s  =  %u minutes since 1996-01-01\n", strText.c_str(),
                 uiMinutes == 0U ? "" : " UTC", HexBytes(vecBytes).c_str(), uiMinutes));
    if (!strOther.empty()) {
        Print("  " + strOther + "\n");
    }
    if (!strWhyNoLabel.empty()) {
        Print("  the label Mfg.Date refuses it: " + strWhyNoLabel + "\n");
    }
}

} // namespace

void AddDateCommand(const Command &stParent, SESSION_S &stSession)
{
    const auto pstOptions = std::make_shared<DATE_S>();
    const Command stCommand =
        stParent.Add("date", "Convert a manufacturing date to its three bytes and back",
                     "fructl date 2024-05-17\nfructl date \"2024-5-17 8:30:0\"\nfructl date now\n"
                     "fructl date 2031-03-24 --wrap\nfructl date --bytes 00 2d e3");
    stCommand.AddOption("DATE", pstOptions->strDate,
                        "a date, or date and time, in UTC, 1996-01-01 to 2027-11-24 20:15; now; unspecified");
    stCommand.AddOption("--bytes", pstOptions->vecBytes, "three bytes in hex, the least significant first")
        .Placeholder("HEX")
        .Words(3, 3);
    stCommand.AddFlag("--wrap", pstOptions->bWrap,
                      "dates beyond the end of the three bytes' count, too: as it starts again at 0");
    stCommand.Run([&stSession, pstOptions] { RunDate(stSession, *pstOptions); });
}
