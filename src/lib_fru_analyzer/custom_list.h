// SPDX-License-Identifier: Apache-2.0
// The custom fields of an info area, decoded.
#ifndef LIB_FRU_ANALYZER_CUSTOM_LIST_H
#define LIB_FRU_ANALYZER_CUSTOM_LIST_H

#include "common/reader.h"
#include "lib_fru_types.h"

/*
 * Counts the fields from pucStartBuff up to their end mark; uiSize bytes are left in the area. The count has
 * 8 bits and wraps. 0, FRU_ERR_NULL_POINTER, or FRU_ERR_FAILED: no end mark within the area.
 */
u32 FRU_GetCustomerFieldCount(const u8 *pucStartBuff, u32 uiSize, u8 *pucCount);

/*
 * Decodes the custom fields at the reader's position, which is uiUsed bytes behind the start of an area of
 * uiAreaSize bytes, into the area's array and count; a count preset to the area's fixed slots asks for that
 * many fields. The area lies within the image. 0 or FRU_ERR_FAILED.
 */
u32 FRU_GetCustomFields(u32 uiArea, FRU_READER_S stReader, u32 uiUsed, u32 uiAreaSize,
                        FRU_DATA_S *pstFRUData);

#endif
