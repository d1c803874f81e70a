// SPDX-License-Identifier: Apache-2.0
// Private to array_write.cpp, and to its tests: no image that the encoder makes gets to the end of the FRU.
#ifndef LIB_FRU_ARRAY_WRITE_H
#define LIB_FRU_ARRAY_WRITE_H

#include "lib_fru_types.h"

// Writes the first uiLength bytes of pucBuf (uiFRUSize bytes) from the FRU's start on, in chunks of up to 127
// bytes; each also patches the cached image. False: stopped before the end, at a chunk that would cross the
// end of the FRU (without a word) or that the device did not take (reported).
bool FRU_WriteImageChunks(u8 ucDeviceID, u32 uiFRUSize, u32 uiLength, const u8 *pucBuf);

#endif
