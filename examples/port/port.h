/* SPDX-License-Identifier: Apache-2.0 */
/*
 * What the files of this port share. Everything that the controller keeps lies below one folder, the
 * root; on a file system in memory (/run, /dev/shm) that is a controller in memory. On a real one the
 * root is "/", and database, EEPROMs and settings are what the product has.
 */
#ifndef PORT_H
#define PORT_H

#include <limits.h>
#include <sys/types.h>

#include "bmc_types.h"

#define PORT_FAILED 0x81000001U
#define PORT_FILE_MAX (1 << 20) /* settings and descriptions larger than this are not read */

/* Where the controller's files lie below the root. */
#define PORT_DB_FOLDER "/var/lib/fru"
#define PORT_CHIP_FOLDER "/chips"
#define PORT_SETTINGS "/conf/capability.ini"
#define PORT_FEATURES "/conf/features.txt"
#define PORT_EVENTS "/var/log/fru-events.bin"
#define PORT_OPERATE_LOG "/var/log/operate.log"
#define PORT_PAGE_SIZE 32U

/* Sets the root; it is copied. 0, or PORT_FAILED for one that is too long. */
u32 PORT_SetRoot(const char *pcRoot);

/* The root in front of a controller's path: 0, or PORT_FAILED when it is null or does not fit. */
u32 PORT_Path(const char *pcPath, char *pcOut, size_t uiSize);

/* Where finished messages go; null: to the standard error output. */
void PORT_SetSink(void (*pfnSink)(u32 uiSeverity, const char *pcText));

/* One message of the port's own. */
void PORT_Complain(const char *pcWhat, const char *pcPath);

/* Opens and locks a file until it is closed, waiting for who has it; the dead hold nothing. -1: failed. */
int PORT_OpenLocked(const char *pcPath, int iFlags, int iLock);

/* All of the bytes, or PORT_FAILED. */
u32 PORT_ReadAll(int iFd, void *pData, size_t uiLen);
u32 PORT_WriteAll(int iFd, const void *pData, size_t uiLen);

/* A whole regular file as text to be freed; null (and *puiLen untouched) when it cannot be read. */
char *PORT_ReadText(const char *pcControllerPath, size_t *puiLen);

/* Replaces the file at a path of this system whole or not at all. */
u32 PORT_Replace(const char *pcPath, const void *pData, size_t uiLen, mode_t uiMode);

/* The EEPROM's file, for who lays it down; the chip is read-only while its mode has no write permission. */
u32 PORT_ChipPath(u8 ucType, const void *pLocation, char *pcOut, size_t uiSize);

/* A number as the contracts have it: decimal, or 0x and hexadecimal, nothing around it. 0, or PORT_FAILED. */
u32 PORT_Number(const char *pcText, u32 uiMax, u32 *puiValue);

#endif
