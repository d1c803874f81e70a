// SPDX-License-Identifier: Apache-2.0
#include "commands/mr.h"

#include <algorithm>

#include "commands/commands.h"
#include "commands/record_text.h"
#include "lib_fru.h"
#include "terminal/console.h"
#include "terminal/json_out.h"
#include "toolkit/base/error.h"
#include "toolkit/base/json.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/device_json.h"
#include "toolkit/controller/diagnostics.h"
#include "toolkit/controller/source.h"
#include "toolkit/controller/target.h"
#include "toolkit/image/fields.h"
#include "toolkit/image/image.h"
#include "toolkit/image/multirecord.h"
#include "toolkit/image/record.h"
#include "toolkit/image/record_json.h"

// fructl mr: MultiRecords listed, checked, and the byte order of their GUIDs.

namespace {

constexpr size_t RECORD_MAX = FRU_MULTIRECORD_HEADER_LEN + 255U;

// The main FRU when nothing else is named.
TARGET_S TargetOrMain(const SESSION_S &stSession, const TARGET_OPTIONS_S &stOptions)
{
    return ResolveTarget(stSession, stOptions.IsNamed() ? stOptions : TARGET_OPTIONS_S{MAIN_FRU, "", ""});
}

struct LIST_S
{
    TARGET_OPTIONS_S stTarget;
    SOURCE_OPTION_S stSource;
};

void RunList(const SESSION_S &stSession, const LIST_S &stOptions)
{
    const SHOWN_S stShown = ReadShown(TargetOrMain(stSession, stOptions.stTarget), stOptions.stSource);
    const TARGET_S &stTarget = stShown.stTarget;
    Record stRecord;
    DecodeShown(stTarget, stShown.stImage, stRecord);
    const RECORD_VIEW_S stView = ViewRecord(*stRecord.Data());
    if (stView.IsMultiRecordAreaDamaged()) {
        Fail(ErrorClass::Damaged,
             "the MultiRecord area of " + stTarget.Title() +
                 " is damaged: no record of it can be read; 'fructl mr check' and 'fructl verify' tell more");
    }
    Table stTable({">#", "RECORD", ">TYPE", ">BYTES", "SAYS"});
    for (size_t i = 0; i < stView.vecMultiRecords.size(); i++) {
        const MULTIRECORD_VIEW_S &stMr = stView.vecMultiRecords[i];
        stTable.Row({std::to_string(i + 1U), stMr.strName, Format("0x%02x", stMr.ucType),
                     std::to_string(stMr.vecData.size()), RecordLine(stMr)});
    }
    if (stSession.bJson) {
        Json stJson = TargetJson(stTarget);
        if (stTarget.optDevice.has_value()) {
            stJson.update(stShown.SourceJson());
        }
        stJson["multiRecords"] = RecordJson(stView)["multiRecords"];
        PrintJson(stJson);
    } else {
        Print(stView.vecMultiRecords.empty() ? stTarget.Title() + " has no MultiRecords\n" : stTable.Text());
    }
    stShown.RequireSame();
}

// One verdict of FRU_checkAllMultiRecords().
struct VERDICT_S
{
    const char *pcKey;   // "memory"
    std::string strWhat; // for people: what was checked
    u32 uiStatus;
    u32 uiCount;
    std::string strWhy; // not empty: why it is not in order

    bool IsGood() const
    {
        return uiStatus == FRU_OK && strWhy.empty();
    }
};

VERDICT_S Check(const char *pcKey, const std::string &strWhat, const u8 *pucBuf, u32 uiCheckType)
{
    VERDICT_S stVerdict = {pcKey, strWhat, FRU_OK, 0U, ""};
    ClearDiagnostics();
    stVerdict.uiStatus = FRU_checkAllMultiRecords(pucBuf, uiCheckType, &stVerdict.uiCount);
    if (stVerdict.uiStatus != FRU_OK) {
        stVerdict.strWhy = MultiRecordStatus(stVerdict.uiStatus) + DiagnosticHint();
    }
    return stVerdict;
}

VERDICT_S CheckDecoded(const TARGET_S &stTarget)
{
    Record stRecord;
    const std::string strWhat = "decoded record";
    const u32 uiRet = DecodeStatus(stTarget, stRecord);
    if (uiRet != FRU_OK) {
        return {"memory", strWhat, uiRet, 0U, "cannot be decoded: " + StatusText(uiRet) + DiagnosticHint()};
    }
    VERDICT_S stVerdict =
        Check("memory", strWhat, reinterpret_cast<const u8 *>(stRecord.Data()->astMultiRecord),
              FRU_MR_CHECK_MEMORY);
    if (stVerdict.IsGood() && stVerdict.uiCount == 0U && HasArea(*stRecord.Data(), Area::MultiRecord)) {
        stVerdict.strWhy = "the image has an area, but no record of it could be read";
    }
    return stVerdict;
}

// Bytes from the start of the area to the end of its last record. Only for a list that was found good.
size_t ListLength(const std::vector<u8> &vecArea, u32 uiCount)
{
    size_t uiLength = 0;
    for (u32 i = 0; i < uiCount; i++) {
        uiLength += FRU_MULTIRECORD_HEADER_LEN + vecArea[uiLength + 2U];
    }
    return uiLength;
}

VERDICT_S CheckBytes(const TARGET_S &stTarget)
{
    const IMAGE_S stImage = ReadTarget(stTarget);
    const std::string strWhat = std::string("bytes of the ") + SourceName(stImage.enSource);
    if (stImage.uiStored < FRU_COMMON_HEADER_LEN ||
        FRU_ANALYZER_CheckValidHeader(stImage.vecBytes.data()) != FRU_OK) {
        return {"bytes", strWhat, LIB_FRU_ERR_HEADER, 0U, "no valid common header says where the area is"};
    }
    const size_t uiStart = size_t{stImage.vecBytes[HeaderOffsetByte(Area::MultiRecord)]} * FRU_AREA_UNIT;
    if (uiStart == 0U) {
        return {"bytes", strWhat, FRU_OK, 0U, ""};
    }
    if (uiStart >= stImage.uiStored) {
        return {"bytes", strWhat, FRU_ERR_MR_FAILED, 0U,
                Format("the area begins at 0x%04zx, where the image has ended", uiStart)};
    }
    // The library's walk knows no end but its 64 records: zeros for as many of the longest stand behind.
    std::vector<u8> vecArea(stImage.vecBytes.begin() + static_cast<ptrdiff_t>(uiStart),
                            stImage.vecBytes.begin() + static_cast<ptrdiff_t>(stImage.uiStored));
    const size_t uiStored = vecArea.size();
    vecArea.resize(uiStored + FRU_MULTIRECORD_MAX * RECORD_MAX, 0U);
    VERDICT_S stVerdict = Check("bytes", strWhat, vecArea.data(), FRU_MR_CHECK_EEPROM);
    if (stVerdict.uiStatus == FRU_OK && stVerdict.uiCount == 0U) {
        stVerdict.strWhy = Format("the header names an area at 0x%04zx, but there is no record", uiStart);
    } else if (stVerdict.uiStatus == FRU_OK && ListLength(vecArea, stVerdict.uiCount) > uiStored) {
        stVerdict.strWhy = Format("the list ends %zu bytes behind the image",
                                  ListLength(vecArea, stVerdict.uiCount) - uiStored);
    }
    return stVerdict;
}

Json VerdictJson(const VERDICT_S &stVerdict)
{
    Json stJson = {
        {"good", stVerdict.IsGood()}, {"status", stVerdict.uiStatus}, {"records", stVerdict.uiCount}};
    if (!stVerdict.strWhy.empty()) {
        stJson["why"] = stVerdict.strWhy;
    }
    return stJson;
}

void RunCheck(const SESSION_S &stSession, const TARGET_OPTIONS_S &stOptions)
{
    const TARGET_S stTarget = TargetOrMain(stSession, stOptions);
    const std::vector<VERDICT_S> vecVerdicts = {CheckDecoded(stTarget), CheckBytes(stTarget)};
    Json stJson = TargetJson(stTarget);
    bool bGood = true;
    for (const VERDICT_S &stVerdict : vecVerdicts) {
        bGood = bGood && stVerdict.IsGood();
        stJson[stVerdict.pcKey] = VerdictJson(stVerdict);
        if (!stSession.bJson) {
            Print((stVerdict.IsGood() ? Paint(Colour::Green, "good  ") : Paint(Colour::Red, "WRONG ")) + " " +
                  Paint(Colour::Bold, stTarget.Title()) + ", " + stVerdict.strWhat + ": " +
                  (stVerdict.IsGood() ? Count(stVerdict.uiCount, "record") : stVerdict.strWhy) + "\n");
        }
    }
    if (stSession.bJson) {
        PrintJson(stJson);
    }
    if (!bGood) {
        Fail(ErrorClass::Damaged, "the MultiRecords of " + stTarget.Title() +
                                      " are not in order; 'fructl verify' tells every byte at fault");
    }
}

struct GUID_OPTIONS_S
{
    std::string strText;
    std::string strStored;
};

GuidBytes Stored(const GuidBytes &aucGiven)
{
    GuidBytes aucStored = {};
    FRU_ConvertGUIDToStandardOrder(aucGiven.data(), aucStored.data());
    return aucStored;
}

void RunGuid(const SESSION_S &stSession, const GUID_OPTIONS_S &stOptions)
{
    if (stOptions.strText.empty() == stOptions.strStored.empty()) {
        FailUsage("either a GUID or --stored is needed; 'fructl mr guid --help' tells more");
    }
    std::string strText = stOptions.strText;
    if (strText.empty()) {
        const std::vector<u8> vecStored = ParseHexBytes(stOptions.strStored).value_or(std::vector<u8>());
        if (vecStored.size() != std::tuple_size_v<GuidBytes>) {
            FailUsage("--stored " + EscapeText(stOptions.strStored) +
                      " is refused; accepted: 16 bytes of two hex digits each");
        }
        strText = GuidText(vecStored.data());
    }
    const GuidBytes aucGiven = ParseGuid(strText);
    const GuidBytes aucStored = Stored(aucGiven);
    strText = GuidText(aucStored.data());
    const std::string strStored = HexBytes(aucStored.data(), aucStored.size());
    const std::string strGiven = HexBytes(aucGiven.data(), aucGiven.size());
    if (stSession.bJson) {
        PrintJson({{"guid", strText}, {"stored", strStored}, {"given", strGiven}});
        return;
    }
    Print("GUID    " + strText + "\nstored  " + strStored + "   in the record\ngiven   " + strGiven +
          "   to the library, which puts it into the record's order\n");
}

void AddGuidCommand(const Command &stMr, SESSION_S &stSession)
{
    const auto pstGuid = std::make_shared<GUID_OPTIONS_S>();
    const Command stCommand =
        stMr.Add("guid", "Convert a GUID to the byte order of a System Unique ID record, and back",
                 "fructl mr guid 1b4c2e8f-7a5d-4c3b-9e60-0a1b2c3d4e5f\n"
                 "fructl mr guid --stored \"8f 2e 4c 1b 5d 7a 3b 4c 9e 60 0a 1b 2c 3d 4e 5f\"");
    stCommand.AddOption("GUID", pstGuid->strText, "in its usual text form");
    stCommand.AddOption("--stored", pstGuid->strStored, "16 bytes in hex, as they stand in a record")
        .Placeholder("HEX");
    stCommand.Run([&stSession, pstGuid] { RunGuid(stSession, *pstGuid); });
}

void AddMrListCommand(const Command &stMr, SESSION_S &stSession)
{
    const auto pstList = std::make_shared<LIST_S>();
    const Command stCommand =
        stMr.Add("list", "The MultiRecords of a device (the baseboard) or a file",
                 "fructl mr list\nfructl mr list bmc-card --json\nfructl mr list ./dump.bin");
    AddTargetOptions(stCommand, pstList->stTarget, true);
    AddSourceOption(stCommand, pstList->stSource);
    stCommand.Run([&stSession, pstList] { RunList(stSession, *pstList); });
}

void AddCheckCommand(const Command &stMr, SESSION_S &stSession)
{
    const auto pstOptions = std::make_shared<TARGET_OPTIONS_S>();
    const Command stCommand =
        stMr.Add("check", "Check a list of MultiRecords twice: as decoded, and byte by byte in the EEPROM",
                 "fructl mr check\nfructl mr check ./dump.bin");
    AddTargetOptions(stCommand, *pstOptions, true);
    stCommand.Run([&stSession, pstOptions] { RunCheck(stSession, *pstOptions); });
}

} // namespace

void AddMrCommand(const Command &stParent, SESSION_S &stSession)
{
    const Command stMr =
        stParent.Add("mr", "MultiRecords: list, add, check, and the byte order of GUIDs",
                     "fructl mr list\nfructl mr add system-name=rack7-u12\nfructl mr check baseboard");
    stMr.RequireCommand();
    AddMrListCommand(stMr, stSession);
    AddMrAddCommand(stMr, stSession);
    AddCheckCommand(stMr, stSession);
    AddGuidCommand(stMr, stSession);
}
