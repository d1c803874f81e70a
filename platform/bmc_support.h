/* SPDX-License-Identifier: Apache-2.0 */
/*
 * Platform: support library.
 *
 * Logging, bounded text, checksums, files and directories, time, OEM flag. Every call may be made from any
 * thread. Results are u32, 0 for success, unless said otherwise. Buffers are the caller's; a pointer may be
 * null only where that is said. Paths are the controller's, from its top.
 *
 * Nothing here is for signal handlers but the text and checksum calls. No call waits for another process.
 * What BMC_CopyFileWithAllMode() has copied is on the disk when it returns, name and content; a directory's
 * own name need not be. On the desk symbolic links are followed only where the process's user or root has
 * laid them, and nothing but regular files is opened.
 */
#ifndef BMC_SUPPORT_H
#define BMC_SUPPORT_H

#include "bmc_types.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/* Severities of BMC_DiagLogOut(), on the syslog scale. */
#define BMC_DIAG_ERROR 2U   /* a step failed */
#define BMC_DIAG_SIZE 3U    /* an invalid allocation size */
#define BMC_DIAG_WARNING 4U /* a secondary failure or a warning */
#define BMC_DIAG_INFO 6U    /* progress and success */
#define BMC_DIAG_DEBUG 7U   /* null pointers and debug counts */

/* Writes one message to the diagnostic log: the text that pcFormat and its arguments make, of any length, in
 * one piece. pcFile and pcFormat are never null. errno stays as it is. No caller holds a lock meanwhile, so
 * a log that takes its time holds up nobody but the caller; nothing is durable when it returns. */
void BMC_DiagLogOut(u32 uiModule, u32 uiCategory, u32 uiSeverity, u32 uiLine, const char *pcFile,
                    const char *pcFormat, ...) __attribute__((format(printf, 6, 7)));

/*
 * Formats into pcBuf of uiSize bytes, always terminated; uiSize 0 writes nothing. Returns the characters
 * stored, the NUL not counted: at most uiSize - 1; 0 also when the text cannot be formatted.
 */
i32 BMC_Scnprintf(char *pcBuf, u32 uiSize, const char *pcFormat, ...) __attribute__((format(printf, 3, 4)));

/*
 * Copies at most uiSize - 1 characters of pcSrc and a NUL into pcDest of uiSize bytes; uiSize 0 writes
 * nothing. A null pcSrc reads as an empty text. Returns the length of pcSrc, so a result of uiSize or more
 * tells of a cut.
 */
u32 BMC_Strlcpy(char *pcDest, const char *pcSrc, u32 uiSize);

/* Appends at most uiCount characters of pcSrc and a NUL to the text in pcDest, which has room for them. A
 * null pcSrc reads as an empty text. Returns the new length. */
u32 BMC_Strlcat(char *pcDest, const char *pcSrc, u32 uiCount);

/* Returns the byte that makes the sum of the uiLen bytes and itself 0 modulo 256; 0 for uiLen 0, when pucBuf
 * may be null (here and in the next three). */
u8 BMC_CalcZeroCheckSum(const u8 *pucBuf, u32 uiLen);

/* 0 when the uiLen bytes sum to 0 modulo 256, else not 0. */
u32 BMC_CheckZeroSum(const u8 *pucBuf, u32 uiLen);

/* CRC-8 of uiLen bytes: polynomial 0x07, initial value 0, no reflection (the SMBus PEC) on the desk. */
u8 BMC_CalcCRC8CheckSum(const u8 *pucBuf, u32 uiLen);

/* 0 when the CRC-8 of the uiLen bytes is ucCrc, else not 0. */
u32 BMC_CheckCRC8(u8 ucCrc, const u8 *pucBuf, u32 uiLen);

/* Size of a file in bytes; negative: no such file, no regular one, or larger than 2^31 - 1 bytes. */
i32 BMC_GetFileSize(const char *pcPath);

/* Reads exactly uiLen bytes from the start of a regular file into pucBuf. Not 0, and pucBuf undefined: no
 * such file, or a shorter one. */
u32 BMC_ReadFile(const char *pcPath, u8 *pucBuf, u32 uiLen);

/* Creates a directory (mode 0755, whatever the umask) and its parents; 0 also when it is there already.
 * Not 0: something else has
 * that name, or it cannot be made. */
u32 BMC_Mkdir(const char *pcPath);

#define BMC_DIR_USABLE 1U

/* BMC_DIR_USABLE when the directory exists and can be read, searched and written to, else another value. */
u32 BMC_CheckDirVaildStatus(const char *pcPath);

/* Copies a regular file with its permission bits, set-ID bits excepted, replacing pcDest whole or not at all,
 * whatever happens meanwhile. Not 0, and pcDest as it was: no such file, no directory for pcDest, or it
 * cannot be written. */
u32 BMC_CopyFileWithAllMode(const char *pcSrc, const char *pcDest);

/*
 * Formats Unix time uiTimeStamp (seconds, UTC) into pcOut as "YYYY-MM-DD HH:MM:SS"; pcOut holds at least 32
 * bytes. uiArg is the caller's; on the desk 0 is UTC and anything else the process's time zone. Not 0: a
 * null pcOut, or a moment that cannot be told.
 */
u32 BMC_TimeStampToIsoTime(u32 uiTimeStamp, u32 uiArg, char *pcOut);

#define BMC_OEM_MODE 3U

/*
 * The OEM flag of this controller; BMC_OEM_MODE: OEM mode. 0 when nothing is said. On the desk it is
 * "OemFlag" of section "[OEM]" in conf/capability.ini.
 */
u32 BMC_GetOemFlag(void);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
