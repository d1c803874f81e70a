// SPDX-License-Identifier: Apache-2.0
// fructl psn: the file that mirrors the product serial number.
#include "commands/commands.h"
#include "terminal/console.h"
#include "terminal/json_out.h"
#include "toolkit/base/error.h"
#include "toolkit/base/json.h"
#include "toolkit/base/placeholder.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/controller.h"
#include "toolkit/controller/serial_file.h"

namespace {

std::string PsnText(const std::string &strBytes)
{
    if (strBytes.find_first_not_of('\0') == std::string::npos && !strBytes.empty()) {
        return Format("(cleared: %zu zero bytes)", strBytes.size());
    }
    const std::string strBlanks = WhyBlanks(strBytes, TextKind::Number);
    return strBytes.empty() ? "(empty)"
                            : EscapeText(strBytes) + (strBlanks.empty() ? "" : "  <- " + strBlanks);
}

void RunPsn(const SESSION_S &stSession)
{
    RequireController(stSession);
    const SERIAL_TEXT_S stPrimary = ReadSerialFile();
    const std::optional<std::string> optCopy = ReadSerialCopy();
    const SERIAL_TEXT_S stImage = ReadProductSerialNumber();
    const bool bFile = stPrimary.uiStatus == FRU_OK;
    const bool bSame = bFile && optCopy.has_value() && *optCopy == stPrimary.strText;
    const bool bImage = bFile && stImage.uiStatus == FRU_OK && stPrimary.strText.c_str() == stImage.strText;
    if (stSession.bJson) {
        PrintJson({{"file", bFile ? Json(Latin1ToUtf8(stPrimary.strText)) : Json()},
                   {"copy", optCopy.has_value() ? Json(Latin1ToUtf8(*optCopy)) : Json()},
                   {"image", stImage.uiStatus == FRU_OK ? Json(Latin1ToUtf8(stImage.strText)) : Json()},
                   {"status", stPrimary.uiStatus},
                   {"copyIsSame", bSame},
                   {"imageIsSame", bImage}});
    } else {
        Table stTable({"PRODUCT SERIAL NUMBER IN", "VALUE"});
        stTable.Row({SERIAL_FILE, bFile ? PsnText(stPrimary.strText) : "(" + stPrimary.strWhy + ")"});
        stTable.Row({SERIAL_COPY, optCopy.has_value() ? PsnText(*optCopy) : "(missing)"});
        stTable.Row({"product area of 0x00:0",
                     stImage.strWhy.empty() ? PsnText(stImage.strText) : "(" + stImage.strWhy + ")"});
        Print(stTable.Text());
        if (bFile) {
            Print(std::string(bSame ? "file and copy agree" : "file and copy DIFFER") +
                  (bImage ? "; the product area agrees with the file\n"
                          : "; the product area DIFFERS from the file\n"));
        }
    }
    if (!bFile) {
        Fail(ErrorClass::NotFound, "there is no serial number in " + std::string(SERIAL_FILE) + ": " +
                                       stPrimary.strWhy +
                                       "; setting or clearing the product serial number of 0x00:0 writes it");
    }
}

} // namespace

void AddPsnCommand(const Command &stParent, SESSION_S &stSession)
{
    const Command stCommand = stParent.Add(
        "psn", "The product serial number's file, its copy, and whether they agree with the image",
        "fructl psn\nfructl psn --json");
    stCommand.Run([&stSession] { RunPsn(stSession); });
}
