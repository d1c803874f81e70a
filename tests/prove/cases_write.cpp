// SPDX-License-Identifier: Apache-2.0
// Writes of whole images, of bytes, and of nothing but 0xFF.
#include <cstring>

#include "prove/fault_case.h"
#include "prove/world.h"
#include "support/record_builder.h"

namespace prove {
namespace {

const RULE_NAMES ARRAY_RULES = {"chunk-refused", "chunk-short", "cache-not-patched",
                                "nobody-waits-for-notices"};

// The baseboard's record with another serial number, longer than the one that was there.
void ChangedRecord()
{
    (void)FRU_ANALYZER_InterpretFRUData(BaseboardImage().data(), static_cast<u32>(BaseboardImage().size()),
                                        &Scratch().stData);
    (void)setBoardSerialNumber(model::Heap("B-SN, a longer one"), &Scratch().stData);
}

void ReleaseRecord()
{
    FRU_ANALYZER_SafeFree(&Scratch().stData);
}

bool WriteHandler()
{
    u8 aucReq[3U + 40U] = {CARD, 8U, 0U};
    (void)memset(&aucReq[3], 0x42, sizeof(aucReq) - 3U);
    Scratch().uiNumber = LIB_FRU_WriteFRUData(aucReq, sizeof(aucReq), Scratch().aucBytes);
    return Scratch().aucBytes[0] == FRU_CC_OK;
}

std::string Response()
{
    return HexText(Scratch().aucBytes, FRU_WRITE_RES_LEN);
}

void AddArrayCases(CASES &vecCases)
{
    const auto Write = [] {
        return LIB_FRU_WriteArrayFRUData(FRU_COMPONENT_BASEBOARD, 0U, &Scratch().stData,
                                         FRU_WRITE_ARG_USUAL) == FRU_OK;
    };
    vecCases.push_back({"LIB_FRU_WriteArrayFRUData",
                        "a longer image",
                        ARRAY_RULES,
                        ChangedRecord,
                        Write,
                        {},
                        ReleaseRecord});
    vecCases.push_back({"LIB_FRU_OEM_WriteArrayFRUData",
                        "a longer image",
                        ARRAY_RULES,
                        ChangedRecord,
                        [] {
                            return LIB_FRU_OEM_WriteArrayFRUData(BASEBOARD,
                                                                 static_cast<u32>(BaseboardImage().size()),
                                                                 &Scratch().stData) == FRU_OK;
                        },
                        {},
                        ReleaseRecord});
}

void AddHandlerCases(CASES &vecCases)
{
    const RULE_NAMES vecRules = {"count-written-answered", "cache-not-patched", "nobody-waits-for-notices"};
    RULE_NAMES vecLogged = vecRules;
    vecLogged.insert(vecLogged.end(), {"log-entry-lost", "sequence-not-closed"});
    const auto Open = [] { fake::Db()[KEY_FLAG] = {FRU_OPERATE_OPEN}; };
    vecCases.push_back(
        {"LIB_FRU_WriteFRUData", "outside a sequence", vecRules, {}, WriteHandler, Response, {}});
    vecCases.push_back(
        {"LIB_FRU_WriteFRUData", "the first of a sequence", vecLogged, Open, WriteHandler, Response, {}});
    vecCases.push_back({"LIB_FRU_WriteFRUData",
                        "in OEM mode",
                        vecLogged,
                        [Open] {
                            Open();
                            fake::SetHwOemFlag(3U);
                        },
                        WriteHandler,
                        Response,
                        {}});
}

void AddClearCases(CASES &vecCases)
{
    const auto Sentence = [] { return std::string(Scratch().stClear.acOperateLog); };
    vecCases.push_back({"LIB_FRU_ClearFRUElectronicLabel",
                        "the baseboard",
                        {"erased-not-cached", "serial-number-not-mirrored", "serial-number-not-copied",
                         "nobody-waits-for-notices"},
                        {},
                        [] { return LIB_FRU_ClearFRUElectronicLabel(&Scratch().stClear) == FRU_OK; },
                        Sentence,
                        {}});
    vecCases.push_back({"LIB_FRU_ClearFRUElectronicLabel",
                        "the card",
                        {"erased-not-cached", "nobody-waits-for-notices"},
                        [] { Scratch().stClear.ucComponentType = FRU_COMPONENT_BMC_CARD; },
                        [] { return LIB_FRU_ClearFRUElectronicLabel(&Scratch().stClear) == FRU_OK; },
                        Sentence,
                        {}});
    vecCases.push_back({"FRU_AddClearFRULog",
                        "of a success",
                        {},
                        {},
                        [] {
                            FRU_AddClearFRULog(FRU_OPERATELOG_SUCCEEDED, &Scratch().stClear);
                            return true;
                        },
                        Sentence,
                        {}});
}

} // namespace

void AddWriteCases(CASES &vecCases)
{
    AddArrayCases(vecCases);
    AddHandlerCases(vecCases);
    AddClearCases(vecCases);
}

} // namespace prove
