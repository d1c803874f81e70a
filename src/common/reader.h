// SPDX-License-Identifier: Apache-2.0
// A reader over bytes that came from a device: it knows their end, and a read past it poisons it, so that a
// decoder may ask once whether all went well. Poisoned reads give 0 or null.
#ifndef FRU_COMMON_READER_H
#define FRU_COMMON_READER_H

#include "lib_fru_types.h"

struct FRU_READER_S
{
    const u8 *pucCursor;
    u32 uiLeft; // bytes from there to the end; a count, for the end's address may lie past the address space
    bool bPoisoned;
};

inline FRU_READER_S FRU_ReaderOver(const u8 *pucBuff, u32 uiLength)
{
    return {pucBuff, uiLength, false};
}

inline u32 FRU_ReaderLeft(const FRU_READER_S &stReader)
{
    return stReader.bPoisoned ? 0U : stReader.uiLeft;
}

// The next uiCount bytes, or null when fewer are left.
inline const u8 *FRU_ReadBytes(FRU_READER_S &stReader, u32 uiCount)
{
    if (stReader.bPoisoned || stReader.uiLeft < uiCount) {
        stReader.bPoisoned = true;
        return nullptr;
    }
    const u8 *pucBytes = stReader.pucCursor;
    stReader.pucCursor += uiCount;
    stReader.uiLeft -= uiCount;
    return pucBytes;
}

inline u8 FRU_ReadByte(FRU_READER_S &stReader)
{
    const u8 *pucByte = FRU_ReadBytes(stReader, 1U);
    return pucByte == nullptr ? u8{0} : *pucByte;
}

#endif
