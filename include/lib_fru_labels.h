/* libbmcfru, labels: electronic labels: catalogue, checks, setters, write flows, serial-number file. */
#ifndef LIB_FRU_LABELS_H
#define LIB_FRU_LABELS_H

#include "lib_fru_types.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

extern DIAG_FRU_LABEL_S g_astDIAG_FruLabel[];
extern u32 g_uiDIAG_FruLabelMaxNum;
extern const DIAG_ELECTRONIC_FIELD_S g_astDIAG_ElectronicField[];
extern const u32 g_uiDIAG_ElectronicFieldMaxNum;
u32 FindLabelIDByName(const char *pcLableName);
u32 FRU_GetPsuFieldIDByName(const char *pcLableName);
u32 ConfirmElectroniclabelField(DIAG_ELECTRONIC_FIELD_S *pstElectronicField);
u32 isLabelNameValid(const FRU_SET_PARA_S *pstFRUSetPara);
u32 isLabelValueValid(const char *pcName, char *pcValue, i32 iValueLen, u32 uiComponentType);
i32 isLabelValueMfgDateNormal(const char *pcValue);
u32 setChassisType(u8 *pucLabelValue, FRU_DATA_S *pstFRUData);
u32 setChassisPartNum(u8 *pucLabelValue, FRU_DATA_S *pstFRUData);
u32 setChassisSerialNum(u8 *pucLabelValue, FRU_DATA_S *pstFRUData);
u32 setChassisCustomerSerialNum(u8 *pucLabelValue, FRU_DATA_S *pstFRUData);
u32 setChassisMACAddress(u8 *pucLabelValue, FRU_DATA_S *pstFRUData);
u32 setChassisMACAddressCount(u8 *pucLabelValue, FRU_DATA_S *pstFRUData);
u32 setChassisClEICode(u8 *pucLabelValue, FRU_DATA_S *pstFRUData);
u32 setChassisLocationNodeID(u8 *pucLabelValue, FRU_DATA_S *pstFRUData);
u32 setBoardLanuageCode(u8 *pucLabelValue, FRU_DATA_S *pstFRUData);
u32 setBoardMfgDate(u8 *pucLabelValue, FRU_DATA_S *pstFRUData);
u32 setBoardManufacturer(u8 *pucLabelValue, FRU_DATA_S *pstFRUData);
u32 setBoardProductName(u8 *pucLabelValue, FRU_DATA_S *pstFRUData);
u32 setBoardSerialNumber(u8 *pucLabelValue, FRU_DATA_S *pstFRUData);
u32 setBoardPartNumber(u8 *pucLabelValue, FRU_DATA_S *pstFRUData);
u32 setBoardFRUFileID(u8 *pucLabelValue, FRU_DATA_S *pstFRUData);
u32 setBoardTopSerialNumber(u8 *pucLabelValue, FRU_DATA_S *pstFRUData);
u32 setProductLanguageCode(u8 *pucLabelValue, FRU_DATA_S *pstFRUData);
u32 setProductManufacturer(u8 *pucLabelValue, FRU_DATA_S *pstFRUData);
u32 setProductProductName(u8 *pucLabelValue, FRU_DATA_S *pstFRUData);
u32 setProductSerialNumber(u8 *pucLabelValue, FRU_DATA_S *pstFRUData);
u32 setProductPartNumber(u8 *pucLabelValue, FRU_DATA_S *pstFRUData);
u32 setProductVersion(u8 *pucLabelValue, FRU_DATA_S *pstFRUData);
u32 setProductAssetTag(u8 *pucLabelValue, FRU_DATA_S *pstFRUData);
u32 setProductFRUFileID(u8 *pucLabelValue, FRU_DATA_S *pstFRUData);
u32 setProductNodeType(u8 *pucLabelValue, FRU_DATA_S *pstFRUData);
u32 setProductNodePSU(u8 *pucLabelValue, FRU_DATA_S *pstFRUData);
u32 setProductNodeNetwork(u8 *pucLabelValue, FRU_DATA_S *pstFRUData);
u32 setProductNodePower(u8 *pucLabelValue, FRU_DATA_S *pstFRUData);
u32 LIB_FRU_WriteElectronicLabel(FRU_SET_PARA_S *pstFRUSetPara);
u32 FRU_GetElectronicLabel(const FRU_SET_PARA_S *pstFRUSetPara, FRU_DATA_S *pstFRUData);
u32 FRU_CheckElectronicLabel(FRU_SET_PARA_S *pstFRUSetPara);
u32 FRU_ReplaceElectronicLabel(const FRU_SET_PARA_S *pstFRUSetPara, FRU_DATA_S *pstFRUData);
i32 FRU_SetElectronicLabel(const FRU_SET_PARA_S *pstFRUSetPara, const FRU_DATA_S *pstFRUData);
void FRU_AddComOperateLog(i32 iResult, FRU_SET_PARA_S *pstFRUSetPara);
void FRU_UpdateFRUInfo(u32 uiLabelID, const char *pcLabelValue, u32 uiLabelValueLen);
u32 LIB_FRU_WritePSNToFile(const char *pcWriteBuf, u32 uiLength);
u32 FRU_UpdateProductSN(const char *pcLabelValue, u32 uiLength);
u32 LIB_FRU_GetPSNFromFile(u32 uiSize, char *pcPSNName);
u32 LIB_FRU_WriteHWInfo(FRU_SET_PARA_S *pstFRUSetPara);
void FRU_AddHWOperateLog(i32 iResult, FRU_SET_PARA_S *pstFRUSetPara);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
