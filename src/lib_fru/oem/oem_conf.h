// Private to lib_fru: the OEM configuration file and OEM mode.
#ifndef LIB_FRU_OEM_CONF_H
#define LIB_FRU_OEM_CONF_H

#include "lib_fru_types.h"

#define FRU_OEM_CONF_PATH "/conf/oempack/bmc/CID_OEM.conf"
#define FRU_OEM_CONF_SECTION "oem_configure"
#define FRU_OEM_MODE 3U // BMC_GetOemFlag() and HW_LIB_GetOemFlag()

#endif
