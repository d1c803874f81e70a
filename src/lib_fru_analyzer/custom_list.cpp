// SPDX-License-Identifier: Apache-2.0
#include "lib_fru_analyzer/custom_list.h"

#include "lib_fru_analyzer/area_texts.h"
#include "lib_fru_analyzer/lib_fru_analyzer_module.h"
#include "lib_fru_analyzer/type_length.h"

u32 FRU_GetCustomerFieldCount(const u8 *pucStartBuff, u32 uiSize, u8 *pucCount)
{
    FRU_REQUIRE(pucStartBuff, FRU_ERR_NULL_POINTER);
    u32 uiCount = 0;
    for (u32 uiAt = 0; uiAt < uiSize; uiAt += (pucStartBuff[uiAt] & FRU_FIELD_LENGTH_MASK) + 1U) {
        if (pucStartBuff[uiAt] == FRU_FIELD_END) {
            *pucCount = static_cast<u8>(uiCount);
            return FRU_OK;
        }
        // Counts a field that runs past the area, too; 8 bits, so 256 fields are none.
        ++uiCount;
    }
    *pucCount = static_cast<u8>(uiCount);
    FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_WARNING, "Get customer field count failed! Size:%#x.", uiSize);
    return FRU_ERR_FAILED;
}

namespace {

u32 DecodeFields(u32 uiArea, FRU_READER_S &stReader, u32 uiFrom, u32 uiTo, u8 **ppucFields)
{
    const FRU_DECODE_TEXTS_S &stTexts = g_astFruDecodeTexts[uiArea];
    for (u32 i = uiFrom; i < uiTo; ++i) {
        u8 ucSize = 0;
        if (FRU_ReadField(stReader, &ppucFields[i], &ucSize) != FRU_OK) {
            FRU_FREE(ppucFields[i]);
            FRU_LOG_TABLE(FRU_CAT_GENERAL, BMC_DIAG_ERROR, stTexts.acCustomField, i);
            if (stTexts.acCustomRet[0] != '\0') {
                FRU_LOG_TABLE(FRU_CAT_GENERAL, BMC_DIAG_ERROR, stTexts.acCustomRet, FRU_ERR_FAILED);
            }
            return FRU_ERR_FAILED;
        }
    }
    return FRU_OK;
}

// The slots behind the last field become empty texts.
u32 FillSlots(u32 uiArea, u32 uiFrom, u8 **ppucFields)
{
    u8 aucEmpty[FRU_CHASSIS_FIXED_SLOTS];
    (void)memset(aucEmpty, FRU_FIELD_EMPTY, sizeof(aucEmpty));
    FRU_READER_S stEmpty = FRU_ReaderOver(aucEmpty, sizeof(aucEmpty));
    return DecodeFields(uiArea, stEmpty, uiFrom, g_astFruArea[uiArea].stCustom.ucFixedSlots, ppucFields);
}

} // namespace

u32 FRU_GetCustomFields(u32 uiArea, FRU_READER_S stReader, u32 uiUsed, u32 uiAreaSize, FRU_DATA_S *pstFRUData)
{
    const FRU_CUSTOM_LIST_S &stCustom = g_astFruArea[uiArea].stCustom;
    const FRU_DECODE_TEXTS_S &stTexts = g_astFruDecodeTexts[uiArea];
    if (uiUsed >= uiAreaSize) {
        FRU_LOG_TABLE(FRU_CAT_GENERAL, BMC_DIAG_ERROR, stTexts.acCustomAddress);
        return FRU_ERR_FAILED;
    }
    const u32 uiLeft = uiAreaSize - uiUsed;
    u8 *pucCount = FRU_MemberAt(pstFRUData, stCustom.usCount);
    const u32 uiPreset = *pucCount;
    if (FRU_GetCustomerFieldCount(stReader.pucCursor, uiLeft, pucCount) != FRU_OK) {
        FRU_LOG_TABLE(FRU_CAT_GENERAL, BMC_DIAG_ERROR, stTexts.acCustomCount);
        return FRU_ERR_FAILED;
    }
    const u32 uiCount = *pucCount;
    FRU_LOG_TABLE(FRU_CAT_GENERAL, BMC_DIAG_DEBUG, stTexts.acCustomDebug, uiCount, uiLeft);

    const bool bFixed =
        stCustom.ucFixedSlots != 0U && uiPreset == stCustom.ucFixedSlots && uiCount != uiPreset;
    if (uiCount == 0U && !bFixed) {
        return FRU_OK;
    }
    u8 **ppucFields =
        static_cast<u8 **>(FRU_CALLOC(bFixed ? stCustom.ucFixedSlots : uiCount, sizeof(*ppucFields)));
    if (ppucFields == nullptr) {
        FRU_LOG_TABLE(FRU_CAT_GENERAL, BMC_DIAG_ERROR, stTexts.acCustomMemory);
        return FRU_ERR_FAILED;
    }
    if (bFixed && uiCount > stCustom.ucFixedSlots) {
        // The record keeps the count but not the array: the release would walk past its slots.
        FRU_FREE(ppucFields);
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "CustomField is ovr than calloc, customfield= %d!", uiCount);
        return FRU_ERR_FAILED;
    }
    FRU_StorePointer(pstFRUData, stCustom.usFields, ppucFields);
    const u32 uiRet = DecodeFields(uiArea, stReader, 0U, uiCount, ppucFields);
    if (uiRet != FRU_OK || !bFixed) {
        return uiRet;
    }
    *pucCount = stCustom.ucFixedSlots;
    return FillSlots(uiArea, uiCount, ppucFields);
}
