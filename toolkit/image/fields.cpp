// SPDX-License-Identifier: Apache-2.0
#include "toolkit/image/fields.h"

#include <algorithm>
#include <tuple>

#include "lib_fru.h"
#include "toolkit/base/text.h"

#define AT(Member) offsetof(FRU_DATA_S, Member)

const std::vector<AREA_ROW_S> &AreaRows()
{
    static const std::vector<AREA_ROW_S> vecRows = {
        {Area::InternalUse,
         AT(stInternalUseArea.ucFormatVersion),
         {{Field::Data, Kind::Text, AT(stInternalUseArea.pucData), 0U}},
         {}},
        {Area::Chassis,
         AT(stChassisInfo.ucFormatVersion),
         {{Field::ChassisType, Kind::ChassisType, AT(stChassisInfo.pucChassisType), FRU_LABEL_CHASSIS_TYPE},
          {Field::PartNumber, Kind::Text, AT(stChassisInfo.pucChassisPartNum), FRU_LABEL_CHASSIS_PART_NUMBER},
          {Field::SerialNumber, Kind::Text, AT(stChassisInfo.pucChassisSerialNum),
           FRU_LABEL_CHASSIS_SERIAL_NUMBER}},
         {AT(stChassisInfo.ppucCustomFields), AT(stChassisInfo.ucCustomFieldCount), FRU_CHASSIS_FIXED_SLOTS,
          FRU_LABEL_CHASSIS_CUSTOMER_SERIAL_NUMBER, FRU_CHASSIS_FIXED_SLOTS}},
        {Area::Board,
         AT(stBoardInfo.ucFormatVersion),
         {{Field::Language, Kind::Language, AT(stBoardInfo.ucLanguage), FRU_LABEL_BOARD_LANGUAGE},
          {Field::MfgDate, Kind::MfgDate, AT(stBoardInfo.aucMfgDateTime), FRU_LABEL_BOARD_MFG_DATE},
          {Field::Manufacturer, Kind::Text, AT(stBoardInfo.pucBoardMfr), FRU_LABEL_BOARD_MANUFACTURER},
          {Field::ProductName, Kind::Text, AT(stBoardInfo.pucBoardProductName), FRU_LABEL_BOARD_PRODUCT_NAME},
          {Field::SerialNumber, Kind::Text, AT(stBoardInfo.pucBoardSerialNum), FRU_LABEL_BOARD_SERIAL_NUMBER},
          {Field::PartNumber, Kind::Text, AT(stBoardInfo.pucBoardPartNum), FRU_LABEL_BOARD_PART_NUMBER},
          {Field::FruFileID, Kind::Text, AT(stBoardInfo.pucFRUFileID), FRU_LABEL_BOARD_FRU_FILE_ID}},
         {AT(stBoardInfo.ppucCustomFields), AT(stBoardInfo.ucCustomFieldCount), 0U,
          FRU_LABEL_BOARD_TOP_SERIAL_NUMBER, 1U}},
        {Area::Product,
         AT(stProductInfo.ucFormatVersion),
         {{Field::Language, Kind::Language, AT(stProductInfo.ucLanguage), FRU_LABEL_PRODUCT_LANGUAGE},
          {Field::Manufacturer, Kind::Text, AT(stProductInfo.pucMfrName), FRU_LABEL_PRODUCT_MANUFACTURER},
          {Field::ProductName, Kind::Text, AT(stProductInfo.pucProductName), FRU_LABEL_PRODUCT_PRODUCT_NAME},
          {Field::PartNumber, Kind::Text, AT(stProductInfo.pucProductPartNum), FRU_LABEL_PRODUCT_PART_NUMBER},
          {Field::Version, Kind::Text, AT(stProductInfo.pucProductVersion), FRU_LABEL_PRODUCT_VERSION},
          {Field::SerialNumber, Kind::Text, AT(stProductInfo.pucProductSerialNum),
           FRU_LABEL_PRODUCT_SERIAL_NUMBER},
          {Field::AssetTag, Kind::Text, AT(stProductInfo.pucAssetTag), FRU_LABEL_PRODUCT_ASSET_TAG},
          {Field::FruFileID, Kind::Text, AT(stProductInfo.pucFRUFileID), FRU_LABEL_PRODUCT_FRU_FILE_ID}},
         {AT(stProductInfo.ppucCustomFields), AT(stProductInfo.ucCustomFieldCount), FRU_PRODUCT_FIXED_SLOTS,
          FRU_LABEL_PRODUCT_NODE_TYPE, FRU_PRODUCT_FIXED_SLOTS}},
    };
    return vecRows;
}

#undef AT

namespace {

struct FIELD_WORDS_S
{
    Field enField;
    const char *pcName;
    const char *pcKey;       // null: no program is told of it by name
    const char *pcNumberKey; // null: its text stands for no number
};

constexpr FIELD_WORDS_S FIELD_WORDS[] = {
    {Field::CommonHeader, "common header", nullptr, nullptr},
    {Field::FormatVersion, "format version", nullptr, nullptr},
    {Field::AreaOffset, "offset", nullptr, nullptr},
    {Field::Pad, "pad", nullptr, nullptr},
    {Field::AreaLength, "area length", nullptr, nullptr},
    {Field::EndMark, "end mark", nullptr, nullptr},
    {Field::Fill, "fill", nullptr, nullptr},
    {Field::Checksum, "checksum", nullptr, nullptr},
    {Field::Data, "data", "data", nullptr},
    {Field::MoreData, "more, not decoded", nullptr, nullptr},
    {Field::OpaqueData, "opaque data", nullptr, nullptr},
    {Field::ChassisType, "chassis type", "type", nullptr},
    {Field::Language, "language", "language", "languageCode"},
    {Field::MfgDate, "manufacturing date", "mfgDate", "mfgDateMinutes"},
    {Field::Manufacturer, "manufacturer", "manufacturer", nullptr},
    {Field::ProductName, "product name", "productName", nullptr},
    {Field::PartNumber, "part number", "partNumber", nullptr},
    {Field::SerialNumber, "serial number", "serialNumber", nullptr},
    {Field::Version, "version", "version", nullptr},
    {Field::AssetTag, "asset tag", "assetTag", nullptr},
    {Field::FruFileID, "FRU file ID", "fruFileId", nullptr},
    {Field::Custom, "custom field", "customFields", nullptr},
    {Field::Records, "records", nullptr, nullptr},
    {Field::OneRecord, "record", nullptr, nullptr},
    {Field::RecordHeader, "header", nullptr, nullptr},
    {Field::RecordData, "data", nullptr, nullptr},
    {Field::BoardCrc8, "board CRC-8", nullptr, nullptr},
    {Field::BoardType, "board type", nullptr, nullptr},
    {Field::PcbVersion, "PCB version", nullptr, nullptr},
    {Field::EepromVersion, "EEPROM version", nullptr, nullptr},
    {Field::CpldVersion, "CPLD version", nullptr, nullptr},
    {Field::DiagCrc8, "diagnostic CRC-8", nullptr, nullptr},
    {Field::OemFlag, "OEM flag", nullptr, nullptr},
    {Field::Reserved, "reserved", nullptr, nullptr},
    {Field::Unused, "unused", nullptr, nullptr},
};
static_assert(std::size(FIELD_WORDS) == static_cast<size_t>(Field::Unused) + 1U);

const FIELD_WORDS_S &WordsOf(Field enField)
{
    return FIELD_WORDS[static_cast<size_t>(enField)];
}

struct AREA_WORDS_S
{
    Area enArea;
    const char *pcName;
    const char *pcKey;
};

constexpr AREA_WORDS_S AREA_WORDS[] = {
    {Area::Header, "common header", "header"},
    {Area::InternalUse, "internal use area", "internalUse"},
    {Area::Chassis, "chassis info area", "chassis"},
    {Area::Board, "board info area", "board"},
    {Area::Product, "product info area", "product"},
    {Area::MultiRecord, "MultiRecord area", "multiRecord"},
    {Area::Unused, "unused", "unused"},
    {Area::Hardware, "hardware block", "hardware"},
};
static_assert(std::size(AREA_WORDS) == static_cast<size_t>(Area::Hardware) + 1U);

// A row that stands in another's place would name fields wrongly without a word.
constexpr bool InOrder()
{
    for (size_t i = 0; i < std::size(FIELD_WORDS); i++) {
        if (static_cast<size_t>(FIELD_WORDS[i].enField) != i) {
            return false;
        }
    }
    for (size_t i = 0; i < std::size(AREA_WORDS); i++) {
        if (static_cast<size_t>(AREA_WORDS[i].enArea) != i) {
            return false;
        }
    }
    return true;
}
static_assert(InOrder());

auto Ordered(const FIELD_ID_S &stField)
{
    return std::tie(stField.enArea, stField.enField, stField.uiIndex);
}

} // namespace

bool operator==(const FIELD_ID_S &stLeft, const FIELD_ID_S &stRight)
{
    return Ordered(stLeft) == Ordered(stRight);
}

bool operator<(const FIELD_ID_S &stLeft, const FIELD_ID_S &stRight)
{
    return Ordered(stLeft) < Ordered(stRight);
}

const AREA_ROW_S *FindAreaRow(Area enArea)
{
    const std::vector<AREA_ROW_S> &vecRows = AreaRows();
    const auto itRow = std::find_if(vecRows.begin(), vecRows.end(),
                                    [enArea](const AREA_ROW_S &stRow) { return stRow.enArea == enArea; });
    return itRow == vecRows.end() ? nullptr : &*itRow;
}

const std::vector<Area> &HeaderAreas()
{
    static const std::vector<Area> vecAreas = {Area::InternalUse, Area::Chassis, Area::Board, Area::Product,
                                               Area::MultiRecord};
    return vecAreas;
}

u32 HeaderOffsetByte(Area enArea)
{
    const std::vector<Area> &vecAreas = HeaderAreas();
    const auto itArea = std::find(vecAreas.begin(), vecAreas.end(), enArea);
    return HEADER_OFFSET_FIRST + static_cast<u32>(itArea - vecAreas.begin());
}

bool IsFrame(Field enField)
{
    return enField <= Field::Checksum;
}

const char *AreaName(Area enArea)
{
    return AREA_WORDS[static_cast<size_t>(enArea)].pcName;
}

const char *AreaKey(Area enArea)
{
    return AREA_WORDS[static_cast<size_t>(enArea)].pcKey;
}

std::string FieldName(const FIELD_ID_S &stField)
{
    const char *pcName = WordsOf(stField.enField).pcName;
    switch (stField.enField) {
    case Field::AreaOffset:
        return std::string(AreaName(static_cast<Area>(stField.uiIndex))) + " " + pcName;
    case Field::Custom:
    case Field::OneRecord:
        return Format("%s %u", pcName, stField.uiIndex + 1U);
    case Field::RecordHeader:
    case Field::RecordData:
        return Format("%s %u %s", WordsOf(Field::OneRecord).pcName, stField.uiIndex + 1U, pcName);
    default:
        return pcName;
    }
}

const char *FieldKey(Field enField)
{
    return WordsOf(enField).pcKey;
}

const char *NumberKey(Field enField)
{
    return WordsOf(enField).pcNumberKey;
}

std::string FieldPath(const FIELD_ID_S &stField)
{
    const std::string strArea = AreaKey(stField.enArea);
    if (stField.enField == Field::Custom) {
        return strArea + Format(".custom[%u]", stField.uiIndex);
    }
    if (stField.enArea == Area::MultiRecord) {
        return strArea + Format("[%u]", stField.uiIndex);
    }
    const char *pcKey = FieldKey(stField.enField);
    return pcKey == nullptr ? strArea : strArea + "." + pcKey;
}
