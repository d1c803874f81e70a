// SPDX-License-Identifier: Apache-2.0
// One serial number of the baseboard or of the management card, along the normal or the direct path.
#include "lib_fru/lib_fru_module.h"
#include "lib_fru_access.h"
#include "lib_fru_analyzer/fields.h"
#include "lib_fru_codec.h"
#include "lib_fru_hardware.h"

namespace {

enum class PATH_E : u8
{
    NORMAL, // device table, cache, device
    DIRECT, // the device that the hardware description names
};

// A serial number: along which path, in the record of which component, which field.
struct SERIAL_S
{
    PATH_E ePath;
    u8 ucComponentType;
    FRU_FIELD_ID eField;
};

u32 Fetch(SERIAL_S stSerial, FRU_DATA_S *pstFRUData)
{
    return stSerial.ePath == PATH_E::DIRECT
               ? LIB_FRU_GetBaseboardFRUDataByI2C(stSerial.ucComponentType, pstFRUData)
               : LIB_FRU_GetFRUData(stSerial.ucComponentType, FRU_INSTANCE_MAIN, FRU_READ_MODE_PLAIN,
                                    FRU_READ_ARG_USUAL, pstFRUData);
}

// Copies a serial number into a caller's buffer; untouched when the record cannot be had.
u32 CopySerial(SERIAL_S stSerial, u32 uiSize, char *pcOut)
{
    FRU_DATA_S stData = {};
    const u32 uiRet = Fetch(stSerial, &stData);
    if (uiRet != FRU_OK) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_WARNING,
                stSerial.ucComponentType == FRU_COMPONENT_BMC_CARD
                    ? "Fail to get BMC card fru data! Ret:%#x"
                    : "Fail to get baseboard fru data! Ret:%#x",
                uiRet);
        FRU_ANALYZER_SafeFree(&stData);
        return LIB_FRU_ERR_READ;
    }
    (void)BMC_Strlcpy(pcOut, reinterpret_cast<const char *>(FRU_FieldText(&stData, stSerial.eField)), uiSize);
    FRU_ANALYZER_SafeFree(&stData);
    return FRU_OK;
}

} // namespace

u32 LIB_FRU_GetBaseboardChassisSN(u32 uiSize, char *pucChassisSN)
{
    FRU_REQUIRE(pucChassisSN, LIB_FRU_ERR_NULL_POINTER);
    return CopySerial({PATH_E::NORMAL, FRU_COMPONENT_BASEBOARD, FRU_FIELD_CHASSIS_SERIAL}, uiSize,
                      pucChassisSN);
}

u32 LIB_FRU_GetBaseboardProductSN(u32 uiSize, char *pucProductSN)
{
    FRU_REQUIRE(pucProductSN, LIB_FRU_ERR_NULL_POINTER);
    return CopySerial({PATH_E::NORMAL, FRU_COMPONENT_BASEBOARD, FRU_FIELD_PRODUCT_SERIAL}, uiSize,
                      pucProductSN);
}

u32 LIB_FRU_GetMainBoardSN(u32 uiSize, char *pucBoardSN)
{
    FRU_REQUIRE(pucBoardSN, LIB_FRU_ERR_NULL_POINTER);
    return CopySerial({PATH_E::NORMAL, FRU_COMPONENT_BASEBOARD, FRU_FIELD_BOARD_SERIAL}, uiSize, pucBoardSN);
}

u32 LIB_FRU_GetBmcCardSN(u32 uiSize, char *pucBoardSN)
{
    FRU_REQUIRE(pucBoardSN, LIB_FRU_ERR_NULL_POINTER);
    return CopySerial({PATH_E::NORMAL, FRU_COMPONENT_BMC_CARD, FRU_FIELD_BOARD_SERIAL}, uiSize, pucBoardSN);
}

u32 LIB_FRU_GetBaseboardProductSNByI2C(u32 uiSize, char *pucProductSN)
{
    FRU_REQUIRE(pucProductSN, LIB_FRU_ERR_NULL_POINTER);
    return CopySerial({PATH_E::DIRECT, FRU_COMPONENT_BASEBOARD, FRU_FIELD_PRODUCT_SERIAL}, uiSize,
                      pucProductSN);
}

u32 LIB_FRU_GetMainBoardSNByI2C(u32 uiSize, char *pucBoardSN)
{
    FRU_REQUIRE(pucBoardSN, LIB_FRU_ERR_NULL_POINTER);
    return CopySerial({PATH_E::DIRECT, FRU_COMPONENT_BASEBOARD, FRU_FIELD_BOARD_SERIAL}, uiSize, pucBoardSN);
}

u32 LIB_FRU_GetBmcCardSNByI2C(u32 uiSize, char *pucBoardSN)
{
    FRU_REQUIRE(pucBoardSN, LIB_FRU_ERR_NULL_POINTER);
    return CopySerial({PATH_E::DIRECT, FRU_COMPONENT_BMC_CARD, FRU_FIELD_BOARD_SERIAL}, uiSize, pucBoardSN);
}
