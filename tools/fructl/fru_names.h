// Names that the FRU format gives to numbers, for people.
#ifndef FRUCTL_FRU_NAMES_H
#define FRUCTL_FRU_NAMES_H

#include <string>
#include <vector>

#include "lib_fru_types.h"

// "Management Access"; for unknown types "OEM" (0xC0 and above) or "unknown".
const char *MultiRecordTypeName(u8 ucType);

// Management Access sub-record types 1 to 7 ("System Name"), else null.
const char *ManagementAccessName(u8 ucSubType);
constexpr u8 MR_MANAGEMENT_ACCESS = 0x03U;
constexpr u8 MR_SUBTYPE_GUID = 0x07U;

// What a record's data says: a text, a GUID in its usual form, or hex for whatever is not known. Raw bytes of
// the device may be in it.
std::string MultiRecordText(u8 ucType, const u8 *pucData, u8 ucLength);

// 16 stored bytes as 33221100-5544-7766-8899-aabbccddeeff: the first three groups are stored least
// significant byte first.
std::string GuidText(const u8 *pucStored);

// "Rack Mount Chassis" for 0x17, as the library decodes it; empty when it knows no such type.
std::string ChassisTypeName(u8 ucType);

// All of them, in the order of their codes.
std::vector<std::string> ChassisTypeNames();

// "English" for 0 and 25, else "code N".
std::string LanguageName(u8 ucLanguage);

// The manufacturing date as the library formats it.
std::string MfgDateText(const u8 *pucMfgDate);

// IPMI completion codes.
const char *CompletionCodeName(u8 ucCode);

#endif
