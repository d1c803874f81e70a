// Private to lib_fru: the OEM configuration file.
#ifndef LIB_FRU_OEM_CONF_H
#define LIB_FRU_OEM_CONF_H

#define FRU_OEM_CONF_PATH "/conf/oempack/bmc/CID_OEM.conf"
#define FRU_OEM_CONF_SECTION "oem_configure"

#endif
