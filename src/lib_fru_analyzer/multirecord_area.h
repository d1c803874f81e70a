// SPDX-License-Identifier: Apache-2.0
// The MultiRecord area (IPMI Platform Management FRU Information Storage Definition, section 16), decoded.
#ifndef LIB_FRU_ANALYZER_MULTIRECORD_AREA_H
#define LIB_FRU_ANALYZER_MULTIRECORD_AREA_H

#include "lib_fru_types.h"

// Walks the records of an image of uiLength bytes whose common header the record holds already. Has no
// result: a damaged area leaves no data behind and is told of in the log only.
void FRU_GetMultiRecordArea(const u8 *pucBuff, u32 uiLength, FRU_DATA_S *pstFRUData);

// Frees and nulls the data of every entry; the header bytes stay.
void FRU_FreeMultiRecords(FRU_DATA_S *pstFRUData);

#endif
