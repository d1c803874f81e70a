/* SPDX-License-Identifier: Apache-2.0 */
/*
 * A program in C that links the label tables by name, as other processes of a controller do, and walks them
 * by the layout that it was once compiled with. Prints every row; any difference ends it with 1.
 */
#include <stdio.h>
#include <string.h>

#include "lib_fru.h"

static int g_iFailures;

#define EXPECT(bCondition)                                                                                   \
    do {                                                                                                     \
        if (!(bCondition)) {                                                                                 \
            (void)printf("%s:%d: not so: %s\n", __FILE__, __LINE__, #bCondition);                            \
            ++g_iFailures;                                                                                   \
        }                                                                                                    \
    } while (0)

/* A row as its bytes lie there: no padding, whatever the width of a pointer. */
#define ROW_LEN (4U + sizeof(char *) + 4U + 4U + 1U + 2U * sizeof(void *))

typedef u32 (*SETTER)(u8 *pucLabelValue, FRU_DATA_S *pstFRUData);

typedef struct
{
    u32 uiLabelID;
    const char *pcLabelName;
    u32 uiMinLen;
    u32 uiMaxLen;
    u8 ucNoneAllowed;
    SETTER pfnSetLabel;
    void *pReserved;
} ROW_S;

static ROW_S ReadRow(u32 uiIndex)
{
    const unsigned char *pucRow = (const unsigned char *)g_astDIAG_FruLabel + uiIndex * ROW_LEN;
    ROW_S stRow;
    memcpy(&stRow.uiLabelID, pucRow, 4U);
    pucRow += 4U;
    memcpy(&stRow.pcLabelName, pucRow, sizeof(char *));
    pucRow += sizeof(char *);
    memcpy(&stRow.uiMinLen, pucRow, 4U);
    memcpy(&stRow.uiMaxLen, pucRow + 4U, 4U);
    stRow.ucNoneAllowed = pucRow[8];
    pucRow += 9U;
    memcpy(&stRow.pfnSetLabel, pucRow, sizeof(SETTER));
    memcpy(&stRow.pReserved, pucRow + sizeof(SETTER), sizeof(void *));
    return stRow;
}

/* By name, so that this program's own idea of each address is what the table is held against. */
static const SETTER g_apfnSetter[] = {
    setChassisType,         setChassisPartNum,         setChassisSerialNum,   setChassisCustomerSerialNum,
    setChassisMACAddress,   setChassisMACAddressCount, setChassisClEICode,    setChassisLocationNodeID,
    setBoardLanuageCode,    setBoardMfgDate,           setBoardManufacturer,  setBoardProductName,
    setBoardSerialNumber,   setBoardPartNumber,        setBoardFRUFileID,     setBoardTopSerialNumber,
    setProductLanguageCode, setProductManufacturer,    setProductProductName, setProductSerialNumber,
    setProductPartNumber,   setProductVersion,         setProductAssetTag,    setProductFRUFileID,
    setProductNodeType,     setProductNodePSU,         setProductNodeNetwork, setProductNodePower,
};
#define SETTERS (sizeof(g_apfnSetter) / sizeof(g_apfnSetter[0]))

static void WalkLabels(void)
{
    u32 i;
    u32 uiLastID = 0U;
    EXPECT(g_uiDIAG_FruLabelMaxNum == 34U);
    EXPECT(sizeof(DIAG_FRU_LABEL_S) == ROW_LEN);
    EXPECT(sizeof(void *) != 4U || ROW_LEN == 25U);
    for (i = 0U; i < g_uiDIAG_FruLabelMaxNum; ++i) {
        const ROW_S stRow = ReadRow(i);
        const u32 uiExpectedID = i < 29U ? i + 1U : i + 2U; /* there is no label 30 */
        const u32 uiFoundID = FindLabelIDByName(stRow.pcLabelName);
        (void)printf("%2u %-30s %2u %2u %u %s\n", (unsigned)stRow.uiLabelID, stRow.pcLabelName,
                     (unsigned)stRow.uiMinLen, (unsigned)stRow.uiMaxLen, (unsigned)stRow.ucNoneAllowed,
                     stRow.pfnSetLabel == NULL ? "-" : "setter");
        EXPECT(stRow.uiLabelID == uiExpectedID && stRow.uiLabelID > uiLastID);
        EXPECT(stRow.uiMinLen <= stRow.uiMaxLen && stRow.uiMaxLen <= 63U);
        EXPECT(stRow.ucNoneAllowed <= 1U);
        EXPECT((stRow.pfnSetLabel != NULL) == (stRow.uiLabelID <= 28U));
        EXPECT(stRow.pfnSetLabel == (i < SETTERS ? g_apfnSetter[i] : (SETTER)NULL));
        EXPECT(stRow.pReserved == NULL);
        EXPECT(stRow.uiLabelID > 29U ? uiFoundID >= 10U && uiFoundID <= 14U : uiFoundID == stRow.uiLabelID);
        uiLastID = stRow.uiLabelID;
    }
    /* The setters in the table are those that link by name. */
    EXPECT(ReadRow(0U).pfnSetLabel == setChassisType);
    EXPECT(ReadRow(8U).pfnSetLabel == setBoardLanuageCode);
    EXPECT(ReadRow(27U).pfnSetLabel == setProductNodePower);
}

static void CallASetter(void)
{
    FRU_DATA_S stData;
    u8 aucValue[] = "136";
    memset(&stData, 0, sizeof(stData));
    EXPECT(ReadRow(16U).pfnSetLabel(aucValue, &stData) == 0U);
    EXPECT(stData.stProductInfo.ucLanguage == 136U);
}

static void WalkFields(void)
{
    u32 i;
    EXPECT(sizeof(DIAG_ELECTRONIC_FIELD_S) == 9U);
    EXPECT(g_uiDIAG_ElectronicFieldMaxNum == 9U);
    for (i = 0U; i < g_uiDIAG_ElectronicFieldMaxNum; ++i) {
        const u8 *pucRow = (const u8 *)g_astDIAG_ElectronicField + i * 9U;
        DIAG_ELECTRONIC_FIELD_S stField;
        memset(&stField, 0, sizeof(stField));
        stField.ucFieldFlag = (u8)(i + 1U);
        (void)printf("flag %u: %u-%u %u-%u %u-%u %u-%u\n", pucRow[0], pucRow[1], pucRow[5], pucRow[2],
                     pucRow[6], pucRow[3], pucRow[7], pucRow[4], pucRow[8]);
        EXPECT(ConfirmElectroniclabelField(&stField) == 0U);
        EXPECT(memcmp(&stField, pucRow, 9U) == 0);
    }
}

/* The labels lie in writable data, and the library goes by what is written there. */
static void WriteThroughTheTable(void)
{
    char acValue[] = "0123456789ABCDEF";
    const u32 uiMaxLen = g_astDIAG_FruLabel[13].uiMaxLen;
    g_uiDIAG_FruLabelMaxNum = 0U;
    EXPECT(FindLabelIDByName("Chassis Type") == 36U);
    g_uiDIAG_FruLabelMaxNum = 34U;
    EXPECT(FindLabelIDByName("Chassis Type") == 1U);
    g_astDIAG_FruLabel[13].uiMaxLen = 16U;
    EXPECT(isLabelValueValid("Board Part Number", acValue, 16, 1U) == 1U);
    g_astDIAG_FruLabel[13].uiMaxLen = uiMaxLen;
    EXPECT(isLabelValueValid("Board Part Number", acValue, 16, 1U) == 0U);
}

int main(void)
{
    WalkLabels();
    CallASetter();
    WalkFields();
    WriteThroughTheTable();
    return g_iFailures == 0 ? 0 : 1;
}
