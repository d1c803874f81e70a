/* SPDX-License-Identifier: Apache-2.0 */
/*
 * Platform: INI bridge.
 *
 * INI files: "[section]", "key = value", a value perhaps in single or double quotes, comments behind ; or #
 * outside quotes. Names of sections and keys count without case. Section "" is what stands before the first
 * section.
 *
 * A handle holds one file in memory. It belongs to its caller until BRIDGE_IniCloseFile() and is used by
 * one thread at a time; different ones are independent. The getters take a null handle, section or key as a
 * missing entry. Not for signal handlers. The calls wait for nobody. A saved file is on the disk when the
 * call returns; nothing else here writes.
 */
#ifndef BMC_INI_H
#define BMC_INI_H

#include "bmc_types.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/* Loads a file. Null: it is missing, is no regular file, cannot be read, or has a line that is no INI (or of
 * more than 1000 characters); or it is larger than the platform reads (on the desk 1 MiB). The contents are
 * those of this moment: what others write later, a handle does not see. */
void *BRIDGE_IniLoadFile(const char *pcPath);

/* The value of a key, without its quotes, or pcDefault (which may be null) when it is missing. The text
 * belongs to the handle and lives until that key is set or the handle is closed. */
const char *BRIDGE_IniGetStr(void *hpd, const char *pcSection, const char *pcKey, const char *pcDefault);

/* The value as an unsigned number (decimal, or 0x and hexadecimal), or uiDefault when it is missing or is no
 * such number below 2^32. */
u32 BRIDGE_IniGetUInt(void *hpd, const char *pcSection, const char *pcKey, u32 uiDefault);

/* 1 for a value that begins with y, t or 1 in either case, 0 for n, f or 0, uiDefault for a missing or any
 * other one. */
u32 BRIDGE_IniGetBool(void *hpd, const char *pcSection, const char *pcKey, u32 uiDefault);

/* Sets a key in memory, creating section and key as needed; the value is copied and may be the handle's own.
 * 0 for success. Not 0, and nothing changed: a null argument, an empty key, or a text that no file gives
 * back as it is (line ends, both kinds of quotes where quotes are needed, brackets or colons in names,
 * overlong lines). */
u32 BRIDGE_IniSetStr(void *hpd, const char *pcSection, const char *pcKey, const char *pcValue);

/* Writes the whole file, replacing it whole or not at all, whatever happens meanwhile; its permission bits
 * stay. Comments are not kept and names are in lower case. A load gives back every value. 0 for success;
 * not 0: a null handle, or the file cannot be written (its directory is not created). */
u32 BRIDGE_IniSaveFile(void *hpd, const char *pcPath);

/* Releases the handle; null is allowed. */
void BRIDGE_IniCloseFile(void *hpd);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
