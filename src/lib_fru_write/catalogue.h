// SPDX-License-Identifier: Apache-2.0
// Private to lib_fru_write: lookups in the exported label table, and what is known of a label beside it.
#ifndef LIB_FRU_WRITE_CATALOGUE_H
#define LIB_FRU_WRITE_CATALOGUE_H

#include "lib_fru_types.h"

// ---- the exported table as it stands, changes by callers included

// The first row with this name, or this ID; null: there is none.
const DIAG_FRU_LABEL_S *FRU_FindLabelByName(const char *pcName);
const DIAG_FRU_LABEL_S *FRU_FindLabelByID(u32 uiLabelID);

// ---- the library's own knowledge, which never changes

typedef u32 (*FRU_SETTER)(u8 *pucLabelValue, FRU_DATA_S *pstFRUData);

// Which values a label accepts.
enum FRU_RULE_ID : u8
{
    FRU_RULE_TEXT, // printable ASCII
    FRU_RULE_CHASSIS_TYPE,
    FRU_RULE_DATE,
    FRU_RULE_LANGUAGE,
    FRU_RULE_MAC_ADDRESS,
};

#define FRU_BLANK_ALLOWED 0x01U // nothing, or nothing but white space, is a value
// As long as an image can hold it on component type 0, whatever the exported row says.
#define FRU_LONG_PART_NUMBER 0x02U

enum FRU_SETS_ID : u8
{
    FRU_SETS_NOTHING,
    FRU_SETS_TEXT,
    FRU_SETS_CUSTOM,
    FRU_SETS_LANGUAGE,
    FRU_SETS_DATE,
};

struct FRU_TARGET_S
{
    FRU_SETS_ID eSets;
    u8 ucPlace; // a FRU_FIELD_ID; for a custom field a FRU_AREA_ID
    u8 ucSlot;  // for a custom field
};

struct FRU_LABEL_S
{
    u8 ucLabelID;
    FRU_RULE_ID eRule;
    u8 ucSpecial; // FRU_BLANK_ALLOWED, FRU_LONG_PART_NUMBER
    FRU_TARGET_S stTarget;
};

// The first label with this name or ID; for others, which only a caller can have put into the exported table,
// a label that is an ordinary text.
const FRU_LABEL_S &FRU_LabelOfName(const char *pcName);
const FRU_LABEL_S &FRU_LabelOfID(u32 uiLabelID);

const char *FRU_NameOfLabel(const FRU_LABEL_S &stLabel); // of one of the library's own

// Whether the setter leaves the value buffer to its caller, in whichever exported row it stands; the setter
// of a caller does not.
bool FRU_SetterKeepsNothing(FRU_SETTER pfnSetLabel);

#endif
