// SPDX-License-Identifier: Apache-2.0
// Where in a MultiRecord's data which value lies, and in what unit. Sources: IPMI Platform Management FRU
// Information Storage Definition, section 18 (types 0x00 to 0x0a); PICMG 3.0 and AMC.0 (OEM records of
// manufacturer 0x00315a); VITA 57.1 (OEM records of manufacturer 0x0012a2).
#ifndef TOOLKIT_IMAGE_RECORD_TABLES_H
#define TOOLKIT_IMAGE_RECORD_TABLES_H

#include <cstddef>
#include <vector>

#include "lib_fru_types.h"

enum class Form
{
    Unsigned,
    Signed, // of 16 bits
    Flag,   // yes or no
    Named,  // a code, and what it stands for
    Hex,    // a number that is no quantity
    Bits,   // the numbers of the bits that are set
    Port,   // a number, or none
    Guid,
    Text,
    Bytes,
    Reserved
};

enum class Unit
{
    None,
    Watts,
    VoltAmperes,
    Volts, // stored in fractions of it
    Millivolts,
    Amperes, // stored in fractions of it
    Milliamperes,
    WholeAmperes,
    Milliseconds,
    Seconds,
    Hertz,
    Megahertz,
    PerSecond
};

// Codes of a range with one name.
struct CODE_NAME_S
{
    u8 ucFirst;
    u8 ucLast;
    const char *pcName;
};
using CodeNames = std::vector<CODE_NAME_S>;

// A value: bits of a run of bytes, the least significant byte first.
struct WORD_ROW_S
{
    u8 ucOffset; // in its section
    u8 ucWidth;  // bytes; 0: all that follow
    u8 ucShift;
    u8 ucBits; // 0: all
    Form enForm;
    Unit enUnit;
    u16 usScale; // of one in the unit that programs are given
    const char *pcName;
    const char *pcKey;
    bool bMain = false;
    i32 iNone = -1;    // stands for "unspecified"
    u8 ucTenfold = 0U; // the bit of the section's first byte that makes the scale ten times that
    const CodeNames *pvecNames = nullptr; // of Named
};

enum class Repeat
{
    Once,
    Counted, // as often as the byte before says
    ToEnd,
    I2cDevices // addresses and a name each, told apart by their highest bit
};

// Rows that stand together, one time or several.
struct SECTION_S
{
    Repeat enRepeat;
    u8 ucSize; // bytes
    std::vector<WORD_ROW_S> vecRows;
    const char *pcName = nullptr;         // of one of several: "link"
    const char *pcKey = nullptr;          // of all of them: "links"
    std::vector<SECTION_S> vecInner = {}; // behind each
    bool bFrame = false;                  // says what record it is
};

constexpr i32 ANY = -1;
constexpr i32 PICMG = 0x00315A; // manufacturers
constexpr i32 VITA = 0x0012A2;
constexpr size_t OEM_SUB_TYPE = 3U; // where OEM records of both have theirs

struct RECORD_ROW_S
{
    u8 ucType;
    i32 iManufacturer;                  // of OEM records, in their first three bytes
    i32 iSubType;                       // in the byte after that, or of Management Access the first
    u8 ucSubShift;                      // of the sub-type in its byte
    const char *pcTitle;                // null: its type's name
    std::vector<SECTION_S> vecSections; // none: known by its name only
};

// Null: not known.
const RECORD_ROW_S *FindRecordRow(u8 ucType, const std::vector<u8> &vecData);

// The manufacturer of an OEM record, or ANY where it has none.
i32 ManufacturerOf(u8 ucType, const std::vector<u8> &vecData);

#endif
