// The library's decoded record, owned, and as rows to print.
#ifndef FRUCTL_RECORD_H
#define FRUCTL_RECORD_H

#include <string>
#include <vector>

#include "device.h"
#include "image_layout.h"
#include "lib_fru.h"

// A FRU_DATA_S that releases what it owns. Never copied, as the record says.
class RECORD
{
  public:
    RECORD() = default;
    ~RECORD()
    {
        FRU_ANALYZER_SafeFree(&m_stData);
    }
    RECORD(const RECORD &) = delete;
    RECORD &operator=(const RECORD &) = delete;
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
    AREA enArea;
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
u32 DecodeImage(const IMAGE_S &stImage, bool bFixedSlots, RECORD &stRecord);

// Decodes a target as the library's other callers see it: a device through the cache where that is trusted, a
// file's image as it is. Fails with what is wrong where.
void DecodeTarget(const TARGET_S &stTarget, RECORD &stRecord);

#endif
