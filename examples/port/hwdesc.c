/* SPDX-License-Identifier: Apache-2.0 */
/*
 * bmc_hwdesc.h. This controller's description is a file of lines, its first one "hardware":
 *   FRU|component type|offset|size|selector|device name
 * To fill: the reader of the product's XML.
 */
#include "bmc_hwdesc.h"

#include <stdlib.h>
#include <string.h>

#include "port.h"

#define FIELDS 6

struct HW_NAMESPACE
{
    u32 uiCount;
    HW_FRU_OBJECT_S *pstObject;
};

HW_NAMESPACE_S *HW_NewNameSpace(void)
{
    return calloc(1, sizeof(HW_NAMESPACE_S));
}

static void Shrink(HW_NAMESPACE_S *pstNameSpace, u32 uiCount)
{
    while (pstNameSpace->uiCount > uiCount) {
        --pstNameSpace->uiCount;
        free((void *)(size_t)pstNameSpace->pstObject[pstNameSpace->uiCount].pcDeviceName);
    }
}

/* One line's object behind the others. */
static u32 Append(HW_NAMESPACE_S *pstNameSpace, char *pcLine)
{
    char *apcField[FIELDS] = {NULL};
    u32 uiType;
    u32 uiOffset;
    u32 uiSize;
    u32 uiSelector;
    HW_FRU_OBJECT_S *pstObject;
    int i;
    for (i = 0; i < FIELDS; ++i) {
        apcField[i] = strsep(&pcLine, "|");
    }
    if (apcField[FIELDS - 1] == NULL || pcLine != NULL || strcmp(apcField[0], "FRU") != 0 ||
        PORT_Number(apcField[1], 0xFFU, &uiType) != 0U ||
        PORT_Number(apcField[2], 0xFFFFU, &uiOffset) != 0U ||
        PORT_Number(apcField[3], 0xFFFFU, &uiSize) != 0U ||
        PORT_Number(apcField[4], 0xFFU, &uiSelector) != 0U || (uiSelector >= 9U && uiSelector <= 15U) ||
        apcField[5][0] == '\0') {
        return PORT_FAILED;
    }
    pstObject = realloc(pstNameSpace->pstObject, (pstNameSpace->uiCount + 1U) * sizeof(*pstObject));
    if (pstObject == NULL) {
        return PORT_FAILED;
    }
    pstNameSpace->pstObject = pstObject;
    pstObject += pstNameSpace->uiCount;
    pstObject->ucComponentType = (u8)uiType;
    pstObject->usOffset = (u16)uiOffset;
    pstObject->usSize = (u16)uiSize;
    pstObject->ucSelector = (u8)uiSelector;
    pstObject->pcDeviceName = strdup(apcField[5]);
    if (pstObject->pcDeviceName == NULL) {
        return PORT_FAILED;
    }
    ++pstNameSpace->uiCount;
    return 0;
}

u32 HW_LoadXml(HW_NAMESPACE_S *pstNameSpace, const char *pcPath)
{
    const u32 uiBefore = pstNameSpace == NULL ? 0U : pstNameSpace->uiCount;
    size_t uiLen = 0;
    char *pcText = pstNameSpace == NULL ? NULL : PORT_ReadText(pcPath, &uiLen);
    char *pcRest = pcText;
    char *pcLine = pcText == NULL ? NULL : strsep(&pcRest, "\n");
    u32 uiRet = pcLine != NULL && strcmp(pcLine, "hardware") == 0 ? 0U : PORT_FAILED;
    while (uiRet == 0U && (pcLine = strsep(&pcRest, "\n")) != NULL) {
        uiRet = *pcLine == '\0' ? 0U : Append(pstNameSpace, pcLine);
    }
    free(pcText);
    if (uiRet != 0U) {
        if (pstNameSpace != NULL) {
            Shrink(pstNameSpace, uiBefore);
        }
        PORT_Complain("is no hardware description", pcPath);
    }
    return uiRet;
}

u32 HW_GetObjectList(HW_NAMESPACE_S *pstNameSpace, const char *pcClass, HW_OBJECT_LIST_S *pstList)
{
    if (pstNameSpace == NULL || pcClass == NULL || pstList == NULL || strcmp(pcClass, "FRU") != 0) {
        return PORT_FAILED;
    }
    pstList->uiCount = pstNameSpace->uiCount;
    pstList->pstObject = pstNameSpace->pstObject;
    return 0;
}

void HW_FreeNameSpace(HW_NAMESPACE_S *pstNameSpace)
{
    if (pstNameSpace != NULL) {
        Shrink(pstNameSpace, 0U);
        free(pstNameSpace->pstObject);
        free(pstNameSpace);
    }
}
