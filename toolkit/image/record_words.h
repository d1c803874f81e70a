// SPDX-License-Identifier: Apache-2.0
// What a MultiRecord's data says, field by field, with units: one reader over the tables of record_tables.h,
// for people, for programs and for whoever points at a byte.
#ifndef TOOLKIT_IMAGE_RECORD_WORDS_H
#define TOOLKIT_IMAGE_RECORD_WORDS_H

#include <string>
#include <utility>
#include <vector>

#include "lib_fru_types.h"
#include "toolkit/base/json.h"
#include "toolkit/image/layout.h"

// A value. Several may lie in the same bytes.
struct RECORD_WORD_S
{
    u32 uiOffset; // in the record's data
    u32 uiLength;
    std::string strGroup; // of one of several alike ("link 2"); empty: none
    std::string strName;  // "nominal voltage"
    std::string strText;  // "12.00 V"; raw
    bool bFrame;          // says what record it is, as the record's title does, or nothing
    bool bMain;           // among what a line has room for
};

struct RECORD_WORDS_S
{
    std::vector<RECORD_WORD_S> vecWords; // by offset; empty: not decoded
    Json stFields;                       // the same for programs; null: not decoded
    std::string strWhyNot;               // why nothing, or not all, is decoded; empty: all is
    u32 uiMore = 0;                      // where what is not decoded begins
};

RECORD_WORDS_S ReadRecord(u8 ucType, const std::vector<u8> &vecData);

// "PICMG Module Current Requirements"; for what is not known, the name of its type.
std::string RecordTitle(u8 ucType, const std::vector<u8> &vecData);

// The values that say most, in a line; empty: nothing is decoded.
std::string RecordSummary(const RECORD_WORDS_S &stWords);

// Bytes of a record's data with one meaning, as a map shows them: values that share bytes are one part.
struct RECORD_PART_S
{
    u32 uiOffset; // in the image
    u32 uiLength;
    std::string strName;
    std::string strText; // raw
    bool bNamesInText;   // the text has the names, too
    // Of several values that share the bytes and are of no group: each with its name; else none.
    std::vector<std::pair<std::string, std::string>> vecValues;

    std::string Meaning() const; // for people
};

// The parts of the span of a record's data, whose header lies before it; none: it is of no record, or its
// record is not decoded.
std::vector<RECORD_PART_S> RecordParts(const SPAN_S &stSpan, const std::vector<u8> &vecImage);

#endif
