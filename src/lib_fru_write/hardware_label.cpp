// SPDX-License-Identifier: Apache-2.0
// Writing the label "Hardware FRU Label": seven raw bytes of the hardware FRU block. Neither the value nor
// the device's field flag is looked at, on purpose.
#include <cstring>

#include "lib_fru_hardware.h"
#include "lib_fru_labels.h"
#include "lib_fru_write/catalogue.h"
#include "lib_fru_write/label_block.h"
#include "lib_fru_write/lib_fru_write_module.h"

namespace {

// Value bytes 0 to 6: board type, PCB version, EEPROM version, CPLD version, as they follow each other
// in the block.
void CopyVersions(FRU_HW_BOARD_INFO_S *pstBoard, const char *pcValue)
{
    constexpr size_t uiFirst = offsetof(FRU_HW_BOARD_INFO_S, aucBoardType);
    constexpr size_t uiCount = offsetof(FRU_HW_BOARD_INFO_S, aucBoardReserved) - uiFirst;
    static_assert(uiFirst == 1U && uiCount == 7U);
    (void)memcpy(reinterpret_cast<u8 *>(pstBoard) + uiFirst, pcValue, uiCount);
}

} // namespace

// Its codes are not those of LIB_FRU_WriteElectronicLabel(); callers know both.
u32 LIB_FRU_WriteHWInfo(FRU_SET_PARA_S *pstFRUSetPara)
{
    FRU_REQUIRE(pstFRUSetPara, FRU_ERR_NULL_POINTER);
    const u8 ucType = pstFRUSetPara->ucComponentType;
    const u8 ucInstance = pstFRUSetPara->ucInstance;
    FRU_DEVICE_INFO_S stFRUInfo;
    if (FRU_FetchBlockDevice(pstFRUSetPara, &stFRUInfo) != FRU_OK) {
        return LIB_FRU_ERR_NO_DEVICE;
    }
    FRU_AddHWOperateLog(FRU_OPERATELOG_FAILED, pstFRUSetPara);
    if (FRU_ResolveBlockLabel(pstFRUSetPara) != FRU_OK) {
        return LIB_FRU_ERR_NO_DEVICE;
    }
    const char *pcHardware = FRU_NameOfLabel(FRU_LabelOfID(FRU_LABEL_HARDWARE));
    if (strncmp(pstFRUSetPara->acLabelName, pcHardware, strlen(pcHardware)) != 0) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_WARNING, "LabelName[%s] invalid!", pstFRUSetPara->acLabelName);
        return FRU_ERR_FAILED;
    }
    FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_INFO, "ComponentType[%#x] Instance[%d].", ucType, ucInstance);
    FRU_HW_DATA_S stHWData = {};
    u32 uiResult = LIB_FRU_GetHWFRUData(FRU_HW_ARG_USUAL, ucType, ucInstance, &stHWData);
    if (uiResult != FRU_OK) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_WARNING, "Get HW FRU Data failed! Ret:%#x.", uiResult);
        return FRU_ERR_FAILED;
    }
    CopyVersions(&stHWData.stHwBoardInfo, pstFRUSetPara->acLabelValue);
    uiResult = LIB_FRU_WriteHWFRUBinToDevice(ucType, ucInstance, &stHWData);
    if (uiResult != FRU_OK) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_WARNING, "Write HW Info To Device failed! Ret:%#x.", uiResult);
        return FRU_ERR_FAILED;
    }
    FRU_AddHWOperateLog(FRU_OPERATELOG_SUCCEEDED, pstFRUSetPara);
    return FRU_OK;
}
