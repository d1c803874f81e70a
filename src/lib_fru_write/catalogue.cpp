// The label catalogue: which labels there are, and which of them a device accepts.
#include "catalogue.h"

#include <cstring>

#include "lib_fru_labels.h"
#include "lib_fru_write_module.h"

// IDs 31 to 35 bear names of board labels on purpose: the power-supply lookup alone gets that far. No row has
// ID 30. The layout is linked by other processes.
DIAG_FRU_LABEL_S g_astDIAG_FruLabel[] = {
    {1U, "Chassis Type", 2U, 21U, 0U, setChassisType, nullptr},
    {2U, "Chassis Part Number", 2U, 63U, 0U, setChassisPartNum, nullptr},
    {3U, "Chassis Serial Number", 2U, 63U, 0U, setChassisSerialNum, nullptr},
    {4U, "Chassis Customer Serial Number", 2U, 20U, 0U, setChassisCustomerSerialNum, nullptr},
    {5U, "Chassis MAC Address", 4U, 12U, 1U, setChassisMACAddress, nullptr},
    {6U, "Chassis MAC Address Count", 2U, 10U, 1U, setChassisMACAddressCount, nullptr},
    {7U, "CLEI Code", 2U, 63U, 1U, setChassisClEICode, nullptr},
    {8U, "Chassis Location Node ID", 0U, 20U, 1U, setChassisLocationNodeID, nullptr},
    {9U, "Language Code", 1U, 3U, 0U, setBoardLanuageCode, nullptr},
    {10U, "Mfg.Date", 8U, 19U, 0U, setBoardMfgDate, nullptr},
    {11U, "Board Manufacturer", 2U, 63U, 0U, setBoardManufacturer, nullptr},
    {12U, "Board Product Name", 2U, 63U, 0U, setBoardProductName, nullptr},
    {13U, "Board Serial Number", 2U, 63U, 0U, setBoardSerialNumber, nullptr},
    {14U, "Board Part Number", 2U, 15U, 0U, setBoardPartNumber, nullptr},
    {15U, "FRU File ID", 2U, 63U, 0U, setBoardFRUFileID, nullptr},
    {16U, "Board Top Serial Number", 0U, 20U, 1U, setBoardTopSerialNumber, nullptr},
    {17U, "Product Language Code", 1U, 3U, 0U, setProductLanguageCode, nullptr},
    {18U, "Product Manufacturer", 2U, 63U, 0U, setProductManufacturer, nullptr},
    {19U, "Product Product Name", 2U, 63U, 0U, setProductProductName, nullptr},
    {20U, "Product Serial Number", 2U, 63U, 0U, setProductSerialNumber, nullptr},
    {21U, "Product Part Number", 2U, 63U, 0U, setProductPartNumber, nullptr},
    {22U, "Product Version", 2U, 63U, 0U, setProductVersion, nullptr},
    {23U, "Product Asset Tag", 0U, 63U, 0U, setProductAssetTag, nullptr},
    {24U, "Product FRU File ID", 2U, 63U, 0U, setProductFRUFileID, nullptr},
    {25U, "Product Node Type", 0U, 63U, 1U, setProductNodeType, nullptr},
    {26U, "Product Node PSU", 0U, 63U, 1U, setProductNodePSU, nullptr},
    {27U, "Product Node Network", 0U, 63U, 1U, setProductNodeNetwork, nullptr},
    {28U, "Product Node Power", 0U, 63U, 1U, setProductNodePower, nullptr},
    {29U, "Hardware FRU Label", 1U, 31U, 0U, nullptr, nullptr},
    {31U, "Board Product Name", 1U, 47U, 0U, nullptr, nullptr},
    {32U, "Board Serial Number", 1U, 47U, 0U, nullptr, nullptr},
    {33U, "Mfg.Date", 1U, 47U, 0U, nullptr, nullptr},
    {34U, "Board Manufacturer", 1U, 47U, 0U, nullptr, nullptr},
    {35U, "Board Part Number", 1U, 21U, 0U, nullptr, nullptr},
};
static_assert(sizeof(g_astDIAG_FruLabel) / sizeof(g_astDIAG_FruLabel[0]) == 34);

u32 g_uiDIAG_FruLabelMaxNum = 34U;

// Flags 1, 2 and 4 are single areas, 3, 5, 6 and 7 their unions, 8 and 9 special sets.
const DIAG_ELECTRONIC_FIELD_S g_astDIAG_ElectronicField[] = {
    {1U, {1U, 9U, 17U, 29U}, {9U, 9U, 17U, 30U}},   {2U, {1U, 9U, 17U, 29U}, {1U, 17U, 17U, 30U}},
    {3U, {1U, 9U, 17U, 29U}, {9U, 17U, 17U, 30U}},  {4U, {1U, 9U, 17U, 29U}, {1U, 9U, 29U, 30U}},
    {5U, {1U, 9U, 17U, 29U}, {9U, 9U, 29U, 30U}},   {6U, {1U, 9U, 17U, 29U}, {1U, 17U, 29U, 30U}},
    {7U, {1U, 9U, 17U, 29U}, {9U, 17U, 29U, 29U}},  {8U, {1U, 7U, 17U, 29U}, {5U, 17U, 29U, 29U}},
    {9U, {1U, 10U, 18U, 29U}, {1U, 17U, 25U, 29U}},
};
const u32 g_uiDIAG_ElectronicFieldMaxNum = 9U;

namespace {

constexpr u32 g_uiFieldRows = 9U; // the lookup's own bound, whatever the exported count says
static_assert(sizeof(g_astDIAG_ElectronicField) / sizeof(g_astDIAG_ElectronicField[0]) == g_uiFieldRows);

constexpr u32 g_uiLastOrdinaryID = 30U;
constexpr u32 g_uiFirstPsuID = 31U;

} // namespace

const DIAG_FRU_LABEL_S *FRU_FindLabelByName(const char *pcName)
{
    for (u32 i = 0; i < g_uiDIAG_FruLabelMaxNum; ++i) {
        if (strcmp(g_astDIAG_FruLabel[i].pcLabelName, pcName) == 0) {
            return &g_astDIAG_FruLabel[i];
        }
    }
    return nullptr;
}

const DIAG_FRU_LABEL_S *FRU_FindLabelByID(u32 uiLabelID)
{
    for (u32 i = 0; i < g_uiDIAG_FruLabelMaxNum; ++i) {
        if (g_astDIAG_FruLabel[i].uiLabelID == uiLabelID) {
            return &g_astDIAG_FruLabel[i];
        }
    }
    return nullptr;
}

u32 FindLabelIDByName(const char *pcLableName)
{
    FRU_REQUIRE(pcLableName, FRU_ERR_NULL_POINTER);
    const DIAG_FRU_LABEL_S *pstLabel = FRU_FindLabelByName(pcLableName);
    return pstLabel == nullptr ? g_uiLabelNotFound : pstLabel->uiLabelID;
}

u32 FRU_GetPsuFieldIDByName(const char *pcLableName)
{
    FRU_REQUIRE(pcLableName, g_uiLabelNotFound);
    // The board label of the same name comes first: a match does not end the walk, a power-supply ID does.
    u32 uiFoundID = g_uiLabelNotFound;
    for (u32 i = 0; i < g_uiDIAG_FruLabelMaxNum; ++i) {
        if (strcmp(g_astDIAG_FruLabel[i].pcLabelName, pcLableName) == 0) {
            uiFoundID = g_astDIAG_FruLabel[i].uiLabelID;
        }
        if (uiFoundID != g_uiLabelNotFound && uiFoundID > g_uiLastOrdinaryID) {
            const u8 ucFieldID = static_cast<u8>(uiFoundID - g_uiFirstPsuID);
            FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_INFO, "FindLabelName Success!, FieldID:%d\n", ucFieldID);
            return ucFieldID;
        }
    }
    return g_uiLabelNotFound;
}

u32 ConfirmElectroniclabelField(DIAG_ELECTRONIC_FIELD_S *pstElectronicField)
{
    FRU_REQUIRE(pstElectronicField, FRU_ERR_NULL_POINTER);
    for (u32 i = 0; i < g_uiFieldRows; ++i) {
        const DIAG_ELECTRONIC_FIELD_S &stRow = g_astDIAG_ElectronicField[i];
        if (stRow.ucFieldFlag == pstElectronicField->ucFieldFlag) {
            (void)memcpy(pstElectronicField->aucStartID, stRow.aucStartID, sizeof(stRow.aucStartID));
            (void)memcpy(pstElectronicField->aucEndID, stRow.aucEndID, sizeof(stRow.aucEndID));
            return FRU_OK;
        }
    }
    FRU_LOG(FRU_CAT_GENERAL, BMC_DIAG_ERROR, "FieldFlag %d is not available!\n",
            pstElectronicField->ucFieldFlag);
    return FRU_ERR_FAILED;
}
