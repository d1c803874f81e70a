// SPDX-License-Identifier: Apache-2.0
// Private to lib_fru: the OEM configuration file and its keys.
#ifndef LIB_FRU_OEM_CONF_H
#define LIB_FRU_OEM_CONF_H

#include "lib_fru_analyzer/fields.h"
#include "lib_fru_oem.h"

#define FRU_OEM_CONF_PATH "/conf/oempack/bmc/CID_OEM.conf"
#define FRU_OEM_CONF_SECTION "oem_configure"

enum class FRU_OEM_TYPE_E : u8
{
    TEXT,
    NUMBER,
    FLAG,
};

// Where FRU_SetOEMConf() has a key's value from.
struct FRU_OEM_SOURCE_S
{
    u8 ucTurn;  // when it comes to this key, from 1 on; 0: it does not
    u8 ucField; // a FRU_FIELD_ID; FRU_FIELD_COUNT: the product area's custom field of ucSlot
    u8 ucSlot;
};

// One key of the file: where FRU_SetOEMConf() has its value from, its member of FRU_OEM_CONF_S, its value
// when the key is missing and when the whole file is.
struct FRU_OEM_KEY_S
{
    char acKey[20];
    char acMissingKey[4];
    char acMissingFile[4];
    FRU_OEM_TYPE_E eType;
    FRU_OEM_SOURCE_S stSource; // here it costs no padding
    u16 usOffset;
    u16 usSize;
    u32 uiMissingKey;
    u32 uiMissingFile;
};

#define FRU_OEM_KEYS 21U
extern const FRU_OEM_KEY_S g_astFruOemKey[FRU_OEM_KEYS];

#endif
