// SPDX-License-Identifier: Apache-2.0
// An image taken apart, so that a part can be changed and everything else put back byte for byte: encodings,
// fills, damaged records, bytes of no area.
#ifndef TOOLKIT_IMAGE_IMAGE_PARTS_H
#define TOOLKIT_IMAGE_IMAGE_PARTS_H

#include <string>
#include <vector>

#include "lib_fru_types.h"
#include "toolkit/image/fields.h"

// An area as it lies in an image. Bytes between areas belong to none of them, but to the internal use area,
// which has no length of its own and reaches to the next.
struct AREA_PARTS_S
{
    Area enArea;
    u32 uiStart; // where it was; 0: it is new
    u32 uiEnd;
    std::vector<u8> vecBytes; // what it shall hold
};

struct IMAGE_PARTS_S
{
    std::vector<u8> vecImage;           // as it was, all of it
    std::vector<AREA_PARTS_S> vecAreas; // as they stood, new ones behind them
    std::vector<AREA_PARTS_S> vecRemoved;

    AREA_PARTS_S *Find(Area enArea); // null: none
    void Remove(Area enArea);
};

// Fails with what is in the way: a header or an area whose extent cannot be trusted, areas that overlap.
IMAGE_PARTS_S TakeApart(const std::vector<u8> &vecImage);

// How much room an image has, and where it ends.
struct ROOM_S
{
    u32 uiBytes;
    bool bChip; // an area must end before a chip does; behind a file's end there are bytes
};

// What is left unchanged stays where it is, unless an area before it grows: then it moves by as little as
// possible, with bytes of no area that stand in front of it and are not empty. Empty are 0x00 and 0xff. A new
// area takes the first free room. Fails when there is not room enough, with numbers, and before it would write
// over bytes of no area.
std::vector<u8> PutTogether(const IMAGE_PARTS_S &stParts, const ROOM_S &stRoom);

// An area of fields, part by part.
struct INFO_PARTS_S
{
    std::vector<u8> vecPrefix;              // version, length and the fields of fixed size
    std::vector<std::vector<u8>> vecFields; // with their type/length bytes; the custom ones last
    std::vector<u8> vecFill;                // from behind the end mark up to the checksum
    size_t uiNamed;                         // fields that have a name
};

// Fails when the area's fields or its checksum are damaged.
INFO_PARTS_S TakeInfoApart(const AREA_PARTS_S &stArea);
// The area's bytes, as long as they were where that is long enough. The fill keeps its value, and what stands at
// its end and is no fill.
std::vector<u8> PutInfoTogether(const INFO_PARTS_S &stInfo, Area enArea);
// An area with empty fields.
INFO_PARTS_S EmptyInfo(Area enArea);

// A MultiRecord, header and data.
using RecordBytes = std::vector<u8>;

struct RECORD_PARTS_S
{
    std::vector<RecordBytes> vecRecords;
    std::vector<u8> vecRest; // what cannot be told apart; the end of the list is in it, if anywhere
    bool bEnds = true;       // the last record says that it is the last
};
RECORD_PARTS_S TakeRecordsApart(const std::vector<u8> &vecBytes);
// Where the list ends with the mark of the last record, it is set anew; else no record's mark is changed.
std::vector<u8> PutRecordsTogether(RECORD_PARTS_S stRecords);
// bLast: with the mark.
RecordBytes MakeRecord(u8 ucType, u8 ucFormat, const std::vector<u8> &vecData, bool bLast);

// A header that names no area: what a blank chip needs first.
std::vector<u8> EmptyImage(size_t uiBytes);

#endif
