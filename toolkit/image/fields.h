// SPDX-License-Identifier: Apache-2.0
// What a FRU image consists of: its areas, their fields, and where a decoded record keeps them. One table,
// walked by whoever reads, shows, builds or names fields.
#ifndef TOOLKIT_IMAGE_FIELDS_H
#define TOOLKIT_IMAGE_FIELDS_H

#include <string>
#include <vector>

#include "lib_fru_types.h"

enum class Area
{
    Header,
    InternalUse,
    Chassis,
    Board,
    Product,
    MultiRecord,
    Unused,
    Hardware // a hardware block in place of a FRU image
};

enum class Field
{
    // What holds an area together.
    CommonHeader,
    FormatVersion,
    AreaOffset, // of the area that its index names
    Pad,
    AreaLength,
    EndMark,
    Fill,
    Checksum,
    // What an area says.
    Data,
    MoreData,   // in no field
    OpaqueData, // not as this system writes it
    ChassisType,
    Language,
    MfgDate,
    Manufacturer,
    ProductName,
    PartNumber,
    SerialNumber,
    Version,
    AssetTag,
    FruFileID,
    Custom,
    // MultiRecords, as a whole and one by one.
    Records,
    OneRecord,
    RecordHeader,
    RecordData,
    // The hardware block.
    BoardCrc8,
    BoardType,
    PcbVersion,
    EepromVersion,
    CpldVersion,
    DiagCrc8,
    OemFlag,
    Reserved,
    // Bytes of no area.
    Unused
};

// A field of an image.
struct FIELD_ID_S
{
    Area enArea;
    Field enField;
    u32 uiIndex = 0; // of several alike (custom fields, records), from 0; of an AreaOffset its area
};
bool operator==(const FIELD_ID_S &stLeft, const FIELD_ID_S &stRight);
bool operator<(const FIELD_ID_S &stLeft, const FIELD_ID_S &stRight);

// How a record keeps a field.
enum class Kind
{
    Text,
    ChassisType, // a text too, but one of a list, and a code in the image
    Language,    // a code
    MfgDate      // minutes
};

struct FIELD_ROW_S
{
    Field enField;
    Kind enKind;
    size_t uiOffset; // in FRU_DATA_S
    u32 uiLabel;     // the label that names it; 0: none
};

// Custom fields: a list at the end of an area. The labels of its slots follow each other.
struct CUSTOM_ROW_S
{
    size_t uiOffset; // of the array in FRU_DATA_S
    size_t uiCount;  // of the count
    u32 uiFixed;     // how many a baseboard is read with; 0: as many as there are
    u32 uiFirstLabel;
    u32 uiLabels;
};

// An area of fields.
struct AREA_ROW_S
{
    Area enArea;
    size_t uiVersion; // of its format version in FRU_DATA_S
    std::vector<FIELD_ROW_S> vecFields;
    CUSTOM_ROW_S stCustom;

    bool HasCustomFields() const
    {
        return stCustom.uiCount != 0U;
    }
};

// Internal use, chassis, board and product, in the order of an image.
const std::vector<AREA_ROW_S> &AreaRows();

// Null for an area that is none of fields.
const AREA_ROW_S *FindAreaRow(Area enArea);

// Where the common header says where an area begins: bytes FIRST to LAST, one for each of these areas.
constexpr u32 HEADER_OFFSET_FIRST = 1U;
const std::vector<Area> &HeaderAreas();
u32 HeaderOffsetByte(Area enArea);

// True for what holds an area together and says nothing of the device.
bool IsFrame(Field enField);

// Names for people: "chassis info area", "custom field 3".
const char *AreaName(Area enArea);
std::string FieldName(const FIELD_ID_S &stField);

// Names for programs: "chassis", "partNumber".
const char *AreaKey(Area enArea);
const char *FieldKey(Field enField);
// "product.custom[2]", as 'edit' takes it: of a field of an area, a MultiRecord, or the internal use area.
std::string FieldPath(const FIELD_ID_S &stField);
// Of a field whose text stands for a number, the number's own ("languageCode"); else null.
const char *NumberKey(Field enField);

#endif
