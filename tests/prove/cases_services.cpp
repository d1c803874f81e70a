// SPDX-License-Identifier: Apache-2.0
// Hardware blocks, serial numbers, dumps, features, events and dates.
#include <cstring>

#include "prove/fault_case.h"
#include "prove/world.h"

namespace prove {
namespace {

constexpr u32 TEXT_SIZE = 64U;

std::string Text()
{
    return Scratch().acText;
}

std::string Printed()
{
    return fake::TakeStdout();
}

void ReleaseRecord()
{
    FRU_ANALYZER_SafeFree(&Scratch().stData);
}

void AddBlockCases(CASES &vecCases)
{
    vecCases.push_back(
        {"LIB_FRU_GetHWFRUData",
         "a block",
         {},
         {},
         [] { return LIB_FRU_GetHWFRUData(FRU_HW_ARG_USUAL, BLOCK_TYPE, 0U, &Scratch().stBlock) == FRU_OK; },
         [] { return HexText(&Scratch().stBlock, sizeof(Scratch().stBlock)); },
         {}});
    vecCases.push_back(
        {"LIB_FRU_WriteHWFRUBinToDevice",
         "another block",
         {},
         [] { Scratch().stBlock.stHwBoardInfo.ucPCBVer = 9U; },
         [] { return LIB_FRU_WriteHWFRUBinToDevice(BLOCK_TYPE, 0U, &Scratch().stBlock) == FRU_OK; },
         {},
         {}});
}

void AddSerialCases(CASES &vecCases)
{
    struct GETTER_S
    {
        const char *pcName;
        u32 (*pfnGet)(u32 uiSize, char *pcOut);
        bool bDirect;
    };
    const GETTER_S astGetters[] = {
        {"LIB_FRU_GetBaseboardChassisSN", LIB_FRU_GetBaseboardChassisSN, false},
        {"LIB_FRU_GetBaseboardProductSN", LIB_FRU_GetBaseboardProductSN, false},
        {"LIB_FRU_GetMainBoardSN", LIB_FRU_GetMainBoardSN, false},
        {"LIB_FRU_GetBmcCardSN", LIB_FRU_GetBmcCardSN, false},
        {"LIB_FRU_GetBaseboardProductSNByI2C", LIB_FRU_GetBaseboardProductSNByI2C, true},
        {"LIB_FRU_GetMainBoardSNByI2C", LIB_FRU_GetMainBoardSNByI2C, true},
        {"LIB_FRU_GetBmcCardSNByI2C", LIB_FRU_GetBmcCardSNByI2C, true},
    };
    for (const GETTER_S &stGetter : astGetters) {
        const auto Get = [pfnGet = stGetter.pfnGet] { return pfnGet(TEXT_SIZE, Scratch().acText) == FRU_OK; };
        const RULE_NAMES vecRules = stGetter.bDirect ? RULE_NAMES{"undecodable-is-empty"} : RULE_NAMES{};
        vecCases.push_back({stGetter.pcName,
                            stGetter.bDirect ? "the direct path" : "from the cache",
                            vecRules,
                            {},
                            Get,
                            Text,
                            {}});
        if (!stGetter.bDirect) {
            vecCases.push_back({stGetter.pcName, "from the device", vecRules, DistrustCaches, Get, Text, {}});
        }
    }
    vecCases.push_back({"LIB_FRU_GetBaseboardFRUDataByI2C",
                        "the baseboard",
                        {"undecodable-is-empty", "multirecords-left-out"},
                        {},
                        [] {
                            return LIB_FRU_GetBaseboardFRUDataByI2C(FRU_COMPONENT_BASEBOARD,
                                                                    &Scratch().stData) == FRU_OK;
                        },
                        [] { return RecordText(Scratch().stData); },
                        ReleaseRecord});
}

void AddDumpCases(CASES &vecCases)
{
    vecCases.push_back({"FRU_DebugBuf",
                        "an image",
                        {},
                        {},
                        [] {
                            FRU_DebugBuf(CardImage().data(), static_cast<u16>(CardImage().size()));
                            return true;
                        },
                        Printed,
                        {}});
    vecCases.push_back({"FRU_DebugData",
                        "the baseboard",
                        {},
                        [] {
                            (void)FRU_ANALYZER_InterpretFRUData(BaseboardImage().data(),
                                                                static_cast<u32>(BaseboardImage().size()),
                                                                &Scratch().stData);
                        },
                        [] {
                            FRU_DebugData(&Scratch().stData);
                            return true;
                        },
                        Printed,
                        ReleaseRecord});
    vecCases.push_back({"FRU_DebugHWData",
                        "a block",
                        {},
                        {},
                        [] {
                            FRU_DebugHWData(&Scratch().stBlock);
                            return true;
                        },
                        Printed,
                        {}});
    vecCases.push_back({"LIB_FRU_GetTestResult",
                        "one device with a fault mark",
                        {"status-not-known"},
                        [] { fake::Db()[KEY_STATUS | CARD] = {FRU_CACHE_FAULT_1 | FRU_CACHE_FAULT_2}; },
                        [] {
                            LIB_FRU_GetTestResult(Scratch().aucBytes);
                            return true;
                        },
                        [] { return std::to_string(Scratch().aucBytes[0]); },
                        {}});
}

void AddServiceCases(CASES &vecCases)
{
    vecCases.push_back({"LIB_FRU_GetFeatureInfoList",
                        "two features",
                        {},
                        {},
                        [] { return LIB_FRU_GetFeatureInfoList() == FRU_OK; },
                        Printed,
                        {}});
    vecCases.push_back({"LIB_FRU_UpdateFeatureInfo",
                        "an update",
                        {},
                        {},
                        [] { return LIB_FRU_UpdateFeatureInfo(&Scratch().stFeature) == FRU_OK; },
                        {},
                        {}});
    vecCases.push_back({"FRU_UpdateEventWithStruct",
                        "an event",
                        {},
                        {},
                        [] {
                            const FRU_EVENT_S stEvent = {};
                            return FRU_UpdateEventWithStruct(&stEvent) == FRU_OK;
                        },
                        {},
                        {}});
    vecCases.push_back(
        {"LIB_FRU_CaclMfgDateTime",
         "a date",
         {},
         {},
         [] { return LIB_FRU_CaclMfgDateTime("2024-04-05 06:07:08", &Scratch().stData) == FRU_OK; },
         [] { return HexText(Scratch().stData.stBoardInfo.aucMfgDateTime, 3U); },
         {}});
    vecCases.push_back({"LIB_FRU_FormatMfgDate",
                        "a date",
                        {},
                        {},
                        [] {
                            const u8 aucDate[] = {0x40U, 0x11U, 0xC8U};
                            return LIB_FRU_FormatMfgDate(aucDate, 0U, Scratch().acText) == FRU_OK;
                        },
                        Text,
                        {}});
}

} // namespace

void AddHardwareCases(CASES &vecCases)
{
    AddBlockCases(vecCases);
    AddSerialCases(vecCases);
}

void AddDiagnosticsCases(CASES &vecCases)
{
    AddDumpCases(vecCases);
    AddServiceCases(vecCases);
}

} // namespace prove
