// SPDX-License-Identifier: Apache-2.0
// The thirteen calls of the cache records, the device table and the SDRs.
#include "prove/fault_case.h"
#include "prove/world.h"

namespace prove {
namespace {

std::string Info()
{
    return HexText(&Scratch().stInfo, sizeof(Scratch().stInfo));
}

std::string Table()
{
    return HexText(&Scratch().stTable, sizeof(Scratch().stTable));
}

std::string Sdr()
{
    return HexText(&Scratch().stSdr, sizeof(Scratch().stSdr));
}

std::string Byte()
{
    return std::to_string(Scratch().aucBytes[0]);
}

CASE_S Simple(const char *pcCall, const char *pcAbout, std::function<u32()> fnCall,
              std::function<std::string()> fnOutput)
{
    return {pcCall,
            pcAbout,
            {},
            {},
            [fnCall = std::move(fnCall)] { return fnCall() == FRU_OK; },
            std::move(fnOutput),
            {}};
}

void AddPuts(CASES &vecCases)
{
    vecCases.push_back(Simple("FRU_DB_PutFRUDeviceInfo", "a new record",
                              [] { return FRU_DB_PutFRUDeviceInfo(9U, &Scratch().stInfo); }, {}));
    vecCases.push_back(Simple("FRU_DB_PutFRUSDR", "another SDR",
                              [] { return FRU_DB_PutFRUSDR(CARD, &Scratch().stSdr); }, {}));
    vecCases.push_back(Simple("FRU_DB_PutFRUData", "a new device's image",
                              [] { return FRU_DB_PutFRUData(9U, 64U, Scratch().aucBytes); }, {}));
    vecCases.push_back(
        Simple("FRU_DB_DelFRUData", "an image that is there", [] { return FRU_DB_DelFRUData(CARD); }, {}));
    vecCases.push_back(Simple("FRU_DB_PutOperateFlag", "opened",
                              [] { return FRU_DB_PutOperateFlag(FRU_OPERATE_OPEN); }, {}));
    vecCases.push_back(Simple("FRU_DB_PutFRUDeviceTbl", "an empty table",
                              [] { return FRU_DB_PutFRUDeviceTbl(&Scratch().stTable); }, {}));
    vecCases.push_back(Simple("FRU_DB_PutFRUDataCacheStatus", "no longer trusted",
                              [] { return FRU_DB_PutFRUDataCacheStatus(CARD, FRU_CACHE_UNTRUSTED); }, {}));
}

void AddGets(CASES &vecCases)
{
    vecCases.push_back(Simple(
        "FRU_DB_GetFRUDeviceInfo", "a record",
        [] { return FRU_DB_GetFRUDeviceInfo(CARD, &Scratch().stInfo); }, Info));
    vecCases.push_back(Simple(
        "FRU_DB_GetFRUSDR", "an SDR", [] { return FRU_DB_GetFRUSDR(CARD, &Scratch().stSdr); }, Sdr));
    vecCases.push_back(Simple(
        "FRU_DB_GetFRUData", "an image",
        [] { return FRU_DB_GetFRUData(CARD, static_cast<u16>(CardImage().size()), Scratch().aucBytes); },
        [] { return HexText(Scratch().aucBytes, CardImage().size()); }));
    vecCases.push_back(Simple(
        "FRU_DB_GetOperateFlag", "the flag", [] { return FRU_DB_GetOperateFlag(Scratch().aucBytes); }, Byte));
    vecCases.push_back(Simple(
        "FRU_DB_GetFRUDataCacheStatus", "a status",
        [] { return FRU_DB_GetFRUDataCacheStatus(CARD, Scratch().aucBytes); }, Byte));
    vecCases.push_back(Simple(
        "FRU_DB_GetFRUDeviceTbl", "the table", [] { return FRU_DB_GetFRUDeviceTbl(&Scratch().stTable); },
        Table));
}

void AddTableCases(CASES &vecCases)
{
    vecCases.push_back(Simple(
        "LIB_FRU_GetFRUDeviceTbl", "the table", [] { return LIB_FRU_GetFRUDeviceTbl(&Scratch().stTable); },
        Table));
    vecCases.push_back(Simple(
        "LIB_FRU_GetDeviceID", "the card's",
        [] { return LIB_FRU_GetDeviceID(FRU_COMPONENT_BMC_CARD, 0U, Scratch().aucBytes); }, Byte));
    vecCases.push_back(Simple(
        "LIB_FRU_GetFRUDeviceInfo", "the card's",
        [] { return LIB_FRU_GetFRUDeviceInfo(FRU_COMPONENT_BMC_CARD, 0U, &Scratch().stInfo); }, Info));
    vecCases.push_back(Simple(
        "LIB_FRU_GetSDRByRecordID", "the card's",
        [] { return LIB_FRU_GetSDRByRecordID(SDR_RECORD + CARD, &Scratch().stSdr); }, Sdr));
    CASE_S stTotal = Simple(
        "LIB_FRU_GetFRUTotalNum", "three devices", [] { return LIB_FRU_GetFRUTotalNum(Scratch().aucBytes); },
        Byte);
    stTotal.vecRules = {"no-table-no-devices"};
    vecCases.push_back(stTotal);
}

} // namespace

void AddCacheCases(CASES &vecCases)
{
    AddPuts(vecCases);
    AddGets(vecCases);
    AddTableCases(vecCases);
}

} // namespace prove
