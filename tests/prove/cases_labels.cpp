// SPDX-License-Identifier: Apache-2.0
// Labels: the checks, the steps of a write, whole writes, the serial number's file and the hardware label.
#include <cstring>

#include "prove/fault_case.h"
#include "prove/world.h"

namespace prove {
namespace {

// What the write of a whole image may keep to its log, and what follows a label's.
const RULE_NAMES ARRAY_RULES = {"chunk-refused", "chunk-short", "cache-not-patched",
                                "nobody-waits-for-notices"};

RULE_NAMES LabelRules(const RULE_NAMES &vecMore)
{
    RULE_NAMES vecRules = ARRAY_RULES;
    vecRules.insert(vecRules.end(), vecMore.begin(), vecMore.end());
    return vecRules;
}

void Request(const char *pcName, const char *pcValue, u32 uiLabelID = 0U)
{
    FRU_SET_PARA_S &stPara = Scratch().stPara;
    (void)strcpy(stPara.acLabelName, pcName);
    (void)strcpy(stPara.acLabelValue, pcValue);
    stPara.uiLabelValueLen = static_cast<u32>(strlen(pcValue));
    stPara.uiLabelID = uiLabelID;
    stPara.ucFieldFlag = 7U;
}

std::function<void()> Asking(const char *pcName, const char *pcValue, u32 uiLabelID = 0U)
{
    return [=] { Request(pcName, pcValue, uiLabelID); };
}

std::string Block()
{
    return HexText(&Scratch().stPara, sizeof(Scratch().stPara));
}

std::string Number()
{
    return std::to_string(Scratch().uiNumber);
}

void ReleaseRecord()
{
    FRU_ANALYZER_SafeFree(&Scratch().stData);
}

void DecodeBaseboard()
{
    (void)FRU_ANALYZER_InterpretFRUData(BaseboardImage().data(), static_cast<u32>(BaseboardImage().size()),
                                        &Scratch().stData);
}

void AddLookups(CASES &vecCases)
{
    vecCases.push_back({"FindLabelIDByName",
                        "a name",
                        {},
                        {},
                        [] { return FindLabelIDByName("Product Asset Tag") == FRU_LABEL_PRODUCT_ASSET_TAG; },
                        {},
                        {}});
    vecCases.push_back({"FRU_GetPsuFieldIDByName",
                        "a name",
                        {},
                        {},
                        [] { return FRU_GetPsuFieldIDByName("Mfg.Date") == 2U; },
                        {},
                        {}});
    vecCases.push_back({"ConfirmElectroniclabelField",
                        "a flag",
                        {},
                        {},
                        [] {
                            DIAG_ELECTRONIC_FIELD_S stField = {};
                            stField.ucFieldFlag = 7U;
                            const bool bFound = ConfirmElectroniclabelField(&stField) == FRU_OK;
                            Scratch().uiNumber = stField.aucEndID[0];
                            return bFound;
                        },
                        Number,
                        {}});
    vecCases.push_back({"isLabelNameValid",
                        "a name",
                        {},
                        Asking("Product Asset Tag", "x"),
                        [] { return isLabelNameValid(&Scratch().stPara) == 1U; },
                        {},
                        {}});
    for (const auto &[pcName, pcValue] :
         {std::pair("Product Asset Tag", "tag"), std::pair("Chassis MAC Address", "aabbccddeeff"),
          std::pair("Mfg.Date", "2024-4-5 6:7:8"), std::pair("Language Code", "25"),
          std::pair("Chassis Type", "Rack Mount Chassis")}) {
        vecCases.push_back({"isLabelValueValid",
                            pcName,
                            {},
                            Asking(pcName, pcValue),
                            [] {
                                FRU_SET_PARA_S &stPara = Scratch().stPara;
                                return isLabelValueValid(stPara.acLabelName, stPara.acLabelValue,
                                                         static_cast<i32>(stPara.uiLabelValueLen), 0U) == 1U;
                            },
                            Block,
                            {}});
    }
    vecCases.push_back({"isLabelValueMfgDateNormal",
                        "a date",
                        {},
                        {},
                        [] { return isLabelValueMfgDateNormal("2024-04-05 06:07:08") == 1; },
                        {},
                        {}});
}

void AddSteps(CASES &vecCases)
{
    const auto Record = [] { return RecordText(Scratch().stData); };
    const auto Get = [] { return FRU_GetElectronicLabel(&Scratch().stPara, &Scratch().stData) == FRU_OK; };
    vecCases.push_back({"FRU_GetElectronicLabel",
                        "the baseboard",
                        {"multirecords-left-out"},
                        {},
                        Get,
                        Record,
                        ReleaseRecord});
    vecCases.push_back({"FRU_GetElectronicLabel",
                        "the card, which gets a product area",
                        {},
                        [] { Scratch().stPara.ucComponentType = FRU_COMPONENT_BMC_CARD; },
                        Get,
                        Record,
                        ReleaseRecord});
    vecCases.push_back({"FRU_CheckElectronicLabel",
                        "a MAC address",
                        {},
                        Asking("Chassis MAC Address", "aabbccddeeff"),
                        [] { return FRU_CheckElectronicLabel(&Scratch().stPara) == FRU_OK; },
                        Block,
                        {}});
    vecCases.push_back(
        {"FRU_ReplaceElectronicLabel",
         "an asset tag",
         {},
         [] {
             Request("Product Asset Tag", "tag", FRU_LABEL_PRODUCT_ASSET_TAG);
             DecodeBaseboard();
         },
         [] { return FRU_ReplaceElectronicLabel(&Scratch().stPara, &Scratch().stData) == FRU_OK; },
         Record,
         ReleaseRecord});
    vecCases.push_back({"FRU_SetElectronicLabel",
                        "another language",
                        ARRAY_RULES,
                        [] {
                            DecodeBaseboard();
                            Scratch().stData.stBoardInfo.ucLanguage = 9U;
                        },
                        [] { return FRU_SetElectronicLabel(&Scratch().stPara, &Scratch().stData) == 0; },
                        {},
                        ReleaseRecord});
    vecCases.push_back({"FRU_AddComOperateLog",
                        "of a success",
                        {},
                        Asking("Product Asset Tag", "tag"),
                        [] {
                            FRU_AddComOperateLog(FRU_OPERATELOG_SUCCEEDED, &Scratch().stPara);
                            return true;
                        },
                        Block,
                        {}});
    vecCases.push_back({"FRU_AddHWOperateLog",
                        "of a success",
                        {},
                        Asking("Hardware FRU Label", "tag"),
                        [] {
                            FRU_AddHWOperateLog(FRU_OPERATELOG_SUCCEEDED, &Scratch().stPara);
                            return true;
                        },
                        Block,
                        {}});
}

void AddWrites(CASES &vecCases)
{
    const auto Write = [] { return LIB_FRU_WriteElectronicLabel(&Scratch().stPara) == FRU_OK; };
    const RULE_NAMES vecSerial = LabelRules({"serial-number-not-mirrored", "serial-number-not-copied"});
    vecCases.push_back({"LIB_FRU_WriteElectronicLabel",
                        "the product serial number",
                        vecSerial,
                        Asking("Product Serial Number", "2102310ABCDE"),
                        Write,
                        Block,
                        {}});
    vecCases.push_back({"LIB_FRU_WriteElectronicLabel",
                        "a date",
                        LabelRules({}),
                        Asking("Mfg.Date", "2024-04-05"),
                        Write,
                        Block,
                        {}});
    vecCases.push_back({"LIB_FRU_WriteElectronicLabel",
                        "a MAC address, from the device",
                        LabelRules({}),
                        [] {
                            Request("Chassis MAC Address", "001122334455");
                            DistrustCaches();
                        },
                        Write,
                        Block,
                        {}});
    vecCases.push_back({"LIB_FRU_WriteElectronicLabel",
                        "on the card, which gets a product area",
                        LabelRules({}),
                        [] {
                            Request("Product Asset Tag", "tag");
                            Scratch().stPara.ucComponentType = FRU_COMPONENT_BMC_CARD;
                        },
                        Write,
                        Block,
                        {}});
    vecCases.push_back({"LIB_FRU_WriteElectronicLabel",
                        "on a damaged image",
                        LabelRules({"recovered-short"}),
                        [] {
                            Request("Board Serial Number", "new");
                            DamageBaseboard();
                        },
                        Write,
                        Block,
                        {}});
    vecCases.push_back({"LIB_FRU_WriteElectronicLabel",
                        "on a damaged image, from the device",
                        LabelRules({"recovered-short"}),
                        [] {
                            Request("Board Serial Number", "new");
                            DamageBaseboard();
                            DistrustCaches();
                        },
                        Write,
                        Block,
                        {}});
    vecCases.push_back({"LIB_FRU_WriteHWInfo",
                        "seven bytes",
                        {},
                        [] {
                            Request("Hardware FRU Label", "NEWB123");
                            Scratch().stPara.ucComponentType = BLOCK_TYPE;
                        },
                        [] { return LIB_FRU_WriteHWInfo(&Scratch().stPara) == FRU_OK; },
                        Block,
                        {}});
}

void AddSerialNumberCases(CASES &vecCases)
{
    const RULE_NAMES vecCopy = {"serial-number-not-copied"};
    vecCases.push_back({"LIB_FRU_WritePSNToFile",
                        "a serial number",
                        vecCopy,
                        {},
                        [] { return LIB_FRU_WritePSNToFile("2102310ABCDE", 12U) == FRU_OK; },
                        {},
                        {}});
    vecCases.push_back({"FRU_UpdateProductSN",
                        "a serial number",
                        vecCopy,
                        {},
                        [] { return FRU_UpdateProductSN("2102310ABCDE", 12U) == FRU_OK; },
                        {},
                        {}});
    vecCases.push_back({"FRU_UpdateFRUInfo",
                        "a serial number",
                        {"serial-number-not-copied", "serial-number-not-mirrored"},
                        {},
                        [] {
                            FRU_UpdateFRUInfo(FRU_LABEL_PRODUCT_SERIAL_NUMBER, "2102310ABCDE", 12U);
                            return true;
                        },
                        {},
                        {}});
    vecCases.push_back({"LIB_FRU_GetPSNFromFile",
                        "a serial number",
                        {"serial-number-in-part"},
                        [] {
                            fake::WriteFile("/mnt/sdmmc0p4/board/ProductSerialNumber", {'1', '2', '3', '4'});
                        },
                        [] { return LIB_FRU_GetPSNFromFile(4U, Scratch().acText) == FRU_OK; },
                        [] { return std::string(Scratch().acText); },
                        {}});
}

} // namespace

void AddLabelCases(CASES &vecCases)
{
    AddLookups(vecCases);
    AddSteps(vecCases);
    AddWrites(vecCases);
    AddSerialNumberCases(vecCases);
}

} // namespace prove
