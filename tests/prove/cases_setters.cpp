// SPDX-License-Identifier: Apache-2.0
// The setters of the labels, and MultiRecords.
#include <cstdlib>
#include <cstring>

#include "lib_fru_multirecord.h"
#include "prove/fault_case.h"
#include "prove/world.h"
#include "support/record_builder.h"

namespace prove {
namespace {

struct SETTER_S
{
    const char *pcName;
    u32 (*pfnSet)(u8 *pucLabelValue, FRU_DATA_S *pstFRUData);
    const char *pcValue;
    bool bKeeps; // the record owns the value then
};

#define SETTER(Name, pcValue, bKeeps)                                                                        \
    {                                                                                                        \
#Name, Name, pcValue, bKeeps                                                                         \
    }
const SETTER_S SETTERS[] = {
    SETTER(setChassisType, "Rack Mount Chassis", true),
    SETTER(setChassisPartNum, "new", true),
    SETTER(setChassisSerialNum, "new", true),
    SETTER(setChassisCustomerSerialNum, "new", true),
    SETTER(setChassisMACAddress, "001122334455", true),
    SETTER(setChassisMACAddressCount, "2", true),
    SETTER(setChassisClEICode, "new", true),
    SETTER(setChassisLocationNodeID, "new", true),
    SETTER(setBoardLanuageCode, "9", false),
    SETTER(setBoardMfgDate, "2024-04-05", false),
    SETTER(setBoardManufacturer, "new", true),
    SETTER(setBoardProductName, "new", true),
    SETTER(setBoardSerialNumber, "new", true),
    SETTER(setBoardPartNumber, "new", true),
    SETTER(setBoardFRUFileID, "new", true),
    SETTER(setBoardTopSerialNumber, "new", true),
    SETTER(setProductLanguageCode, "9", false),
    SETTER(setProductManufacturer, "new", true),
    SETTER(setProductProductName, "new", true),
    SETTER(setProductSerialNumber, "new", true),
    SETTER(setProductPartNumber, "new", true),
    SETTER(setProductVersion, "new", true),
    SETTER(setProductAssetTag, "new", true),
    SETTER(setProductFRUFileID, "new", true),
    SETTER(setProductNodeType, "new", true),
    SETTER(setProductNodePSU, "new", true),
    SETTER(setProductNodeNetwork, "new", true),
    SETTER(setProductNodePower, "new", true),
};

CASE_S SetterCase(const SETTER_S &stSetter)
{
    return {stSetter.pcName,
            "a new value",
            {},
            [&stSetter] {
                (void)FRU_ANALYZER_InterpretFRUData(
                    BaseboardImage().data(), static_cast<u32>(BaseboardImage().size()), &Scratch().stData);
                Scratch().pucText = model::Heap(stSetter.pcValue);
            },
            [&stSetter] {
                const bool bSet = stSetter.pfnSet(Scratch().pucText, &Scratch().stData) == FRU_OK;
                Scratch().pucText = bSet && stSetter.bKeeps ? nullptr : Scratch().pucText;
                return bSet;
            },
            [] { return RecordText(Scratch().stData); },
            [] {
                free(Scratch().pucText);
                FRU_ANALYZER_SafeFree(&Scratch().stData);
            }};
}

// ---- MultiRecords

u32 Update(u8 ucSubType, const char *pcValue)
{
    FRU_MR_PARAM_S stParam = {};
    stParam.ucRecordTypeID = FRU_MR_TYPE_MANAGEMENT_ACCESS;
    stParam.ucSubType = ucSubType;
    stParam.uiLength = static_cast<u32>(strlen(pcValue));
    stParam.pucBuf = reinterpret_cast<u8 *>(const_cast<char *>(pcValue));
    return FRU_innerUpdateMultiRecord(&stParam);
}

// A record that waits in the store, because the FRU could not be had when it came.
void Queue()
{
    const BYTES vecTable = fake::Db()[KEY_TABLE];
    fake::Db().erase(KEY_TABLE);
    (void)Update(FRU_MR_SUBTYPE_SYSTEM_URL, "http://bmc");
    fake::Db()[KEY_TABLE] = vecTable;
}

void AddStoreCases(CASES &vecCases)
{
    RULE_NAMES vecRules = {"chunk-refused", "chunk-short", "cache-not-patched", "nobody-waits-for-notices"};
    const auto Release = [] { FRU_destroyMultiRecords(); };
    vecCases.push_back({"FRU_syncAllMultiRecords",
                        "one record queued",
                        vecRules,
                        Queue,
                        [] { return FRU_syncAllMultiRecords() == FRU_OK; },
                        {},
                        Release});
    vecCases.push_back({"FRU_syncAllMultiRecords",
                        "into an image without MultiRecords",
                        vecRules,
                        [] {
                            DropMultiRecords();
                            Queue();
                        },
                        [] { return FRU_syncAllMultiRecords() == FRU_OK; },
                        {},
                        Release});
    vecRules.push_back("record-not-queued");
    vecCases.push_back({"FRU_innerUpdateMultiRecord",
                        "a new record",
                        vecRules,
                        {},
                        [] { return Update(FRU_MR_SUBTYPE_SYSTEM_PING_ADDRESS, "10.0.0.1") == FRU_OK; },
                        {},
                        Release});
    vecCases.push_back({"FRU_innerUpdateMultiRecord",
                        "another value of a record, and one queued",
                        vecRules,
                        Queue,
                        [] { return Update(FRU_MR_SUBTYPE_SYSTEM_NAME, "another") == FRU_OK; },
                        {},
                        Release});
    vecCases.push_back({"FRU_destroyMultiRecords",
                        "one record queued",
                        {"store-not-destroyed"},
                        Queue,
                        [] {
                            FRU_destroyMultiRecords();
                            return true;
                        },
                        [] {
                            // What was destroyed is not merged.
                            (void)FRU_syncAllMultiRecords();
                            return HexText(Chip(BASEBOARD).data(), Chip(BASEBOARD).size());
                        },
                        Release});
}

void AddOtherCases(CASES &vecCases)
{
    vecCases.push_back(
        {"FRU_checkAllMultiRecords",
         "an image's list",
         {},
         {},
         [] {
             const u8 *pucList = &BaseboardImage()[BaseboardImage()[5] * size_t{FRU_AREA_UNIT}];
             return FRU_checkAllMultiRecords(pucList, FRU_MR_CHECK_EEPROM, &Scratch().uiNumber) == FRU_OK;
         },
         [] { return std::to_string(Scratch().uiNumber); },
         {}});
    vecCases.push_back({"FRU_ConvertGUIDToStandardOrder",
                        "sixteen bytes",
                        {},
                        {},
                        [] {
                            FRU_ConvertGUIDToStandardOrder(BaseboardImage().data(), Scratch().aucBytes);
                            return true;
                        },
                        [] { return HexText(Scratch().aucBytes, FRU_MR_GUID_LEN); },
                        {}});
}

} // namespace

void AddSetterCases(CASES &vecCases)
{
    for (const SETTER_S &stSetter : SETTERS) {
        vecCases.push_back(SetterCase(stSetter));
    }
}

void AddMultiRecordCases(CASES &vecCases)
{
    AddStoreCases(vecCases);
    AddOtherCases(vecCases);
}

} // namespace prove
