// SPDX-License-Identifier: Apache-2.0
// What a decoded record has and where: the one table of its fields, walked by decoder, encoder, release,
// label setters, the empty product area and the assembly; and the chassis types. For the rooms above, too;
// messages are each room's own.
#ifndef LIB_FRU_ANALYZER_FIELDS_H
#define LIB_FRU_ANALYZER_FIELDS_H

#include <cstring>

#include "lib_fru_types.h"

// In the order of image and release.
enum FRU_AREA_ID : u8
{
    FRU_AREA_CHASSIS,
    FRU_AREA_BOARD,
    FRU_AREA_PRODUCT,
    FRU_AREA_COUNT,
};

// Every field between an area's length byte and its custom fields, in image order.
enum FRU_FIELD_ID : u8
{
    FRU_FIELD_CHASSIS_TYPE,
    FRU_FIELD_CHASSIS_PART,
    FRU_FIELD_CHASSIS_SERIAL,
    FRU_FIELD_BOARD_LANGUAGE,
    FRU_FIELD_BOARD_MFG_DATE,
    FRU_FIELD_BOARD_MANUFACTURER,
    FRU_FIELD_BOARD_NAME,
    FRU_FIELD_BOARD_SERIAL,
    FRU_FIELD_BOARD_PART,
    FRU_FIELD_BOARD_FILE_ID,
    FRU_FIELD_PRODUCT_LANGUAGE,
    FRU_FIELD_PRODUCT_MANUFACTURER,
    FRU_FIELD_PRODUCT_NAME,
    FRU_FIELD_PRODUCT_PART,
    FRU_FIELD_PRODUCT_VERSION,
    FRU_FIELD_PRODUCT_SERIAL,
    FRU_FIELD_PRODUCT_ASSET_TAG,
    FRU_FIELD_PRODUCT_FILE_ID,
    FRU_FIELD_COUNT,
};

enum FRU_FIELD_KIND : u8
{
    FRU_KIND_BYTES,        // image and record hold the same bytes
    FRU_KIND_CHASSIS_TYPE, // a code in the image, its description as a heap text in the record
    FRU_KIND_TEXT,         // a type/length field in the image, a size byte and a heap text in the record
};

// Members are offsets from the start of FRU_DATA_S, where nothing else is said.
struct FRU_FIELD_S
{
    FRU_FIELD_KIND ucKind;
    u8 ucBytes;   // FRU_KIND_BYTES: how many
    u16 usMember; // the bytes, or the pointer to the text
    u16 usSize;   // FRU_KIND_TEXT: the size byte
};

struct FRU_CUSTOM_LIST_S
{
    u16 usFields;    // u8 ** member
    u16 usCount;     // u8 member
    u8 ucFixedSlots; // preset count that asks for that many custom fields; 0: none
};

struct FRU_AREA_S
{
    u8 ucFirstField; // a FRU_FIELD_ID
    u8 ucEndField;   // one past the last
    u8 ucPlace; // member of FRU_COMMON_HEADER_S: where the area lies; for the encoder, whether there is one
    u16 usVersion;
    u16 usAreaLength;
    FRU_CUSTOM_LIST_S stCustom;
};

extern const FRU_FIELD_S g_astFruField[FRU_FIELD_COUNT];
extern const FRU_AREA_S g_astFruArea[FRU_AREA_COUNT];

#define FRU_CHASSIS_TYPE_COUNT 30U    // codes run from 0 to one less
#define FRU_CHASSIS_TYPE_DESC_LEN 64U // the buffer of a description in a record

// The text of a chassis type code (SMBIOS, system enclosure types), null when the code has none.
const char *FRU_FindChassisDesc(u32 uiCode);

// The code of exactly that text (case counts), FRU_CHASSIS_TYPE_COUNT when it has none. pcDesc is not null.
u32 FRU_FindChassisCode(const char *pcDesc);

#define FRU_AREA_PRESENT 1U // an area's place in a record that is built: the encoder finds the place
#define FRU_AREA_VERSION 1U // format version of every area and of the common header

// ---- members by offset; records are packed, so pointers are copied in and out, here and nowhere else ----

inline u8 *FRU_MemberAt(void *pRecord, u32 uiOffset)
{
    return static_cast<u8 *>(pRecord) + uiOffset;
}

inline const u8 *FRU_MemberAt(const void *pRecord, u32 uiOffset)
{
    return static_cast<const u8 *>(pRecord) + uiOffset;
}

template <typename POINTER> POINTER FRU_LoadPointer(const void *pRecord, u32 uiOffset)
{
    POINTER pMember;
    (void)memcpy(&pMember, FRU_MemberAt(pRecord, uiOffset), sizeof(pMember));
    return pMember;
}

template <typename POINTER> void FRU_StorePointer(void *pRecord, u32 uiOffset, POINTER pMember)
{
    (void)memcpy(FRU_MemberAt(pRecord, uiOffset), &pMember, sizeof(pMember));
}

// ---- fields by ID ----

// A FRU_KIND_BYTES field's bytes.
inline u8 *FRU_FieldBytes(FRU_DATA_S *pstFRUData, u32 uiField)
{
    return FRU_MemberAt(pstFRUData, g_astFruField[uiField].usMember);
}

// A FRU_KIND_TEXT field's size byte.
inline u8 *FRU_FieldSize(FRU_DATA_S *pstFRUData, u32 uiField)
{
    return FRU_MemberAt(pstFRUData, g_astFruField[uiField].usSize);
}

// The heap text of a field of the other two kinds, or null.
inline u8 *FRU_FieldText(const FRU_DATA_S *pstFRUData, u32 uiField)
{
    return FRU_LoadPointer<u8 *>(pstFRUData, g_astFruField[uiField].usMember);
}

// Makes the record point to that text; what it pointed to before is the caller's to care for.
inline void FRU_StoreFieldText(FRU_DATA_S *pstFRUData, u32 uiField, u8 *pucText)
{
    FRU_StorePointer(pstFRUData, g_astFruField[uiField].usMember, pucText);
}

// The same, and frees the text that was there, unless it is stored again where it is. The size byte stays.
void FRU_ReplaceFieldText(FRU_DATA_S *pstFRUData, u32 uiField, u8 *pucText);

// ---- areas by row ----

// Where the area lies, in units of 8 bytes; 0: there is none.
inline u8 FRU_AreaPlace(const FRU_DATA_S *pstFRUData, const FRU_AREA_S &stArea)
{
    return *FRU_MemberAt(&pstFRUData->stCommonHeader, stArea.ucPlace);
}

inline void FRU_SetAreaPlace(FRU_COMMON_HEADER_S *pstHeader, const FRU_AREA_S &stArea, u8 ucPlace)
{
    *FRU_MemberAt(pstHeader, stArea.ucPlace) = ucPlace;
}

// The array of custom fields, or null.
inline u8 **FRU_CustomFields(const FRU_DATA_S *pstFRUData, const FRU_AREA_S &stArea)
{
    return FRU_LoadPointer<u8 **>(pstFRUData, stArea.stCustom.usFields);
}

// The record's count of them; a released record keeps it, so ask FRU_CustomFields() first.
inline u8 FRU_CustomCount(const FRU_DATA_S *pstFRUData, const FRU_AREA_S &stArea)
{
    return *FRU_MemberAt(pstFRUData, stArea.stCustom.usCount);
}

#endif
