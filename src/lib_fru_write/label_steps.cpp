// SPDX-License-Identifier: Apache-2.0
// The steps of a label write: read the record, check the request, put the value in, write the record back.
#include <cstring>

#include "common/text.h"
#include "lib_fru_access.h"
#include "lib_fru_analyzer/fields.h"
#include "lib_fru_codec.h"
#include "lib_fru_labels.h"
#include "lib_fru_write/catalogue.h"
#include "lib_fru_write/label_block.h"
#include "lib_fru_write/lib_fru_write_module.h"

namespace {

// An empty product area, so that product labels can be written on any device.
u32 SetProductAreaDefault(FRU_DATA_S *pstFRUData)
{
    const FRU_AREA_S &stArea = g_astFruArea[FRU_AREA_PRODUCT];
    FRU_SetAreaPlace(&pstFRUData->stCommonHeader, stArea, FRU_AREA_PRESENT);
    pstFRUData->stProductInfo.ucFormatVersion = FRU_AREA_VERSION;
    pstFRUData->stProductInfo.ucAreaLength = 0U;
    for (u32 i = stArea.ucFirstField; i < stArea.ucEndField; ++i) {
        if (g_astFruField[i].ucKind == FRU_KIND_BYTES) {
            (void)memset(FRU_FieldBytes(pstFRUData, i), 0, g_astFruField[i].ucBytes);
            continue;
        }
        // 0 for the manufacturer on purpose; its buffer has one byte as the others have.
        *FRU_FieldSize(pstFRUData, i) = i == FRU_FIELD_PRODUCT_MANUFACTURER ? 0U : 1U;
        u8 *pucEmptyText = static_cast<u8 *>(FRU_ZALLOC(1U));
        if (pucEmptyText == nullptr) {
            return FRU_ERR_FAILED;
        }
        FRU_StoreFieldText(pstFRUData, i, pucEmptyText);
    }
    pstFRUData->stProductInfo.ucCustomFieldCount = 0U;
    return FRU_OK;
}

// A copy of the value for the record to own; null when there is no memory.
u8 *FRU_MallocLabelValue(const FRU_SET_PARA_S *pstFRUSetPara)
{
    const u32 uiLength = pstFRUSetPara->uiLabelValueLen;
    const u32 uiSize = uiLength + 1U;
    u8 *pucLabelValue = static_cast<u8 *>(FRU_ZALLOC(uiSize));
    FRU_REQUIRE(pucLabelValue, nullptr);
    // A length that is not the text's own neither reads past the block nor costs the copy its terminator.
    const size_t uiBlock = sizeof(pstFRUSetPara->acLabelValue);
    (void)memcpy(pucLabelValue, pstFRUSetPara->acLabelValue, uiLength < uiBlock ? uiLength : uiBlock);
    return pucLabelValue;
}

} // namespace

u32 FRU_GetElectronicLabel(const FRU_SET_PARA_S *pstFRUSetPara, FRU_DATA_S *pstFRUData)
{
    FRU_REQUIRE(pstFRUSetPara, FRU_ERR_NULL_POINTER);
    FRU_REQUIRE(pstFRUData, FRU_ERR_NULL_POINTER);
    u32 uiResult = LIB_FRU_GetFRUData(pstFRUSetPara->ucComponentType, pstFRUSetPara->ucInstance,
                                      FRU_READ_MODE_RECOVER, FRU_READ_ARG_USUAL, pstFRUData);
    if (uiResult != FRU_OK) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Get FRU data failed! Ret:%#x.", uiResult);
        FRU_ANALYZER_SafeFree(pstFRUData);
        return FRU_ERR_FAILED;
    }
    if (pstFRUData->stCommonHeader.ucProductInfoAreaStartOffset != 0U) {
        return FRU_OK;
    }
    uiResult = SetProductAreaDefault(pstFRUData);
    if (uiResult != FRU_OK) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Set product area default value failed! Ret:%#x.", uiResult);
        FRU_ANALYZER_SafeFree(pstFRUData);
        return FRU_ERR_FAILED;
    }
    return FRU_OK;
}

u32 FRU_CheckElectronicLabel(FRU_SET_PARA_S *pstFRUSetPara)
{
    FRU_REQUIRE(pstFRUSetPara, FRU_ERR_NULL_POINTER);
    if (isLabelNameValid(pstFRUSetPara) != 1U) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Label name[%s] is invalid!",
                FRU_TextOf(pstFRUSetPara->acLabelName).acText);
        return FRU_ERR_FAILED;
    }
    // A value without an end inside the block is never valid. The check sees a copy that has one, and says
    // why it refuses the length.
    char *pcValue = pstFRUSetPara->acLabelValue;
    const bool bTerminated = FRU_IsTerminated(pcValue, sizeof(pstFRUSetPara->acLabelValue));
    auto stCopy = FRU_TextOf(pstFRUSetPara->acLabelValue);
    char *pcChecked = bTerminated ? pcValue : stCopy.acText;
    const i32 iLength = static_cast<i32>(pstFRUSetPara->uiLabelValueLen);
    const u32 uiValid =
        isLabelValueValid(pstFRUSetPara->acLabelName, pcChecked, iLength, pstFRUSetPara->ucComponentType);
    if (uiValid != 1U || !bTerminated) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Label value[%s] length[%d] is invalid!", pcChecked,
                iLength);
        return FRU_ERR_FAILED;
    }
    return FRU_OK;
}

u32 FRU_ReplaceElectronicLabel(const FRU_SET_PARA_S *pstFRUSetPara, FRU_DATA_S *pstFRUData)
{
    FRU_REQUIRE(pstFRUSetPara, FRU_ERR_NULL_POINTER);
    FRU_REQUIRE(pstFRUData, FRU_ERR_NULL_POINTER);
    const DIAG_FRU_LABEL_S *pstLabel = FRU_FindLabelByID(pstFRUSetPara->uiLabelID);
    if (pstLabel == nullptr) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Find fru label replace failed! Ret:%#x.", FRU_ERR_FAILED);
        return FRU_ERR_FAILED;
    }
    const auto pfnSetLabel = pstLabel->pfnSetLabel;
    if (pfnSetLabel == nullptr) {
        // Nothing of the record changes, and the unchanged record is written back: the hardware label's case.
        return FRU_OK;
    }
    FRU_BUFFER upLabelValue(FRU_MallocLabelValue(pstFRUSetPara));
    if (upLabelValue == nullptr) {
        FRU_LOG_NULL("pucLabelValue"); // a second time, under this function's name
        return FRU_ERR_NULL_POINTER;
    }
    const u32 uiResult = pfnSetLabel(upLabelValue.get(), pstFRUData);
    if (uiResult != FRU_OK) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Replace fru label failed! Ret:%#x.", uiResult);
        return FRU_ERR_FAILED;
    }
    if (!FRU_SetterKeepsNothing(pfnSetLabel)) {
        (void)upLabelValue.release(); // the record's now
    }
    return FRU_OK;
}

i32 FRU_SetElectronicLabel(const FRU_SET_PARA_S *pstFRUSetPara, const FRU_DATA_S *pstFRUData)
{
    FRU_REQUIRE(pstFRUSetPara, static_cast<i32>(FRU_ERR_NULL_POINTER));
    FRU_REQUIRE(pstFRUData, static_cast<i32>(FRU_ERR_NULL_POINTER));
    const u32 uiResult = LIB_FRU_WriteArrayFRUData(pstFRUSetPara->ucComponentType, pstFRUSetPara->ucInstance,
                                                   pstFRUData, FRU_WRITE_ARG_USUAL);
    if (uiResult != FRU_OK) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Write FRU array data failed! Ret:%#x.", uiResult);
        return static_cast<i32>(FRU_ERR_FAILED);
    }
    return 0;
}

void FRU_UpdateFRUInfo(u32 uiLabelID, const char *pcLabelValue, u32 uiLabelValueLen)
{
    FRU_REQUIRE_OR_LEAVE(pcLabelValue);
    if (uiLabelID != FRU_LABEL_PRODUCT_SERIAL_NUMBER) {
        return;
    }
    const u32 uiResult = FRU_UpdateProductSN(pcLabelValue, uiLabelValueLen);
    if (uiResult != FRU_OK) {
        // The device holds the new value already: the mirror's failure is told and does not fail the write.
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_WARNING, "Update Product SN failed! Ret:%#x.", uiResult);
    }
}
