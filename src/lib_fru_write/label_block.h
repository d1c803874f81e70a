// SPDX-License-Identifier: Apache-2.0
// Private to lib_fru_write: what both label writes do with their request block.
#ifndef LIB_FRU_WRITE_LABEL_BLOCK_H
#define LIB_FRU_WRITE_LABEL_BLOCK_H

#include "lib_fru_types.h"

// FindLabelIDByName() of the block's label name; a name without a NUL inside the block is unknown.
u32 FRU_LabelIDOfBlock(const FRU_SET_PARA_S *pstFRUSetPara);

// Fetches the device's record, reports a failure, and on success puts FRU name and log type into the block.
u32 FRU_FetchBlockDevice(FRU_SET_PARA_S *pstFRUSetPara, FRU_DEVICE_INFO_S *pstFRUInfo);

// Resolves the block's label name, reports an unknown one, and puts the ID into the block.
u32 FRU_ResolveBlockLabel(FRU_SET_PARA_S *pstFRUSetPara);

#endif
