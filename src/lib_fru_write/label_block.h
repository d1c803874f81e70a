// Private to lib_fru_write: what both label writes do with their request block.
#ifndef LIB_FRU_WRITE_LABEL_BLOCK_H
#define LIB_FRU_WRITE_LABEL_BLOCK_H

#include "lib_fru_types.h"

constexpr i32 g_iOperateSuccess = 6; // what the operation-log texts take for a success
constexpr i32 g_iOperateFailure = 4;

// A text member of a block that other processes fill, made safe to print: at most uiSize characters of it,
// and a NUL, so pcDest holds uiSize + 1.
void FRU_CopyMember(char *pcDest, const char *pcMember, size_t uiSize);

// Whether the member holds a NUL; nothing beyond uiSize is read.
bool FRU_IsTerminated(const char *pcMember, size_t uiSize);

// FindLabelIDByName() of the block's label name; a name without a NUL inside the block is unknown.
u32 FRU_LabelIDOfBlock(const FRU_SET_PARA_S *pstFRUSetPara);

// Fetches the device's record, reports a failure, and on success puts FRU name and log type into the block.
u32 FRU_FetchBlockDevice(FRU_SET_PARA_S *pstFRUSetPara, FRU_DEVICE_INFO_S *pstFRUInfo);

// Resolves the block's label name, reports an unknown one, and puts the ID into the block.
u32 FRU_ResolveBlockLabel(FRU_SET_PARA_S *pstFRUSetPara);

#endif
