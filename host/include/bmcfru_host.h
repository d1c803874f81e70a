/* SPDX-License-Identifier: Apache-2.0 */
/*
 * libbmcfruhost: the platform on plain Linux. One directory, the root, is one controller; every path that a
 * controller knows lies below it. This header is what a program on the desk may say to it beyond the
 * platform's own calls (platform/bmc_*.h). Link with -lbmcfruhost (pkg-config bmcfruhost, CMake bmcfru::host).
 *
 * Every call may be made from any thread, and in a child process after fork().
 */
#ifndef BMCFRU_HOST_H
#define BMCFRU_HOST_H

#include <stddef.h>
#include <stdio.h>

#include "bmc_types.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/* ---- the root and what lies in it (controller's paths) ---- */

#define BMCHOST_DB_FILE "/var/lib/fru/fru.db"      /* the database, made when first opened */
#define BMCHOST_EEPROM_DIR "/eeprom"               /* one image file for each chip */
#define BMCHOST_EEPROM_CONF "/conf/eeproms.json"   /* chips that are no image files */
#define BMCHOST_LOCK_DIR "/var/lock"               /* lock files, of mode 0600 or 0660 */
#define BMCHOST_JOURNAL_DIR "/var/lib/fru/journal" /* one file for each write that is not finished */
#define BMCHOST_WRITE_ENABLED_DIR                                                                            \
    "/var/lib/fru/write-enabled"                          /* chips whose write-protect line is released */
#define BMCHOST_EVENT_JOURNAL "/var/log/fru-events.jsonl" /* RPC: events and notices, one a line */
#define BMCHOST_OPERATE_JOURNAL "/var/log/operate.jsonl"  /* operation log, one entry a line */
#define BMCHOST_CAPABILITY_FILE "/conf/capability.ini"    /* capabilities and the OEM flag */
#define BMCHOST_FEATURE_LIST "/conf/features.json"        /* RPC 29/3: an array of texts */
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
 * A root directory that belongs neither to this process's user nor, where that is root, to the user who has
 * called sudo ($SUDO_UID), is read only: every call that would write there fails, unless a process has said
 * once with uiAllow not 0 that it means to. Reading is not refused.
 */
void BMCHOST_AllowForeignRoot(u32 uiAllow);

/* 1 when the root is such a one, whatever has been allowed; 0 when it is the user's own or not there yet. */
u32 BMCHOST_IsForeignRoot(void);

/*
 * Puts the root in front of a controller's path, into pcOut of uiSize bytes; the path need not begin with a
 * slash, "." components and doubled slashes fall away. 0, or not 0 with errno set and pcOut empty: EINVAL
 * for a null or empty path or no root, EACCES when ".." components would lead out of the root, ENAMETOOLONG
 * when it does not fit. Nothing is looked at on the disk.
 *
 * The platform's own calls follow a symbolic link below the root only when this process's user or root has
 * laid it, and open nothing but regular files; whoever opens a resolved path himself has to see to that.
 */
u32 BMCHOST_ResolvePath(const char *pcPath, size_t uiSize, char *pcOut);

/*
 * fopen(3) below the root with mode "r", "w" or "w+", under those rules; a new file gets mode 0644 whatever
 * the umask. Null with errno set.
 */
FILE *BMCHOST_OpenFile(const char *pcPath, const char *pcMode);

#define BMCHOST_JOURNAL_MAX (4U << 20U) /* bytes at which a journal begins anew */
#define BMCHOST_JOURNAL_FORMER ".1"     /* what the one before it is called: its name and this */

/*
 * Journals hold one JSON object a line, appended whole under a lock in var/lock; a line that a dying
 * process left unfinished stands alone. A line that would not fit into BMCHOST_JOURNAL_MAX bytes begins a
 * new file, and the old one takes the place of the one before it: there are two of each at most. Lines are
 * not flushed: they outlive their process, not a power cut. Every object begins with "time" (UTC,
 * "2024-05-01T12:34:56.789Z").
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

/* ---- the database ---- */

/*
 * Whoever cuts the index of the database's log (fru.db-shm) while a process reads it would end that with SIGBUS.
 * So the first call of the database sets a handler for that signal, and reading goes on. What has nothing to do
 * with the database it hands to the action that was there before; a program that wants the signal for itself
 * may set its own afterwards, and does without this. A process that is writing just then may be ended all the
 * same; nothing is lost that a call has returned for.
 */

#define BMCHOST_DB_WAIT_SECONDS 10 /* so long a call waits for other processes, then it is "locked" */

/* Why a call of bmc_db.h failed. */
typedef enum
{
    BMCHOST_DB_NO_FAULT = 0,
    BMCHOST_DB_NO_RECORD, /* no such key, or a record of another length */
    BMCHOST_DB_MISUSE,    /* a null pointer, or a handle that is none */
    BMCHOST_DB_ABSENT,    /* there is no database; for BMCHOST_CheckDb() alone, DB_Open() makes one */
    BMCHOST_DB_LOCKED,    /* others kept it busy all the time that a call waits */
    BMCHOST_DB_DAMAGED,   /* restore it, or remove it and provision the controller anew */
    BMCHOST_DB_NO_RIGHTS, /* the user's rights, or a read-only file system */
    BMCHOST_DB_FULL,      /* the disk, the user's share of it, or the database's largest size */
    BMCHOST_DB_VERSION,   /* another program's or another release's */
    BMCHOST_DB_FAILED     /* anything else, such as an input/output error: the text has it */
} BMCHOST_DB_REASON_E;

/*
 * The reason of this thread's last call that failed; a call that succeeds leaves it. ppcText may be null, else it
 * receives one clause that names the file ("the database /x/fru.db is damaged: ..."), empty when nothing has
 * failed yet. The text lives until this thread's next call of the database.
 */
BMCHOST_DB_REASON_E BMCHOST_LastDbError(const char **ppcText);

/*
 * Looks whether the root has a database and whether all of it can be read, and makes none:
 * BMCHOST_DB_NO_FAULT, BMCHOST_DB_ABSENT, or what is the matter with it. ppcText as above. Writes nothing but
 * the log's files. Bytes that were changed inside a record are still a record.
 */
BMCHOST_DB_REASON_E BMCHOST_CheckDb(const char **ppcText);

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
 * start). The sink is called on the thread that logs, without a lock: on several threads at once, and one
 * that hangs holds up its own thread only. When this call returns, the former sink is no longer running
 * anywhere, but for a sink that replaces itself. A sink makes no platform calls; what it logs is dropped.
 */
void BMCHOST_SetDiagSink(void (*pfnSink)(const BMCHOST_DIAG_S *pstDiag, void *pContext), void *pContext);

/* A sink that writes to syslog, for services. pContext is not used. */
void BMCHOST_DiagToSyslog(const BMCHOST_DIAG_S *pstDiag, void *pContext);

/* ---- EEPROM images ---- */

#define BMCHOST_EEPROM_PAGE 32U /* bytes that a chip writes at once */

/*
 * The image file of a chip, as ReadWriteEEPROM() names it: for the types 9 to 15
 * eeprom/bus<bus>-addr0x<address>.bin, with "-switch<level>" ahead of the ".bin" when the level is not 0
 * (bus and level decimal, address two hexadecimal digits: "bus1-addr0xa0.bin",
 * "bus1-addr0xa0-switch2.bin"); for any other type eeprom/<device name>.bin. pcOut of uiSize bytes receives
 * the path below the root's own. 0, or not 0 with pcOut empty: null location, a name that is empty, begins
 * with a dot or holds a slash, a backslash or a control character, or a path that does not fit.
 */
u32 BMCHOST_GetEepromPath(u8 ucType, const void *pLocation, size_t uiSize, char *pcOut);

/*
 * Which chips are something else than image files stands in BMCHOST_EEPROM_CONF, a JSON object:
 *
 *   {"chips": {"bus8-addr0xa0": {"backend": "i2c", "bus": 8, "address": 160, "size": 8192, ...}}}
 *
 * A chip is named as its image file would be, without ".bin"; what else stands in its settings is its back
 * end's. The file is read anew when it has changed. While it cannot be read no transfer succeeds, for any chip
 * may be a real one.
 *
 * Looks whether a chip's settings, an object as above, are in order; the chip is not touched. 0, or not 0 with
 * a clause in pcWhy that says what is wrong and what would be accepted.
 */
u32 BMCHOST_CheckEepromSettings(const char *pcSettings, size_t uiSize, char *pcWhy);

/*
 * Asks a chip that need not stand in the configuration how many bytes it has, by its settings, an object as above of
 * a back end that is not "file": 0, or an errno value with a clause in pcWhy: ENXIO nobody answers, EACCES its
 * controller does not let the user in, EHOSTUNREACH no answer from its controller, EINVAL settings, others as
 * they come.
 */
u32 BMCHOST_AskEeprom(const char *pcSettings, u32 *puiCapacity, size_t uiSize, char *pcWhy);

#define BMCHOST_I2C_FIRST 0x50U /* the addresses of EEPROMs on the wire */
#define BMCHOST_I2C_PROBED 8U   /* so many, from there on */
#define BMCHOST_I2C_SILENT 0U   /* nobody answers */
#define BMCHOST_I2C_ANSWERS 1U  /* something does; what it is nobody knows */
#define BMCHOST_I2C_DRIVER 2U   /* a driver of the kernel has the address: it was not asked */

/*
 * Asks the addresses of EEPROMs on /dev/i2c-<uiBus> for one byte each, without sending one. pucFound of
 * BMCHOST_I2C_PROBED bytes receives what is there. Even so there are chips that take a read amiss: it is not for a
 * bus that nobody knows. 0, or not 0 with the reason in pcWhy.
 */
u32 BMCHOST_ProbeI2c(u32 uiBus, u8 *pucFound, size_t uiSize, char *pcWhy);

/* One page of a write is done. The pointers live for the call only. */
typedef struct
{
    const char *pcChip; /* the image's file name without ".bin" */
    u32 uiOffset;       /* where in the chip the page just written begins */
    u32 uiDone;         /* bytes of this ReadWriteEEPROM() call that are written */
    u32 uiTotal;        /* bytes that it will write */
} BMCHOST_EEPROM_PROGRESS_S;

/* Calls pfnProgress with pContext after every page of this process's writes, on the writing thread; null (as
 * at the start): nothing is called. No lock is held meanwhile. */
void BMCHOST_SetEepromProgress(void (*pfnProgress)(const BMCHOST_EEPROM_PROGRESS_S *pstProgress,
                                                   void *pContext),
                               void *pContext);

/*
 * A chip shows a fault while a file eeprom/<image's name without ".bin">.fault says so, in one word and
 * perhaps a number:
 *
 *   absent       nobody answers: every transfer is negative
 *   busy [N]     the next N transfers (1) are negative, as in a write cycle; then the file is removed
 *   stuck [MS]   the bus hangs: every transfer takes MS milliseconds (100) and is negative
 *   torn [AT]    the power goes while the page with the chip's byte AT (the next page) is written: half of
 *   its
 *                bytes are new, the others anything; the write is negative, the file is removed
 *   protected    writes are acknowledged in full, and the chip's bytes stay
 */

/* Lets every page write of this process last at least so long, as a chip's write cycle does; pages that hold
 * the bytes already are skipped. 0 at the start. */
void BMCHOST_SetEepromWriteDelayUs(u32 uiMicroseconds);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
