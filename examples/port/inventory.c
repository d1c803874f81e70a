/* SPDX-License-Identifier: Apache-2.0 */
/*
 * A controller's program over the port: what the controller's FRU service does at its start (device
 * table, device record, an image on the chip and in the cache), and what every other service does
 * afterwards (a record read, a label written).
 *
 *   inventory ROOT [SERIAL-NUMBER]
 */
#include <lib_fru.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "bmc_operatelog.h"
#include "bmc_support.h"
#include "port.h"

#define DEVICE_ID 1U
#define COMPONENT_PSU 3U
#define INSTANCE 0U
#define IMAGE_SIZE 256U
#define LOG_MODULE 17U
#define FIELD_FLAG_ALL 7U /* labels of chassis, board and product */

/* The device record: to fill with what the product's board description says. */
static void DescribeDevice(FRU_DEVICE_INFO_S *pstInfo)
{
    (void)memset(pstInfo, 0, sizeof(*pstInfo));
    pstInfo->ucDeviceID = DEVICE_ID;
    pstInfo->usSize = IMAGE_SIZE;
    pstInfo->ucEEPROMType = FRU_EEPROM_TYPE_MIN;
    (void)strcpy(pstInfo->acFRUName, "psu1");
    pstInfo->ucBusNumber = 2U;
    pstInfo->ucAddress = 0xA2U;
    pstInfo->ucFieldFlag = FIELD_FLAG_ALL;
}

static u8 *Text(const char *pcText)
{
    return (u8 *)strdup(pcText); /* the record frees it */
}

/* An image with a product area, as the factory would have it. */
static u32 MakeImage(u8 *pucImage)
{
    FRU_DATA_S stData;
    i32 iLen;
    (void)memset(&stData, 0, sizeof(stData));
    stData.stCommonHeader.ucFormatVersion = 1U;
    stData.stCommonHeader.ucProductInfoAreaStartOffset = 1U; /* not 0: there is one */
    stData.stProductInfo.ucFormatVersion = 1U;
    stData.stProductInfo.pucMfrName = Text("Example Power");
    stData.stProductInfo.pucProductName = Text("EP-2000");
    stData.stProductInfo.pucProductPartNum = Text("0301AB");
    stData.stProductInfo.pucProductVersion = Text("1.2");
    stData.stProductInfo.pucProductSerialNum = Text("EP0000001");
    stData.stProductInfo.pucAssetTag = Text("");
    stData.stProductInfo.pucFRUFileID = Text("");
    (void)memset(pucImage, 0, IMAGE_SIZE);
    iLen = FRU_ANALYZER_ConvertToArray(&stData, IMAGE_SIZE, pucImage);
    FRU_ANALYZER_SafeFree(&stData);
    return iLen > 0 ? 0U : PORT_FAILED;
}

/* Once, when there is no device table yet. */
static u32 Provision(void)
{
    static FRU_DEVICE_TBL_S g_stTable; /* too large for a small stack */
    FRU_DEVICE_INFO_S stInfo;
    u8 aucImage[IMAGE_SIZE];
    char acChip[PATH_MAX];
    if (FRU_DB_GetFRUDeviceTbl(&g_stTable) == 0U) {
        return 0;
    }
    DescribeDevice(&stInfo);
    (void)memset(&g_stTable, 0, sizeof(g_stTable));
    g_stTable.ucCount = 1U;
    g_stTable.astEntry[0].ucDeviceID = DEVICE_ID;
    g_stTable.astEntry[0].ucComponentType = COMPONENT_PSU;
    g_stTable.astEntry[0].ucInstance = INSTANCE;
    g_stTable.astEntry[0].usSDRRecordID = 2U;
    /* The chip is laid down here because there is none; a real one holds its image already. */
    if (MakeImage(aucImage) != 0U || BMC_Mkdir(PORT_CHIP_FOLDER) != 0U ||
        PORT_ChipPath(stInfo.ucEEPROMType, &stInfo.ucBusNumber, acChip, sizeof(acChip)) != 0U ||
        PORT_Replace(acChip, aucImage, sizeof(aucImage), 0644) != 0U) {
        return PORT_FAILED;
    }
    /* The table goes last: who finds it finds the rest. */
    return FRU_DB_PutFRUDeviceInfo(DEVICE_ID, &stInfo) == 0U &&
                   FRU_DB_PutFRUData(DEVICE_ID, IMAGE_SIZE, aucImage) == 0U &&
                   FRU_DB_PutFRUDataCacheStatus(DEVICE_ID, FRU_CACHE_TRUSTED) == 0U &&
                   FRU_DB_PutOperateFlag(FRU_OPERATE_IDLE) == 0U && FRU_DB_PutFRUDeviceTbl(&g_stTable) == 0U
               ? 0U
               : PORT_FAILED;
}

static u32 SetSerialNumber(const char *pcText)
{
    FRU_SET_PARA_S stPara;
    u32 uiRet;
    (void)memset(&stPara, 0, sizeof(stPara));
    stPara.ucComponentType = COMPONENT_PSU;
    stPara.ucInstance = INSTANCE;
    (void)snprintf(stPara.acLabelName, sizeof(stPara.acLabelName), "%s", "Product Serial Number");
    (void)snprintf(stPara.acLabelValue, sizeof(stPara.acLabelValue), "%s", pcText);
    uiRet = LIB_FRU_WriteElectronicLabel(&stPara);
    /* The sentence is there whatever became of the write; entering it is the caller's part. */
    (void)OPERATELOG_AddLogComm(LOG_MODULE,
                                uiRet == 0U ? OPERATELOG_RESULT_SUCCESS : OPERATELOG_RESULT_FAILURE,
                                stPara.acOperateLog, 0U, 0U, __LINE__, stPara.ucOperateLogType);
    return uiRet;
}

int main(int argc, char **argv)
{
    FRU_DATA_S stData;
    u32 uiRet;
    if (argc < 2 || PORT_SetRoot(argv[1]) != 0U) {
        (void)fprintf(stderr, "usage: inventory ROOT [SERIAL-NUMBER]\n");
        return 2;
    }
    if (Provision() != 0U || (argc > 2 && SetSerialNumber(argv[2]) != 0U)) {
        return 1;
    }
    (void)memset(&stData, 0, sizeof(stData));
    uiRet = LIB_FRU_GetFRUData(COMPONENT_PSU, INSTANCE, FRU_READ_MODE_PLAIN, FRU_READ_ARG_NONE, &stData);
    if (uiRet == FRU_OK) {
        (void)printf("%s %s, serial number %s\n", (const char *)stData.stProductInfo.pucMfrName,
                     (const char *)stData.stProductInfo.pucProductName,
                     (const char *)stData.stProductInfo.pucProductSerialNum);
    }
    FRU_ANALYZER_SafeFree(&stData);
    return uiRet == FRU_OK ? 0 : 1;
}
