// SPDX-License-Identifier: Apache-2.0
// MultiRecords: their types, what their data says, and GUIDs.
#ifndef TOOLKIT_IMAGE_MULTIRECORD_H
#define TOOLKIT_IMAGE_MULTIRECORD_H

#include <array>
#include <string>

#include "lib_fru.h"

// "Management Access"; for unknown types "OEM" (0xC0 and above) or "unknown".
const char *MultiRecordTypeName(u8 ucType);

// Neither one of the definition's types nor an OEM's.
bool IsReservedMultiRecord(u8 ucType);

// The only length that records of this type have (of Management Access: of the sub-type in its first byte), or
// 0: any.
u32 MultiRecordLength(u8 ucType, u8 ucFirst);

// Management Access sub-record types 1 to 7 ("System Name"), else null.
const char *ManagementAccessName(u8 ucSubType);

// What a record's data says: a text, a GUID in its usual form, or hex for whatever is not known. Raw bytes of
// the device may be in it.
std::string MultiRecordText(u8 ucType, const u8 *pucData, u8 ucLength);

// 16 stored bytes as 33221100-5544-7766-8899-aabbccddeeff: the first three groups are stored least
// significant byte first.
std::string GuidText(const u8 *pucStored);

// Computes both checksums of a record.
void SealMultiRecord(FRU_MULTIRECORD_S &stRecord);

using GuidBytes = std::array<u8, FRU_MR_GUID_LEN>;

// A GUID's usual text as FRU_innerUpdateMultiRecord() takes it: the whole of it least significant byte first,
// so that the record's first three groups come to lie least significant byte first and the rest in the text's
// order, which is how GuidText() and readers of the record read it. Fails as wrong usage for any other text.
GuidBytes ParseGuid(const std::string &strText);

// 0, or what the library's MultiRecord calls mean by their result.
std::string MultiRecordStatus(u32 uiStatus);

#endif
