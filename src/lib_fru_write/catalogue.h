// Private to lib_fru_write: lookups in the label catalogue, and the label block's texts with their bounds.
#ifndef LIB_FRU_WRITE_CATALOGUE_H
#define LIB_FRU_WRITE_CATALOGUE_H

#include "lib_fru_types.h"

constexpr u32 g_uiLabelNotFound = 36U; // what lookups answer for "no such label"; never an ID

// The first row with this name, or this ID; null: there is none.
const DIAG_FRU_LABEL_S *FRU_FindLabelByName(const char *pcName);
const DIAG_FRU_LABEL_S *FRU_FindLabelByID(u32 uiLabelID);

// FindLabelIDByName() of the block's label name; a name without a NUL inside the block is unknown.
u32 FRU_LabelIDOfBlock(const FRU_SET_PARA_S *pstFRUSetPara);

// A text member of a block that other processes fill, made safe to print: at most uiSize characters of it,
// and a NUL, so pcDest holds uiSize + 1.
void FRU_CopyMember(char *pcDest, const char *pcMember, size_t uiSize);

// Whether the setter leaves the value buffer to its caller.
bool FRU_SetterKeepsNothing(u32 (*pfnSetLabel)(u8 *pucLabelValue, FRU_DATA_S *pstFRUData));

#endif
