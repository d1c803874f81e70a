// The setters behind the catalogue: each stores one new value in one member of a decoded record. No checks of
// the value and no I/O.
#include <cstdlib>
#include <cstring>

#include "catalogue.h"
#include "lib_fru_dates.h"
#include "lib_fru_labels.h"
#include "lib_fru_write_module.h"

namespace {

// Where an area keeps its custom fields, and what is said when a slot is not there.
struct CUSTOM_AREA_S
{
    size_t uiFields;
    size_t uiCount;
    const char *pcNullFormat;
    const char *pcCountFormat;
};

#define FRU_CUSTOM_AREA(Area)                                                                                \
    {                                                                                                        \
        offsetof(FRU_DATA_S, st##Area##Info.ppucCustomFields),                                               \
            offsetof(FRU_DATA_S, st##Area##Info.ucCustomFieldCount),                                         \
            FRU_NULL_FORMAT("pstFRUData->st" #Area "Info.ppucCustomFields"),                                 \
            "Total_" #Area "_CustomField count is %#x\n"                                                     \
    }
constexpr CUSTOM_AREA_S g_stChassis = FRU_CUSTOM_AREA(Chassis);
constexpr CUSTOM_AREA_S g_stBoard = FRU_CUSTOM_AREA(Board);
constexpr CUSTOM_AREA_S g_stProduct = FRU_CUSTOM_AREA(Product);

u8 *MemberAt(FRU_DATA_S *pstFRUData, size_t uiOffset)
{
    return reinterpret_cast<u8 *>(pstFRUData) + uiOffset;
}

bool HasArguments(const u8 *pucLabelValue, const FRU_DATA_S *pstFRUData, const char *pcFunction)
{
    if (pucLabelValue == nullptr) {
        FRU_LOG_NULL_IN("pucLabelValue", pcFunction);
        return false;
    }
    if (pstFRUData == nullptr) {
        FRU_LOG_NULL_IN("pstFRUData", pcFunction);
        return false;
    }
    return true;
}

// A buffer that is stored again where it is must outlive that.
void ReplaceText(u8 *pucOld, const u8 *pucNew)
{
    if (pucOld != pucNew) {
        free(pucOld);
    }
}

// The size byte ahead of the text stays as it is: the encoder measures the text.
u32 SetText(u8 *pucLabelValue, FRU_DATA_S *pstFRUData, size_t uiMember, const char *pcFunction)
{
    if (!HasArguments(pucLabelValue, pstFRUData, pcFunction)) {
        return FRU_ERR_NULL_POINTER;
    }
    u8 *pucOld = nullptr;
    (void)memcpy(&pucOld, MemberAt(pstFRUData, uiMember), sizeof(pucOld));
    ReplaceText(pucOld, pucLabelValue);
    (void)memcpy(MemberAt(pstFRUData, uiMember), &pucLabelValue, sizeof(pucLabelValue));
    return FRU_OK;
}

// An array of custom fields never grows: only a slot that is there can be replaced.
u32 SetCustomField(u8 *pucLabelValue, FRU_DATA_S *pstFRUData, const CUSTOM_AREA_S &stArea, u32 uiSlot,
                   const char *pcFunction)
{
    if (!HasArguments(pucLabelValue, pstFRUData, pcFunction)) {
        return FRU_ERR_NULL_POINTER;
    }
    u8 **ppucFields = nullptr;
    (void)memcpy(&ppucFields, MemberAt(pstFRUData, stArea.uiFields), sizeof(ppucFields));
    if (ppucFields == nullptr) {
        FRU_ReportNull(stArea.pcNullFormat, FRU_DIAG_FILE, pcFunction, __LINE__);
        return FRU_ERR_NULL_POINTER;
    }
    const u8 ucCount = *MemberAt(pstFRUData, stArea.uiCount);
    if (ucCount <= uiSlot) {
        FRU_LOG_TABLE(FRU_CAT_GENERAL, BMC_DIAG_WARNING, stArea.pcCountFormat, ucCount);
        return FRU_ERR_FAILED;
    }
    ReplaceText(ppucFields[uiSlot], pucLabelValue);
    ppucFields[uiSlot] = pucLabelValue;
    return FRU_OK;
}

u32 SetLanguage(const u8 *pucLabelValue, FRU_DATA_S *pstFRUData, size_t uiMember, const char *pcFunction)
{
    if (!HasArguments(pucLabelValue, pstFRUData, pcFunction)) {
        return FRU_ERR_NULL_POINTER;
    }
    const long lLanguage = strtol(reinterpret_cast<const char *>(pucLabelValue), nullptr, 10);
    *MemberAt(pstFRUData, uiMember) = static_cast<u8>(lLanguage);
    return FRU_OK;
}

} // namespace

// Every setter but the date's is one row here: its name, and what it writes.
#define FRU_SETTERS(TEXT, CUSTOM, LANGUAGE)                                                                  \
    TEXT(setChassisType, stChassisInfo.pucChassisType)                                                       \
    TEXT(setChassisPartNum, stChassisInfo.pucChassisPartNum)                                                 \
    TEXT(setChassisSerialNum, stChassisInfo.pucChassisSerialNum)                                             \
    CUSTOM(setChassisCustomerSerialNum, g_stChassis, 0U)                                                     \
    CUSTOM(setChassisMACAddress, g_stChassis, 1U)                                                            \
    CUSTOM(setChassisMACAddressCount, g_stChassis, 2U)                                                       \
    CUSTOM(setChassisClEICode, g_stChassis, 3U)                                                              \
    CUSTOM(setChassisLocationNodeID, g_stChassis, 4U)                                                        \
    LANGUAGE(setBoardLanuageCode, stBoardInfo.ucLanguage)                                                    \
    TEXT(setBoardManufacturer, stBoardInfo.pucBoardMfr)                                                      \
    TEXT(setBoardProductName, stBoardInfo.pucBoardProductName)                                               \
    TEXT(setBoardSerialNumber, stBoardInfo.pucBoardSerialNum)                                                \
    TEXT(setBoardPartNumber, stBoardInfo.pucBoardPartNum)                                                    \
    TEXT(setBoardFRUFileID, stBoardInfo.pucFRUFileID)                                                        \
    CUSTOM(setBoardTopSerialNumber, g_stBoard, 0U)                                                           \
    LANGUAGE(setProductLanguageCode, stProductInfo.ucLanguage)                                               \
    TEXT(setProductManufacturer, stProductInfo.pucMfrName)                                                   \
    TEXT(setProductProductName, stProductInfo.pucProductName)                                                \
    TEXT(setProductSerialNumber, stProductInfo.pucProductSerialNum)                                          \
    TEXT(setProductPartNumber, stProductInfo.pucProductPartNum)                                              \
    TEXT(setProductVersion, stProductInfo.pucProductVersion)                                                 \
    TEXT(setProductAssetTag, stProductInfo.pucAssetTag)                                                      \
    TEXT(setProductFRUFileID, stProductInfo.pucFRUFileID)                                                    \
    CUSTOM(setProductNodeType, g_stProduct, 0U)                                                              \
    CUSTOM(setProductNodePSU, g_stProduct, 1U)                                                               \
    CUSTOM(setProductNodeNetwork, g_stProduct, 2U)                                                           \
    CUSTOM(setProductNodePower, g_stProduct, 3U)

#define FRU_TEXT_SETTER(fnName, Member)                                                                      \
    u32 fnName(u8 *pucLabelValue, FRU_DATA_S *pstFRUData)                                                    \
    {                                                                                                        \
        return SetText(pucLabelValue, pstFRUData, offsetof(FRU_DATA_S, Member), #fnName);                    \
    }
#define FRU_CUSTOM_SETTER(fnName, stArea, uiSlot)                                                            \
    u32 fnName(u8 *pucLabelValue, FRU_DATA_S *pstFRUData)                                                    \
    {                                                                                                        \
        return SetCustomField(pucLabelValue, pstFRUData, stArea, uiSlot, #fnName);                           \
    }
#define FRU_LANGUAGE_SETTER(fnName, Member)                                                                  \
    u32 fnName(u8 *pucLabelValue, FRU_DATA_S *pstFRUData)                                                    \
    {                                                                                                        \
        return SetLanguage(pucLabelValue, pstFRUData, offsetof(FRU_DATA_S, Member), #fnName);                \
    }

FRU_SETTERS(FRU_TEXT_SETTER, FRU_CUSTOM_SETTER, FRU_LANGUAGE_SETTER)

u32 setBoardMfgDate(u8 *pucLabelValue, FRU_DATA_S *pstFRUData)
{
    if (!HasArguments(pucLabelValue, pstFRUData, __func__)) {
        return FRU_ERR_NULL_POINTER;
    }
    return LIB_FRU_CaclMfgDateTime(reinterpret_cast<const char *>(pucLabelValue), pstFRUData);
}

bool FRU_SetterKeepsNothing(u32 (*pfnSetLabel)(u8 *pucLabelValue, FRU_DATA_S *pstFRUData))
{
    return pfnSetLabel == setBoardLanuageCode || pfnSetLabel == setProductLanguageCode ||
           pfnSetLabel == setBoardMfgDate;
}
