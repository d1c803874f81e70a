// SPDX-License-Identifier: Apache-2.0
// Reads a span of any length through the Read FRU Data handler.
#include "lib_fru/lib_fru_module.h"
#include "lib_fru_access.h"
#include "lib_fru_ipmi.h"

#include <cstring>

namespace {

constexpr u32 g_uiChunkMax = 128U;
// Completion code, count and the most data that a count byte can ask for; the first count is the caller's.
constexpr u32 g_uiResponseLen = FRU_READ_RES_HEADER_LEN + FRU_READ_COUNT_MAX;

u32 Smaller(u32 uiLeft, u32 uiRight)
{
    return uiLeft < uiRight ? uiLeft : uiRight;
}

} // namespace

u32 LIB_FRU_GetFRUDataFromEEPROM(u32 uiTotalLen, FRU_READ_REQ_S *pstFRUReadReq, u32 uiReqLen, u8 *pucFRUBuf,
                                 u32 uiArg)
{
    FRU_REQUIRE(pucFRUBuf, FRU_ERR_NULL_POINTER);
    FRU_REQUIRE(pstFRUReadReq, FRU_ERR_NULL_POINTER);
    const FRU_BUFFER upResBuf(static_cast<u8 *>(FRU_ZALLOC(g_uiResponseLen)));
    if (upResBuf == nullptr) {
        FRU_LOG(FRU_CAT_DATA, BMC_DIAG_WARNING, "Fail allocating memory!");
        return FRU_ERR_NO_MEMORY;
    }
    if (uiTotalLen == 0U) {
        return FRU_ERR_FAILED;
    }
    u32 uiLeft = uiTotalLen;
    for (;;) {
        if (LIB_FRU_ReadFRUData(reinterpret_cast<const u8 *>(pstFRUReadReq),
                                static_cast<u8>(uiReqLen & 0xFFU), upResBuf.get(),
                                uiArg) == FRU_ERROR_RES_LEN) {
            FRU_LOG(FRU_CAT_DATA, BMC_DIAG_WARNING, "Read fru[%#x] data failed!", pstFRUReadReq->ucDeviceID);
            return FRU_ERR_FAILED;
        }
        // The count that was asked for moves the span on, not the one that came back. Intended.
        const u32 uiCount = pstFRUReadReq->ucCount;
        const u32 uiCopied = Smaller(uiCount, uiLeft);
        (void)memcpy(pucFRUBuf + (uiTotalLen - uiLeft), &upResBuf[FRU_READ_RES_HEADER_LEN], uiCopied);
        pstFRUReadReq->usOffset = static_cast<u16>(pstFRUReadReq->usOffset + uiCount);
        if (uiCount >= uiLeft) {
            pstFRUReadReq->ucCount = 0;
            return FRU_OK;
        }
        uiLeft -= uiCount;
        pstFRUReadReq->ucCount = static_cast<u8>(Smaller(uiLeft, g_uiChunkMax));
    }
}
