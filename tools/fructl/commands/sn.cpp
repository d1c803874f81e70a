// SPDX-License-Identifier: Apache-2.0
// fructl sn: the serial numbers that other services ask for.
#include "commands/commands.h"
#include "lib_fru.h"
#include "terminal/console.h"
#include "terminal/json_out.h"
#include "toolkit/base/error.h"
#include "toolkit/base/json.h"
#include "toolkit/base/placeholder.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/controller.h"
#include "toolkit/controller/diagnostics.h"

namespace {

constexpr u32 SERIAL_SIZE = 256U;

// One serial number and how it is reached.
struct SERIAL_S
{
    const char *pcKey;
    const char *pcWhat;
    const char *pcWhere;
    bool bDirect; // past device table and cache, to the EEPROM that the hardware description names
    u32 (*pfnGet)(u32 uiSize, char *pcText);
};

constexpr SERIAL_S SERIALS[] = {
    {"chassis", "chassis", "chassis area of 0x00:0", false, LIB_FRU_GetBaseboardChassisSN},
    {"product", "product", "product area of 0x00:0", false, LIB_FRU_GetBaseboardProductSN},
    {"mainBoard", "main board", "board area of 0x00:0", false, LIB_FRU_GetMainBoardSN},
    {"bmcCard", "management card", "board area of 0x30:0", false, LIB_FRU_GetBmcCardSN},
    {"productDirect", "product", "product area of type 0x00, direct", true,
     LIB_FRU_GetBaseboardProductSNByI2C},
    {"mainBoardDirect", "main board", "board area of type 0x00, direct", true, LIB_FRU_GetMainBoardSNByI2C},
    {"bmcCardDirect", "management card", "board area of type 0x30, direct", true, LIB_FRU_GetBmcCardSNByI2C},
};

// A serial number or why there is none.
struct ANSWER_S
{
    std::string strText; // raw
    u32 uiStatus;
    bool bFailed;       // also with a status of 0: the direct path tells so when an image does not decode
    std::string strWhy; // there is none, or what is odd about it
};

ANSWER_S Ask(const SERIAL_S &stSerial)
{
    char acText[SERIAL_SIZE] = "";
    ClearDiagnostics();
    ANSWER_S stAnswer = {"", stSerial.pfnGet(sizeof(acText), acText), false, ""};
    stAnswer.strText = acText;
    const std::string strHint = stAnswer.strText.empty() ? DiagnosticHint() : "";
    stAnswer.bFailed = stAnswer.uiStatus != FRU_OK || !strHint.empty();
    if (stAnswer.uiStatus != FRU_OK) {
        stAnswer.strWhy = StatusText(stAnswer.uiStatus) + DiagnosticHint();
    } else if (stAnswer.strText.empty()) {
        stAnswer.strWhy = strHint.empty() ? "the field is empty, or the image has no such area"
                                          : "the image could not be decoded" + strHint;
    } else {
        stAnswer.strWhy = WhyBlanks(stAnswer.strText, TextKind::Number);
    }
    return stAnswer;
}

// What nobody sees: "  <- it ends with a blank".
std::string BlanksText(const std::string &strText)
{
    const std::string strBlanks = WhyBlanks(strText, TextKind::Number);
    return strBlanks.empty() ? "" : "  <- " + strBlanks;
}

void RunSn(const SESSION_S &stSession, bool bDirect)
{
    RequireController(stSession);
    Table stTable({"SERIAL NUMBER OF", "FROM", "VALUE"});
    Json stJson = Json::object();
    size_t uiAsked = 0;
    size_t uiFailed = 0;
    for (const SERIAL_S &stSerial : SERIALS) {
        if (bDirect && !stSerial.bDirect) {
            continue;
        }
        const ANSWER_S stAnswer = Ask(stSerial);
        const bool bText = !stAnswer.strText.empty();
        uiAsked++;
        uiFailed += stAnswer.bFailed ? 1U : 0U;
        stTable.Row({stSerial.pcWhat, stSerial.pcWhere,
                     bText ? ShownText(stAnswer.strText) + BlanksText(stAnswer.strText)
                           : "(" + stAnswer.strWhy + ")"},
                    {Colour::None, Colour::Dim,
                     stAnswer.bFailed ? Colour::Red
                     : bText          ? Colour::Green
                                      : Colour::Yellow});
        stJson[stSerial.pcKey] = {{"text", Latin1ToUtf8(stAnswer.strText)}, {"status", stAnswer.uiStatus}};
        if (!stAnswer.strWhy.empty()) {
            stJson[stSerial.pcKey]["why"] = stAnswer.strWhy;
        }
    }
    if (stSession.bJson) {
        PrintJson(stJson);
    } else {
        Print(stTable.Text());
    }
    if (uiFailed != 0U) {
        Fail(Format("%zu of %s could not be read", uiFailed, Count(uiAsked, "serial number").c_str()));
    }
}

} // namespace

void AddSnCommand(const Command &stParent, SESSION_S &stSession)
{
    const auto pbDirect = std::make_shared<bool>(false);
    const Command stCommand =
        stParent.Add("sn", "Serial numbers of chassis, product, main board and management card",
                     "fructl sn\nfructl sn --direct\nfructl sn --json");
    stCommand.AddFlag("--direct", *pbDirect,
                      "only those read straight from the EEPROMs that the hardware description names");
    stCommand.Run([&stSession, pbDirect] { RunSn(stSession, *pbDirect); });
}
