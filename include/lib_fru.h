/* SPDX-License-Identifier: Apache-2.0 */
/*
 * libbmcfru: a server's FRU inventory, for management controllers. The whole public interface.
 *
 * Calls run on the caller's thread; there is no start-up call. Results are u32 status codes (lib_fru_types.h)
 * unless said otherwise. Every failure is also told in the diagnostic log, in words.
 *
 * Link with -lbmcfru (pkg-config bmcfru, CMake bmcfru::bmcfru), and on a controller behind it with the
 * library that answers the functions of platform/bmc_*.h. On a desk that is libbmcfruhost, which comes
 * along by itself.
 */
#ifndef LIB_FRU_H
#define LIB_FRU_H

#include "lib_fru_types.h"

#include "lib_fru_access.h"
#include "lib_fru_assembly.h"
#include "lib_fru_cache.h"
#include "lib_fru_codec.h"
#include "lib_fru_dates.h"
#include "lib_fru_diagnostics.h"
#include "lib_fru_events.h"
#include "lib_fru_features.h"
#include "lib_fru_hardware.h"
#include "lib_fru_ipmi.h"
#include "lib_fru_labels.h"
#include "lib_fru_multirecord.h"
#include "lib_fru_oem.h"

#endif
