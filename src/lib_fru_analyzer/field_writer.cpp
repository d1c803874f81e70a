// SPDX-License-Identifier: Apache-2.0
#include "lib_fru_analyzer/field_writer.h"

#include <cstring>

#include "lib_fru_analyzer/lib_fru_analyzer_module.h"
#include "lib_fru_analyzer/type_length.h"

i32 FRU_WriteFRUDataByLength(const u8 *pucData, u32 uiRoom, u32 uiCount, u8 *pucBuf)
{
    FRU_REQUIRE(pucBuf, FRU_WRITE_FAILED);
    FRU_REQUIRE(pucData, FRU_WRITE_FAILED);
    if (uiCount > uiRoom) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "FRU data exceeds[%#x, %#x]", uiCount, uiRoom);
        return FRU_WRITE_FAILED;
    }
    (void)memcpy(pucBuf, pucData, uiCount);
    return static_cast<i32>(uiCount);
}

i32 FRU_WriteFRUDataByType(const char *pcText, u32 uiRoom, u8 *pucBuf)
{
    if (pcText == nullptr) {
        // Counts for nothing: the next write lands on it, so that a null text leaves no field.
        if (uiRoom != 0U) {
            pucBuf[0] = FRU_FIELD_EMPTY;
        }
        return 0;
    }
    // What no message can name is as much too long as 4 GiB less one.
    const size_t uiLength = strlen(pcText);
    const u32 uiSize = static_cast<u32>(uiLength < UINT32_MAX ? uiLength : UINT32_MAX - 1U) + 1U;
    // A longer text does not fit the length bits; to cut them would write a wrong image.
    const u32 uiLimit = uiSize > uiRoom ? uiRoom : FRU_FIELD_MAX_TEXT + 1U;
    if (uiSize > uiLimit) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "FRU data exceeds[%#x, %#x]", uiSize, uiLimit);
        return FRU_WRITE_FAILED;
    }
    pucBuf[0] = static_cast<u8>(FRU_FIELD_EMPTY | (uiSize - 1U));
    (void)memcpy(pucBuf + 1, pcText, uiSize - 1U);
    return static_cast<i32>(uiSize);
}

namespace {

// Moves the writer behind what was written; false: nothing was.
bool Advance(FRU_WRITER_S &stWriter, i32 iWritten)
{
    if (iWritten < 0) {
        return false;
    }
    stWriter.uiUsed += static_cast<u32>(iWritten);
    return true;
}

} // namespace

bool FRU_PutBytes(FRU_WRITER_S &stWriter, const u8 *pucData, u32 uiCount)
{
    return Advance(stWriter, FRU_WriteFRUDataByLength(pucData, stWriter.uiRoom - stWriter.uiUsed, uiCount,
                                                      stWriter.pucBuf + stWriter.uiUsed));
}

bool FRU_PutByte(FRU_WRITER_S &stWriter, u8 ucByte)
{
    return FRU_PutBytes(stWriter, &ucByte, 1U);
}

bool FRU_PutText(FRU_WRITER_S &stWriter, const u8 *pucText)
{
    return Advance(stWriter, FRU_WriteFRUDataByType(reinterpret_cast<const char *>(pucText),
                                                    stWriter.uiRoom - stWriter.uiUsed,
                                                    stWriter.pucBuf + stWriter.uiUsed));
}
