#include "toolkit/image/record.h"

#include "toolkit/image/multirecord.h"
#include "toolkit/image/names.h"

namespace {

std::string Text(const void *pText)
{
    return pText != nullptr ? static_cast<const char *>(pText) : "";
}

std::vector<std::string> CustomFields(u8 **ppucFields, u8 ucCount)
{
    std::vector<std::string> vecFields;
    for (u32 i = 0; ppucFields != nullptr && i < ucCount; i++) {
        vecFields.push_back(Text(ppucFields[i]));
    }
    return vecFields;
}

FIELD_VIEW_S Language(u8 ucLanguage)
{
    return {"language", "language", LanguageName(ucLanguage), "languageCode", ucLanguage};
}

u32 Minutes(const u8 *pucMfgDate)
{
    return pucMfgDate[0] | static_cast<u32>(pucMfgDate[1]) << 8U | static_cast<u32>(pucMfgDate[2]) << 16U;
}

AREA_VIEW_S ViewChassis(const FRU_CHASSIS_INFO_S &stInfo)
{
    return {Area::Chassis,
            {{"type", "chassis type", Text(stInfo.pucChassisType)},
             {"partNumber", "part number", Text(stInfo.pucChassisPartNum)},
             {"serialNumber", "serial number", Text(stInfo.pucChassisSerialNum)}},
            CustomFields(stInfo.ppucCustomFields, stInfo.ucCustomFieldCount)};
}

AREA_VIEW_S ViewBoard(const FRU_BOARD_INFO_S &stInfo)
{
    return {Area::Board,
            {Language(stInfo.ucLanguage),
             {"mfgDate", "manufacturing date", MfgDateText(stInfo.aucMfgDateTime), "mfgDateMinutes",
              Minutes(stInfo.aucMfgDateTime)},
             {"manufacturer", "manufacturer", Text(stInfo.pucBoardMfr)},
             {"productName", "product name", Text(stInfo.pucBoardProductName)},
             {"serialNumber", "serial number", Text(stInfo.pucBoardSerialNum)},
             {"partNumber", "part number", Text(stInfo.pucBoardPartNum)},
             {"fruFileId", "FRU file ID", Text(stInfo.pucFRUFileID)}},
            CustomFields(stInfo.ppucCustomFields, stInfo.ucCustomFieldCount)};
}

AREA_VIEW_S ViewProduct(const FRU_PRODUCT_INFO_S &stInfo)
{
    return {Area::Product,
            {Language(stInfo.ucLanguage),
             {"manufacturer", "manufacturer", Text(stInfo.pucMfrName)},
             {"productName", "product name", Text(stInfo.pucProductName)},
             {"partNumber", "part number", Text(stInfo.pucProductPartNum)},
             {"version", "version", Text(stInfo.pucProductVersion)},
             {"serialNumber", "serial number", Text(stInfo.pucProductSerialNum)},
             {"assetTag", "asset tag", Text(stInfo.pucAssetTag)},
             {"fruFileId", "FRU file ID", Text(stInfo.pucFRUFileID)}},
            CustomFields(stInfo.ppucCustomFields, stInfo.ucCustomFieldCount)};
}

MULTIRECORD_VIEW_S ViewMultiRecord(const FRU_MULTIRECORD_S &stRecord)
{
    const u8 *pucData = stRecord.pucRecordData;
    MULTIRECORD_VIEW_S stView = {stRecord.ucRecordTypeID,
                                 static_cast<u8>(stRecord.ucRecordFormat & 0x0FU),
                                 {pucData, pucData + stRecord.ucRecordLength},
                                 MultiRecordTypeName(stRecord.ucRecordTypeID),
                                 MultiRecordText(stRecord.ucRecordTypeID, pucData, stRecord.ucRecordLength)};
    const bool bAccess = stView.ucType == MR_MANAGEMENT_ACCESS && !stView.vecData.empty();
    if (bAccess && ManagementAccessName(pucData[0]) != nullptr) {
        stView.strName += std::string(", ") + ManagementAccessName(pucData[0]);
    }
    return stView;
}

} // namespace

RECORD_VIEW_S ViewRecord(const FRU_DATA_S &stData)
{
    RECORD_VIEW_S stView = {{}, {}, stData.stCommonHeader.ucMultiRecordAreaStartOffset != 0U};
    if (stData.stCommonHeader.ucInternalUseAreaStartOffset != 0U) {
        stView.vecAreas.push_back(
            {Area::InternalUse, {{"data", "data", Text(stData.stInternalUseArea.pucData)}}, {}});
    }
    if (stData.stCommonHeader.ucChassisInfoAreaStartOffset != 0U) {
        stView.vecAreas.push_back(ViewChassis(stData.stChassisInfo));
    }
    if (stData.stCommonHeader.ucBoardInfoAreaStartOffset != 0U) {
        stView.vecAreas.push_back(ViewBoard(stData.stBoardInfo));
    }
    if (stData.stCommonHeader.ucProductInfoAreaStartOffset != 0U) {
        stView.vecAreas.push_back(ViewProduct(stData.stProductInfo));
    }
    for (u32 i = 0; i < FRU_MULTIRECORD_MAX && stData.astMultiRecord[i].pucRecordData != nullptr; i++) {
        stView.vecMultiRecords.push_back(ViewMultiRecord(stData.astMultiRecord[i]));
    }
    return stView;
}

u32 DecodeImage(const IMAGE_S &stImage, bool bFixedSlots, Record &stRecord)
{
    if (bFixedSlots) {
        stRecord.Data()->stChassisInfo.ucCustomFieldCount = FRU_CHASSIS_FIXED_SLOTS;
        stRecord.Data()->stProductInfo.ucCustomFieldCount = FRU_PRODUCT_FIXED_SLOTS;
    }
    return FRU_ANALYZER_InterpretFRUData(stImage.vecBytes.data(), static_cast<u32>(stImage.vecBytes.size()),
                                         stRecord.Data());
}
