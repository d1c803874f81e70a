// SPDX-License-Identifier: Apache-2.0
// Release of a decoded record.
#include "lib_fru_analyzer/lib_fru_analyzer_module.h"

#include "lib_fru_analyzer/fields.h"
#include "lib_fru_analyzer/multirecord_area.h"
#include "lib_fru_codec.h"

namespace {

void FreeCustomFields(FRU_DATA_S *pstFRUData, const FRU_AREA_S &stArea)
{
    u8 **ppucFields = FRU_CustomFields(pstFRUData, stArea);
    if (ppucFields == nullptr) {
        return;
    }
    const u32 uiCount = FRU_CustomCount(pstFRUData, stArea);
    for (u32 i = 0; i < uiCount; ++i) {
        if (ppucFields[i] != nullptr) {
            FRU_FREE(ppucFields[i]);
        }
    }
    // Also when the count is 0. The count itself stays, as every other plain member does.
    std::free(ppucFields);
    FRU_StorePointer<u8 **>(pstFRUData, stArea.stCustom.usFields, nullptr);
}

// Most records have no or few MultiRecords, so entries are looked at by the group first.
constexpr u32 g_uiGroup = 4U;
static_assert(FRU_MULTIRECORD_MAX % g_uiGroup == 0U);

bool HasData(const FRU_MULTIRECORD_S *pstGroup)
{
    const uintptr_t uiAny = reinterpret_cast<uintptr_t>(pstGroup[0].pucRecordData) |
                            reinterpret_cast<uintptr_t>(pstGroup[1].pucRecordData) |
                            reinterpret_cast<uintptr_t>(pstGroup[2].pucRecordData) |
                            reinterpret_cast<uintptr_t>(pstGroup[3].pucRecordData);
    return uiAny != 0U;
}

} // namespace

void FRU_FreeMultiRecords(FRU_DATA_S *pstFRUData)
{
    // Every entry, whatever its end-of-list bit says: a damaged list may hold buffers behind it.
    for (u32 uiFirst = 0; uiFirst < FRU_MULTIRECORD_MAX; uiFirst += g_uiGroup) {
        FRU_MULTIRECORD_S *pstGroup = pstFRUData->astMultiRecord + uiFirst;
        if (!HasData(pstGroup)) {
            continue;
        }
        for (u32 i = 0; i < g_uiGroup; ++i) {
            if (pstGroup[i].pucRecordData != nullptr) {
                FRU_FREE(pstGroup[i].pucRecordData);
            }
        }
    }
}

void FRU_ANALYZER_SafeFree(FRU_DATA_S *pstFRUData)
{
    FRU_REQUIRE_OR_LEAVE(pstFRUData);
    if (pstFRUData->stInternalUseArea.pucData != nullptr) {
        FRU_FREE(pstFRUData->stInternalUseArea.pucData);
    }
    for (const FRU_AREA_S &stArea : g_astFruArea) {
        for (u32 uiField = stArea.ucFirstField; uiField < stArea.ucEndField; ++uiField) {
            const bool bText = g_astFruField[uiField].ucKind != FRU_KIND_BYTES;
            u8 *pucText = bText ? FRU_FieldText(pstFRUData, uiField) : nullptr;
            if (pucText != nullptr) {
                std::free(pucText);
                FRU_StoreFieldText(pstFRUData, uiField, nullptr);
            }
        }
        FreeCustomFields(pstFRUData, stArea);
    }
    FRU_FreeMultiRecords(pstFRUData);
}
