// A FRU image from a block of label texts, into the cache.
#include "lib_fru_assemble_module.h"

#include <cstring>

#include "lib_fru_assembly.h"
#include "lib_fru_cache.h"
#include "lib_fru_codec.h"
#include "lib_fru_dates.h"

namespace {

constexpr u32 g_uiImageLen = 256;
constexpr u32 g_uiDateSlot = 3;
constexpr u32 g_uiMaxTexts = 6;
constexpr u8 g_ucFormatVersion = 1;
constexpr u8 g_ucPresent = 1; // the encoder lays the area out

// One text of an area; the rows stand in the order in which the buffers are allocated.
struct TEXT_ROW_S
{
    u32 uiSlot;
    u32 uiSizeOffset;
    u32 uiTextOffset;
    const char *pcNullFormat;
};

struct AREA_S
{
    const char *pcFunction; // whom the reports name
    u32 uiFirstSlot;
    u32 uiLastSlot;
    u32 uiTexts;
    TEXT_ROW_S astText[g_uiMaxTexts];
    u32 uiFileIDOffset;
    const char *pcFileIDNullFormat;
};

#define BOARD_ROW(uiSlot, Size, Text)                                                                        \
    {                                                                                                        \
        (uiSlot), offsetof(FRU_BOARD_INFO_S, Size), offsetof(FRU_BOARD_INFO_S, Text),                        \
            FRU_NULL_FORMAT("pstBoardInfo->" #Text)                                                          \
    }
#define PRODUCT_ROW(uiSlot, Size, Text)                                                                      \
    {                                                                                                        \
        (uiSlot), offsetof(FRU_PRODUCT_INFO_S, Size), offsetof(FRU_PRODUCT_INFO_S, Text),                    \
            FRU_NULL_FORMAT("pstProductInfo->" #Text)                                                        \
    }

constexpr AREA_S g_stBoardArea = {
    "FRU_AssembleBoardInfo",
    g_uiDateSlot,
    7,
    4,
    {
        BOARD_ROW(4, ucBoardMfrLen, pucBoardMfr),
        BOARD_ROW(7, ucBoardPartNumLen, pucBoardPartNum),
        BOARD_ROW(5, ucBoardProductNameLen, pucBoardProductName),
        BOARD_ROW(6, ucBoardSerialNumLen, pucBoardSerialNum),
    },
    offsetof(FRU_BOARD_INFO_S, pucFRUFileID),
    FRU_NULL_FORMAT("pstBoardInfo->pucFRUFileID"),
};

constexpr AREA_S g_stProductArea = {
    "FRU_AssembleProductInfo",
    8,
    13,
    6,
    {
        PRODUCT_ROW(8, ucMfrNameLen, pucMfrName),
        PRODUCT_ROW(9, ucProductNameLen, pucProductName),
        PRODUCT_ROW(10, ucProductPartNumLen, pucProductPartNum),
        PRODUCT_ROW(11, ucProductVersionLen, pucProductVersion),
        PRODUCT_ROW(13, ucAssetTagLen, pucAssetTag),
        PRODUCT_ROW(12, ucProductSerialNumLen, pucProductSerialNum),
    },
    offsetof(FRU_PRODUCT_INFO_S, pucFRUFileID),
    FRU_NULL_FORMAT("pstProductInfo->pucFRUFileID"),
};

bool IsNeeded(const AREA_S &stArea, const FRU_ASSEMBLE_LABEL_S *pstFRULabel)
{
    for (u32 i = stArea.uiFirstSlot; i <= stArea.uiLastSlot; ++i) {
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

// Allocates a buffer into the area's (unaligned) pointer member; null was reported.
char *AllocateInto(u8 *pucInfo, u32 uiOffset, u32 uiSize, const char *pcNullFormat, const char *pcFunction)
{
    char *pcText = static_cast<char *>(FRU_CALLOC_IN(1U, uiSize, pcFunction));
    if (pcText == nullptr) {
        FRU_ReportNull(pcNullFormat, FRU_DIAG_FILE, pcFunction, __LINE__);
        return nullptr;
    }
    (void)memcpy(pucInfo + uiOffset, &pcText, sizeof(pcText));
    return pcText;
}

// Fills the texts of one area; what it has allocated is the record's, also on failure.
bool FillTexts(const AREA_S &stArea, const FRU_ASSEMBLE_LABEL_S *pstFRULabel, u8 *pucInfo)
{
    char *apcText[g_uiMaxTexts] = {};
    for (u32 i = 0; i < stArea.uiTexts; ++i) {
        const TEXT_ROW_S &stRow = stArea.astText[i];
        pucInfo[stRow.uiSizeOffset] = SizeOfText(pstFRULabel->acSlot[stRow.uiSlot]);
    }
    for (u32 i = 0; i < stArea.uiTexts; ++i) {
        const TEXT_ROW_S &stRow = stArea.astText[i];
        apcText[i] = AllocateInto(pucInfo, stRow.uiTextOffset, pucInfo[stRow.uiSizeOffset],
                                  stRow.pcNullFormat, stArea.pcFunction);
        if (apcText[i] == nullptr) {
            return false;
        }
    }
    // Its size byte stays 0.
    if (AllocateInto(pucInfo, stArea.uiFileIDOffset, 1U, stArea.pcFileIDNullFormat, stArea.pcFunction) ==
        nullptr) {
        return false;
    }
    for (u32 i = 0; i < stArea.uiTexts; ++i) {
        const TEXT_ROW_S &stRow = stArea.astText[i];
        (void)BMC_Scnprintf(apcText[i], pucInfo[stRow.uiSizeOffset], "%s", pstFRULabel->acSlot[stRow.uiSlot]);
    }
    return true;
}

u32 FRU_AssembleBoardInfo(const FRU_ASSEMBLE_LABEL_S *pstFRULabel, FRU_DATA_S *pstFRUData)
{
    if (!IsNeeded(g_stBoardArea, pstFRULabel)) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_INFO, "Don't need assemble board info.");
        return FRU_OK;
    }
    pstFRUData->stCommonHeader.ucBoardInfoAreaStartOffset = g_ucPresent;
    FRU_BOARD_INFO_S *pstBoardInfo = &pstFRUData->stBoardInfo;
    pstBoardInfo->ucFormatVersion = g_ucFormatVersion;
    char acDate[FRU_ASSEMBLE_SLOT_LEN + 1U] = {};
    (void)memcpy(acDate, pstFRULabel->acSlot[g_uiDateSlot], FRU_ASSEMBLE_SLOT_LEN);
    const u32 uiRet = LIB_FRU_CaclMfgDateTime(acDate, pstFRUData);
    if (uiRet != FRU_OK) {
        // A bad date, an empty one too, does not stop the assembly.
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_WARNING, "Caculate MfgDateTime failed! Ret:%#x.", uiRet);
    }
    if (!FillTexts(g_stBoardArea, pstFRULabel, reinterpret_cast<u8 *>(pstBoardInfo))) {
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
    pstFRUData->stCommonHeader.ucProductInfoAreaStartOffset = g_ucPresent;
    FRU_PRODUCT_INFO_S *pstProductInfo = &pstFRUData->stProductInfo;
    pstProductInfo->ucFormatVersion = g_ucFormatVersion;
    if (!FillTexts(g_stProductArea, pstFRULabel, reinterpret_cast<u8 *>(pstProductInfo))) {
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
    pstFRUData->stCommonHeader.ucFormatVersion = g_ucFormatVersion;
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
