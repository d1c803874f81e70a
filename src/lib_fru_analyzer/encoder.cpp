// SPDX-License-Identifier: Apache-2.0
// Record to image bytes.
#include "lib_fru_analyzer/lib_fru_analyzer_module.h"

#include "lib_fru_analyzer/area_texts.h"
#include "lib_fru_analyzer/field_writer.h"
#include "lib_fru_analyzer/multirecord_area.h"
#include "lib_fru_codec.h"

namespace {

constexpr u32 g_uiMaxUnits = 0xFFU; // the most that an offset or area-length byte holds
constexpr u32 g_uiMultiRecordSizeMask = g_uiMaxUnits * FRU_AREA_UNIT;

u32 RoundUp(u32 uiSize)
{
    return (uiSize + FRU_AREA_UNIT - 1U) / FRU_AREA_UNIT * FRU_AREA_UNIT;
}

// Each converter writes one area into pucBuf, which has uiRoom bytes, and returns its bytes or -1.

i32 FRU_ConvertInternalUseArea(const FRU_DATA_S *pstFRUData, u32 uiRoom, u8 *pucBuf)
{
    constexpr u8 aucZeros[FRU_AREA_UNIT] = {};
    FRU_WRITER_S stWriter = {pucBuf, uiRoom, 0U};
    if (!FRU_PutByte(stWriter, pstFRUData->stInternalUseArea.ucFormatVersion)) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Error FormatVersion while converting InternalUseArea.");
        return FRU_WRITE_FAILED;
    }
    if (!FRU_PutText(stWriter, pstFRUData->stInternalUseArea.pucData)) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Error Data while converting InternalUseArea.");
        return FRU_WRITE_FAILED;
    }
    // The next area's offset counts whole units, so this one is filled up to one.
    if (!FRU_PutByte(stWriter, FRU_FIELD_END) ||
        !FRU_PutBytes(stWriter, aucZeros, RoundUp(stWriter.uiUsed) - stWriter.uiUsed)) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Error EndChar while converting InternalUseArea.");
        return FRU_WRITE_FAILED;
    }
    return static_cast<i32>(stWriter.uiUsed);
}

u32 FRU_GetChassisAreaTypeValue(const char *pcDesc, u8 *pucType)
{
    FRU_REQUIRE(pcDesc, FRU_ERR_NULL_POINTER);
    const u32 uiCode = FRU_FindChassisCode(pcDesc);
    if (uiCode == FRU_CHASSIS_TYPE_COUNT) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_WARNING, "Get chassis area type desc:%s failed!", pcDesc);
        return FRU_ERR_FAILED;
    }
    *pucType = static_cast<u8>(uiCode);
    return FRU_OK;
}

// Hands on whether a write went well; if not, reports it with a text out of the tables that takes
// no argument.
bool Reported(bool bWritten, const char *pcError)
{
    if (!bWritten) {
        FRU_LOG_TABLE(FRU_CAT_GENERAL, BMC_DIAG_ERROR, pcError);
    }
    return bWritten;
}

// The same for a field.
bool ReportedField(bool bWritten, u32 uiField)
{
    return bWritten || Reported(false, FRU_EncodeTextOf(uiField));
}

bool PutChassisType(const FRU_DATA_S *pstFRUData, FRU_WRITER_S &stWriter)
{
    u8 ucType = 0;
    const u8 *pucDesc = FRU_FieldText(pstFRUData, FRU_FIELD_CHASSIS_TYPE);
    if (FRU_GetChassisAreaTypeValue(reinterpret_cast<const char *>(pucDesc), &ucType) != FRU_OK) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Error chassis type while converting ChassisInfoArea.");
        return false;
    }
    return ReportedField(FRU_PutByte(stWriter, ucType), FRU_FIELD_CHASSIS_TYPE);
}

bool PutField(u32 uiField, const FRU_DATA_S *pstFRUData, FRU_WRITER_S &stWriter)
{
    const FRU_FIELD_S &stField = g_astFruField[uiField];
    switch (stField.ucKind) {
    case FRU_KIND_BYTES:
        return ReportedField(
            FRU_PutBytes(stWriter, FRU_MemberAt(pstFRUData, stField.usMember), stField.ucBytes), uiField);
    case FRU_KIND_CHASSIS_TYPE:
        return PutChassisType(pstFRUData, stWriter);
    case FRU_KIND_TEXT:
    default:
        return ReportedField(FRU_PutText(stWriter, FRU_FieldText(pstFRUData, uiField)), uiField);
    }
}

// Everything between the length byte and the fill bytes.
bool PutFields(u32 uiArea, const FRU_DATA_S *pstFRUData, FRU_WRITER_S &stWriter)
{
    const FRU_AREA_S &stArea = g_astFruArea[uiArea];
    const FRU_ENCODE_TEXTS_S &stTexts = g_astFruEncodeTexts[uiArea];
    for (u32 uiField = stArea.ucFirstField; uiField < stArea.ucEndField; ++uiField) {
        if (!PutField(uiField, pstFRUData, stWriter)) {
            return false;
        }
    }
    // A released record keeps its count, so the array decides.
    const u8 *const *ppucFields = FRU_CustomFields(pstFRUData, stArea);
    const u32 uiCount = ppucFields == nullptr ? 0U : FRU_CustomCount(pstFRUData, stArea);
    for (u32 i = 0; i < uiCount; ++i) {
        if (!FRU_PutText(stWriter, ppucFields[i])) {
            FRU_LOG_TABLE(FRU_CAT_GENERAL, BMC_DIAG_ERROR, stTexts.acCustomField, i);
            return false;
        }
    }
    return Reported(FRU_PutByte(stWriter, FRU_FIELD_END), stTexts.acEndChar);
}

i32 ConvertInfoArea(u32 uiArea, const FRU_DATA_S *pstFRUData, u32 uiPosition, u32 uiRoom, u8 *pucBuf)
{
    const FRU_ENCODE_TEXTS_S &stTexts = g_astFruEncodeTexts[uiArea];
    FRU_WRITER_S stWriter = {pucBuf, uiRoom, 0U};
    const u8 ucVersion = *FRU_MemberAt(pstFRUData, g_astFruArea[uiArea].usVersion);
    if (!Reported(FRU_PutByte(stWriter, ucVersion), stTexts.acVersion) ||
        !Reported(FRU_PutByte(stWriter, 0U), stTexts.acLength) || !PutFields(uiArea, pstFRUData, stWriter)) {
        return FRU_WRITE_FAILED;
    }
    const u32 uiSize = RoundUp(stWriter.uiUsed + 1U);
    const u32 uiUnits = uiSize / FRU_AREA_UNIT;
    // Neither the length byte nor the header's offset byte may wrap.
    if (uiSize - 1U >= uiRoom || uiUnits > g_uiMaxUnits || uiPosition / FRU_AREA_UNIT > g_uiMaxUnits) {
        FRU_LOG_TABLE(FRU_CAT_GENERAL, BMC_DIAG_ERROR, stTexts.acRelocate, uiSize);
        return FRU_WRITE_FAILED;
    }
    FRU_WRITER_S stLength = {pucBuf, uiRoom, 1U};
    if (!Reported(FRU_PutByte(stLength, static_cast<u8>(uiUnits)), stTexts.acLength)) {
        return FRU_WRITE_FAILED;
    }
    // Covers the bytes behind the end mark as the caller left them.
    FRU_WRITER_S stCheckSum = {pucBuf, uiRoom, uiSize - 1U};
    const u8 ucCheckSum = BMC_CalcZeroCheckSum(pucBuf, uiSize - 1U);
    if (!Reported(FRU_PutByte(stCheckSum, ucCheckSum), stTexts.acCheckSum)) {
        return FRU_WRITE_FAILED;
    }
    return static_cast<i32>(uiSize);
}

i32 FinishMultiRecordArea(u32 uiWritten, u32 uiPosition, u32 uiRoom)
{
    // Intended: of longer records only the size is cut, not what was written.
    const u32 uiSize = RoundUp(uiWritten) & g_uiMultiRecordSizeMask;
    // Intended: one byte of room must stay, and the message is the product area's.
    if (uiSize >= uiRoom || uiPosition / FRU_AREA_UNIT > g_uiMaxUnits) {
        FRU_LOG_TABLE(FRU_CAT_GENERAL, BMC_DIAG_ERROR, g_astFruEncodeTexts[FRU_AREA_PRODUCT].acRelocate,
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
        const u8 *pucHeader = reinterpret_cast<const u8 *>(&stRecord);
        const bool bHeader = FRU_PutBytes(stWriter, pucHeader, FRU_MULTIRECORD_HEADER_LEN);
        if (!bHeader || !FRU_PutBytes(stWriter, stRecord.pucRecordData, stRecord.ucRecordLength)) {
            if (bHeader) {
                FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "write MultiRecordData failed!");
            } else {
                FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "write MultiRecordHeader failed!");
            }
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

// The areas behind the common header, and their places into stHeader; returns the image's bytes or -1.
i32 ConvertAreas(const FRU_DATA_S *pstFRUData, u32 uiLength, u8 *pucBuf, FRU_COMMON_HEADER_S &stHeader)
{
    u32 uiTotal = FRU_COMMON_HEADER_LEN;
    if (pstFRUData->stCommonHeader.ucInternalUseAreaStartOffset != 0U) {
        const i32 iSize = FRU_ConvertInternalUseArea(pstFRUData, uiLength - uiTotal, pucBuf + uiTotal);
        if (iSize < 0) {
            FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Failed to convert InternalUseArea");
            return FRU_WRITE_FAILED;
        }
        stHeader.ucInternalUseAreaStartOffset = static_cast<u8>(uiTotal / FRU_AREA_UNIT);
        uiTotal += static_cast<u32>(iSize);
    }
    for (u32 uiArea = 0; uiArea < FRU_AREA_COUNT; ++uiArea) {
        const FRU_AREA_S &stArea = g_astFruArea[uiArea];
        if (FRU_AreaPlace(pstFRUData, stArea) == 0U) {
            continue;
        }
        const i32 iSize = ConvertInfoArea(uiArea, pstFRUData, uiTotal, uiLength - uiTotal, pucBuf + uiTotal);
        if (iSize < 0) {
            FRU_LOG_TABLE(FRU_CAT_GENERAL, BMC_DIAG_ERROR, g_astFruEncodeTexts[uiArea].acClosing);
            return FRU_WRITE_FAILED;
        }
        FRU_SetAreaPlace(&stHeader, stArea, static_cast<u8>(uiTotal / FRU_AREA_UNIT));
        uiTotal += static_cast<u32>(iSize);
    }
    if (pstFRUData->stCommonHeader.ucMultiRecordAreaStartOffset != 0U) {
        const i32 iSize =
            FRU_ConvertMultiRecordArea(pstFRUData, uiTotal, uiLength - uiTotal, pucBuf + uiTotal);
        if (iSize < 0) {
            // Intended: it speaks of the product area.
            FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Failed to createFRUBin of ProductInfoArea! Ret:%#x.",
                    static_cast<u32>(iSize));
            return FRU_WRITE_FAILED;
        }
        stHeader.ucMultiRecordAreaStartOffset = static_cast<u8>(uiTotal / FRU_AREA_UNIT);
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
    FRU_COMMON_HEADER_S stHeader;
    (void)memcpy(&stHeader, pucBuf, sizeof(stHeader)); // what absent areas have is the caller's
    stHeader.ucFormatVersion = FRU_AREA_VERSION;
    const i32 iTotal = ConvertAreas(pstFRUData, uiLength, pucBuf, stHeader);
    if (iTotal < 0) {
        return FRU_WRITE_FAILED;
    }
    stHeader.ucPad = 0U;
    stHeader.ucChecksum =
        BMC_CalcZeroCheckSum(reinterpret_cast<const u8 *>(&stHeader), FRU_COMMON_HEADER_LEN - 1U);
    (void)memcpy(pucBuf, &stHeader, sizeof(stHeader));
    return iTotal;
}
