// SPDX-License-Identifier: Apache-2.0
// A FRU image straight from the EEPROM that the product's hardware description names, past device
// table and cache.
#include <memory>

#include "bmc_eeprom.h"
#include "bmc_hwdesc.h"
#include "lib_fru/lib_fru_module.h"
#include "lib_fru_codec.h"
#include "lib_fru_hardware.h"

namespace {

constexpr u32 g_uiPathLen = 128U;
constexpr const char *g_pcDirectory = "/conf/hw/ProductPath";
constexpr const char *g_pcFile = "Baseboard.xml";
constexpr const char *g_pcFunction = "LIB_FRU_GetBaseboardFRUDataByI2C";

struct NAMESPACE_DELETER_S
{
    void operator()(HW_NAMESPACE_S *pstNameSpace) const
    {
        HW_FreeNameSpace(pstNameSpace);
    }
};
using NAMESPACE = std::unique_ptr<HW_NAMESPACE_S, NAMESPACE_DELETER_S>;

// The first object of a component type, or null.
const HW_FRU_OBJECT_S *FindObject(const HW_OBJECT_LIST_S &stList, u32 uiComponentType)
{
    for (u32 i = 0; i < stList.uiCount; ++i) {
        if (stList.pstObject[i].ucComponentType == uiComponentType) {
            return &stList.pstObject[i];
        }
    }
    return nullptr;
}

// Reads and decodes the image that an object describes.
u32 ReadObject(const HW_FRU_OBJECT_S &stObject, FRU_DATA_S *pstFRUData)
{
    const FRU_BUFFER upBuf(static_cast<u8 *>(FRU_ZALLOC_IN(stObject.usSize, g_pcFunction)));
    if (upBuf == nullptr) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_WARNING, "Malloc FRU buf size failed!");
        return FRU_ERR_NO_MEMORY;
    }
    const i32 iCount = ReadWriteEEPROM(stObject.ucSelector, stObject.pcDeviceName, upBuf.get(),
                                       stObject.usOffset, stObject.usSize, BMC_EEPROM_READ);
    if (iCount != stObject.usSize) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_WARNING, "read fru failed!");
        return FRU_ERR_FAILED;
    }
    const u32 uiRet = FRU_ANALYZER_InterpretFRUData(upBuf.get(), stObject.usSize, pstFRUData);
    if (uiRet != FRU_OK) {
        // Success all the same: callers see an empty record. Intended.
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_WARNING, "Interpret FRU Data failed! Ret:%#x.", uiRet);
        FRU_ANALYZER_SafeFree(pstFRUData);
    }
    return FRU_OK;
}

} // namespace

u32 LIB_FRU_GetBaseboardFRUDataByI2C(u32 uiComponentType, FRU_DATA_S *pstFRUData)
{
    FRU_REQUIRE(pstFRUData, LIB_FRU_ERR_NULL_POINTER);
    const NAMESPACE upNameSpace(HW_NewNameSpace());
    if (upNameSpace == nullptr) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_WARNING, "Failed to create namespace.");
        return FRU_ERR_HW_NAMESPACE;
    }
    char acPath[g_uiPathLen] = {};
    (void)BMC_Scnprintf(acPath, sizeof(acPath), "%s/%s", g_pcDirectory, g_pcFile);
    if (HW_LoadXml(upNameSpace.get(), acPath) != FRU_OK) {
        // The file's name has a capital letter, the message has not.
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_WARNING, "Failed to load baseBoard.xml.");
        return FRU_ERR_HW_XML;
    }
    HW_OBJECT_LIST_S stList = {};
    const u32 uiRet = HW_GetObjectList(upNameSpace.get(), "FRU", &stList);
    if (uiRet != FRU_OK) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_WARNING, "Failed to get fru object list! Ret:%#x.", uiRet);
        return FRU_ERR_FAILED;
    }
    const HW_FRU_OBJECT_S *pstObject = FindObject(stList, uiComponentType);
    if (pstObject == nullptr) {
        FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_WARNING, "Failed to get BaseboardFRU xml node");
        return FRU_ERR_HW_NO_OBJECT;
    }
    return ReadObject(*pstObject, pstFRUData);
}
