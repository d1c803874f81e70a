// SPDX-License-Identifier: Apache-2.0
#include "commands/oem.h"

#include <cstring>

#include "commands/commands.h"
#include "lib_fru.h"
#include "terminal/console.h"
#include "terminal/json_out.h"
#include "toolkit/base/error.h"
#include "toolkit/base/file.h"
#include "toolkit/base/json.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/cause.h"
#include "toolkit/controller/controller.h"
#include "toolkit/controller/diagnostics.h"
#include "toolkit/controller/oem_conf.h"

// fructl oem: the OEM configuration file, what the library makes of it, and its update from the FRU.

namespace {

// The file's text, whose encoding is its author's: UTF-8 as it is, anything else as Latin-1.
std::string FileText(const char *pcText)
{
    const std::string strText = pcText;
    const nlohmann::json stText = strText;
    try {
        (void)stText.dump();
        return strText;
    } catch (const nlohmann::json::type_error &) {
        return Latin1ToUtf8(strText);
    }
}

// For a terminal: without control characters.
std::string ShownText(const std::string &strUtf8)
{
    std::string strOut;
    for (const char cByte : strUtf8) {
        const bool bControl = static_cast<u8>(cByte) < 0x20U || cByte == 0x7F;
        strOut += bControl ? Format("\\x%02x", static_cast<u8>(cByte)) : std::string(1U, cByte);
    }
    return strOut;
}

bool HasFile()
{
    try {
        (void)ReadFileBytes(RealPath(OEM_CONF_FILE).value_or(""));
        return true;
    } catch (const Error &) {
        return false;
    }
}

// A key as it is in the file (or stands in for it), and as FRU_GetOEMConf() completes it from the FRU.
struct VALUE_S
{
    const char *pcKey;
    std::string strFile;
    std::string strComplete;
};

std::vector<VALUE_S> Texts(const FRU_OEM_CONF_S &stFile, const FRU_OEM_CONF_S &stComplete)
{
    std::vector<VALUE_S> vecValues;
    for (const OEM_TEXT_S &stText : OemTexts()) {
        vecValues.push_back(
            {stText.pcKey, FileText(stText.TextIn(stFile)), FileText(stText.TextIn(stComplete))});
    }
    return vecValues;
}

Json ShowJson(const std::vector<VALUE_S> &vecValues, const FRU_OEM_CONF_S &stConf)
{
    Json stJson = {{"file", HasFile() ? Json(OEM_CONF_FILE) : Json()}, {"texts", Json::object()}};
    Json stFromFru = Json::array();
    for (const VALUE_S &stValue : vecValues) {
        stJson["texts"][stValue.pcKey] = stValue.strComplete;
        if (stValue.strComplete != stValue.strFile) {
            stFromFru.push_back(stValue.pcKey);
        }
    }
    stJson["fromFru"] = stFromFru;
    stJson["oemflag"] = stConf.ucOemFlag;
    stJson["checkarea"] = u32{stConf.usCheckArea};
    stJson["privateoid"] = u32{stConf.uiPrivateOid};
    stJson["userid"] = stConf.ucUserId;
    stJson["logocidflag"] = stConf.ucLogoCidFlag;
    return stJson;
}

std::string ShowText(const std::vector<VALUE_S> &vecValues, const FRU_OEM_CONF_S &stConf)
{
    std::string strOut =
        std::string(OEM_CONF_FILE) +
        (HasFile() ? "\n" : Paint(Colour::Yellow, " is missing; these stand in for it") + "\n");
    for (const VALUE_S &stValue : vecValues) {
        strOut += Format("  %-20s ", stValue.pcKey) +
                  (stValue.strComplete.empty() ? Paint(Colour::Dim, "-") : ShownText(stValue.strComplete)) +
                  (stValue.strComplete != stValue.strFile ? Paint(Colour::Dim, "  (from the FRU)") : "") +
                  "\n";
    }
    const struct
    {
        const char *pcKey;
        u32 uiValue;
    } astNumbers[] = {{"oemflag", stConf.ucOemFlag},
                      {"checkarea", stConf.usCheckArea},
                      {"privateoid", stConf.uiPrivateOid},
                      {"userid", stConf.ucUserId},
                      {"logocidflag", stConf.ucLogoCidFlag}};
    for (const auto &stNumber : astNumbers) {
        strOut += Format("  %-20s %u\n", stNumber.pcKey, stNumber.uiValue);
    }
    return strOut;
}

void RunShow(const SESSION_S &stSession)
{
    RequireController(stSession);
    FRU_OEM_CONF_S stFile = {};
    FRU_OEM_CONF_S stConf = {};
    FRU_GetOEMConfBeforeDeal(&stFile);
    FRU_GetOEMConf(&stConf);
    char acManufacturer[sizeof(stConf.acProductManufacturer)] = "";
    const bool bOem = FRU_GetProductManufacturer(sizeof(acManufacturer), acManufacturer) == FRU_OK;
    const u32 uiLogo = LIB_FRU_GetBmcLogoFlag();
    const std::vector<VALUE_S> vecValues = Texts(stFile, stConf);
    if (stSession.bJson) {
        Json stJson = ShowJson(vecValues, stConf);
        stJson["productManufacturerInForce"] = bOem ? Json(FileText(acManufacturer)) : Json();
        stJson["logoFlag"] = uiLogo;
        PrintJson(stJson);
        return;
    }
    Print(ShowText(vecValues, stConf) + "In force\n  product manufacturer " +
          (bOem ? ShownText(FileText(acManufacturer))
                : Paint(Colour::Dim, "none: the controller is not in OEM mode, or the file has none")) +
          Format("\n  logo flag            %u\n", uiLogo));
}

void RunCopyright(const SESSION_S &stSession, const std::string &strLanguage)
{
    RequireController(stSession);
    static const char *const apcLanguages[] = {"cn", "en"}; // by the library's type
    Json stJson = Json::object();
    std::string strOut;
    for (i32 i = 0; i < static_cast<i32>(std::size(apcLanguages)); i++) {
        if (!strLanguage.empty() && strLanguage != apcLanguages[i]) {
            continue;
        }
        char acText[FRU_COPYRIGHT_LEN] = "";
        const u32 uiRet = LIB_FRU_GetCopyRight(i, acText);
        if (uiRet != FRU_OK) {
            FailLibrary(ErrorClass::Failed, "the copyright cannot be told: " + StatusText(uiRet),
                        DiagnosticHint());
        }
        const std::string strText = FileText(acText);
        stJson[apcLanguages[i]] = strText;
        strOut += std::string(apcLanguages[i]) + "  " +
                  (strText.empty() ? Paint(Colour::Dim, "-") : ShownText(strText)) + "\n";
    }
    if (stSession.bJson) {
        PrintJson(stJson);
    } else {
        Print(strOut);
    }
}

void RunCheck(const SESSION_S &stSession, const std::string &strFlag)
{
    const std::optional<u32> optFlag = ParseNumber(strFlag, FRU_CHECK_AREA_ASK_WORD);
    if (!optFlag.has_value()) {
        FailUsage(EscapeText(strFlag) + " is refused; accepted: 0 to 65535, decimal or 0x");
    }
    RequireController(stSession);
    char acResult[FRU_CHECK_RESULT_LEN + 1U] = "";
    const u32 uiRet = LIB_FRU_CheckOEMFromPackage(*optFlag, acResult);
    if (uiRet != FRU_OK) {
        FailLibrary(ErrorClass::Failed, "the package cannot be checked: " + StatusText(uiRet),
                    DiagnosticHint());
    }
    FRU_OEM_CONF_S stConf = {};
    FRU_GetOEMConfBeforeDeal(&stConf);
    u32 uiArea = stConf.usCheckArea;
    const bool bAsked = *optFlag == FRU_CHECK_AREA_ASK_WORD || *optFlag == FRU_CHECK_AREA_ASK_BYTE;
    if (bAsked) {
        uiArea = static_cast<u32>(static_cast<u8>(acResult[0]) << 8U) | static_cast<u8>(acResult[1]);
    }
    const bool bPass = bAsked || *optFlag == uiArea;
    if (stSession.bJson) {
        Json stJson = {{"flag", *optFlag}, {"checkarea", uiArea}, {"result", bPass ? "pass" : "fail"}};
        if (bAsked) {
            stJson["result"] = "told";
        } else {
            stJson["text"] = acResult;
        }
        PrintJson(stJson);
    } else {
        Print(bAsked ? Format("checkarea %u (0x%04x)\n", uiArea, uiArea) : std::string(acResult));
    }
    if (!bPass) {
        Fail(Format("the package check failed: checkarea is %u, the flag %u", uiArea, *optFlag));
    }
}

void RunLegal(const SESSION_S &stSession, const std::string &strText)
{
    std::string strUpper = strText;
    const u32 uiRet = FRU_CheckCharaIsLegal(strUpper.data());
    if (stSession.bJson) {
        PrintJson({{"text", FileText(strUpper.c_str())}, {"legal", uiRet == FRU_OK}});
    } else {
        Print(EscapeText(strUpper) + (uiRet == FRU_OK ? " is legal\n" : " is not legal\n"));
    }
    if (uiRet != FRU_OK) {
        Fail("'" + EscapeText(strText) + "' is refused; accepted: letters and digits");
    }
}

void AddTextRun(const Command &stCommand, SESSION_S &stSession, const std::shared_ptr<std::string> &pstrText,
                void (*pfnRun)(const SESSION_S &stSession, const std::string &strText))
{
    stCommand.Run([&stSession, pstrText, pfnRun] { pfnRun(stSession, *pstrText); });
}

} // namespace

void AddOemCommand(const Command &stParent, SESSION_S &stSession)
{
    const Command stOem =
        stParent.Add("oem", "The OEM configuration: show, sync from the FRU, check, copyright",
                     "fructl oem show\nfructl oem sync --dry-run\nfructl oem check 7");
    stOem.RequireCommand();
    stOem
        .Add("show", "The OEM file as the library reads it, and what of it is in force",
             "fructl oem show\nfructl oem show --json")
        .Run([&stSession] { RunShow(stSession); });
    AddOemSyncCommand(stOem, stSession);

    const auto pstrFlag = std::make_shared<std::string>();
    const Command stCheck =
        stOem.Add("check", "Compare a package's check flag with the OEM file; exit 1 when it fails",
                  "fructl oem check 7\nfructl oem check 0xffff");
    stCheck.AddOption("FLAG", *pstrFlag, "0 to 65535; 0xff and 0xffff only ask what the file has").Required();
    AddTextRun(stCheck, stSession, pstrFlag, RunCheck);

    const auto pstrLanguage = std::make_shared<std::string>();
    const Command stCopyright =
        stOem.Add("copyright", "The copyright lines", "fructl oem copyright\nfructl oem copyright en");
    stCopyright.AddOption("LANGUAGE", *pstrLanguage, "cn or en; none: both").OneOf({"cn", "en"});
    AddTextRun(stCopyright, stSession, pstrLanguage, RunCopyright);

    const auto pstrText = std::make_shared<std::string>();
    const Command stLegal =
        stOem.Add("legal", "Are all characters of a text legal (letters and digits)? exit 1: no",
                  "fructl oem legal AB12\nfructl oem legal ab-1");
    stLegal.AddOption("TEXT", *pstrText, "the text, which is turned into upper case first").Required();
    AddTextRun(stLegal, stSession, pstrText, RunLegal);
}
