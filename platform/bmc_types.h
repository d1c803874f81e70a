/* SPDX-License-Identifier: Apache-2.0 */
/*
 * Platform: the integer names that all contract headers use.
 *
 * The functions of bmc_*.h are a controller's own to provide, in a library that programs link behind
 * -lbmcfru; on a desk libbmcfruhost is that library. Who provides them finds these headers by CMake's
 * bmcfru::platform, or in the folder platform/ beside lib_fru.h.
 */
#ifndef BMC_TYPES_H
#define BMC_TYPES_H

#include <stddef.h>
#include <stdint.h>

/* lib_fru_types.h has them too, and C99 takes a typedef once */
#ifndef BMC_INTEGER_NAMES
#define BMC_INTEGER_NAMES
typedef uint8_t u8;
typedef uint16_t u16;
typedef uint32_t u32;
typedef int32_t i32;
#endif

#endif
