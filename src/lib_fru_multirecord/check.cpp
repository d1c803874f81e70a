// SPDX-License-Identifier: Apache-2.0
// The validator of record lists, in memory and as raw area bytes.
#include "lib_fru_multirecord/lib_fru_multirecord_module.h"

#include <cstdio>

namespace {

constexpr u32 g_uiFormatByte = 1;
constexpr u32 g_uiLengthByte = 2;
constexpr u32 g_uiRecordChecksumByte = 3;
constexpr u32 g_uiHeaderChecksumByte = 4;

bool IsRecordValid(const u8 *pucHeader, const u8 *pucData, u32 uiIndex, u32 uiCheckType)
{
    const bool bMemory = uiCheckType == FRU_MR_CHECK_MEMORY;
    // Bit 1 alone, on purpose: 0x03, 0x06 or 0x0A pass here, though not as the mark of an empty list.
    if ((pucHeader[g_uiFormatByte] & FRU_MR_FORMAT_VERSION) == 0U) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR,
                bMemory ? "FRU MultiRecord[Memory] invalid FormatVersion[%d]: %#x"
                        : "FRU MultiRecord[EEPROM] invalid FormatVersion[%d]: %#x",
                uiIndex, pucHeader[g_uiFormatByte]);
        return false;
    }
    const u8 ucHeaderSum = BMC_CalcZeroCheckSum(pucHeader, FRU_MR_CHECKED_HEADER_LEN);
    if (ucHeaderSum != pucHeader[g_uiHeaderChecksumByte]) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR,
                bMemory ? "FRU MultiRecord[Memory] header sum check err[%d]: %#x to %#x"
                        : "FRU MultiRecord[EEPROM] header sum check err[%d]: %#x to %#x",
                uiIndex, pucHeader[g_uiHeaderChecksumByte], ucHeaderSum);
        return false;
    }
    const u8 ucDataSum = BMC_CalcZeroCheckSum(pucData, pucHeader[g_uiLengthByte]);
    if (ucDataSum != pucHeader[g_uiRecordChecksumByte]) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR,
                bMemory ? "FRU MultiRecord[Memory] record_data sum check err[%d]: %#x to %#x"
                        : "FRU MultiRecord[EEPROM] record_data sum check err[%d]: %#x to %#x",
                uiIndex, pucHeader[g_uiRecordChecksumByte], ucDataSum);
        return false;
    }
    return true;
}

// Whether this was the last record; then it says so and stores the count.
bool IsEnd(const u8 *pucHeader, u32 uiIndex, u32 uiCheckType, u32 *puiOutCount)
{
    if ((pucHeader[g_uiFormatByte] & FRU_MULTIRECORD_END_OF_LIST) == 0U) {
        return false;
    }
    (void)printf(uiCheckType == FRU_MR_CHECK_MEMORY ? "FRU MultiRecord[Memory] touch the end: %d"
                                                    : "FRU MultiRecord[EEPROM] touch the end: %d",
                 static_cast<int>(uiIndex));
    *puiOutCount = uiIndex + 1U;
    return true;
}

bool HasFormatVersion(const u8 *pucHeader)
{
    return (pucHeader[g_uiFormatByte] & FRU_MR_FORMAT_MASK) == FRU_MR_FORMAT_VERSION;
}

u32 CheckMemory(const u8 *pucBuf, u32 *puiOutCount)
{
    *puiOutCount = 0U;
    const auto *pastTable = reinterpret_cast<const FRU_MULTIRECORD_S *>(pucBuf);
    if (!HasFormatVersion(pucBuf) && pastTable[0].pucRecordData == nullptr) {
        return FRU_OK;
    }
    u32 i = 0;
    for (; i < FRU_MULTIRECORD_MAX; ++i) {
        const u8 *pucHeader = reinterpret_cast<const u8 *>(&pastTable[i]);
        const u8 *pucData = pastTable[i].pucRecordData;
        if (pucData == nullptr) {
            FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "FRU MultiRecord[Memory] invalid null point[%d].", i);
            break;
        }
        if (!IsRecordValid(pucHeader, pucData, i, FRU_MR_CHECK_MEMORY)) {
            break;
        }
        if (IsEnd(pucHeader, i, FRU_MR_CHECK_MEMORY, puiOutCount)) {
            return FRU_OK;
        }
    }
    FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Failed to find the end of MultiRecords[Memory]: Count:%d.", i);
    FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Invalid FRU MultiRecord format");
    return FRU_ERR_MR_FAILED;
}

u32 CheckEeprom(const u8 *pucBuf, u32 *puiOutCount)
{
    *puiOutCount = 0U;
    if (!HasFormatVersion(pucBuf)) {
        return FRU_OK;
    }
    u32 i = 0;
    const u8 *pucHeader = pucBuf;
    for (; i < FRU_MULTIRECORD_MAX; ++i) {
        const u8 *pucData = pucHeader + FRU_MULTIRECORD_HEADER_LEN;
        if (!IsRecordValid(pucHeader, pucData, i, FRU_MR_CHECK_EEPROM)) {
            break;
        }
        if (IsEnd(pucHeader, i, FRU_MR_CHECK_EEPROM, puiOutCount)) {
            return FRU_OK;
        }
        pucHeader = pucData + pucHeader[g_uiLengthByte];
    }
    // "count", where the check in memory says "Count": kept.
    FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Failed to find the end of MultiRecords[EEPROM]: count:%d.", i);
    FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Invalid FRU MultiRecord format");
    return FRU_ERR_MR_FAILED;
}

} // namespace

u32 FRU_checkAllMultiRecords(const u8 *pucBuf, u32 uiCheckType, u32 *puiOutCount)
{
    FRU_REQUIRE(pucBuf, FRU_ERR_NULL_POINTER);
    FRU_REQUIRE(puiOutCount, FRU_ERR_NULL_POINTER);
    switch (uiCheckType) {
    case FRU_MR_CHECK_MEMORY:
        return CheckMemory(pucBuf, puiOutCount);
    case FRU_MR_CHECK_EEPROM:
        return CheckEeprom(pucBuf, puiOutCount);
    default:
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Unknown FRU MultiRecords check type: %#x", uiCheckType);
        return FRU_ERR_MR_FAILED;
    }
}
