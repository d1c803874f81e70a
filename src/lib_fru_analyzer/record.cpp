// Release of a decoded record.
#include "lib_fru_analyzer/lib_fru_analyzer_module.h"

#include "lib_fru_analyzer/area_table.h"
#include "lib_fru_codec.h"

namespace {

void FreeMember(FRU_DATA_S *pstFRUData, u32 uiOffset)
{
    std::free(FRU_LoadPointer<void *>(pstFRUData, uiOffset));
    FRU_StorePointer<void *>(pstFRUData, uiOffset, nullptr);
}

void FreeCustomFields(FRU_DATA_S *pstFRUData, const FRU_AREA_S &stArea)
{
    u8 **ppucFields = FRU_LoadPointer<u8 **>(pstFRUData, stArea.usCustomFields);
    if (ppucFields == nullptr) {
        return;
    }
    const u32 uiCount = *FRU_MemberAt(pstFRUData, stArea.usCustomCount);
    for (u32 i = 0; i < uiCount; ++i) {
        FRU_FREE(ppucFields[i]);
    }
    // Also when the count is 0. The count itself stays, as every other plain member does.
    FreeMember(pstFRUData, stArea.usCustomFields);
}

} // namespace

void FRU_ANALYZER_SafeFree(FRU_DATA_S *pstFRUData)
{
    FRU_REQUIRE_OR_LEAVE(pstFRUData);
    FRU_FREE(pstFRUData->stInternalUseArea.pucData);
    for (const FRU_AREA_S &stArea : g_astFruArea) {
        if (stArea.usChassisType != 0U) {
            FreeMember(pstFRUData, stArea.usChassisType);
        }
        for (u32 i = 0; i < stArea.uiFieldCount; ++i) {
            FreeMember(pstFRUData, stArea.pstField[i].usText);
        }
        FreeCustomFields(pstFRUData, stArea);
    }
    // Every entry, whatever its end-of-list bit says: a damaged list may hold buffers behind it.
    for (FRU_MULTIRECORD_S &stRecord : pstFRUData->astMultiRecord) {
        FRU_FREE(stRecord.pucRecordData);
    }
}
