/* SPDX-License-Identifier: Apache-2.0 */
/*
 * bmc_db.h: a folder with a file for each record, its key the name. A record is written beside its place
 * and renamed, so a reader has the old bytes or the new ones; one lock, which dies with its holder,
 * keeps writers apart. To fill: the product's database. On flash the folder has to be synced after each
 * rename.
 */
#include "bmc_db.h"

#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "bmc_support.h"
#include "port.h"

#define RECORD_PATH (sizeof(PORT_DB_FOLDER) + 16U)

static char g_cHandle;

void *DB_Open(void)
{
    if (BMC_Mkdir(PORT_DB_FOLDER) != 0U) {
        PORT_Complain("the database cannot be made", PORT_DB_FOLDER);
        return NULL;
    }
    return &g_cHandle;
}

static u32 PathOf(const char *pcName, char *pcOut, size_t uiSize)
{
    char acPath[RECORD_PATH];
    (void)snprintf(acPath, sizeof(acPath), "%s/%s", PORT_DB_FOLDER, pcName);
    return PORT_Path(acPath, pcOut, uiSize);
}

static u32 RecordPath(u32 uiKey, char *pcOut, size_t uiSize)
{
    char acName[9];
    (void)snprintf(acName, sizeof(acName), "%08x", (unsigned)uiKey);
    return PathOf(acName, pcOut, uiSize);
}

/* The record of this length into memory of its own; null: there is none. */
static void *Fetch(u32 uiKey, u32 uiLen)
{
    char acPath[PATH_MAX];
    struct stat stStat;
    void *pData = NULL;
    int iFd = -1;
    if (RecordPath(uiKey, acPath, sizeof(acPath)) == 0U) {
        iFd = open(acPath, O_RDONLY | O_CLOEXEC);
    }
    if (iFd < 0) {
        return NULL;
    }
    if (fstat(iFd, &stStat) == 0 && stStat.st_size == (off_t)uiLen) {
        pData = malloc((size_t)uiLen + 1U);
        if (pData != NULL && PORT_ReadAll(iFd, pData, uiLen) != 0U) {
            free(pData);
            pData = NULL;
        }
    }
    (void)close(iFd);
    return pData;
}

u32 DB_Get(void *pDb, u32 uiKey, u32 uiLen, void *pData)
{
    void *pRecord = NULL;
    if (pDb != &g_cHandle || (pData == NULL && uiLen != 0U)) {
        return PORT_FAILED;
    }
    pRecord = Fetch(uiKey, uiLen);
    if (pRecord == NULL) {
        return PORT_FAILED;
    }
    if (uiLen != 0U) {
        (void)memcpy(pData, pRecord, uiLen);
    }
    free(pRecord);
    return 0;
}

/* Under the lock: the new record beside its place, then in it. */
static u32 Store(const char *pcPath, const char *pcNew, u32 uiLen, const void *pData)
{
    const int iFd = open(pcNew, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    u32 uiRet;
    if (iFd < 0) {
        return PORT_FAILED;
    }
    uiRet = PORT_WriteAll(iFd, pData, uiLen);
    if (uiRet == 0U && fsync(iFd) != 0) {
        uiRet = PORT_FAILED;
    }
    (void)close(iFd);
    return uiRet == 0U && rename(pcNew, pcPath) == 0 ? 0U : PORT_FAILED;
}

u32 DB_PutInternal(void *pDb, u32 uiKey, u32 uiLen, const void *pData, const char *pcFile, u32 uiLine)
{
    char acPath[PATH_MAX];
    char acNew[PATH_MAX];
    char acLock[PATH_MAX];
    void *pOld = NULL;
    u32 uiRet = PORT_FAILED;
    int iLock;
    if (pDb != &g_cHandle || (pData == NULL && uiLen != 0U) ||
        RecordPath(uiKey, acPath, sizeof(acPath)) != 0U || PathOf("new", acNew, sizeof(acNew)) != 0U ||
        PathOf("lock", acLock, sizeof(acLock)) != 0U) {
        return PORT_FAILED;
    }
    iLock = PORT_OpenLocked(acLock, O_RDWR | O_CREAT, LOCK_EX);
    if (iLock >= 0) {
        pOld = Fetch(uiKey, uiLen);
        /* What is there already is not written again. */
        uiRet = pOld != NULL && (uiLen == 0U || memcmp(pOld, pData, uiLen) == 0)
                    ? 0U
                    : Store(acPath, acNew, uiLen, pData);
        free(pOld);
        (void)close(iLock);
    }
    if (uiRet != 0U) {
        BMC_DiagLogOut(1U, 0U, BMC_DIAG_WARNING, uiLine, pcFile == NULL ? "" : pcFile,
                       "record %#x cannot be stored: %s", (unsigned)uiKey, strerror(errno));
    }
    return uiRet;
}

u32 DB_Del(void *pDb, const u32 *puiKey)
{
    char acPath[PATH_MAX];
    if (pDb != &g_cHandle || puiKey == NULL || RecordPath(*puiKey, acPath, sizeof(acPath)) != 0U) {
        return PORT_FAILED;
    }
    return unlink(acPath) == 0 ? 0U : PORT_FAILED;
}
