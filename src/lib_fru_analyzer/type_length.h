// SPDX-License-Identifier: Apache-2.0
// Type/length-coded fields (IPMI Platform Management FRU Information Storage Definition, section 13).
#ifndef LIB_FRU_ANALYZER_TYPE_LENGTH_H
#define LIB_FRU_ANALYZER_TYPE_LENGTH_H

#include "common/reader.h"
#include "lib_fru_types.h"

#define FRU_FIELD_EMPTY 0xC0U       // an empty text
#define FRU_FIELD_LENGTH_MASK 0x3FU // data bytes; the type is in the two bits above
#define FRU_FIELD_TYPE_SHIFT 6U

/*
 * Decodes the field at pucBuf, of which uiLeft bytes may be read, into a new heap text, zero-filled behind
 * its end. *ppucText and *pucSize (the buffer's size, terminator included) are cleared first. 0,
 * FRU_ERR_NULL_POINTER (pucBuf), or FRU_ERR_FAILED: out of memory or the field runs past uiLeft.
 */
u32 FRU_GetStringFromType(const u8 *pucBuf, u32 uiLeft, u8 **ppucText, u8 *pucSize);

// The same at the reader's position, which then stands behind the field.
u32 FRU_ReadField(FRU_READER_S &stReader, u8 **ppucText, u8 *pucSize);

// Text of binary data: two upper-case hexadecimal digits for each byte, and a NUL.
void FRU_ParseByUnicode(const u8 *pucData, u32 uiCount, char *pcOut);

// Text of packed 6-bit ASCII: four characters for each three bytes begun, and a NUL.
void FRU_ParseByASCII6Bit(const u8 *pucData, u32 uiCount, char *pcOut);

#endif
