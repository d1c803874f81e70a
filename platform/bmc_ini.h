/* Platform: INI bridge.
 *
 * INI files with sections. A handle belongs to its caller until BRIDGE_IniCloseFile().
 */
#ifndef BMC_INI_H
#define BMC_INI_H

#include "bmc_types.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/* Loads a file; null: it cannot be read. */
void *BRIDGE_IniLoadFile(const char *pcPath);

/* The value of a key, or pcDefault when it is missing. The text belongs to the handle and lives until it
 * changes. */
const char *BRIDGE_IniGetStr(void *hpd, const char *pcSection, const char *pcKey, const char *pcDefault);

/* The value as an unsigned number (decimal, or 0x and hexadecimal), or uiDefault when it is missing. */
u32 BRIDGE_IniGetUInt(void *hpd, const char *pcSection, const char *pcKey, u32 uiDefault);

/* 1 for a value that begins with y, t or 1 in either case, 0 for n, f or 0, uiDefault for a missing or any
 * other one. */
u32 BRIDGE_IniGetBool(void *hpd, const char *pcSection, const char *pcKey, u32 uiDefault);

/* Sets a key in memory, creating section and key as needed. 0 for success. */
u32 BRIDGE_IniSetStr(void *hpd, const char *pcSection, const char *pcKey, const char *pcValue);

/* Writes the whole file, replacing it whole or not at all. 0 for success. */
u32 BRIDGE_IniSaveFile(void *hpd, const char *pcPath);

/* Releases the handle; null is allowed. */
void BRIDGE_IniCloseFile(void *hpd);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
