// SPDX-License-Identifier: Apache-2.0
// One serial number of the baseboard or of the management card, along the normal or the direct path.
#include "lib_fru/lib_fru_module.h"
#include "lib_fru_access.h"
#include "lib_fru_codec.h"
#include "lib_fru_hardware.h"

namespace {

const u8 *ChassisSerial(const FRU_DATA_S &stData)
{
    return stData.stChassisInfo.pucChassisSerialNum;
}

const u8 *BoardSerial(const FRU_DATA_S &stData)
{
    return stData.stBoardInfo.pucBoardSerialNum;
}

const u8 *ProductSerial(const FRU_DATA_S &stData)
{
    return stData.stProductInfo.pucProductSerialNum;
}

u32 FetchNormally(u8 ucComponentType, FRU_DATA_S *pstFRUData)
{
    return LIB_FRU_GetFRUData(ucComponentType, FRU_INSTANCE_MAIN, FRU_READ_MODE_PLAIN, FRU_READ_ARG_USUAL,
                              pstFRUData);
}

u32 FetchDirectly(u8 ucComponentType, FRU_DATA_S *pstFRUData)
{
    return LIB_FRU_GetBaseboardFRUDataByI2C(ucComponentType, pstFRUData);
}

// A serial number: how to have the record of which component, and where it is in there.
struct SERIAL_SOURCE_S
{
    u32 (*pfnFetch)(u8 ucComponentType, FRU_DATA_S *pstFRUData);
    u8 ucComponentType;
    const u8 *(*pfnField)(const FRU_DATA_S &stData);
};

// Copies the serial number of a source into a caller's buffer; untouched when the record cannot be had.
u32 CopySerial(const SERIAL_SOURCE_S &stSource, u32 uiSize, char *pcOut)
{
    FRU_DATA_S stData = {};
    const u32 uiRet = stSource.pfnFetch(stSource.ucComponentType, &stData);
    if (uiRet != FRU_OK) {
        if (stSource.ucComponentType == FRU_COMPONENT_BMC_CARD) {
            FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_WARNING, "Fail to get BMC card fru data! Ret:%#x", uiRet);
        } else {
            FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_WARNING, "Fail to get baseboard fru data! Ret:%#x", uiRet);
        }
        FRU_ANALYZER_SafeFree(&stData);
        return LIB_FRU_ERR_READ;
    }
    (void)BMC_Strlcpy(pcOut, reinterpret_cast<const char *>(stSource.pfnField(stData)), uiSize);
    FRU_ANALYZER_SafeFree(&stData);
    return FRU_OK;
}

} // namespace

u32 LIB_FRU_GetBaseboardChassisSN(u32 uiSize, char *pucChassisSN)
{
    FRU_REQUIRE(pucChassisSN, LIB_FRU_ERR_NULL_POINTER);
    return CopySerial({FetchNormally, FRU_COMPONENT_BASEBOARD, ChassisSerial}, uiSize, pucChassisSN);
}

u32 LIB_FRU_GetBaseboardProductSN(u32 uiSize, char *pucProductSN)
{
    FRU_REQUIRE(pucProductSN, LIB_FRU_ERR_NULL_POINTER);
    return CopySerial({FetchNormally, FRU_COMPONENT_BASEBOARD, ProductSerial}, uiSize, pucProductSN);
}

u32 LIB_FRU_GetMainBoardSN(u32 uiSize, char *pucBoardSN)
{
    FRU_REQUIRE(pucBoardSN, LIB_FRU_ERR_NULL_POINTER);
    return CopySerial({FetchNormally, FRU_COMPONENT_BASEBOARD, BoardSerial}, uiSize, pucBoardSN);
}

u32 LIB_FRU_GetBmcCardSN(u32 uiSize, char *pucBoardSN)
{
    FRU_REQUIRE(pucBoardSN, LIB_FRU_ERR_NULL_POINTER);
    return CopySerial({FetchNormally, FRU_COMPONENT_BMC_CARD, BoardSerial}, uiSize, pucBoardSN);
}

u32 LIB_FRU_GetBaseboardProductSNByI2C(u32 uiSize, char *pucProductSN)
{
    FRU_REQUIRE(pucProductSN, LIB_FRU_ERR_NULL_POINTER);
    return CopySerial({FetchDirectly, FRU_COMPONENT_BASEBOARD, ProductSerial}, uiSize, pucProductSN);
}

u32 LIB_FRU_GetMainBoardSNByI2C(u32 uiSize, char *pucBoardSN)
{
    FRU_REQUIRE(pucBoardSN, LIB_FRU_ERR_NULL_POINTER);
    return CopySerial({FetchDirectly, FRU_COMPONENT_BASEBOARD, BoardSerial}, uiSize, pucBoardSN);
}

u32 LIB_FRU_GetBmcCardSNByI2C(u32 uiSize, char *pucBoardSN)
{
    FRU_REQUIRE(pucBoardSN, LIB_FRU_ERR_NULL_POINTER);
    return CopySerial({FetchDirectly, FRU_COMPONENT_BMC_CARD, BoardSerial}, uiSize, pucBoardSN);
}
