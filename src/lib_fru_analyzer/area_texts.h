// SPDX-License-Identifier: Apache-2.0
// What the codec says about fields and areas, one row each, letter for letter.
#ifndef LIB_FRU_ANALYZER_AREA_TEXTS_H
#define LIB_FRU_ANALYZER_AREA_TEXTS_H

#include "lib_fru_analyzer/fields.h"

struct FRU_FIELD_TEXTS_S
{
    const char *pcDecode; // null: plain bytes, which never fail by themselves
    const char *pcEncode;
};

struct FRU_DECODE_TEXTS_S
{
    const char *pcStart;   // offset, image length
    const char *pcVersion; // version
    const char *pcSize;    // area length, offset, image length
    const char *pcZeroSum;
    const char *pcCustomAddress;
    const char *pcCustomCount;
    const char *pcCustomDebug; // count, bytes left
    const char *pcCustomMemory;
    const char *pcCustomField;   // index
    const char *pcCustomRet;     // internal result, after a field that failed; null: none
    const char *pcCustomClosing; // after any failure of the custom fields; null: none
    const char *pcClosing;
};

struct FRU_ENCODE_TEXTS_S
{
    const char *pcVersion;
    const char *pcLength;
    const char *pcCustomField; // index
    const char *pcEndChar;
    const char *pcRelocate; // area length in bytes
    const char *pcCheckSum;
    const char *pcClosing;
};

extern const FRU_FIELD_TEXTS_S g_astFruFieldTexts[FRU_FIELD_COUNT];
extern const FRU_DECODE_TEXTS_S g_astFruDecodeTexts[FRU_AREA_COUNT];
extern const FRU_ENCODE_TEXTS_S g_astFruEncodeTexts[FRU_AREA_COUNT];

#endif
