/* SPDX-License-Identifier: Apache-2.0 */
/*
 * Back ends of ReadWriteEEPROM(): how the bytes of one chip are reached. Which chip has which stands in the
 * root's configuration (BMCHOST_EEPROM_CONF); a chip that is not named there is an image file.
 *
 *   file     eeprom/<chip>.bin below the root (chip.h; it is no table, for its faults and pages are its own)
 *   kernel   the file of the kernel's EEPROM driver
 *   i2c      raw transfers over /dev/i2c-N
 *   ipmi     a FRU behind another controller; loaded when a chip asks for it
 *
 * What all tables have in common is done once (paged.cpp): the chip's lock among processes, the end of the
 * chip, pages, pages that hold the bytes already, reading back what was written, the write-protect line,
 * progress, messages. A table moves bytes.
 *
 * How a loaded back end is added: its name goes into g_apcLoaded in registry.cpp, and a shared library
 * libbmcfruhost-<name>.so, beside libbmcfruhost.so or in the folder bmcfru there, exports one C function
 *
 *     const BMCHOST_BACKEND_S *BMCHOST_GetBackend(void);
 *
 * with everything else hidden. It is opened with dlopen() (RTLD_NOW | RTLD_LOCAL) at the first transfer with
 * such a chip and stays loaded. It needs nothing of libbmcfruhost but this header. Where the library is not
 * installed, such chips answer with a message that says so; everything else works.
 *
 * Rules for a table
 *   - Functions are called from any thread, for different chips at once, for one chip by one thread at a time
 *     (within this process and among processes), but that reads may run side by side.
 *   - No exception and no exit leaves a function, and nothing is printed.
 *   - Every function ends: it gives up by itself when the other side does not.
 *   - What is costly to open (a session) the back end keeps between transfers, by the settings' text; in a
 *     child of fork() it begins anew.
 */
#ifndef BMCHOST_EEPROM_BACKEND_H
#define BMCHOST_EEPROM_BACKEND_H

#include <stddef.h>

#include "bmc_types.h"

#ifdef __cplusplus
extern "C" {
#endif

#define BMCHOST_BACKEND_VERSION 1U
#define BMCHOST_BACKEND_TEXT 256U

/* Which chip. The pointers live for the call only. */
typedef struct
{
    const char *pcChip; /* its name, as that of its image file: "bus8-addr0xa0", or a device's name */
    /*
     * Its settings, a JSON object as text: the members of the description's "location" (bus, address, switchLevel,
     * backend, and those of the back end itself), and "size", the bytes of the whole chip, from "eepromSize".
     */
    const char *pcSettings;
    const char *pcRoot; /* the root directory: relative paths in the settings count from there */
    u32 uiWrite;        /* not 0: it will be written to */
} BMCHOST_BACKEND_CHIP_S;

/* A chip that has been opened for one transfer. Zeroed by the caller. */
typedef struct
{
    void *pHandle;  /* the back end's own */
    u32 uiCapacity; /* bytes of the chip */
    u32 uiPage;     /* pfnWrite gets at most so many bytes, and none beyond a multiple of it; not 0 */
    char acWhere[BMCHOST_BACKEND_TEXT]; /* for messages: "/dev/i2c-8, address 0x50" */
    char acWhy
        [BMCHOST_BACKEND_TEXT]; /* of a failure: what happened, in words; empty: the errno value's text */
} BMCHOST_BACKEND_OPEN_S;

/*
 * Results are 0, or an errno value: ENXIO nobody answers, EBUSY somebody else has it, EROFS it is
 * write-protected, EINVAL settings, EIO anything else.
 */
typedef struct
{
    u32 uiVersion; /* BMCHOST_BACKEND_VERSION */
    const char *pcName;
    /* Looks whether the settings are in order, without touching the chip; else a clause in pcWhy that names the
     * member and what would be accepted ("addressBytes is missing; accepted: 1 or 2"). */
    int (*pfnCheck)(const char *pcSettings, size_t uiSize, char *pcWhy);
    /* After a failure pfnClose is not called. */
    int (*pfnOpen)(const BMCHOST_BACKEND_CHIP_S *pstChip, BMCHOST_BACKEND_OPEN_S *pstOpen);
    /* Reads within the capacity. *puiDone: the bytes that came; fewer than asked for may be asked for anew, none is a
     * short answer. */
    int (*pfnRead)(BMCHOST_BACKEND_OPEN_S *pstOpen, u32 uiOffset, u32 uiLength, u8 *pucBuf, u32 *puiDone);
    /* Writes within one page, all or it fails. When it returns, the chip has it and answers again. */
    int (*pfnWrite)(BMCHOST_BACKEND_OPEN_S *pstOpen, u32 uiOffset, u32 uiLength, const u8 *pucBuf);
    void (*pfnClose)(BMCHOST_BACKEND_OPEN_S *pstOpen);
} BMCHOST_BACKEND_S;

#define BMCHOST_BACKEND_ENTRY "BMCHOST_GetBackend"
typedef const BMCHOST_BACKEND_S *(*BMCHOST_BACKEND_ENTRY_F)(void);

#ifdef __cplusplus
}
#endif

#endif
