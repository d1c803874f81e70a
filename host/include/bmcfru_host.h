/*
 * libbmcfruhost: the platform on plain Linux. One directory, the root, is one controller; every path that a
 * controller knows lies below it. This header is what a program on the desk may say to it beyond the
 * platform's own calls (platform/bmc_*.h).
 *
 * Every call may be made from any thread, and in a child process after fork().
 */
#ifndef BMCFRU_HOST_H
#define BMCFRU_HOST_H

#include <stddef.h>

#include "bmc_types.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/* ---- the root and what lies in it (controller's paths) ---- */

#define BMCHOST_DB_DIR "/var/lib/fru/db"                         /* the database, made when first opened */
#define BMCHOST_EEPROM_DIR "/eeprom"                             /* one image file for each chip */
#define BMCHOST_EVENT_JOURNAL "/var/log/fru-events.jsonl"        /* RPC: events and notices, one a line */
#define BMCHOST_OPERATE_JOURNAL "/var/log/operate.jsonl"         /* operation log, one entry a line */
#define BMCHOST_CAPABILITY_FILE "/conf/capability.ini"           /* capabilities and the OEM flag */
#define BMCHOST_FEATURE_LIST "/conf/features.json"               /* RPC 29/3: an array of texts */
#define BMCHOST_FEATURE_UPDATE "/var/lib/fru/feature-update.bin" /* RPC 29/4: the block received last */

/*
 * The directory that is this process's controller. Without this call it is $FRUCTL_ROOT as it stands at the
 * first use, else ~/.local/state/fructl. A relative path counts from the working directory of this moment.
 * The directory need not exist. The database of the old root is closed; a handle of it then stands for the
 * new root's. 0, or not 0 (and nothing changed) when the path is null, empty or longer than PATH_MAX / 2.
 */
u32 BMCHOST_SetRoot(const char *pcRoot);

/* The root directory as an absolute path, without a slash at its end ("/" itself excepted); empty when there
 * is neither $FRUCTL_ROOT nor a home. The text lives until the next BMCHOST_SetRoot(). */
const char *BMCHOST_GetRoot(void);

/*
 * Puts the root in front of a controller's path, into pcOut of uiSize bytes; the path need not begin with a
 * slash, "." components and doubled slashes fall away. 0, or not 0 with errno set and pcOut empty: EINVAL for
 * a null or empty path or no root, EACCES when ".." components would lead out of the root, ENAMETOOLONG when
 * it does not fit. Symbolic links are followed wherever they lead: they are their owner's.
 */
u32 BMCHOST_ResolvePath(const char *pcPath, size_t uiSize, char *pcOut);

/*
 * Journals hold one JSON object a line, appended whole under a lock (flock(2)); a line that a dying process
 * left unfinished stands alone. Every object begins with "time" (UTC, "2024-05-01T12:34:56.789Z").
 *
 *   operate.jsonl     module, result (99 success, 67 failure), text, args (two numbers), line, source
 *   fru-events.jsonl  service, method, event, and with the event
 *                       labelWritten, cleared, fruEvent (630/0): kind, componentType, instance, labelId
 *                       deviceChanged (636/0): deviceId, name
 *                       featureUpdate (29/4): bytes
 *                       oemNotice (29/5): nothing
 *
 * Bytes of a text that are not UTF-8 are replaced by U+FFFD.
 */

/* ---- diagnostics ---- */

#define BMCHOST_DIAG_MODULE 1U /* uiModule of the platform's own messages */

/* One diagnostic message, its text finished. The pointers live for the call only. */
typedef struct
{
    u32 uiModule;
    u32 uiCategory;
    u32 uiSeverity;
    u32 uiLine;
    const char *pcFile;
    const char *pcFormat;
    const char *pcText;
} BMCHOST_DIAG_S;

/*
 * Where diagnostic messages go from now on: to pfnSink with pContext, or nowhere when it is null (as at the
 * start). The sink is called on the thread that logs, one message at a time in the whole process; when this
 * call returns, the former sink is no longer running. A sink makes no platform calls; what it logs is
 * dropped.
 */
void BMCHOST_SetDiagSink(void (*pfnSink)(const BMCHOST_DIAG_S *pstDiag, void *pContext), void *pContext);

/* A sink that writes to syslog, for services. pContext is not used. */
void BMCHOST_DiagToSyslog(const BMCHOST_DIAG_S *pstDiag, void *pContext);

/* ---- EEPROM images ---- */

#define BMCHOST_EEPROM_PAGE 32U /* bytes that a chip writes at once */

/*
 * The image file of a chip, as ReadWriteEEPROM() names it: for the types 9 to 15
 * eeprom/bus<bus>-addr0x<address>.bin, with "-switch<level>" ahead of the ".bin" when the level is not 0 (bus
 * and level decimal, address two hexadecimal digits: "bus1-addr0xa0.bin", "bus1-addr0xa0-switch2.bin"); for
 * any other type eeprom/<device name>.bin. pcOut of uiSize bytes receives the path below the root's own. 0,
 * or not 0 with pcOut empty: null location, a name that is empty, begins with a dot or holds a slash, a
 * backslash or a control character, or a path that does not fit.
 */
u32 BMCHOST_GetEepromPath(u8 ucType, const void *pLocation, size_t uiSize, char *pcOut);

/* One page of a write is done. The pointers live for the call only. */
typedef struct
{
    const char *pcChip; /* the image's file name without ".bin" */
    u32 uiOffset;       /* where in the chip the page just written begins */
    u32 uiDone;         /* bytes of this ReadWriteEEPROM() call that are written */
    u32 uiTotal;        /* bytes that it will write */
} BMCHOST_EEPROM_PROGRESS_S;

/* Calls pfnProgress with pContext after every page written by this process, on the writing thread; null (as
 * at the start): nothing is called. No lock is held meanwhile. */
void BMCHOST_SetEepromProgress(void (*pfnProgress)(const BMCHOST_EEPROM_PROGRESS_S *pstProgress,
                                                   void *pContext),
                               void *pContext);

/* Lets every page write of this process last at least so long, as a chip's write cycle does. 0 at the start.
 */
void BMCHOST_SetEepromWriteDelayUs(u32 uiMicroseconds);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
