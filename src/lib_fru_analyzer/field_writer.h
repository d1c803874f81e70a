// SPDX-License-Identifier: Apache-2.0
// Bounded writing of image bytes.
#ifndef LIB_FRU_ANALYZER_FIELD_WRITER_H
#define LIB_FRU_ANALYZER_FIELD_WRITER_H

#include "lib_fru_types.h"

#define FRU_WRITE_FAILED (-1)

// Copies uiCount bytes; returns their count, or -1 when uiRoom is smaller or a pointer is null.
i32 FRU_WriteFRUDataByLength(const u8 *pucData, u32 uiRoom, u32 uiCount, u8 *pucBuf);

// Writes a text as an 8-bit ASCII field; returns its bytes, 0 for a null text (which leaves no field), or -1
// when uiRoom is too small or the text has more than 63 bytes.
i32 FRU_WriteFRUDataByType(const char *pcText, u32 uiRoom, u8 *pucBuf);

// A part of an image while it is written.
struct FRU_WRITER_S
{
    u8 *pucBuf;
    u32 uiRoom; // bytes that pucBuf has
    u32 uiUsed; // at most uiRoom
};

// The same two at the writer's position.
bool FRU_PutBytes(FRU_WRITER_S &stWriter, const u8 *pucData, u32 uiCount);
bool FRU_PutByte(FRU_WRITER_S &stWriter, u8 ucByte);
bool FRU_PutText(FRU_WRITER_S &stWriter, const u8 *pucText);

#endif
