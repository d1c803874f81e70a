/* SPDX-License-Identifier: Apache-2.0 */
/*
 * bmc_mrpc.h and bmc_operatelog.h. There is nobody to call here: requests are appended to a file, and
 * the feature list is a file with one text a line. To fill: the product's calls to its other services,
 * and its operation log.
 */
#include "bmc_mrpc.h"

#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>
#include <unistd.h>

#include "bmc_operatelog.h"
#include "bmc_support.h"
#include "port.h"

typedef struct
{
    u32 uiService;
    u32 uiMethod;
    u32 uiReqLen; /* the only one that the service takes */
} METHOD_S;

static const METHOD_S g_astMethod[] = {
    {MRPC_SERVICE_FRU_FEATURE, MRPC_METHOD_FEATURE_LIST, 0U},
    {MRPC_SERVICE_FRU_FEATURE, MRPC_METHOD_FEATURE_UPDATE, 1334U},
    {MRPC_SERVICE_FRU_FEATURE, MRPC_METHOD_FRU_WRITTEN, 0U},
    {MRPC_SERVICE_FRU_EVENT, MRPC_METHOD_FRU_EVENT, 16U},
    {MRPC_SERVICE_FRU_CHANGED, MRPC_METHOD_FRU_CHANGED, 184U},
};

/* In one piece, so that what others append at the same time stays apart. */
static u32 Append(const char *pcControllerPath, const void *pData, size_t uiLen)
{
    char acPath[PATH_MAX];
    u32 uiRet;
    int iFd;
    if (BMC_Mkdir("/var/log") != 0U || PORT_Path(pcControllerPath, acPath, sizeof(acPath)) != 0U) {
        return PORT_FAILED;
    }
    iFd = open(acPath, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
    if (iFd < 0) {
        return PORT_FAILED;
    }
    uiRet = write(iFd, pData, uiLen) == (ssize_t)uiLen ? 0U : PORT_FAILED;
    (void)close(iFd);
    return uiRet;
}

void MRPC_MsgFree(MRPC_MSG_S *pstMsg)
{
    u32 i;
    for (i = 0; pstMsg != NULL && i < pstMsg->uiCount; ++i) {
        free(pstMsg->ppcText[i]);
    }
    if (pstMsg != NULL) {
        free(pstMsg->ppcText);
    }
    free(pstMsg);
}

/* The lines of the feature file; none is an answer too. Null: out of memory. */
static MRPC_MSG_S *Features(void)
{
    MRPC_MSG_S *pstMsg = calloc(1, sizeof(*pstMsg));
    size_t uiLen = 0;
    char *pcText = pstMsg == NULL ? NULL : PORT_ReadText(PORT_FEATURES, &uiLen);
    char *pcRest = pcText;
    char *pcLine;
    while ((pcLine = strsep(&pcRest, "\n")) != NULL) {
        char **ppcText = realloc(pstMsg->ppcText, (pstMsg->uiCount + 1U) * sizeof(*ppcText));
        if (*pcLine == '\0') {
            pstMsg->ppcText = ppcText == NULL ? pstMsg->ppcText : ppcText;
            continue; /* behind the last line's end */
        }
        if (ppcText == NULL || (ppcText[pstMsg->uiCount] = strdup(pcLine)) == NULL) {
            pstMsg->ppcText = ppcText == NULL ? pstMsg->ppcText : ppcText;
            MRPC_MsgFree(pstMsg);
            pstMsg = NULL;
            break;
        }
        pstMsg->ppcText = ppcText;
        ++pstMsg->uiCount;
    }
    free(pcText);
    return pstMsg;
}

u32 MRPC_Call(u32 uiService, u32 uiMethod, u32 uiReqLen, const void *pReq, u32 uiTimeoutMs,
              MRPC_MSG_S **ppstRes)
{
    const size_t uiMethods = sizeof(g_astMethod) / sizeof(g_astMethod[0]);
    size_t i = 0;
    (void)uiTimeoutMs; /* nobody here lets a caller wait */
    if (ppstRes != NULL) {
        *ppstRes = NULL;
    }
    while (i < uiMethods && (g_astMethod[i].uiService != uiService || g_astMethod[i].uiMethod != uiMethod)) {
        ++i;
    }
    if (i == uiMethods || g_astMethod[i].uiReqLen != uiReqLen || (pReq == NULL && uiReqLen != 0U)) {
        return PORT_FAILED;
    }
    if (uiService == MRPC_SERVICE_FRU_FEATURE && uiMethod == MRPC_METHOD_FEATURE_LIST) {
        if (ppstRes != NULL) {
            *ppstRes = Features();
        }
        return ppstRes == NULL || *ppstRes != NULL ? 0U : PORT_FAILED;
    }
    return uiReqLen == 0U ? 0U : Append(PORT_EVENTS, pReq, uiReqLen);
}

u32 OPERATELOG_AddLogComm(u32 uiModule, u32 uiResult, const char *pcText, u32 uiArg1, u32 uiArg2, u32 uiLine,
                          u8 ucSource)
{
    char *pcEntry = NULL;
    const int iLen = asprintf(&pcEntry, "%lld module %u result %u source %u line %u args %u %u: %s\n",
                              (long long)time(NULL), uiModule, uiResult, ucSource, uiLine, uiArg1, uiArg2,
                              pcText == NULL ? "" : pcText);
    u32 uiRet = PORT_FAILED;
    if (iLen >= 0) {
        uiRet = Append(PORT_OPERATE_LOG, pcEntry, (size_t)iLen);
        free(pcEntry);
    }
    return uiRet;
}
