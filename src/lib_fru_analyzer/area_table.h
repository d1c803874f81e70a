// What the chassis, board and product areas have, as rows: decoder, encoder and release walk these and know
// no field by name. Member offsets count from the start of FRU_DATA_S.
#ifndef LIB_FRU_ANALYZER_AREA_TABLE_H
#define LIB_FRU_ANALYZER_AREA_TABLE_H

#include <cstring>

#include "lib_fru_types.h"

// A text: a type/length field in the image, a size byte and a heap text in the record.
struct FRU_FIELD_ROW_S
{
    u16 usSize; // u8 member: size of the decoded buffer
    u16 usText; // u8 * member
    const char *pcDecodeError;
    const char *pcEncodeError;
};

// Bytes that image and record hold alike.
struct FRU_RAW_ROW_S
{
    u16 usBytes;
    u8 ucCount;
    const char *pcEncodeError;
};

struct FRU_DECODE_TEXTS_S
{
    const char *pcStart;   // offset, image length
    const char *pcVersion; // version
    const char *pcSize;    // area length, offset, image length
    const char *pcZeroSum;
    const char *pcCustomAddress;
    const char *pcCustomCount;
    const char *pcCustomDebug; // count, bytes left
    const char *pcCustomMemory;
    const char *pcCustomField;   // index
    const char *pcCustomRet;     // internal result, after a field that failed; null: none
    const char *pcCustomClosing; // after any failure of the custom fields; null: none
    const char *pcClosing;
};

struct FRU_ENCODE_TEXTS_S
{
    const char *pcVersion;
    const char *pcLength;
    const char *pcCustomField; // index
    const char *pcEndChar;
    const char *pcRelocate; // area length in bytes
    const char *pcCheckSum;
    const char *pcClosing;
};

struct FRU_AREA_S
{
    u8 ucHeaderByte; // byte of the common header that holds the area's offset
    u16 usVersion;
    u16 usAreaLength;
    u16 usChassisType; // char * member; 0: the area has none
    const FRU_RAW_ROW_S *pstRaw;
    u32 uiRawCount;
    const FRU_FIELD_ROW_S *pstField;
    u32 uiFieldCount;
    u16 usCustomFields; // u8 ** member
    u16 usCustomCount;  // u8 member
    u8 ucFixedSlots;    // preset count that asks for that many custom fields; 0: none
    FRU_DECODE_TEXTS_S stDecode;
    FRU_ENCODE_TEXTS_S stEncode;
};

enum : u32
{
    FRU_AREA_CHASSIS,
    FRU_AREA_BOARD,
    FRU_AREA_PRODUCT,
    FRU_AREA_COUNT,
};

// In image and release order.
extern const FRU_AREA_S g_astFruArea[FRU_AREA_COUNT];

// ---- members by offset; the record is packed, so everything is copied in and out ----

inline u8 *FRU_MemberAt(FRU_DATA_S *pstFRUData, u32 uiOffset)
{
    return reinterpret_cast<u8 *>(pstFRUData) + uiOffset;
}

inline const u8 *FRU_MemberAt(const FRU_DATA_S *pstFRUData, u32 uiOffset)
{
    return reinterpret_cast<const u8 *>(pstFRUData) + uiOffset;
}

template <typename POINTER> POINTER FRU_LoadPointer(const FRU_DATA_S *pstFRUData, u32 uiOffset)
{
    POINTER pMember;
    (void)memcpy(&pMember, FRU_MemberAt(pstFRUData, uiOffset), sizeof(pMember));
    return pMember;
}

template <typename POINTER> void FRU_StorePointer(FRU_DATA_S *pstFRUData, u32 uiOffset, POINTER pMember)
{
    (void)memcpy(FRU_MemberAt(pstFRUData, uiOffset), &pMember, sizeof(pMember));
}

#endif
