// Record to image bytes.
#include "lib_fru_analyzer/lib_fru_analyzer_module.h"

#include "lib_fru_analyzer/area_table.h"
#include "lib_fru_analyzer/chassis_type.h"
#include "lib_fru_analyzer/field_writer.h"
#include "lib_fru_analyzer/multirecord_area.h"
#include "lib_fru_analyzer/type_length.h"
#include "lib_fru_codec.h"

namespace {

constexpr u32 g_uiMaxUnits = 0xFFU; // the most that an offset or area-length byte holds
constexpr u8 g_ucHeaderVersion = 1U;

u32 RoundUp(u32 uiSize)
{
    return (uiSize + FRU_AREA_UNIT - 1U) / FRU_AREA_UNIT * FRU_AREA_UNIT;
}

// Each converter writes one area into pucBuf, which has uiRoom bytes, and returns its bytes or -1.

i32 FRU_ConvertInternalUseArea(const FRU_DATA_S *pstFRUData, u32 uiRoom, u8 *pucBuf)
{
    constexpr const char *pcEndError = "Error EndChar while converting InternalUseArea.";
    constexpr u8 aucZeros[FRU_AREA_UNIT] = {};
    FRU_WRITER_S stWriter = {pucBuf, uiRoom, 0U};
    if (!FRU_PutByte(stWriter, pstFRUData->stInternalUseArea.ucFormatVersion,
                     "Error FormatVersion while converting InternalUseArea.") ||
        !FRU_PutText(stWriter, pstFRUData->stInternalUseArea.pucData,
                     "Error Data while converting InternalUseArea.") ||
        !FRU_PutByte(stWriter, FRU_FIELD_END, pcEndError)) {
        return FRU_WRITE_FAILED;
    }
    // The next area's offset counts whole units, so this one is filled up to one.
    const u32 uiFill = RoundUp(stWriter.uiUsed) - stWriter.uiUsed;
    if (!FRU_PutBytes(stWriter, aucZeros, uiFill, pcEndError)) {
        return FRU_WRITE_FAILED;
    }
    return static_cast<i32>(stWriter.uiUsed);
}

u32 FRU_GetChassisAreaTypeValue(const char *pcDesc, u8 *pucType)
{
    FRU_REQUIRE(pcDesc, FRU_ERR_NULL_POINTER);
    const FRU_CHASSIS_TYPE_S *pstType = FRU_FindChassisTypeByDesc(pcDesc);
    if (pstType == nullptr) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_WARNING, "Get chassis area type desc:%s failed!", pcDesc);
        return FRU_ERR_FAILED;
    }
    *pucType = static_cast<u8>(pstType->uiCode);
    return FRU_OK;
}

// What stands between the length byte and the first text.
bool PutFixedPart(const FRU_AREA_S &stArea, const FRU_DATA_S *pstFRUData, FRU_WRITER_S &stWriter)
{
    if (stArea.usChassisType != 0U) {
        u8 ucType = 0;
        const char *pcDesc = FRU_LoadPointer<const char *>(pstFRUData, stArea.usChassisType);
        if (FRU_GetChassisAreaTypeValue(pcDesc, &ucType) != FRU_OK) {
            FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Error chassis type while converting ChassisInfoArea.");
            return false;
        }
        if (!FRU_PutByte(stWriter, ucType, "Error ChassisType while converting ChassisInfoArea.")) {
            return false;
        }
    }
    for (u32 i = 0; i < stArea.uiRawCount; ++i) {
        const FRU_RAW_ROW_S &stRow = stArea.pstRaw[i];
        if (!FRU_PutBytes(stWriter, FRU_MemberAt(pstFRUData, stRow.usBytes), stRow.ucCount,
                          stRow.pcEncodeError)) {
            return false;
        }
    }
    return true;
}

bool PutFields(const FRU_AREA_S &stArea, const FRU_DATA_S *pstFRUData, FRU_WRITER_S &stWriter)
{
    for (u32 i = 0; i < stArea.uiFieldCount; ++i) {
        const FRU_FIELD_ROW_S &stRow = stArea.pstField[i];
        const u8 *pucText = FRU_LoadPointer<const u8 *>(pstFRUData, stRow.usText);
        if (!FRU_PutText(stWriter, pucText, stRow.pcEncodeError)) {
            return false;
        }
    }
    // A released record keeps its count, so the array decides.
    const u8 *const *ppucFields = FRU_LoadPointer<const u8 *const *>(pstFRUData, stArea.usCustomFields);
    const u32 uiCount = ppucFields == nullptr ? 0U : *FRU_MemberAt(pstFRUData, stArea.usCustomCount);
    for (u32 i = 0; i < uiCount; ++i) {
        if (!FRU_PutText(stWriter, ppucFields[i], stArea.stEncode.pcCustomField, i)) {
            return false;
        }
    }
    return FRU_PutByte(stWriter, FRU_FIELD_END, stArea.stEncode.pcEndChar);
}

i32 ConvertInfoArea(const FRU_AREA_S &stArea, const FRU_DATA_S *pstFRUData, u32 uiPosition, u32 uiRoom,
                    u8 *pucBuf)
{
    FRU_WRITER_S stWriter = {pucBuf, uiRoom, 0U};
    if (!FRU_PutByte(stWriter, *FRU_MemberAt(pstFRUData, stArea.usVersion), stArea.stEncode.pcVersion) ||
        !FRU_PutByte(stWriter, 0U, stArea.stEncode.pcLength) || !PutFixedPart(stArea, pstFRUData, stWriter) ||
        !PutFields(stArea, pstFRUData, stWriter)) {
        return FRU_WRITE_FAILED;
    }
    const u32 uiSize = RoundUp(stWriter.uiUsed + 1U);
    const u32 uiUnits = uiSize / FRU_AREA_UNIT;
    // Neither the length byte nor the header's offset byte may wrap.
    if (uiSize - 1U >= uiRoom || uiUnits > g_uiMaxUnits || uiPosition / FRU_AREA_UNIT > g_uiMaxUnits) {
        FRU_LOG_TABLE(FRU_CAT_GENERAL, BMC_DIAG_ERROR, stArea.stEncode.pcRelocate, uiSize);
        return FRU_WRITE_FAILED;
    }
    FRU_WRITER_S stLength = {pucBuf, uiRoom, 1U};
    if (!FRU_PutByte(stLength, static_cast<u8>(uiUnits), stArea.stEncode.pcLength)) {
        return FRU_WRITE_FAILED;
    }
    // Covers the bytes behind the end mark as the caller left them.
    FRU_WRITER_S stCheckSum = {pucBuf, uiRoom, uiSize - 1U};
    if (!FRU_PutByte(stCheckSum, BMC_CalcZeroCheckSum(pucBuf, uiSize - 1U), stArea.stEncode.pcCheckSum)) {
        return FRU_WRITE_FAILED;
    }
    return static_cast<i32>(uiSize);
}

i32 FinishMultiRecordArea(u32 uiWritten, u32 uiPosition, u32 uiRoom)
{
    const u32 uiSize = RoundUp(uiWritten);
    // Meant: one byte of room must stay, and the message is the product area's.
    if (uiSize >= uiRoom || uiSize > g_uiMaxUnits * FRU_AREA_UNIT ||
        uiPosition / FRU_AREA_UNIT > g_uiMaxUnits) {
        FRU_LOG_TABLE(FRU_CAT_GENERAL, BMC_DIAG_ERROR, g_astFruArea[FRU_AREA_PRODUCT].stEncode.pcRelocate,
                      uiSize);
        return FRU_WRITE_FAILED;
    }
    return static_cast<i32>(uiSize);
}

i32 FRU_ConvertMultiRecordArea(const FRU_DATA_S *pstFRUData, u32 uiPosition, u32 uiRoom, u8 *pucBuf)
{
    FRU_WRITER_S stWriter = {pucBuf, uiRoom, 0U};
    for (const FRU_MULTIRECORD_S &stRecord : pstFRUData->astMultiRecord) {
        // Header and checksums go as they are; whoever changed the data has set them.
        if (!FRU_PutBytes(stWriter, reinterpret_cast<const u8 *>(&stRecord), FRU_MULTIRECORD_HEADER_LEN,
                          "write MultiRecordHeader failed!") ||
            !FRU_PutBytes(stWriter, stRecord.pucRecordData, stRecord.ucRecordLength,
                          "write MultiRecordData failed!")) {
            FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Convert Multi Record Area failed!");
            return FRU_WRITE_FAILED;
        }
        if ((stRecord.ucRecordFormat & FRU_MULTIRECORD_END_OF_LIST) != 0U) {
            return FinishMultiRecordArea(stWriter.uiUsed, uiPosition, uiRoom);
        }
    }
    FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "MultiRecord out of range space");
    return FRU_WRITE_FAILED;
}

// The areas behind the common header; returns the image's bytes or -1.
i32 ConvertAreas(const FRU_DATA_S *pstFRUData, u32 uiLength, u8 *pucBuf)
{
    u32 uiTotal = FRU_COMMON_HEADER_LEN;
    if (pstFRUData->stCommonHeader.ucInternalUseAreaStartOffset != 0U) {
        const i32 iSize = FRU_ConvertInternalUseArea(pstFRUData, uiLength - uiTotal, pucBuf + uiTotal);
        if (iSize < 0) {
            FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Failed to convert InternalUseArea");
            return FRU_WRITE_FAILED;
        }
        pucBuf[1] = static_cast<u8>(uiTotal / FRU_AREA_UNIT);
        uiTotal += static_cast<u32>(iSize);
    }
    for (const FRU_AREA_S &stArea : g_astFruArea) {
        if (*FRU_MemberAt(pstFRUData, stArea.ucHeaderByte) == 0U) {
            continue;
        }
        const i32 iSize = ConvertInfoArea(stArea, pstFRUData, uiTotal, uiLength - uiTotal, pucBuf + uiTotal);
        if (iSize < 0) {
            FRU_LOG_TABLE(FRU_CAT_GENERAL, BMC_DIAG_ERROR, stArea.stEncode.pcClosing);
            return FRU_WRITE_FAILED;
        }
        pucBuf[stArea.ucHeaderByte] = static_cast<u8>(uiTotal / FRU_AREA_UNIT);
        uiTotal += static_cast<u32>(iSize);
    }
    if (pstFRUData->stCommonHeader.ucMultiRecordAreaStartOffset != 0U) {
        const i32 iSize =
            FRU_ConvertMultiRecordArea(pstFRUData, uiTotal, uiLength - uiTotal, pucBuf + uiTotal);
        if (iSize < 0) {
            // Meant: it speaks of the product area.
            FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Failed to createFRUBin of ProductInfoArea! Ret:%#x.",
                    static_cast<u32>(iSize));
            return FRU_WRITE_FAILED;
        }
        pucBuf[5] = static_cast<u8>(uiTotal / FRU_AREA_UNIT);
        uiTotal += static_cast<u32>(iSize);
    }
    return static_cast<i32>(uiTotal);
}

} // namespace

i32 FRU_ANALYZER_ConvertToArray(const FRU_DATA_S *pstFRUData, u32 uiLength, u8 *pucBuf)
{
    FRU_REQUIRE(pucBuf, FRU_WRITE_FAILED);
    FRU_REQUIRE(pstFRUData, FRU_WRITE_FAILED);
    if (uiLength < FRU_COMMON_HEADER_LEN) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Invalid input length: %#x", uiLength);
        return FRU_WRITE_FAILED;
    }
    pucBuf[0] = g_ucHeaderVersion;
    const i32 iTotal = ConvertAreas(pstFRUData, uiLength, pucBuf);
    if (iTotal < 0) {
        return FRU_WRITE_FAILED;
    }
    pucBuf[6] = 0U;
    pucBuf[7] = BMC_CalcZeroCheckSum(pucBuf, FRU_COMMON_HEADER_LEN - 1U);
    return iTotal;
}
