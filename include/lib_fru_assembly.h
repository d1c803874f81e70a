/* libbmcfru, assembly: an image from label texts. */
#ifndef LIB_FRU_ASSEMBLY_H
#define LIB_FRU_ASSEMBLY_H

#include "lib_fru_types.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

u32 FRU_AssembleBin(const FRU_DEVICE_INFO_S *pstFRUInfo, const FRU_ASSEMBLE_LABEL_S *pstFRULabel);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
