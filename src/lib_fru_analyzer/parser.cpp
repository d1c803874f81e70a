// SPDX-License-Identifier: Apache-2.0
// Image bytes to record: common header, internal-use area, the three info areas.
#include "lib_fru_analyzer/lib_fru_analyzer_module.h"

#include "lib_fru_analyzer/area_texts.h"
#include "lib_fru_analyzer/custom_list.h"
#include "lib_fru_analyzer/multirecord_area.h"
#include "lib_fru_analyzer/type_length.h"
#include "lib_fru_codec.h"

namespace {

u32 GetInternalUseArea(const u8 *pucBuff, u32 uiLength, FRU_DATA_S *pstFRUData)
{
    const u32 uiOffset = pstFRUData->stCommonHeader.ucInternalUseAreaStartOffset;
    const u32 uiStart = uiOffset * FRU_AREA_UNIT;
    if (uiStart >= uiLength) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Error InternalUseAreaStartOff(8*%d) >= FRU_Size(%d)",
                uiOffset, uiLength);
        return FRU_ERR_FAILED;
    }
    FRU_READER_S stReader = FRU_ReaderOver(pucBuff + uiStart, uiLength - uiStart);
    const u8 ucVersion = FRU_ReadByte(stReader);
    pstFRUData->stInternalUseArea.ucFormatVersion = ucVersion;
    if (ucVersion != FRU_AREA_VERSION) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Error InternalUseArea format version: %#x", ucVersion);
        return FRU_ERR_FAILED;
    }
    u8 *pucData = nullptr;
    u8 ucSize = 0;
    const u32 uiRet = FRU_ReadField(stReader, &pucData, &ucSize);
    pstFRUData->stInternalUseArea.pucData = pucData;
    if (uiRet != FRU_OK) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Failed to get Data while in InternalUseArea!");
    }
    return uiRet;
}

u32 GetChassisTypeDesc(FRU_READER_S &stReader, FRU_DATA_S *pstFRUData)
{
    const u8 ucType = FRU_ReadByte(stReader);
    if (stReader.bPoisoned) {
        return FRU_ERR_FAILED;
    }
    const char *pcDesc = FRU_FindChassisDesc(ucType);
    if (pcDesc == nullptr) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Failed to find related chassis type:%#x", ucType);
        return FRU_ERR_FAILED;
    }
    char *pcText = static_cast<char *>(FRU_CALLOC(1U, FRU_CHASSIS_TYPE_DESC_LEN));
    if (pcText == nullptr) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Failed to calloc memory!");
        return FRU_ERR_FAILED;
    }
    (void)BMC_Strlcpy(pcText, pcDesc, FRU_CHASSIS_TYPE_DESC_LEN);
    FRU_StoreFieldText(pstFRUData, FRU_FIELD_CHASSIS_TYPE, reinterpret_cast<u8 *>(pcText));
    return FRU_OK;
}

// Version, length and checksum; the area then lies within the image. Leaves the reader behind
// the length byte.
u32 CheckArea(u32 uiArea, u32 uiOffset, u32 uiLength, FRU_READER_S &stReader, FRU_DATA_S *pstFRUData)
{
    const FRU_AREA_S &stArea = g_astFruArea[uiArea];
    const FRU_DECODE_TEXTS_S &stTexts = g_astFruDecodeTexts[uiArea];
    const u8 *pucStart = stReader.pucCursor;
    const u8 ucVersion = FRU_ReadByte(stReader);
    *FRU_MemberAt(pstFRUData, stArea.usVersion) = ucVersion;
    if (ucVersion != FRU_AREA_VERSION) {
        FRU_LOG_TABLE(FRU_CAT_GENERAL, BMC_DIAG_ERROR, stTexts.acVersion, ucVersion);
        return FRU_ERR_FAILED;
    }
    const u32 uiUnits = FRU_ReadByte(stReader);
    *FRU_MemberAt(pstFRUData, stArea.usAreaLength) = static_cast<u8>(uiUnits);
    // Intended: an area that ends with the image's last byte is refused.
    if ((uiUnits + uiOffset) * FRU_AREA_UNIT >= uiLength) {
        FRU_LOG_TABLE(FRU_CAT_GENERAL, BMC_DIAG_ERROR, stTexts.acSize, uiUnits, uiOffset, uiLength);
        return FRU_ERR_FAILED;
    }
    if (BMC_CheckZeroSum(pucStart, uiUnits * FRU_AREA_UNIT) != 0U) {
        FRU_LOG_TABLE(FRU_CAT_GENERAL, BMC_DIAG_ERROR, stTexts.acZeroSum);
        return FRU_ERR_FAILED;
    }
    return FRU_OK;
}

// A read past the image makes the text behind these bytes fail.
u32 GetBytes(const FRU_FIELD_S &stField, FRU_READER_S &stReader, FRU_DATA_S *pstFRUData)
{
    u8 *pucMember = FRU_MemberAt(pstFRUData, stField.usMember);
    for (u32 i = 0; i < stField.ucBytes; ++i) {
        pucMember[i] = FRU_ReadByte(stReader);
    }
    return FRU_OK;
}

// Bounded by the image only: a text past the area's end is told of by the custom fields.
u32 GetText(const FRU_FIELD_S &stField, FRU_READER_S &stReader, FRU_DATA_S *pstFRUData)
{
    u8 *pucText = nullptr;
    const u32 uiRet = FRU_ReadField(stReader, &pucText, FRU_MemberAt(pstFRUData, stField.usSize));
    FRU_StorePointer(pstFRUData, stField.usMember, pucText);
    return uiRet;
}

u32 GetField(u32 uiField, FRU_READER_S &stReader, FRU_DATA_S *pstFRUData)
{
    const FRU_FIELD_S &stField = g_astFruField[uiField];
    switch (stField.ucKind) {
    case FRU_KIND_BYTES:
        return GetBytes(stField, stReader, pstFRUData);
    case FRU_KIND_CHASSIS_TYPE:
        return GetChassisTypeDesc(stReader, pstFRUData);
    case FRU_KIND_TEXT:
    default:
        return GetText(stField, stReader, pstFRUData);
    }
}

u32 GetInfoArea(u32 uiArea, u32 uiOffset, const u8 *pucBuff, u32 uiLength, FRU_DATA_S *pstFRUData)
{
    const FRU_AREA_S &stArea = g_astFruArea[uiArea];
    const FRU_DECODE_TEXTS_S &stTexts = g_astFruDecodeTexts[uiArea];
    const u32 uiStart = uiOffset * FRU_AREA_UNIT;
    if (uiStart >= uiLength) {
        FRU_LOG_TABLE(FRU_CAT_GENERAL, BMC_DIAG_ERROR, stTexts.acStart, uiOffset, uiLength);
        return FRU_ERR_FAILED;
    }
    const u8 *pucStart = pucBuff + uiStart;
    FRU_READER_S stReader = FRU_ReaderOver(pucStart, uiLength - uiStart);
    if (CheckArea(uiArea, uiOffset, uiLength, stReader, pstFRUData) != FRU_OK) {
        return FRU_ERR_FAILED;
    }
    for (u32 uiField = stArea.ucFirstField; uiField < stArea.ucEndField; ++uiField) {
        if (GetField(uiField, stReader, pstFRUData) != FRU_OK) {
            FRU_LOG_TABLE(FRU_CAT_GENERAL, BMC_DIAG_ERROR, FRU_DecodeTextOf(uiField));
            return FRU_ERR_FAILED;
        }
    }
    const u32 uiAreaSize = *FRU_MemberAt(pstFRUData, stArea.usAreaLength) * FRU_AREA_UNIT;
    const u32 uiUsed = static_cast<u32>(stReader.pucCursor - pucStart);
    const u32 uiRet = FRU_GetCustomFields(uiArea, stReader, uiUsed, uiAreaSize, pstFRUData);
    if (uiRet != FRU_OK && stTexts.acCustomClosing[0] != '\0') {
        FRU_LOG_TABLE(FRU_CAT_GENERAL, BMC_DIAG_ERROR, stTexts.acCustomClosing);
    }
    return uiRet;
}

} // namespace

u32 FRU_ANALYZER_CheckValidHeader(const u8 *pstHeader)
{
    FRU_REQUIRE(pstHeader, LIB_FRU_ERR_SIZE);
    if (pstHeader[0] != FRU_AREA_VERSION) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_WARNING, "Common header format version value:%#x invalid!",
                pstHeader[0]);
        return LIB_FRU_ERR_HEADER;
    }
    if (BMC_CheckZeroSum(pstHeader, FRU_COMMON_HEADER_LEN) != 0U) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_WARNING, "Check zero sum failed!");
        return LIB_FRU_ERR_SIZE; // not LIB_FRU_ERR_HEADER: callers know this code
    }
    return FRU_OK;
}

u32 FRU_ANALYZER_InterpretFRUData(const u8 *pucBuff, u32 uiLength, FRU_DATA_S *pstFRUData)
{
    FRU_REQUIRE(pucBuff, LIB_FRU_ERR_SIZE);
    FRU_REQUIRE(pstFRUData, LIB_FRU_ERR_SIZE);
    if (uiLength == 0U) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Invalid input length: %#x", uiLength);
        return LIB_FRU_ERR_SIZE;
    }
    if (uiLength < FRU_COMMON_HEADER_LEN || FRU_ANALYZER_CheckValidHeader(pucBuff) != FRU_OK) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Failed to check common header!");
        return LIB_FRU_ERR_HEADER;
    }
    (void)memcpy(&pstFRUData->stCommonHeader, pucBuff, FRU_COMMON_HEADER_LEN);
    if (pstFRUData->stCommonHeader.ucInternalUseAreaStartOffset != 0U &&
        GetInternalUseArea(pucBuff, uiLength, pstFRUData) != FRU_OK) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Failed to get InternalUseArea!");
        return LIB_FRU_ERR_READ;
    }
    for (u32 uiArea = 0; uiArea < FRU_AREA_COUNT; ++uiArea) {
        const u32 uiOffset = FRU_AreaPlace(pstFRUData, g_astFruArea[uiArea]);
        if (uiOffset != 0U && GetInfoArea(uiArea, uiOffset, pucBuff, uiLength, pstFRUData) != FRU_OK) {
            FRU_LOG_TABLE(FRU_CAT_GENERAL, BMC_DIAG_ERROR, g_astFruDecodeTexts[uiArea].acClosing);
            return LIB_FRU_ERR_READ;
        }
    }
    if (pstFRUData->stCommonHeader.ucMultiRecordAreaStartOffset != 0U) {
        FRU_GetMultiRecordArea(pucBuff, uiLength, pstFRUData);
    }
    return FRU_OK;
}
