// SPDX-License-Identifier: Apache-2.0
// Private to lib_fru_write.
#ifndef LIB_FRU_WRITE_MODULE_H
#define LIB_FRU_WRITE_MODULE_H

#define FRU_DIAG_FILE "lib_fru_write.c"

#include "common/alloc.h"
#include "common/diag.h"
#include "lib_fru_types.h"

#endif
