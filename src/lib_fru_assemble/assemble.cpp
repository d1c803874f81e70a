// SPDX-License-Identifier: Apache-2.0
// A FRU image from a block of label texts, into the cache.
#include "lib_fru_assemble/lib_fru_assemble_module.h"

#include <cstring>

#include "common/text.h"
#include "lib_fru_analyzer/fields.h"
#include "lib_fru_assembly.h"
#include "lib_fru_cache.h"
#include "lib_fru_codec.h"
#include "lib_fru_dates.h"

namespace {

constexpr u32 g_uiImageLen = 256;
constexpr u32 g_uiMaxTexts = 6;

// One text of an area.
struct TEXT_ROW_S
{
    u8 ucSlot;
    FRU_FIELD_ID eField;
};

struct ASSEMBLED_AREA_S
{
    const char *pcFunction; // whom the reports name
    FRU_AREA_ID eArea;
    u8 ucFirstSlot;
    u8 ucLastSlot;
    u8 ucTexts;
    // In the order in which the buffers are allocated, not in the image's; the file ID follows them.
    TEXT_ROW_S astText[g_uiMaxTexts];
    FRU_FIELD_ID eFileID;
    const char *pcNullFormats; // of these buffers, one text behind the other
};

// clang-format off
constexpr char g_acBoardNullFormats[] =
    FRU_NULL_FORMAT("pstBoardInfo->pucBoardMfr") "\0"
    FRU_NULL_FORMAT("pstBoardInfo->pucBoardPartNum") "\0"
    FRU_NULL_FORMAT("pstBoardInfo->pucBoardProductName") "\0"
    FRU_NULL_FORMAT("pstBoardInfo->pucBoardSerialNum") "\0"
    FRU_NULL_FORMAT("pstBoardInfo->pucFRUFileID") "\0";
// clang-format on

constexpr ASSEMBLED_AREA_S g_stBoardArea = {
    "FRU_AssembleBoardInfo",
    FRU_AREA_BOARD,
    FRU_ASSEMBLE_BOARD_MFG_DATE,
    FRU_ASSEMBLE_BOARD_PART_NUMBER,
    4,
    {
        {FRU_ASSEMBLE_BOARD_MANUFACTURER, FRU_FIELD_BOARD_MANUFACTURER},
        {FRU_ASSEMBLE_BOARD_PART_NUMBER, FRU_FIELD_BOARD_PART},
        {FRU_ASSEMBLE_BOARD_PRODUCT_NAME, FRU_FIELD_BOARD_NAME},
        {FRU_ASSEMBLE_BOARD_SERIAL_NUMBER, FRU_FIELD_BOARD_SERIAL},
    },
    FRU_FIELD_BOARD_FILE_ID,
    g_acBoardNullFormats,
};
static_assert(FRU_CountTexts(g_acBoardNullFormats) == g_stBoardArea.ucTexts + 1U);

// clang-format off
constexpr char g_acProductNullFormats[] =
    FRU_NULL_FORMAT("pstProductInfo->pucMfrName") "\0"
    FRU_NULL_FORMAT("pstProductInfo->pucProductName") "\0"
    FRU_NULL_FORMAT("pstProductInfo->pucProductPartNum") "\0"
    FRU_NULL_FORMAT("pstProductInfo->pucProductVersion") "\0"
    FRU_NULL_FORMAT("pstProductInfo->pucAssetTag") "\0"
    FRU_NULL_FORMAT("pstProductInfo->pucProductSerialNum") "\0"
    FRU_NULL_FORMAT("pstProductInfo->pucFRUFileID") "\0";
// clang-format on

constexpr ASSEMBLED_AREA_S g_stProductArea = {
    "FRU_AssembleProductInfo",
    FRU_AREA_PRODUCT,
    FRU_ASSEMBLE_PRODUCT_MANUFACTURER,
    FRU_ASSEMBLE_PRODUCT_ASSET_TAG,
    6,
    {
        {FRU_ASSEMBLE_PRODUCT_MANUFACTURER, FRU_FIELD_PRODUCT_MANUFACTURER},
        {FRU_ASSEMBLE_PRODUCT_NAME, FRU_FIELD_PRODUCT_NAME},
        {FRU_ASSEMBLE_PRODUCT_PART_NUMBER, FRU_FIELD_PRODUCT_PART},
        {FRU_ASSEMBLE_PRODUCT_VERSION, FRU_FIELD_PRODUCT_VERSION},
        {FRU_ASSEMBLE_PRODUCT_ASSET_TAG, FRU_FIELD_PRODUCT_ASSET_TAG},
        {FRU_ASSEMBLE_PRODUCT_SERIAL_NUMBER, FRU_FIELD_PRODUCT_SERIAL},
    },
    FRU_FIELD_PRODUCT_FILE_ID,
    g_acProductNullFormats,
};
static_assert(FRU_CountTexts(g_acProductNullFormats) == g_stProductArea.ucTexts + 1U);

bool IsNeeded(const ASSEMBLED_AREA_S &stArea, const FRU_ASSEMBLE_LABEL_S *pstFRULabel)
{
    for (u32 i = stArea.ucFirstSlot; i <= stArea.ucLastSlot; ++i) {
        if (pstFRULabel->acSlot[i][0] != '\0') {
            return true;
        }
    }
    return false;
}

// Text length + 1. A slot without a terminator holds no text: its size is 0, which the allocation refuses.
u8 SizeOfText(const char *pcSlot)
{
    const size_t uiLength = strnlen(pcSlot, FRU_ASSEMBLE_SLOT_LEN);
    return uiLength == FRU_ASSEMBLE_SLOT_LEN ? u8{0} : static_cast<u8>(uiLength + 1U);
}

// A new buffer, number uiBuffer of the area's, as the field's text; null was reported.
bool AllocateInto(const ASSEMBLED_AREA_S &stArea, u32 uiBuffer, FRU_FIELD_ID eField, u32 uiSize,
                  FRU_DATA_S *pstFRUData)
{
    u8 *pucText = static_cast<u8 *>(FRU_CALLOC_IN(1U, uiSize, stArea.pcFunction));
    if (pucText == nullptr) {
        FRU_ReportNull(FRU_NthText(stArea.pcNullFormats, uiBuffer), FRU_DIAG_FILE, stArea.pcFunction,
                       __LINE__);
        return false;
    }
    FRU_StoreFieldText(pstFRUData, eField, pucText);
    return true;
}

// Fills the texts of one area; what it has allocated is the record's, also on failure.
bool FillTexts(const ASSEMBLED_AREA_S &stArea, const FRU_ASSEMBLE_LABEL_S *pstFRULabel,
               FRU_DATA_S *pstFRUData)
{
    for (u32 i = 0; i < stArea.ucTexts; ++i) {
        const TEXT_ROW_S &stRow = stArea.astText[i];
        *FRU_FieldSize(pstFRUData, stRow.eField) = SizeOfText(pstFRULabel->acSlot[stRow.ucSlot]);
    }
    for (u32 i = 0; i < stArea.ucTexts; ++i) {
        const FRU_FIELD_ID eField = stArea.astText[i].eField;
        if (!AllocateInto(stArea, i, eField, *FRU_FieldSize(pstFRUData, eField), pstFRUData)) {
            return false;
        }
    }
    // Its size byte stays 0.
    if (!AllocateInto(stArea, stArea.ucTexts, stArea.eFileID, 1U, pstFRUData)) {
        return false;
    }
    for (u32 i = 0; i < stArea.ucTexts; ++i) {
        const TEXT_ROW_S &stRow = stArea.astText[i];
        (void)BMC_Scnprintf(reinterpret_cast<char *>(FRU_FieldText(pstFRUData, stRow.eField)),
                            *FRU_FieldSize(pstFRUData, stRow.eField), "%s",
                            pstFRULabel->acSlot[stRow.ucSlot]);
    }
    return true;
}

// Marks the area as there; the encoder finds its place.
void BeginArea(const ASSEMBLED_AREA_S &stAssembled, FRU_DATA_S *pstFRUData)
{
    const FRU_AREA_S &stArea = g_astFruArea[stAssembled.eArea];
    FRU_SetAreaPlace(&pstFRUData->stCommonHeader, stArea, FRU_AREA_PRESENT);
    *FRU_MemberAt(pstFRUData, stArea.usVersion) = FRU_AREA_VERSION;
}

u32 FRU_AssembleBoardInfo(const FRU_ASSEMBLE_LABEL_S *pstFRULabel, FRU_DATA_S *pstFRUData)
{
    if (!IsNeeded(g_stBoardArea, pstFRULabel)) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_INFO, "Don't need assemble board info.");
        return FRU_OK;
    }
    BeginArea(g_stBoardArea, pstFRUData);
    const FRU_BOARD_INFO_S *pstBoardInfo = &pstFRUData->stBoardInfo;
    char acDate[FRU_ASSEMBLE_SLOT_LEN + 1U] = {};
    (void)memcpy(acDate, pstFRULabel->acSlot[FRU_ASSEMBLE_BOARD_MFG_DATE], FRU_ASSEMBLE_SLOT_LEN);
    const u32 uiRet = LIB_FRU_CaclMfgDateTime(acDate, pstFRUData);
    if (uiRet != FRU_OK) {
        // A bad date, an empty one too, does not stop the assembly.
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_WARNING, "Caculate MfgDateTime failed! Ret:%#x.", uiRet);
    }
    if (!FillTexts(g_stBoardArea, pstFRULabel, pstFRUData)) {
        return FRU_ERR_FAILED;
    }
    FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_INFO,
            "BoardMfr[%s:%d] BoardPartNum[%s:%d] BoardProductName[%s:%d] BoardSerialNum[%s:%d]",
            pstBoardInfo->pucBoardMfr, pstBoardInfo->ucBoardMfrLen, pstBoardInfo->pucBoardPartNum,
            pstBoardInfo->ucBoardPartNumLen, pstBoardInfo->pucBoardProductName,
            pstBoardInfo->ucBoardProductNameLen, pstBoardInfo->pucBoardSerialNum,
            pstBoardInfo->ucBoardSerialNumLen);
    return FRU_OK;
}

u32 FRU_AssembleProductInfo(const FRU_ASSEMBLE_LABEL_S *pstFRULabel, FRU_DATA_S *pstFRUData)
{
    if (!IsNeeded(g_stProductArea, pstFRULabel)) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_INFO, "Don't need assemble product info.");
        return FRU_OK;
    }
    BeginArea(g_stProductArea, pstFRUData);
    const FRU_PRODUCT_INFO_S *pstProductInfo = &pstFRUData->stProductInfo;
    if (!FillTexts(g_stProductArea, pstFRULabel, pstFRUData)) {
        return FRU_ERR_FAILED;
    }
    FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_INFO,
            "ProductMfrName[%s:%d] ProductName[%s:%d] ProductPartNum[%s:%d] ProductVersion[%s:%d] "
            "ProductSerialNum[%s:%d] AssetTag[%s:%d]",
            pstProductInfo->pucMfrName, pstProductInfo->ucMfrNameLen, pstProductInfo->pucProductName,
            pstProductInfo->ucProductNameLen, pstProductInfo->pucProductPartNum,
            pstProductInfo->ucProductPartNumLen, pstProductInfo->pucProductVersion,
            pstProductInfo->ucProductVersionLen, pstProductInfo->pucProductSerialNum,
            pstProductInfo->ucProductSerialNumLen, pstProductInfo->pucAssetTag,
            pstProductInfo->ucAssetTagLen);
    return FRU_OK;
}

// The image buffer has a fixed size: a larger FRU fails like an encode that failed.
i32 Encode(const FRU_DATA_S *pstFRUData, u32 uiSize, u8 *pucImage)
{
    return uiSize > g_uiImageLen ? -1 : FRU_ANALYZER_ConvertToArray(pstFRUData, uiSize, pucImage);
}

u32 Assemble(const FRU_DEVICE_INFO_S *pstFRUInfo, const FRU_ASSEMBLE_LABEL_S *pstFRULabel,
             FRU_DATA_S *pstFRUData)
{
    u8 aucImage[g_uiImageLen] = {};
    pstFRUData->stCommonHeader.ucFormatVersion = FRU_AREA_VERSION;
    if (FRU_AssembleBoardInfo(pstFRULabel, pstFRUData) != FRU_OK) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_WARNING, "Assemble board info failed!");
        return FRU_ERR_FAILED;
    }
    if (FRU_AssembleProductInfo(pstFRULabel, pstFRUData) != FRU_OK) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_WARNING, "Assemble product info failed!");
        return FRU_ERR_FAILED;
    }
    const i32 iRet = Encode(pstFRUData, pstFRUInfo->usSize, aucImage);
    if (iRet < 0) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_WARNING, "Fail to convert FRU data to array! Ret:%#x.",
                static_cast<u32>(iRet));
        return FRU_ERR_FAILED;
    }
    const u32 uiRet = FRU_DB_PutFRUData(pstFRUInfo->ucDeviceID, pstFRUInfo->usSize, aucImage);
    if (uiRet != FRU_OK) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_WARNING, "Put FRU Data to db failed! DeviceID:%#x Ret:%#x.",
                pstFRUInfo->ucDeviceID, uiRet);
        return FRU_ERR_FAILED;
    }
    return FRU_OK;
}

} // namespace

u32 FRU_AssembleBin(const FRU_DEVICE_INFO_S *pstFRUInfo, const FRU_ASSEMBLE_LABEL_S *pstFRULabel)
{
    FRU_REQUIRE(pstFRUInfo, FRU_ERR_NULL_POINTER);
    FRU_REQUIRE(pstFRULabel, FRU_ERR_NULL_POINTER);
    FRU_DATA_S stFRUData = {};
    const u32 uiRet = Assemble(pstFRUInfo, pstFRULabel, &stFRUData);
    FRU_ANALYZER_SafeFree(&stFRUData);
    return uiRet;
}
