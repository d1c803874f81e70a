/* SPDX-License-Identifier: Apache-2.0 */
/* bmc_ini.h: INI files as a list of entries; bmc_capability.h and the OEM flag, which are one such file. */
#include "bmc_ini.h"

#include <ctype.h>
#include <errno.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <strings.h>
#include <sys/stat.h>

#include "bmc_capability.h"
#include "bmc_hwdesc.h"
#include "bmc_support.h"
#include "port.h"

#define LINE_MAX_LENGTH 1000U

typedef struct ENTRY
{
    struct ENTRY *pstNext;
    char *pcSection; /* lower case, as the key */
    char *pcKey;
    char *pcValue;
} ENTRY_S;

typedef struct
{
    ENTRY_S *pstFirst;
} INI_S;

u32 PORT_Number(const char *pcText, u32 uiMax, u32 *puiValue)
{
    const int bHex = pcText[0] == '0' && (pcText[1] == 'x' || pcText[1] == 'X');
    const char *pcDigits = bHex ? pcText + 2 : pcText;
    unsigned long long ullValue;
    if (*pcDigits == '\0' ||
        pcDigits[strspn(pcDigits, bHex ? "0123456789abcdefABCDEF" : "0123456789")] != '\0') {
        return PORT_FAILED;
    }
    errno = 0;
    ullValue = strtoull(pcDigits, NULL, bHex ? 16 : 10);
    if (errno != 0 || ullValue > uiMax) {
        return PORT_FAILED;
    }
    *puiValue = (u32)ullValue;
    return 0;
}

static int IsBlank(char cLetter)
{
    return cLetter == ' ' || cLetter == '\t' || cLetter == '\r';
}

static char *Trim(char *pcText)
{
    size_t uiLen;
    while (IsBlank(*pcText)) {
        ++pcText;
    }
    for (uiLen = strlen(pcText); uiLen != 0U && IsBlank(pcText[uiLen - 1U]); --uiLen) {
        pcText[uiLen - 1U] = '\0';
    }
    return pcText;
}

static char *Lower(const char *pcText)
{
    char *pcOut = strdup(pcText);
    char *pcAt;
    for (pcAt = pcOut; pcAt != NULL && *pcAt != '\0'; ++pcAt) {
        *pcAt = (char)tolower((unsigned char)*pcAt);
    }
    return pcOut;
}

static ENTRY_S *Find(const INI_S *pstIni, const char *pcSection, const char *pcKey)
{
    ENTRY_S *pstEntry = pstIni == NULL || pcSection == NULL || pcKey == NULL ? NULL : pstIni->pstFirst;
    while (pstEntry != NULL &&
           (strcasecmp(pstEntry->pcSection, pcSection) != 0 || strcasecmp(pstEntry->pcKey, pcKey) != 0)) {
        pstEntry = pstEntry->pstNext;
    }
    return pstEntry;
}

static void FreeEntry(ENTRY_S *pstEntry)
{
    free(pstEntry->pcSection);
    free(pstEntry->pcKey);
    free(pstEntry->pcValue);
    free(pstEntry);
}

/* Sets a value behind its section's last entry; a new section goes to the end, the nameless one ahead. */
static u32 Set(INI_S *pstIni, const char *pcSection, const char *pcKey, const char *pcValue)
{
    ENTRY_S *pstEntry = Find(pstIni, pcSection, pcKey);
    ENTRY_S **ppstAt = &pstIni->pstFirst;
    ENTRY_S **ppstBehind = NULL;
    char *pcCopy = strdup(pcValue);
    if (pcCopy == NULL) {
        return PORT_FAILED;
    }
    if (pstEntry != NULL) {
        free(pstEntry->pcValue);
        pstEntry->pcValue = pcCopy;
        return 0;
    }
    pstEntry = calloc(1, sizeof(*pstEntry));
    if (pstEntry == NULL) {
        free(pcCopy);
        return PORT_FAILED;
    }
    pstEntry->pcSection = Lower(pcSection);
    pstEntry->pcKey = Lower(pcKey);
    pstEntry->pcValue = pcCopy;
    if (pstEntry->pcSection == NULL || pstEntry->pcKey == NULL) {
        FreeEntry(pstEntry);
        return PORT_FAILED;
    }
    for (; *ppstAt != NULL; ppstAt = &(*ppstAt)->pstNext) {
        ppstBehind = strcasecmp((*ppstAt)->pcSection, pcSection) == 0 ? &(*ppstAt)->pstNext : ppstBehind;
    }
    ppstAt = ppstBehind != NULL ? ppstBehind : *pcSection == '\0' ? &pstIni->pstFirst : ppstAt;
    pstEntry->pstNext = *ppstAt;
    *ppstAt = pstEntry;
    return 0;
}

/* The value in a line, without its quotes or what is a comment behind it. */
static char *Value(char *pcText)
{
    char *pcEnd;
    pcText = Trim(pcText);
    if (*pcText == '"' || *pcText == '\'') {
        pcEnd = strchr(pcText + 1, *pcText);
        if (pcEnd != NULL) {
            *pcEnd = '\0';
            return pcText + 1;
        }
    }
    pcText[strcspn(pcText, ";#")] = '\0';
    return Trim(pcText);
}

/* One line; *ppcSection is the section that it stands in, or begins. */
static u32 ReadLine(INI_S *pstIni, char *pcLine, char **ppcSection)
{
    char *pcEqual;
    char *pcEnd;
    if (strlen(pcLine) > LINE_MAX_LENGTH) {
        return PORT_FAILED;
    }
    pcLine = Trim(pcLine);
    if (*pcLine == '\0' || *pcLine == ';' || *pcLine == '#') {
        return 0;
    }
    if (*pcLine == '[') {
        pcEnd = strchr(pcLine, ']');
        if (pcEnd == NULL) {
            return PORT_FAILED;
        }
        *pcEnd = '\0';
        *ppcSection = Trim(pcLine + 1);
        return 0;
    }
    pcEqual = strchr(pcLine, '=');
    if (pcEqual == NULL || pcEqual == pcLine) {
        return PORT_FAILED;
    }
    *pcEqual = '\0';
    return Set(pstIni, *ppcSection, Trim(pcLine), Value(pcEqual + 1));
}

void *BRIDGE_IniLoadFile(const char *pcPath)
{
    size_t uiLen = 0;
    char *pcText = PORT_ReadText(pcPath, &uiLen);
    char acNone[] = "";
    char *pcSection = acNone;
    char *pcRest = pcText;
    INI_S *pstIni = pcText == NULL || strlen(pcText) != uiLen ? NULL : calloc(1, sizeof(*pstIni));
    while (pstIni != NULL && pcRest != NULL) {
        char *pcLine = strsep(&pcRest, "\n");
        if (ReadLine(pstIni, pcLine, &pcSection) != 0U) {
            BRIDGE_IniCloseFile(pstIni);
            pstIni = NULL;
        }
    }
    free(pcText);
    if (pstIni == NULL) {
        PORT_Complain("cannot be read, or is no INI file", pcPath);
    }
    return pstIni;
}

const char *BRIDGE_IniGetStr(void *hpd, const char *pcSection, const char *pcKey, const char *pcDefault)
{
    const ENTRY_S *pstEntry = Find(hpd, pcSection, pcKey);
    return pstEntry == NULL ? pcDefault : pstEntry->pcValue;
}

u32 BRIDGE_IniGetUInt(void *hpd, const char *pcSection, const char *pcKey, u32 uiDefault)
{
    const ENTRY_S *pstEntry = Find(hpd, pcSection, pcKey);
    u32 uiValue = uiDefault;
    return pstEntry != NULL && PORT_Number(pstEntry->pcValue, 0xFFFFFFFFU, &uiValue) == 0U ? uiValue
                                                                                           : uiDefault;
}

u32 BRIDGE_IniGetBool(void *hpd, const char *pcSection, const char *pcKey, u32 uiDefault)
{
    const ENTRY_S *pstEntry = Find(hpd, pcSection, pcKey);
    const char cFirst = pstEntry == NULL ? '\0' : (char)tolower((unsigned char)pstEntry->pcValue[0]);
    if (cFirst == 'y' || cFirst == 't' || cFirst == '1') {
        return 1;
    }
    return cFirst == 'n' || cFirst == 'f' || cFirst == '0' ? 0U : uiDefault;
}

static int HasControls(const char *pcText)
{
    for (; *pcText != '\0'; ++pcText) {
        if (((unsigned char)*pcText < 0x20U && *pcText != '\t') || *pcText == 0x7F) {
            return 1;
        }
    }
    return 0;
}

/* The quotes that a value needs in a file: none (""), one kind, or null where neither gives it back. */
static const char *QuotesFor(const char *pcValue)
{
    const size_t uiLen = strlen(pcValue);
    const int bPlain = uiLen != 0U && strchr("\"' \t", pcValue[0]) == NULL && !IsBlank(pcValue[uiLen - 1U]) &&
                       strpbrk(pcValue, ";#") == NULL;
    if (HasControls(pcValue)) {
        return NULL;
    }
    return bPlain ? "" : strchr(pcValue, '"') == NULL ? "\"" : strchr(pcValue, '\'') == NULL ? "'" : NULL;
}

/* Whether a load gives the name back: what ends or begins it otherwise must not be in it. */
static int IsName(const char *pcName, const char *pcRefused)
{
    const size_t uiLen = strlen(pcName);
    return !HasControls(pcName) && strpbrk(pcName, pcRefused) == NULL &&
           (uiLen == 0U || (!IsBlank(pcName[0]) && !IsBlank(pcName[uiLen - 1U])));
}

u32 BRIDGE_IniSetStr(void *hpd, const char *pcSection, const char *pcKey, const char *pcValue)
{
    const char *pcQuotes = pcValue == NULL ? NULL : QuotesFor(pcValue);
    if (hpd == NULL || pcSection == NULL || pcKey == NULL || *pcKey == '\0' || pcQuotes == NULL ||
        !IsName(pcSection, "]:\t") || !IsName(pcKey, "=:[;#\t") ||
        strlen(pcKey) + strlen(pcValue) + 2U * strlen(pcQuotes) + 3U > LINE_MAX_LENGTH ||
        strlen(pcSection) + 2U > LINE_MAX_LENGTH) {
        return PORT_FAILED;
    }
    return Set(hpd, pcSection, pcKey, pcValue);
}

u32 BRIDGE_IniSaveFile(void *hpd, const char *pcPath)
{
    const INI_S *pstIni = hpd;
    const char *pcSection = "";
    const ENTRY_S *pstEntry;
    char acPath[PATH_MAX];
    struct stat stStat;
    char *pcText = NULL;
    size_t uiLen = 0;
    FILE *pstText;
    u32 uiRet = PORT_FAILED;
    if (pstIni == NULL || PORT_Path(pcPath, acPath, sizeof(acPath)) != 0U) {
        return PORT_FAILED;
    }
    pstText = open_memstream(&pcText, &uiLen);
    if (pstText == NULL) {
        return PORT_FAILED;
    }
    for (pstEntry = pstIni->pstFirst; pstEntry != NULL; pstEntry = pstEntry->pstNext) {
        const char *pcQuotes = QuotesFor(pstEntry->pcValue);
        if (strcmp(pcSection, pstEntry->pcSection) != 0) {
            pcSection = pstEntry->pcSection;
            (void)fprintf(pstText, "[%s]\n", pcSection);
        }
        pcQuotes = pcQuotes == NULL ? "" : pcQuotes; /* as it was read */
        (void)fprintf(pstText, "%s = %s%s%s\n", pstEntry->pcKey, pcQuotes, pstEntry->pcValue, pcQuotes);
    }
    if (fclose(pstText) == 0) {
        const mode_t uiMode = stat(acPath, &stStat) == 0 ? stStat.st_mode & 07777U : 0644U;
        uiRet = PORT_Replace(acPath, pcText, uiLen, uiMode);
    }
    free(pcText);
    return uiRet;
}

void BRIDGE_IniCloseFile(void *hpd)
{
    INI_S *pstIni = hpd;
    while (pstIni != NULL && pstIni->pstFirst != NULL) {
        ENTRY_S *pstEntry = pstIni->pstFirst;
        pstIni->pstFirst = pstEntry->pstNext;
        FreeEntry(pstEntry);
    }
    free(pstIni);
}

/* ---- capabilities and the OEM flag: "[object]" and "name = text" of one file ---- */

static void *Settings(void)
{
    return BMC_GetFileSize(PORT_SETTINGS) < 0 ? NULL : BRIDGE_IniLoadFile(PORT_SETTINGS);
}

u32 CAP_GetCommonCapabilityWithName(const char *pcObject, const char *pcName, u32 uiSize, char *pcOut)
{
    void *hpd = Settings();
    const char *pcText = BRIDGE_IniGetStr(hpd, pcObject, pcName, NULL);
    const u32 uiRet = pcText != NULL && pcOut != NULL && uiSize != 0U ? 0U : PORT_FAILED;
    if (uiRet == 0U) {
        (void)BMC_Strlcpy(pcOut, pcText, uiSize);
    }
    BRIDGE_IniCloseFile(hpd);
    return uiRet;
}

u32 BMC_GetOemFlag(void)
{
    void *hpd = Settings();
    const u32 uiFlag = BRIDGE_IniGetUInt(hpd, "OEM", "OemFlag", 0U);
    BRIDGE_IniCloseFile(hpd);
    return uiFlag;
}

u32 HW_LIB_GetOemFlag(void)
{
    return BMC_GetOemFlag();
}
