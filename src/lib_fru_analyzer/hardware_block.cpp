// SPDX-License-Identifier: Apache-2.0
// The 32-byte hardware FRU block: two halves of 16 bytes, each behind its own CRC-8.
#include "lib_fru_analyzer/lib_fru_analyzer_module.h"

#include <cstring>

#include "lib_fru_codec.h"

namespace {

constexpr u32 g_uiHalf = FRU_HW_DATA_LEN / 2U;

} // namespace

u32 FRU_ANALYZER_InterpretALLHwFRUData(const u8 *pucBuff, u32 uiSize, FRU_HW_DATA_S *pstFruHwData)
{
    FRU_REQUIRE(pucBuff, LIB_FRU_ERR_SIZE);
    FRU_REQUIRE(pstFruHwData, LIB_FRU_ERR_SIZE);
    if (uiSize != FRU_HW_DATA_LEN) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Hw Fru size:%d is not valid!", uiSize);
        return LIB_FRU_ERR_SIZE;
    }
    (void)memcpy(pstFruHwData, pucBuff, FRU_HW_DATA_LEN);
    // Intended: wrong CRCs are warnings, the block is shown as it was read.
    if (BMC_CheckCRC8(pucBuff[0], pucBuff + 1, g_uiHalf - 1U) != 0U) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_WARNING, "Check HwBoardInfo CRC8 failed!");
    }
    if (BMC_CheckCRC8(pucBuff[g_uiHalf], pucBuff + g_uiHalf + 1, g_uiHalf - 1U) != 0U) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_WARNING, "Check HwDiagInfo CRC8 failed!");
    }
    return FRU_OK;
}

u32 FRU_ANALYZER_ConvertToHwArray(FRU_HW_DATA_S *pstHwData, u32 uiSize, u8 *pucBuf)
{
    FRU_REQUIRE(pucBuf, LIB_FRU_ERR_SIZE);
    FRU_REQUIRE(pstHwData, LIB_FRU_ERR_SIZE);
    if (uiSize != FRU_HW_DATA_LEN) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Hw data size:%d is not valid!", uiSize);
        return LIB_FRU_ERR_SIZE;
    }
    const u8 *pucBytes = reinterpret_cast<const u8 *>(pstHwData);
    pstHwData->stHwBoardInfo.ucBoardCrc8 = BMC_CalcCRC8CheckSum(pucBytes + 1, g_uiHalf - 1U);
    pstHwData->stHwDiagInfo.ucDiagCrc8 = BMC_CalcCRC8CheckSum(pucBytes + g_uiHalf + 1, g_uiHalf - 1U);
    (void)memcpy(pucBuf, pucBytes, FRU_HW_DATA_LEN);
    return FRU_OK;
}
