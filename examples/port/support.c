/* SPDX-License-Identifier: Apache-2.0 */
/* bmc_support.h: messages, bounded text, checksums, files and directories, time. */
#include "bmc_support.h"

#include <errno.h>
#include <fcntl.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include "port.h"

static void (*g_pfnSink)(u32 uiSeverity, const char *pcText);

void PORT_SetSink(void (*pfnSink)(u32 uiSeverity, const char *pcText))
{
    g_pfnSink = pfnSink;
}

/* To fill: the product's diagnostic log. */
static void Tell(u32 uiSeverity, const char *pcFile, u32 uiLine, const char *pcText)
{
    if (g_pfnSink != NULL) {
        g_pfnSink(uiSeverity, pcText);
    } else if (uiSeverity <= BMC_DIAG_WARNING) {
        (void)fprintf(stderr, "<%u> %s:%u %s\n", uiSeverity, pcFile, uiLine, pcText);
    }
}

void PORT_Complain(const char *pcWhat, const char *pcPath)
{
    BMC_DiagLogOut(1U, 0U, BMC_DIAG_WARNING, 0U, "port", "%s: %s", pcPath == NULL ? "(null)" : pcPath,
                   pcWhat);
}

void BMC_DiagLogOut(u32 uiModule, u32 uiCategory, u32 uiSeverity, u32 uiLine, const char *pcFile,
                    const char *pcFormat, ...)
{
    const int iErrno = errno; /* the caller's stays as it is */
    char *pcText = NULL;
    va_list vaArgs;
    int iLen;
    (void)uiModule;
    (void)uiCategory;
    va_start(vaArgs, pcFormat);
    iLen = vasprintf(&pcText, pcFormat, vaArgs);
    va_end(vaArgs);
    if (iLen >= 0) {
        Tell(uiSeverity, pcFile, uiLine, pcText);
        free(pcText);
    }
    errno = iErrno;
}

i32 BMC_Scnprintf(char *pcBuf, u32 uiSize, const char *pcFormat, ...)
{
    va_list vaArgs;
    int iLen;
    if (uiSize == 0U) {
        return 0;
    }
    va_start(vaArgs, pcFormat);
    iLen = vsnprintf(pcBuf, uiSize, pcFormat, vaArgs);
    va_end(vaArgs);
    if (iLen < 0) {
        pcBuf[0] = '\0';
        return 0;
    }
    return (u32)iLen < uiSize ? iLen : (i32)(uiSize - 1U);
}

u32 BMC_Strlcpy(char *pcDest, const char *pcSrc, u32 uiSize)
{
    const size_t uiLen = pcSrc == NULL ? 0U : strlen(pcSrc);
    const size_t uiCopied = uiLen < uiSize ? uiLen : (size_t)uiSize - 1U;
    if (uiSize != 0U) {
        if (uiCopied != 0U) {
            (void)memcpy(pcDest, pcSrc, uiCopied);
        }
        pcDest[uiCopied] = '\0';
    }
    return (u32)uiLen;
}

u32 BMC_Strlcat(char *pcDest, const char *pcSrc, u32 uiCount)
{
    const size_t uiLen = strlen(pcDest);
    const size_t uiAdded = pcSrc == NULL ? 0U : strnlen(pcSrc, uiCount);
    if (uiAdded != 0U) {
        (void)memcpy(pcDest + uiLen, pcSrc, uiAdded);
    }
    pcDest[uiLen + uiAdded] = '\0';
    return (u32)(uiLen + uiAdded);
}

u8 BMC_CalcZeroCheckSum(const u8 *pucBuf, u32 uiLen)
{
    u32 uiSum = 0;
    u32 i;
    for (i = 0; i < uiLen; ++i) {
        uiSum += pucBuf[i];
    }
    return (u8)(0x100U - (uiSum & 0xFFU));
}

u32 BMC_CheckZeroSum(const u8 *pucBuf, u32 uiLen)
{
    return BMC_CalcZeroCheckSum(pucBuf, uiLen) == 0U ? 0U : PORT_FAILED;
}

u8 BMC_CalcCRC8CheckSum(const u8 *pucBuf, u32 uiLen)
{
    u32 uiCrc = 0;
    u32 i;
    int iBit;
    for (i = 0; i < uiLen; ++i) {
        uiCrc ^= pucBuf[i];
        for (iBit = 0; iBit < 8; ++iBit) {
            uiCrc = (uiCrc & 0x80U) != 0U ? ((uiCrc << 1U) ^ 0x07U) & 0xFFU : uiCrc << 1U;
        }
    }
    return (u8)uiCrc;
}

u32 BMC_CheckCRC8(u8 ucCrc, const u8 *pucBuf, u32 uiLen)
{
    return BMC_CalcCRC8CheckSum(pucBuf, uiLen) == ucCrc ? 0U : PORT_FAILED;
}

i32 BMC_GetFileSize(const char *pcPath)
{
    char acPath[PATH_MAX];
    struct stat stStat;
    if (PORT_Path(pcPath, acPath, sizeof(acPath)) != 0U || stat(acPath, &stStat) != 0 ||
        !S_ISREG(stStat.st_mode) || stStat.st_size > INT32_MAX) {
        return -1;
    }
    return (i32)stStat.st_size;
}

u32 BMC_ReadFile(const char *pcPath, u8 *pucBuf, u32 uiLen)
{
    char acPath[PATH_MAX];
    struct stat stStat;
    u32 uiRet = PORT_FAILED;
    int iFd;
    if (PORT_Path(pcPath, acPath, sizeof(acPath)) != 0U) {
        return PORT_FAILED;
    }
    iFd = open(acPath, O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (iFd >= 0) {
        if (fstat(iFd, &stStat) == 0 && S_ISREG(stStat.st_mode)) {
            uiRet = PORT_ReadAll(iFd, pucBuf, uiLen);
        }
        (void)close(iFd);
    }
    return uiRet;
}

u32 BMC_Mkdir(const char *pcPath)
{
    char acPath[PATH_MAX];
    struct stat stStat;
    char *pcSlash = acPath;
    if (PORT_Path(pcPath, acPath, sizeof(acPath)) != 0U) {
        return PORT_FAILED;
    }
    do {
        pcSlash = strchr(pcSlash + 1, '/');
        if (pcSlash != NULL) {
            *pcSlash = '\0';
        }
        if (mkdir(acPath, 0755) == 0) {
            (void)chmod(acPath, 0755); /* whatever the umask */
        } else if (stat(acPath, &stStat) != 0 || !S_ISDIR(stStat.st_mode)) {
            return PORT_FAILED;
        }
        if (pcSlash != NULL) {
            *pcSlash = '/';
        }
    } while (pcSlash != NULL);
    return 0;
}

u32 BMC_CheckDirVaildStatus(const char *pcPath)
{
    char acPath[PATH_MAX];
    struct stat stStat;
    return PORT_Path(pcPath, acPath, sizeof(acPath)) == 0U && stat(acPath, &stStat) == 0 &&
                   S_ISDIR(stStat.st_mode) && access(acPath, R_OK | W_OK | X_OK) == 0
               ? BMC_DIR_USABLE
               : 0U;
}

u32 BMC_CopyFileWithAllMode(const char *pcSrc, const char *pcDest)
{
    char acSrc[PATH_MAX];
    char acDest[PATH_MAX];
    struct stat stStat;
    size_t uiLen = 0;
    char *pcText = PORT_ReadText(pcSrc, &uiLen);
    u32 uiRet = PORT_FAILED;
    if (pcText != NULL && PORT_Path(pcSrc, acSrc, sizeof(acSrc)) == 0U &&
        PORT_Path(pcDest, acDest, sizeof(acDest)) == 0U && stat(acSrc, &stStat) == 0) {
        uiRet = PORT_Replace(acDest, pcText, uiLen, stStat.st_mode & 0777U);
    }
    free(pcText);
    return uiRet;
}

u32 BMC_TimeStampToIsoTime(u32 uiTimeStamp, u32 uiArg, char *pcOut)
{
    /* Counted by hand: where time_t has 32 bits the C library knows no moment beyond 2038. */
    static const u8 aucDays[12] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    const u32 uiSecond = uiTimeStamp % 86400U;
    u32 uiDay = uiTimeStamp / 86400U;
    u32 uiYear = 1970;
    u32 uiMonth = 0;
    u32 uiLength = 365;
    (void)uiArg; /* to fill: what the product's callers mean by it */
    if (pcOut == NULL) {
        return PORT_FAILED;
    }
    while (uiDay >= uiLength) {
        uiDay -= uiLength;
        ++uiYear;
        uiLength = uiYear % 4U == 0U && uiYear != 2100U ? 366U : 365U;
    }
    for (uiLength = uiLength == 366U ? 1U : 0U; uiDay >= aucDays[uiMonth] + (uiMonth == 1U ? uiLength : 0U);
         ++uiMonth) {
        uiDay -= aucDays[uiMonth] + (uiMonth == 1U ? uiLength : 0U);
    }
    (void)snprintf(pcOut, 32U, "%04u-%02u-%02u %02u:%02u:%02u", uiYear, uiMonth + 1U, uiDay + 1U,
                   uiSecond / 3600U, uiSecond / 60U % 60U, uiSecond % 60U);
    return 0;
}
