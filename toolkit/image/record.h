// The library's decoded record, owned, and as rows to print.
#ifndef TOOLKIT_IMAGE_RECORD_H
#define TOOLKIT_IMAGE_RECORD_H

#include <string>
#include <vector>

#include "lib_fru.h"
#include "toolkit/image/image.h"
#include "toolkit/image/layout.h"

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

  private:
    FRU_DATA_S m_stData = {};
};

// Field names are those of the image layout, so that the one finds the other.
struct FIELD_VIEW_S
{
    std::string strKey;  // for programs: "partNumber"
    std::string strName; // for people: "part number"
    std::string strText; // raw
    // Of a text that stands for a number, the number: nothing is lost by the one or the other.
    std::string strNumberKey = {}; // empty: none
    u32 uiNumber = 0;
};

struct AREA_VIEW_S
{
    Area enArea;
    std::vector<FIELD_VIEW_S> vecFields;
    std::vector<std::string> vecCustomFields; // raw
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
};

RECORD_VIEW_S ViewRecord(const FRU_DATA_S &stData);

// Decodes an image's bytes, with the custom-field counts preset for a baseboard's. A status code
// of the library.
u32 DecodeImage(const IMAGE_S &stImage, bool bFixedSlots, Record &stRecord);

#endif
