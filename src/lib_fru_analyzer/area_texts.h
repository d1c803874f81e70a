// SPDX-License-Identifier: Apache-2.0
// What the codec says about fields and areas, one row each, letter for letter.
#ifndef LIB_FRU_ANALYZER_AREA_TEXTS_H
#define LIB_FRU_ANALYZER_AREA_TEXTS_H

#include "lib_fru_analyzer/fields.h"

// What is told when a field cannot be decoded (empty: plain bytes, which never fail by themselves) and when it
// cannot be encoded. Found by walking, so not before it has failed.
const char *FRU_DecodeTextOf(u32 uiField);
const char *FRU_EncodeTextOf(u32 uiField);

// The texts themselves, as long as the longest of an area: a pointer would cost 12 bytes more, as it has to be
// relocated.
struct FRU_DECODE_TEXTS_S
{
    char acStart[57];   // offset, image length
    char acVersion[42]; // version
    char acSize[58];    // area length, offset, image length
    char acZeroSum[45];
    char acCustomAddress[60];
    char acCustomCount[53];
    char acCustomDebug[55]; // count, bytes left
    char acCustomMemory[54];
    char acCustomField[61];   // index
    char acCustomRet[42];     // internal result, after a field that failed; empty: none
    char acCustomClosing[32]; // after any failure of the custom fields; empty: none
    char acClosing[31];
};

struct FRU_ENCODE_TEXTS_S
{
    char acVersion[54];
    char acLength[47];
    char acCustomField[64]; // index
    char acEndChar[48];
    char acRelocate[67]; // area length in bytes
    char acCheckSum[54];
    char acClosing[42];
};

extern const FRU_DECODE_TEXTS_S g_astFruDecodeTexts[FRU_AREA_COUNT];
extern const FRU_ENCODE_TEXTS_S g_astFruEncodeTexts[FRU_AREA_COUNT];

#endif
