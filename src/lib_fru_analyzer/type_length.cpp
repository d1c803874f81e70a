// SPDX-License-Identifier: Apache-2.0
#include "lib_fru_analyzer/type_length.h"

#include <cstring>

#include "lib_fru_analyzer/lib_fru_analyzer_module.h"

namespace {

enum : u32
{
    TYPE_BINARY,
    TYPE_BCD_PLUS,
    TYPE_ASCII_6BIT,
    TYPE_ASCII_8BIT,
};

constexpr u32 g_uiEmptySize = 8U; // the buffer of a field without data, whatever its type

u32 BufferSize(u32 uiType, u32 uiCount)
{
    if (uiType == TYPE_BINARY) {
        return 2U * uiCount + 1U;
    }
    if (uiType == TYPE_ASCII_6BIT) {
        return ((uiCount + 2U) * 4U / 3U & ~3U) + 1U;
    }
    return uiCount + 1U;
}

} // namespace

void FRU_ParseByUnicode(const u8 *pucData, u32 uiCount, char *pcOut)
{
    constexpr char acDigits[] = "0123456789ABCDEF";
    for (u32 i = 0; i < uiCount; ++i) {
        *pcOut++ = acDigits[pucData[i] >> 4U];
        *pcOut++ = acDigits[pucData[i] & 0xFU];
    }
    *pcOut = '\0';
}

void FRU_ParseByASCII6Bit(const u8 *pucData, u32 uiCount, char *pcOut)
{
    const u8 *pucEnd = pucData + uiCount;
    while (pucData != pucEnd) {
        // Bytes that a short last group lacks count as 0.
        u32 uiGroup = *pucData++;
        uiGroup |= pucData == pucEnd ? 0U : static_cast<u32>(*pucData++) << 8U;
        uiGroup |= pucData == pucEnd ? 0U : static_cast<u32>(*pucData++) << 16U;
        *pcOut++ = static_cast<char>((uiGroup & 0x3FU) + 0x20U);
        *pcOut++ = static_cast<char>((uiGroup >> 6U & 0x3FU) + 0x20U);
        *pcOut++ = static_cast<char>((uiGroup >> 12U & 0x3FU) + 0x20U);
        *pcOut++ = static_cast<char>((uiGroup >> 18U) + 0x20U);
    }
    *pcOut = '\0';
}

u32 FRU_GetStringFromType(const u8 *pucBuf, u32 uiLeft, u8 **ppucText, u8 *pucSize)
{
    FRU_REQUIRE(pucBuf, FRU_ERR_NULL_POINTER);
    *ppucText = nullptr;
    *pucSize = 0U;
    if (uiLeft == 0U || (pucBuf[0] & FRU_FIELD_LENGTH_MASK) >= uiLeft) {
        return FRU_ERR_FAILED; // runs past the image
    }
    const u32 uiCount = pucBuf[0] & FRU_FIELD_LENGTH_MASK;
    const u32 uiType = static_cast<u32>(pucBuf[0]) >> FRU_FIELD_TYPE_SHIFT;
    if (uiCount != 0U && uiType != TYPE_ASCII_8BIT) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_WARNING, "Not default type format:%#x", pucBuf[0]);
    }
    const u32 uiSize = uiCount == 0U ? g_uiEmptySize : BufferSize(uiType, uiCount);
    const bool bEmpty = uiCount == 0U || uiType == TYPE_BCD_PLUS; // BCD plus is an empty text
    u8 *pucText = static_cast<u8 *>(bEmpty ? FRU_ZALLOC(uiSize) : FRU_ALLOC(uiSize));
    if (pucText == nullptr) {
        if (uiCount == 0U) {
            FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Error allocating memory for str, Len:%#x", uiSize);
        } else {
            FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Error allocating memory for str");
        }
        return FRU_ERR_FAILED;
    }
    if (bEmpty) {
        // zeros
    } else if (uiType == TYPE_ASCII_8BIT) {
        (void)memcpy(pucText, pucBuf + 1, uiCount);
        pucText[uiCount] = 0U;
    } else if (uiType == TYPE_BINARY) {
        FRU_ParseByUnicode(pucBuf + 1, uiCount, reinterpret_cast<char *>(pucText));
    } else {
        FRU_ParseByASCII6Bit(pucBuf + 1, uiCount, reinterpret_cast<char *>(pucText));
    }
    *ppucText = pucText;
    *pucSize = static_cast<u8>(uiSize);
    return FRU_OK;
}

u32 FRU_ReadField(FRU_READER_S &stReader, u8 **ppucText, u8 *pucSize)
{
    const u8 *pucField = stReader.pucCursor;
    const u32 uiRet = FRU_GetStringFromType(pucField, FRU_ReaderLeft(stReader), ppucText, pucSize);
    if (uiRet == FRU_OK) {
        (void)FRU_ReadBytes(stReader, (*pucField & FRU_FIELD_LENGTH_MASK) + 1U);
    }
    return uiRet;
}
