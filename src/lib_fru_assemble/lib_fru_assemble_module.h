// SPDX-License-Identifier: Apache-2.0
// Private to lib_fru_assemble.
#ifndef LIB_FRU_ASSEMBLE_MODULE_H
#define LIB_FRU_ASSEMBLE_MODULE_H

#define FRU_DIAG_FILE "lib_fru_assemble.c"

#include "common/alloc.h"
#include "common/diag.h"
#include "lib_fru_types.h"

#endif
