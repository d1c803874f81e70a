// SPDX-License-Identifier: Apache-2.0
#include "lib_fru_analyzer/multirecord_area.h"

#include <cstring>

#include "common/reader.h"
#include "lib_fru_analyzer/lib_fru_analyzer_module.h"

namespace {

// One record at the reader's position. A header past the end of the image fails as its checksum would, and so
// do data past it: with the header's message, for there is no sum of theirs to tell.
u32 GetRecord(FRU_READER_S &stReader, FRU_MULTIRECORD_S *pstRecord)
{
    const u8 *pucHeader = FRU_ReadBytes(stReader, FRU_MULTIRECORD_HEADER_LEN);
    if (pucHeader == nullptr || BMC_CheckZeroSum(pucHeader, FRU_MULTIRECORD_HEADER_LEN) != 0U) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Failed to check zero sum in MultiRecordArea!");
        return FRU_ERR_FAILED;
    }
    (void)memcpy(pstRecord, pucHeader, FRU_MULTIRECORD_HEADER_LEN);
    const u32 uiCount = pstRecord->ucRecordLength;
    const u8 *pucData = FRU_ReadBytes(stReader, uiCount);
    if (pucData == nullptr) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "Failed to check zero sum in MultiRecordArea!");
        return FRU_ERR_FAILED;
    }
    const u8 ucCheckSum = BMC_CalcZeroCheckSum(pucData, uiCount);
    if (ucCheckSum != pstRecord->ucRecordChecksum) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR,
                "MultiRecordData checkSum is invalid (calculate:0x%x record:0x%x)", ucCheckSum,
                pstRecord->ucRecordChecksum);
        return FRU_ERR_FAILED;
    }
    // A record without data is refused here, by the guard.
    u8 *pucCopy = static_cast<u8 *>(FRU_COPY_IN(pucData, uiCount, "FRU_GetMultiRecordArea"));
    if (pucCopy == nullptr) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "malloc RecordData failed");
        return FRU_ERR_FAILED;
    }
    pstRecord->pucRecordData = pucCopy;
    return FRU_OK;
}

u32 WalkRecords(const u8 *pucBuff, u32 uiLength, FRU_DATA_S *pstFRUData)
{
    const u32 uiOffset = pstFRUData->stCommonHeader.ucMultiRecordAreaStartOffset;
    const u32 uiStart = uiOffset * FRU_AREA_UNIT;
    if (uiStart >= uiLength) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_DEBUG, "Error MultiRecordAreaStartOffset(8*%d) >= FRU_Size(%d)",
                uiOffset, uiLength);
        return FRU_ERR_FAILED;
    }
    FRU_READER_S stReader = FRU_ReaderOver(pucBuff + uiStart, uiLength - uiStart);
    for (FRU_MULTIRECORD_S &stRecord : pstFRUData->astMultiRecord) {
        if (GetRecord(stReader, &stRecord) != FRU_OK) {
            return FRU_ERR_FAILED;
        }
        if ((stRecord.ucRecordFormat & FRU_MULTIRECORD_END_OF_LIST) != 0U) {
            return FRU_OK;
        }
    }
    FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "EEPROM MultiRecord Count is out of space");
    return FRU_ERR_FAILED;
}

} // namespace

void FRU_GetMultiRecordArea(const u8 *pucBuff, u32 uiLength, FRU_DATA_S *pstFRUData)
{
    if (WalkRecords(pucBuff, uiLength, pstFRUData) == FRU_OK) {
        return;
    }
    FRU_FreeMultiRecords(pstFRUData);
    FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_DEBUG, "Failed to get MultiRecordArea!");
}
