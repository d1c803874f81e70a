// SPDX-License-Identifier: Apache-2.0
// Private to lib_fru_db.
#ifndef LIB_FRU_DB_MODULE_H
#define LIB_FRU_DB_MODULE_H

#define FRU_DIAG_FILE "lib_fru_db.c"

#include "common/diag.h"
#include "lib_fru_types.h"

#endif
