// Private to lib_fru_write: lookups in the label catalogue.
#ifndef LIB_FRU_WRITE_CATALOGUE_H
#define LIB_FRU_WRITE_CATALOGUE_H

#include "lib_fru_types.h"

constexpr u32 g_uiLabelNotFound = 36U; // what lookups answer for "no such label"; never an ID

// The first row with this name, or this ID; null: there is none.
const DIAG_FRU_LABEL_S *FRU_FindLabelByName(const char *pcName);
const DIAG_FRU_LABEL_S *FRU_FindLabelByID(u32 uiLabelID);

// Whether the setter leaves the value buffer to its caller.
bool FRU_SetterKeepsNothing(u32 (*pfnSetLabel)(u8 *pucLabelValue, FRU_DATA_S *pstFRUData));

#endif
