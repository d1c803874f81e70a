// SPDX-License-Identifier: Apache-2.0
// The setters behind the catalogue: each stores one new value in one member of a decoded record. No checks of
// the value and no I/O.
#include <cstdlib>

#include "lib_fru_dates.h"
#include "lib_fru_write/label_rows.h"
#include "lib_fru_write/lib_fru_write_module.h"

namespace {

void ReportNoFields(u32 uiArea, const char *pcFunction)
{
    if (uiArea == FRU_AREA_CHASSIS) {
        FRU_LOG_NULL_IN("pstFRUData->stChassisInfo.ppucCustomFields", pcFunction);
    } else if (uiArea == FRU_AREA_BOARD) {
        FRU_LOG_NULL_IN("pstFRUData->stBoardInfo.ppucCustomFields", pcFunction);
    } else {
        FRU_LOG_NULL_IN("pstFRUData->stProductInfo.ppucCustomFields", pcFunction);
    }
}

void ReportTooFew(u32 uiArea, u8 ucCount)
{
    if (uiArea == FRU_AREA_CHASSIS) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_WARNING, "Total_Chassis_CustomField count is %#x\n", ucCount);
    } else if (uiArea == FRU_AREA_BOARD) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_WARNING, "Total_Board_CustomField count is %#x\n", ucCount);
    } else {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_WARNING, "Total_Product_CustomField count is %#x\n", ucCount);
    }
}

// An array of custom fields never grows: only a slot that is there can be replaced.
u32 SetCustomField(u8 *pucLabelValue, FRU_DATA_S *pstFRUData, const FRU_TARGET_S &stTarget,
                   const char *pcFunction)
{
    const FRU_AREA_S &stArea = g_astFruArea[stTarget.ucPlace];
    u8 **ppucFields = FRU_CustomFields(pstFRUData, stArea);
    if (ppucFields == nullptr) {
        ReportNoFields(stTarget.ucPlace, pcFunction);
        return FRU_ERR_NULL_POINTER;
    }
    const u8 ucCount = FRU_CustomCount(pstFRUData, stArea);
    if (ucCount <= stTarget.ucSlot) {
        ReportTooFew(stTarget.ucPlace, ucCount);
        return FRU_ERR_FAILED;
    }
    // A buffer that is stored again where it is must outlive that.
    if (ppucFields[stTarget.ucSlot] != pucLabelValue) {
        free(ppucFields[stTarget.ucSlot]);
    }
    ppucFields[stTarget.ucSlot] = pucLabelValue;
    return FRU_OK;
}

u32 SetLabel(u8 *pucLabelValue, FRU_DATA_S *pstFRUData, const FRU_TARGET_S &stTarget, const char *pcFunction)
{
    FRU_REQUIRE_IN(pucLabelValue, FRU_ERR_NULL_POINTER, pcFunction);
    FRU_REQUIRE_IN(pstFRUData, FRU_ERR_NULL_POINTER, pcFunction);
    const char *pcText = reinterpret_cast<const char *>(pucLabelValue);
    switch (stTarget.eSets) {
    case FRU_SETS_TEXT:
        FRU_ReplaceFieldText(pstFRUData, stTarget.ucPlace, pucLabelValue);
        return FRU_OK;
    case FRU_SETS_CUSTOM:
        return SetCustomField(pucLabelValue, pstFRUData, stTarget, pcFunction);
    case FRU_SETS_LANGUAGE:
        *FRU_FieldBytes(pstFRUData, stTarget.ucPlace) = static_cast<u8>(strtol(pcText, nullptr, 10));
        return FRU_OK;
    case FRU_SETS_DATE:
        return LIB_FRU_CaclMfgDateTime(pcText, pstFRUData);
    default:
        return FRU_OK;
    }
}

} // namespace

#define FRU_STORED_SETTER(uiID, pcName, uiMin, uiMax, ucNone, eRule, ucSpecial, stTarget, pfnSetLabel)       \
    u32 pfnSetLabel(u8 *pucLabelValue, FRU_DATA_S *pstFRUData)                                               \
    {                                                                                                        \
        static constexpr FRU_TARGET_S g_stTarget = stTarget;                                                 \
        return SetLabel(pucLabelValue, pstFRUData, g_stTarget, #pfnSetLabel);                                \
    }
#define FRU_NO_SETTER(uiID, pcName, uiMin, uiMax, ucNone, eRule, ucSpecial)
FRU_LABELS(FRU_STORED_SETTER, FRU_NO_SETTER)
