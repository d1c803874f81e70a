/* SPDX-License-Identifier: Apache-2.0 */
/* libbmcfru, oem: OEM configuration. */
#ifndef LIB_FRU_OEM_H
#define LIB_FRU_OEM_H

#include "lib_fru_types.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/*
 * A controller that is sold under a customer's brand carries an INI file, /conf/oempack/bmc/CID_OEM.conf,
 * with one section "oem_configure". Every call below loads it anew. A file that is missing is no error:
 * defaults stand in. Texts that are too long for their member are cut. FRU_ERR_NULL_POINTER and
 * LIB_FRU_ERR_NULL_POINTER mean a null argument; functions without a result only report it.
 */

/*
 * Fills *pstOemConf from the file. A missing key gives an empty text ("BMC" for qbx), 0 for userid, 1 for
 * oemflag, checkarea and logocidflag, 0x81000001 for privateoid. A missing file gives "N/A" for the three
 * names, "BMC" for qbx, 8072 for privateoid, 1 for logocidflag, 0 and empty texts for the rest.
 */
void FRU_GetOEMConfBeforeDeal(FRU_OEM_CONF_S *pstOemConf);

/*
 * The same, then product name, product manufacturer and board manufacturer from the FRU of component type 0,
 * instance 0, each where it is empty ("N/A" is not).
 */
void FRU_GetOEMConf(FRU_OEM_CONF_S *pstOemConf);

/*
 * Writes values of the FRU of component type 0, instance 0 into the file: each of the names, numbers and
 * extra fields that has a value there which differs. Keys that are empty in the file are not created. Without
 * FRU or file the call is given up, and the file stays as it is.
 */
void FRU_SetOEMConf(void);

/*
 * Sets a key of the INI file that hpd has open, in memory, unless pcStr1 (the new value) equals pcCurrent.
 * All stay the caller's.
 */
void FRU_ReplaceOemConf(void *hpd, const char *pcStr1, const char *pcCurrent, const char *pcKey);

#define FRU_COPYRIGHT_CN 0
#define FRU_COPYRIGHT_EN 1
#define FRU_COPYRIGHT_LEN 256U

/*
 * Copies a copyright line, Chinese or English by iType, into pcCopyRight of FRU_COPYRIGHT_LEN bytes.
 * FRU_OK; LIB_FRU_ERR_NULL_POINTER; LIB_FRU_ERR_READ: another type (told on standard output; the buffer stays
 * as it is).
 */
u32 LIB_FRU_GetCopyRight(i32 iType, char *pcCopyRight);

#define FRU_CHECK_AREA_ASK_BYTE 0xFFU /* either asks for the checkarea itself */
#define FRU_CHECK_AREA_ASK_WORD 0xFFFFU
#define FRU_CHECK_RESULT_LEN 128U

/*
 * Compares the file's checkarea with uiFlag and writes the verdict as a text into pcCheckResult of at least
 * FRU_CHECK_RESULT_LEN bytes; for a uiFlag that asks for it, it writes the checkarea itself, two bytes, most
 * significant first.
 * FRU_OK, whatever the verdict; LIB_FRU_ERR_NULL_POINTER.
 */
u32 LIB_FRU_CheckOEMFromPackage(u32 uiFlag, char *pcCheckResult);

/*
 * Copies the file's product manufacturer into pcProductManufacturer of uiSize bytes, which is cleared first.
 * FRU_OK; FRU_ERR_NULL_POINTER; FRU_ERR_FAILED: not in OEM mode, or no such text (the buffer stays as it is).
 */
u32 FRU_GetProductManufacturer(u32 uiSize, char *pcProductManufacturer);

/*
 * The controller's software name, at most 63 characters: the file's qbx in OEM mode, else the capability
 * SPECS/SoftwareName, else "QBX". It is kept once it was had from file or capability. The text belongs to the
 * library, is never null, and never changes under a caller; any thread may ask.
 */
const char *FRU_GetSoftWareName(void);

/*
 * Copies the host-name prefix into pcHostName of uiSize bytes: the file's qbx in OEM mode, else the
 * capability HostName/Prefix, else "QBX".
 */
void FRU_GetHostNamePrefix(u32 uiSize, char *pcHostName);

/*
 * Turns a text into upper case, in place, and checks that it holds nothing but 0 to 9 and A to Z. An empty
 * text is legal.
 * FRU_OK; FRU_ERR_NULL_POINTER; FRU_ERR_FAILED: another character.
 */
u32 FRU_CheckCharaIsLegal(char *pcValue);

/* The file's logocidflag in OEM mode, 1 when /mnt/sdmmc0p2/OEMFile is missing then, 0 outside OEM mode. */
u32 LIB_FRU_GetBmcLogoFlag(void);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
