/* SPDX-License-Identifier: Apache-2.0 */
/* The port's file work: the root, whole reads, replacing and locking. */
#include "port.h"

#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

static char g_acRoot[PATH_MAX / 2];

u32 PORT_SetRoot(const char *pcRoot)
{
    if (pcRoot == NULL || strlen(pcRoot) >= sizeof(g_acRoot)) {
        return PORT_FAILED;
    }
    (void)strcpy(g_acRoot, pcRoot);
    return 0;
}

u32 PORT_Path(const char *pcPath, char *pcOut, size_t uiSize)
{
    const int iLen = pcPath == NULL ? -1 : snprintf(pcOut, uiSize, "%s/%s", g_acRoot, pcPath);
    return iLen >= 0 && (size_t)iLen < uiSize ? 0U : PORT_FAILED;
}

int PORT_OpenLocked(const char *pcPath, int iFlags, int iLock)
{
    const int iFd = open(pcPath, iFlags | O_CLOEXEC | O_NOFOLLOW, 0644);
    if (iFd >= 0) {
        while (flock(iFd, iLock) != 0) {
            if (errno != EINTR) {
                (void)close(iFd);
                return -1;
            }
        }
    }
    return iFd;
}

u32 PORT_ReadAll(int iFd, void *pData, size_t uiLen)
{
    char *pcAt = pData;
    while (uiLen != 0U) {
        const ssize_t iCount = read(iFd, pcAt, uiLen);
        if (iCount == 0 || (iCount < 0 && errno != EINTR)) {
            return PORT_FAILED;
        }
        pcAt += iCount > 0 ? iCount : 0;
        uiLen -= iCount > 0 ? (size_t)iCount : 0U;
    }
    return 0;
}

u32 PORT_WriteAll(int iFd, const void *pData, size_t uiLen)
{
    const char *pcAt = pData;
    while (uiLen != 0U) {
        const ssize_t iCount = write(iFd, pcAt, uiLen);
        if (iCount < 0 && errno != EINTR) {
            return PORT_FAILED;
        }
        pcAt += iCount > 0 ? iCount : 0;
        uiLen -= iCount > 0 ? (size_t)iCount : 0U;
    }
    return 0;
}

char *PORT_ReadText(const char *pcControllerPath, size_t *puiLen)
{
    char acPath[PATH_MAX];
    struct stat stStat;
    char *pcText = NULL;
    int iFd;
    if (PORT_Path(pcControllerPath, acPath, sizeof(acPath)) != 0U) {
        return NULL;
    }
    iFd = open(acPath, O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (iFd >= 0 && fstat(iFd, &stStat) == 0 && S_ISREG(stStat.st_mode) && stStat.st_size <= PORT_FILE_MAX) {
        pcText = malloc((size_t)stStat.st_size + 1U);
        if (pcText != NULL && PORT_ReadAll(iFd, pcText, (size_t)stStat.st_size) != 0U) {
            free(pcText);
            pcText = NULL;
        }
    }
    if (pcText != NULL) {
        pcText[stStat.st_size] = '\0';
        *puiLen = (size_t)stStat.st_size;
    }
    if (iFd >= 0) {
        (void)close(iFd);
    }
    return pcText;
}

u32 PORT_Replace(const char *pcPath, const void *pData, size_t uiLen, mode_t uiMode)
{
    char acTemp[PATH_MAX];
    u32 uiRet;
    int iFd;
    const int iLen = snprintf(acTemp, sizeof(acTemp), "%s.XXXXXX", pcPath);
    if (iLen < 0 || (size_t)iLen >= sizeof(acTemp)) {
        return PORT_FAILED;
    }
    iFd = mkstemp(acTemp);
    if (iFd < 0) {
        return PORT_FAILED;
    }
    uiRet = PORT_WriteAll(iFd, pData, uiLen);
    if (uiRet == 0U && (fchmod(iFd, uiMode) != 0 || fsync(iFd) != 0)) {
        uiRet = PORT_FAILED;
    }
    (void)close(iFd);
    if (uiRet == 0U && rename(acTemp, pcPath) != 0) {
        uiRet = PORT_FAILED;
    }
    if (uiRet != 0U) {
        (void)unlink(acTemp);
    }
    return uiRet;
}
