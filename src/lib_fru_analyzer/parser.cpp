// Image bytes to record: common header, internal-use area, the three info areas.
#include "lib_fru_analyzer/lib_fru_analyzer_module.h"

#include "lib_fru_analyzer/area_table.h"
#include "lib_fru_analyzer/chassis_type.h"
#include "lib_fru_analyzer/custom_list.h"
#include "lib_fru_analyzer/multirecord_area.h"
#include "lib_fru_analyzer/type_length.h"
#include "lib_fru_codec.h"

namespace {

constexpr u8 g_ucFormatVersion = 1U;

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
    if (ucVersion != g_ucFormatVersion) {
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

u32 GetChassisTypeDesc(const FRU_AREA_S &stArea, FRU_READER_S &stReader, FRU_DATA_S *pstFRUData)
{
    const u8 ucType = FRU_ReadByte(stReader);
    if (stReader.bPoisoned) {
        return FRU_ERR_FAILED;
    }
    const FRU_CHASSIS_TYPE_S *pstType = FRU_FindChassisTypeByCode(ucType);
    if (pstType == nullptr) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Failed to find related chassis type:%#x", ucType);
        return FRU_ERR_FAILED;
    }
    char *pcDesc = static_cast<char *>(FRU_CALLOC(1U, FRU_CHASSIS_TYPE_DESC_LEN));
    if (pcDesc == nullptr) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Failed to calloc memory!");
        return FRU_ERR_FAILED;
    }
    (void)BMC_Scnprintf(pcDesc, FRU_CHASSIS_TYPE_DESC_LEN, "%s", pstType->acDesc);
    FRU_StorePointer(pstFRUData, stArea.usChassisType, pcDesc);
    return FRU_OK;
}

// Version, length and checksum; the area then lies within the image. Leaves the reader behind
// the length byte.
u32 CheckArea(const FRU_AREA_S &stArea, u32 uiOffset, u32 uiLength, FRU_READER_S &stReader,
              FRU_DATA_S *pstFRUData)
{
    const u8 *pucStart = stReader.pucCursor;
    const u8 ucVersion = FRU_ReadByte(stReader);
    *FRU_MemberAt(pstFRUData, stArea.usVersion) = ucVersion;
    if (ucVersion != g_ucFormatVersion) {
        FRU_LOG_TABLE(FRU_CAT_GENERAL, BMC_DIAG_ERROR, stArea.stDecode.pcVersion, ucVersion);
        return FRU_ERR_FAILED;
    }
    const u32 uiUnits = FRU_ReadByte(stReader);
    *FRU_MemberAt(pstFRUData, stArea.usAreaLength) = static_cast<u8>(uiUnits);
    // Meant: an area that ends with the image's last byte is refused.
    if ((uiUnits + uiOffset) * FRU_AREA_UNIT >= uiLength) {
        FRU_LOG_TABLE(FRU_CAT_GENERAL, BMC_DIAG_ERROR, stArea.stDecode.pcSize, uiUnits, uiOffset, uiLength);
        return FRU_ERR_FAILED;
    }
    if (BMC_CheckZeroSum(pucStart, uiUnits * FRU_AREA_UNIT) != 0U) {
        FRU_LOG_TABLE(FRU_CAT_GENERAL, BMC_DIAG_ERROR, stArea.stDecode.pcZeroSum);
        return FRU_ERR_FAILED;
    }
    return FRU_OK;
}

// What stands between the length byte and the first text. A read past the image makes that text fail.
u32 GetFixedPart(const FRU_AREA_S &stArea, FRU_READER_S &stReader, FRU_DATA_S *pstFRUData)
{
    if (stArea.usChassisType != 0U && GetChassisTypeDesc(stArea, stReader, pstFRUData) != FRU_OK) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Failed to get chassis type desc in ChassisInfoArea!");
        return FRU_ERR_FAILED;
    }
    for (u32 i = 0; i < stArea.uiRawCount; ++i) {
        const u8 *pucBytes = FRU_ReadBytes(stReader, stArea.pstRaw[i].ucCount);
        if (pucBytes != nullptr) {
            (void)memcpy(FRU_MemberAt(pstFRUData, stArea.pstRaw[i].usBytes), pucBytes,
                         stArea.pstRaw[i].ucCount);
        }
    }
    return FRU_OK;
}

u32 GetInfoArea(const FRU_AREA_S &stArea, u32 uiOffset, const u8 *pucBuff, u32 uiLength,
                FRU_DATA_S *pstFRUData)
{
    const u32 uiStart = uiOffset * FRU_AREA_UNIT;
    if (uiStart >= uiLength) {
        FRU_LOG_TABLE(FRU_CAT_GENERAL, BMC_DIAG_ERROR, stArea.stDecode.pcStart, uiOffset, uiLength);
        return FRU_ERR_FAILED;
    }
    const u8 *pucStart = pucBuff + uiStart;
    FRU_READER_S stReader = FRU_ReaderOver(pucStart, uiLength - uiStart);
    if (CheckArea(stArea, uiOffset, uiLength, stReader, pstFRUData) != FRU_OK ||
        GetFixedPart(stArea, stReader, pstFRUData) != FRU_OK) {
        return FRU_ERR_FAILED;
    }
    for (u32 i = 0; i < stArea.uiFieldCount; ++i) {
        // Bounded by the image only: a text past the area's end is told of below, not here.
        const FRU_FIELD_ROW_S &stRow = stArea.pstField[i];
        u8 *pucText = nullptr;
        const u32 uiRet = FRU_ReadField(stReader, &pucText, FRU_MemberAt(pstFRUData, stRow.usSize));
        FRU_StorePointer(pstFRUData, stRow.usText, pucText);
        if (uiRet != FRU_OK) {
            FRU_LOG_TABLE(FRU_CAT_GENERAL, BMC_DIAG_ERROR, stRow.pcDecodeError);
            return FRU_ERR_FAILED;
        }
    }
    const u32 uiAreaSize = *FRU_MemberAt(pstFRUData, stArea.usAreaLength) * FRU_AREA_UNIT;
    const u32 uiUsed = static_cast<u32>(stReader.pucCursor - pucStart);
    const u32 uiRet = FRU_GetCustomFields(stArea, stReader, uiUsed, uiAreaSize, pstFRUData);
    if (uiRet != FRU_OK && stArea.stDecode.pcCustomClosing != nullptr) {
        FRU_LOG_TABLE(FRU_CAT_GENERAL, BMC_DIAG_ERROR, stArea.stDecode.pcCustomClosing);
    }
    return uiRet;
}

} // namespace

u32 FRU_ANALYZER_CheckValidHeader(const u8 *pstHeader)
{
    FRU_REQUIRE(pstHeader, LIB_FRU_ERR_SIZE);
    if (pstHeader[0] != g_ucFormatVersion) {
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
    for (const FRU_AREA_S &stArea : g_astFruArea) {
        const u32 uiOffset = pucBuff[stArea.ucHeaderByte];
        if (uiOffset != 0U && GetInfoArea(stArea, uiOffset, pucBuff, uiLength, pstFRUData) != FRU_OK) {
            FRU_LOG_TABLE(FRU_CAT_GENERAL, BMC_DIAG_ERROR, stArea.stDecode.pcClosing);
            return LIB_FRU_ERR_READ;
        }
    }
    if (pstFRUData->stCommonHeader.ucMultiRecordAreaStartOffset != 0U) {
        FRU_GetMultiRecordArea(pucBuff, uiLength, pstFRUData);
    }
    return FRU_OK;
}
