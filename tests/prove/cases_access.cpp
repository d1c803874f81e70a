// SPDX-License-Identifier: Apache-2.0
// Reads of devices and images, and the IPMI handlers that ask.
#include <cstring>

#include "prove/fault_case.h"
#include "prove/world.h"

namespace prove {
namespace {

constexpr u8 COUNT = 64U; // bytes that a handler is asked for

std::string Record()
{
    return RecordText(Scratch().stData);
}

void ReleaseRecord()
{
    FRU_ANALYZER_SafeFree(&Scratch().stData);
}

std::string Response()
{
    return std::to_string(Scratch().uiNumber) + "|" + HexText(Scratch().aucBytes, sizeof(Scratch().aucBytes));
}

bool GetBaseboard(u8 ucMode)
{
    return LIB_FRU_GetFRUData(FRU_COMPONENT_BASEBOARD, 0U, ucMode, FRU_READ_ARG_USUAL, &Scratch().stData) ==
           FRU_OK;
}

bool ReadHandler()
{
    const u8 aucReq[] = {CARD, 8U, 0U, COUNT};
    Scratch().uiNumber = LIB_FRU_ReadFRUData(aucReq, sizeof(aucReq), Scratch().aucBytes, 0U);
    return Scratch().aucBytes[0] == FRU_CC_OK;
}

bool ReadSpan()
{
    return LIB_FRU_GetFRUDataFromEEPROM(static_cast<u32>(BaseboardImage().size()), &Scratch().stRequest,
                                        sizeof(Scratch().stRequest), Scratch().aucBytes, 0U) == FRU_OK;
}

void AddHandlerCases(CASES &vecCases)
{
    vecCases.push_back({"LIB_FRU_GetFRUAreaInfo",
                        "the card",
                        {"sequence-not-opened"},
                        {},
                        [] {
                            const u8 ucDevice = CARD;
                            Scratch().uiNumber = LIB_FRU_GetFRUAreaInfo(&ucDevice, 1U, Scratch().aucBytes);
                            return Scratch().aucBytes[0] == FRU_CC_OK;
                        },
                        Response,
                        {}});
    vecCases.push_back({"LIB_FRU_ReadFRUData", "from the cache", {}, {}, ReadHandler, Response, {}});
    vecCases.push_back({"LIB_FRU_ReadFRUData",
                        "from the device",
                        {"count-answered"},
                        DistrustCaches,
                        ReadHandler,
                        Response,
                        {}});
    vecCases.push_back({"LIB_FRU_ReadFRUData",
                        "from the cache alone",
                        {},
                        [] {
                            FRU_DEVICE_INFO_S stInfo = InfoOf(CARD);
                            stInfo.ucDatabaseOnly = 1U;
                            PutInfo(stInfo);
                        },
                        ReadHandler,
                        Response,
                        {}});
}

void AddSpanCases(CASES &vecCases)
{
    const auto Request = [] { Scratch().stRequest = {BASEBOARD, 0U, COUNT}; };
    const auto Bytes = [] { return HexText(Scratch().aucBytes, sizeof(Scratch().aucBytes)); };
    vecCases.push_back({"LIB_FRU_GetFRUDataFromEEPROM", "from the cache", {}, Request, ReadSpan, Bytes, {}});
    vecCases.push_back({"LIB_FRU_GetFRUDataFromEEPROM",
                        "from the device",
                        {"span-by-asked-counts"},
                        [Request] {
                            Request();
                            DistrustCaches();
                        },
                        ReadSpan,
                        Bytes,
                        {}});
    vecCases.push_back({"LIB_FRU_ReadFromEEPROM",
                        "a part of the card's",
                        {"bytes-counted"},
                        [] { Scratch().stInfo = InfoOf(CARD); },
                        [] {
                            Scratch().iResult =
                                LIB_FRU_ReadFromEEPROM(&Scratch().stInfo, 0x20U, COUNT, Scratch().aucBytes);
                            return Scratch().iResult >= 0;
                        },
                        [Bytes] { return std::to_string(Scratch().iResult) + "|" + Bytes(); },
                        {}});
}

void AddRecordCases(CASES &vecCases)
{
    const auto Plain = [] { return GetBaseboard(FRU_READ_MODE_PLAIN); };
    const auto Recovering = [] { return GetBaseboard(FRU_READ_MODE_RECOVER); };
    vecCases.push_back({"LIB_FRU_GetFRUData",
                        "from the cache",
                        {"multirecords-left-out"},
                        {},
                        Plain,
                        Record,
                        ReleaseRecord});
    vecCases.push_back({"LIB_FRU_GetFRUData",
                        "from the device",
                        {"multirecords-left-out"},
                        DistrustCaches,
                        Plain,
                        Record,
                        ReleaseRecord});
    vecCases.push_back({"LIB_FRU_GetFRUData",
                        "recovered, from the cache",
                        {"multirecords-left-out", "recovered-short"},
                        DamageBaseboard,
                        Recovering,
                        Record,
                        ReleaseRecord});
    vecCases.push_back({"LIB_FRU_GetFRUData",
                        "recovered, from the device",
                        {"multirecords-left-out", "recovered-short"},
                        [] {
                            DamageBaseboard();
                            DistrustCaches();
                        },
                        Recovering,
                        Record,
                        ReleaseRecord});
    vecCases.push_back(
        {"LIB_FRU_GetFRUDataFromDB",
         "the baseboard",
         {"multirecords-left-out"},
         {},
         [] { return LIB_FRU_GetFRUDataFromDB(FRU_COMPONENT_BASEBOARD, 0U, &Scratch().stData) == FRU_OK; },
         Record,
         ReleaseRecord});
}

} // namespace

void AddAccessCases(CASES &vecCases)
{
    AddHandlerCases(vecCases);
    AddSpanCases(vecCases);
    AddRecordCases(vecCases);
}

} // namespace prove
