// Release of a decoded record.
#include "lib_fru_analyzer/lib_fru_analyzer_module.h"

#include "lib_fru_analyzer/fields.h"
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
        FRU_FREE(ppucFields[i]);
    }
    // Also when the count is 0. The count itself stays, as every other plain member does.
    std::free(ppucFields);
    FRU_StorePointer<u8 **>(pstFRUData, stArea.stCustom.usFields, nullptr);
}

} // namespace

void FRU_ANALYZER_SafeFree(FRU_DATA_S *pstFRUData)
{
    FRU_REQUIRE_OR_LEAVE(pstFRUData);
    FRU_FREE(pstFRUData->stInternalUseArea.pucData);
    for (const FRU_AREA_S &stArea : g_astFruArea) {
        for (u32 uiField = stArea.ucFirstField; uiField < stArea.ucEndField; ++uiField) {
            if (g_astFruField[uiField].ucKind != FRU_KIND_BYTES) {
                FRU_ReplaceFieldText(pstFRUData, uiField, nullptr);
            }
        }
        FreeCustomFields(pstFRUData, stArea);
    }
    // Every entry, whatever its end-of-list bit says: a damaged list may hold buffers behind it.
    for (FRU_MULTIRECORD_S &stRecord : pstFRUData->astMultiRecord) {
        FRU_FREE(stRecord.pucRecordData);
    }
}
