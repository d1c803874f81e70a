// SPDX-License-Identifier: Apache-2.0
// The library's decoded record, owned, and as rows to print.
#ifndef TOOLKIT_IMAGE_RECORD_H
#define TOOLKIT_IMAGE_RECORD_H

#include <optional>
#include <string>
#include <vector>

#include "lib_fru.h"
#include "toolkit/image/fields.h"
#include "toolkit/image/image.h"

// A FRU_DATA_S that releases what it owns. Never copied, as the record says.
class Record
{
  public:
    Record() = default;
    ~Record()
    {
        FRU_ANALYZER_SafeFree(&m_stData);
    }
    Record(const Record &) = delete;
    Record &operator=(const Record &) = delete;
    FRU_DATA_S *Data()
    {
        return &m_stData;
    }
    const FRU_DATA_S *Data() const
    {
        return &m_stData;
    }

    // The member at an offset of the table of fields.
    u8 *At(size_t uiOffset);
    // Stores a pointer there, which the record owns from now on: a heap buffer.
    void Store(size_t uiOffset, const void *pBuffer);
    // Marks an area as there, in the one version that there is.
    void AddArea(const AREA_ROW_S &stRow);

  private:
    FRU_DATA_S m_stData = {};
};

// Buffers as a record owns them: zeroed, and a text in one of uiSize bytes.
void *HeapBuffer(size_t uiCount, size_t uiSize);
u8 *HeapText(const std::string &strText, size_t uiSize);

struct FIELD_VIEW_S
{
    Field enField;
    std::string strText; // raw
    // Of a text that stands for a number, the number: nothing is lost by the one or the other.
    std::optional<u32> optNumber = {};
};

struct AREA_VIEW_S
{
    Area enArea;
    std::vector<FIELD_VIEW_S> vecFields;
    std::vector<std::string> vecCustomFields; // raw

    const FIELD_VIEW_S *Find(Field enField) const; // null: none
};

struct MULTIRECORD_VIEW_S
{
    u8 ucType;
    u8 ucFormatVersion;
    std::vector<u8> vecData;
    std::string strName; // "Management Access, System Name" or "OEM"
    std::string strText; // raw
};

struct RECORD_VIEW_S
{
    std::vector<AREA_VIEW_S> vecAreas;
    std::vector<MULTIRECORD_VIEW_S> vecMultiRecords;
    bool bMultiRecordArea; // the image has one; without records in the view, it is damaged

    const AREA_VIEW_S *Find(Area enArea) const; // null: none
    bool IsMultiRecordAreaDamaged() const
    {
        return bMultiRecordArea && vecMultiRecords.empty();
    }
};

// Whether two records say the same, field by field and MultiRecord by MultiRecord.
bool operator==(const RECORD_VIEW_S &stLeft, const RECORD_VIEW_S &stRight);
bool operator!=(const RECORD_VIEW_S &stLeft, const RECORD_VIEW_S &stRight);

// Whether the record has an area; and marks that it has one, for the encoder to lay out.
bool HasArea(const FRU_DATA_S &stData, Area enArea);
void MarkArea(FRU_DATA_S &stData, Area enArea);

// One text of a record, whether its area is marked or not; nothing when there is none.
std::optional<std::string> RecordText(const FRU_DATA_S &stData, const FIELD_ID_S &stField);

RECORD_VIEW_S ViewRecord(const FRU_DATA_S &stData);
// An area's texts one behind the other, a zero byte behind each; a number behind the text that stands for it, and the
// number of custom fields in front of those. A date that is not specified is an empty text.
void AppendTexts(const FRU_DATA_S &stData, const AREA_ROW_S &stArea, std::string &strOut);

// Decodes an image's bytes, with the custom-field counts preset for a baseboard's. A status code
// of the library.
u32 DecodeImage(const IMAGE_S &stImage, bool bFixedSlots, Record &stRecord);

#endif
