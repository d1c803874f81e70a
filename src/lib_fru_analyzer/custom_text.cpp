// SPDX-License-Identifier: Apache-2.0
// Custom fields as texts for callers that show or export them.
#include "lib_fru_analyzer/custom_text.h"

#include <cstdio>
#include <cstring>

#include "lib_fru_analyzer/fields.h"
#include "lib_fru_analyzer/lib_fru_analyzer_module.h"
#include "lib_fru_codec.h"

namespace {

constexpr u16 g_usNoSlot = 0xFFFFU;
constexpr u32 g_uiSlotCount = 3U;
constexpr u32 g_uiSlotLen = sizeof(FRU_CUSTOM_FIELD_S::acChassisCustomField1);

// One area's part of the result. Member offsets count from the start of FRU_CUSTOM_FIELD_S.
struct CUSTOM_AREA_S
{
    u32 uiArea;
    u16 ausSlot[g_uiSlotCount]; // char[64] member by field index
    u16 usText;                 // char * member
    u16 usLength;               // u32 member
    u32 uiAppendFailure;        // result after an append that failed
    char acIndexError[40];      // of a field without a slot; empty: the area has no slots
    char acMallocError[44];
    char acEscapeError[36];
    char acClosing[48];
};

#define CUSTOM_OFFSET(Member) static_cast<u16>(offsetof(FRU_CUSTOM_FIELD_S, Member))

constexpr CUSTOM_AREA_S g_astCustomArea[] = {
    {FRU_AREA_CHASSIS,
     {g_usNoSlot, CUSTOM_OFFSET(acChassisCustomField1), CUSTOM_OFFSET(acChassisCustomField2)},
     CUSTOM_OFFSET(pcChassisCustomFields),
     CUSTOM_OFFSET(uiChassisCustomFieldsLen),
     FRU_ERR_FAILED,
     "Invalid chassis custom field index[%d].",
     "Malloc chassis custom field failed! Ret:%d.",
     "Escape chassis custom field failed!",
     "Interpret chassis custom field failed! Ret:%#x."},
    {FRU_AREA_BOARD,
     {CUSTOM_OFFSET(acBoardCustomField0), g_usNoSlot, g_usNoSlot},
     CUSTOM_OFFSET(pcBoardCustomFields),
     CUSTOM_OFFSET(uiBoardCustomFieldsLen),
     FRU_ERR_FAILED,
     "Invalid board custom field index[%d].",
     "Malloc board custom field failed! Ret:%d.",
     "Escape board custom field failed!",
     "Interpret board custom field failed! Ret:%#x."},
    // Intended: unlike the other two, product fields that cannot be joined are no failure.
    {FRU_AREA_PRODUCT,
     {g_usNoSlot, g_usNoSlot, g_usNoSlot},
     CUSTOM_OFFSET(pcProductCustomFields),
     CUSTOM_OFFSET(uiProductCustomFieldsLen),
     FRU_OK,
     "",
     "Malloc product custom field failed! Ret:%d.",
     "Escape product custom field failed!",
     "Interpret product custom field failed! Ret:%#x."},
};

constexpr bool TakeTheirArguments()
{
    for (const CUSTOM_AREA_S &stCustom : g_astCustomArea) {
        if (FRU_CountConversions(stCustom.acIndexError) != (stCustom.acIndexError[0] == '\0' ? 0U : 1U) ||
            FRU_CountConversions(stCustom.acMallocError) != 1U ||
            FRU_CountConversions(stCustom.acEscapeError) != 0U ||
            FRU_CountConversions(stCustom.acClosing) != 1U) {
            return false;
        }
    }
    return true;
}

static_assert(TakeTheirArguments());

void FillSlot(const CUSTOM_AREA_S &stCustom, u32 uiIndex, const char *pcField,
              FRU_CUSTOM_FIELD_S *pstFRUCustomField)
{
    if (stCustom.acIndexError[0] == '\0') {
        return;
    }
    const u16 usSlot = uiIndex < g_uiSlotCount ? stCustom.ausSlot[uiIndex] : g_usNoSlot;
    if (usSlot == g_usNoSlot) {
        // The field stays in the joined text.
        FRU_LOG_TABLE(FRU_CAT_GENERAL, BMC_DIAG_WARNING, stCustom.acIndexError, uiIndex);
        return;
    }
    char *pcSlot = reinterpret_cast<char *>(pstFRUCustomField) + usSlot;
    (void)BMC_Scnprintf(pcSlot, g_uiSlotLen, "%s", pcField);
}

// Joins the fields that are not empty; *pupJoined stays null when there are none.
u32 JoinFields(const CUSTOM_AREA_S &stCustom, const FRU_DATA_S *pstFRUData,
               FRU_CUSTOM_FIELD_S *pstFRUCustomField, FRU_TEXT *pupJoined)
{
    const FRU_AREA_S &stArea = g_astFruArea[stCustom.uiArea];
    const u8 *const *ppucFields = FRU_CustomFields(pstFRUData, stArea);
    const u32 uiCount = ppucFields == nullptr ? 0U : FRU_CustomCount(pstFRUData, stArea);
    for (u32 i = 0; i < uiCount; ++i) {
        const char *pcField = reinterpret_cast<const char *>(ppucFields[i]);
        if (pcField == nullptr || *pcField == '\0') {
            continue;
        }
        pupJoined->reset(FRU_AllocCustomField(pcField, pupJoined->release()));
        if (*pupJoined == nullptr) {
            FRU_LOG_TABLE(FRU_CAT_GENERAL, BMC_DIAG_ERROR, stCustom.acMallocError, FRU_ERR_FAILED);
            return FRU_ERR_FAILED;
        }
        FillSlot(stCustom, i, pcField, pstFRUCustomField);
    }
    return FRU_OK;
}

u32 InterpretArea(const CUSTOM_AREA_S &stCustom, const FRU_DATA_S *pstFRUData,
                  FRU_CUSTOM_FIELD_S *pstFRUCustomField)
{
    FRU_TEXT upJoined;
    if (JoinFields(stCustom, pstFRUData, pstFRUCustomField, &upJoined) != FRU_OK) {
        return stCustom.uiAppendFailure;
    }
    if (upJoined == nullptr) {
        return FRU_OK;
    }
    char *pcEscaped = FRU_ANALYZER_Escape(upJoined.get());
    if (pcEscaped == nullptr) {
        FRU_LOG_TABLE(FRU_CAT_GENERAL, BMC_DIAG_WARNING, stCustom.acEscapeError);
        return FRU_ERR_FAILED;
    }
    const u32 uiLength = static_cast<u32>(strlen(pcEscaped));
    FRU_StorePointer(pstFRUCustomField, stCustom.usText, pcEscaped);
    (void)memcpy(FRU_MemberAt(pstFRUCustomField, stCustom.usLength), &uiLength, sizeof(uiLength));
    return FRU_OK;
}

} // namespace

char *FRU_AllocCustomField(const char *pucCustomField, char *pcJoined)
{
    FRU_REQUIRE(pucCustomField, nullptr);
    const size_t uiOld = pcJoined == nullptr ? 0U : strlen(pcJoined);
    const size_t uiField = strlen(pucCustomField);
    char *pcNew = static_cast<char *>(FRU_ZALLOC(uiOld + uiField + 2U));
    if (pcNew == nullptr) {
        if (pcJoined == nullptr) {
            FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Malloc buf failed!");
            return nullptr;
        }
        (void)fputs("Invalid REALLOC is detected", stdout);
        (void)printf("Invalid REALLOC is detected in %d %s %s\n", __LINE__, __func__, FRU_DIAG_FILE);
        FRU_FREE(pcJoined);
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Realloc buf failed!");
        return nullptr;
    }
    if (pcJoined != nullptr) {
        (void)memcpy(pcNew, pcJoined, uiOld);
        FRU_FREE(pcJoined);
    }
    (void)memcpy(pcNew + uiOld, pucCustomField, uiField);
    pcNew[uiOld + uiField] = '\n';
    return pcNew;
}

u32 FRU_ANALYZER_InterpretCustomField(const FRU_DATA_S *pstFRUData, FRU_CUSTOM_FIELD_S *pstFRUCustomField)
{
    FRU_REQUIRE(pstFRUData, LIB_FRU_ERR_SIZE);
    FRU_REQUIRE(pstFRUCustomField, LIB_FRU_ERR_SIZE);
    for (const CUSTOM_AREA_S &stCustom : g_astCustomArea) {
        if (FRU_AreaPlace(pstFRUData, g_astFruArea[stCustom.uiArea]) == 0U) {
            continue;
        }
        const u32 uiRet = InterpretArea(stCustom, pstFRUData, pstFRUCustomField);
        if (uiRet != FRU_OK) {
            FRU_LOG_TABLE(FRU_CAT_GENERAL, BMC_DIAG_ERROR, stCustom.acClosing, uiRet);
            FRU_ANALYZER_FreeCustomField(pstFRUCustomField);
            return LIB_FRU_ERR_DECODE;
        }
    }
    return FRU_OK;
}

void FRU_ANALYZER_FreeCustomField(FRU_CUSTOM_FIELD_S *pstCustomField)
{
    FRU_REQUIRE_OR_LEAVE(pstCustomField);
    FRU_FREE(pstCustomField->pcBoardCustomFields);
    FRU_FREE(pstCustomField->pcChassisCustomFields);
    FRU_FREE(pstCustomField->pcProductCustomFields);
}
