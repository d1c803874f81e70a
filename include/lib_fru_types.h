/* SPDX-License-Identifier: Apache-2.0 */
/*
 * Structures and status codes of libbmcfru. C99 and C++17; needs only <stdint.h> and <stddef.h>.
 *
 * Every structure is packed and is part of the binary interface: other processes and the database hold the
 * same bytes. A pointer member of a packed structure is unaligned: copy it in and out, never take its address
 * as a T **.
 */
#ifndef LIB_FRU_TYPES_H
#define LIB_FRU_TYPES_H

#include <stddef.h>
#include <stdint.h>

/* platform/bmc_types.h has them too, and C99 takes a typedef once */
#ifndef BMC_INTEGER_NAMES
#define BMC_INTEGER_NAMES
typedef uint8_t u8;
typedef uint16_t u16;
typedef uint32_t u32;
typedef int32_t i32;
#endif

/* ---- status codes */

#define FRU_OK 0U

/* Internal functions, cache records, device access, setters. */
#define FRU_ERR_FAILED 0x81000001U       /* operation failed */
#define FRU_ERR_NULL_POINTER 0x81000002U /* null pointer argument */
#define FRU_ERR_OUT_OF_RANGE 0x81000003U /* argument out of range; in the cache: null data pointer */
#define FRU_ERR_NO_MEMORY 0x81000004U    /* out of memory */
#define FRU_ERR_DB_OPEN 0x81000005U      /* the database could not be opened */
#define FRU_ERR_FILE_OPEN 0x81000015U    /* serial-number file: open failed */
#define FRU_ERR_FILE_MISSING 0x81000017U /* serial-number file: does not exist */
#define FRU_ERR_HW_NAMESPACE 0x8100001CU /* hardware description: no name space */
#define FRU_ERR_HW_XML 0x8100001DU       /* hardware description: XML not loadable */
#define FRU_ERR_HW_NO_OBJECT 0x8100001FU /* hardware description: no object of that component type */
#define FRU_ERR_FILE_EMPTY 0x81000024U   /* serial-number file: nothing read */
#define FRU_ERR_MR_TIMEOUT 0xFFFF0006U   /* MultiRecord store: lock not had in time */
#define FRU_ERR_MR_FAILED 0xFFFFFFFFU    /* MultiRecord store: operation failed */

/* Exported LIB_FRU_ entry points and the codec. */
#define LIB_FRU_ERR_READ 0x29000001U         /* reading or fetching FRU data failed */
#define LIB_FRU_ERR_HEADER 0x29000002U       /* common header invalid */
#define LIB_FRU_ERR_NO_DEVICE_ID 0x29000003U /* no device ID for the component */
#define LIB_FRU_ERR_NO_DEVICE 0x29000004U    /* device table or device information not found */
#define LIB_FRU_ERR_LABEL 0x29000005U        /* label not found, not valid or not written */
#define LIB_FRU_ERR_DECODE 0x29000006U       /* decoding failed */
#define LIB_FRU_ERR_ENCODE 0x29000007U       /* encoding failed */
#define LIB_FRU_ERR_SIZE 0x29000008U         /* bad size, out of memory; in the codec also a null pointer */
#define LIB_FRU_ERR_FEATURE 0x29000009U      /* feature update failed */
#define LIB_FRU_ERR_NULL_POINTER 0x29002408U /* null pointer argument */

/* ---- limits */

#define FRU_COMMON_HEADER_LEN 8U
#define FRU_AREA_UNIT 8U        /* offsets and area lengths in an image count units of 8 bytes */
#define FRU_MULTIRECORD_MAX 64U /* entries of FRU_DATA_S.astMultiRecord */
#define FRU_MULTIRECORD_HEADER_LEN 5U
#define FRU_MULTIRECORD_END_OF_LIST 0x80U /* bit of ucRecordFormat: the last record */
#define FRU_FIELD_END 0xC1U               /* the byte that ends an area's list of fields */
#define FRU_FIELD_MAX_TEXT 63U            /* characters of a text that an image can hold */
#define FRU_DEVICE_TBL_MAX 100U           /* entries of the FRU device table */
#define FRU_CHASSIS_FIXED_SLOTS 5U        /* preset stChassisInfo.ucCustomFieldCount for fixed-slot mode */
#define FRU_PRODUCT_FIXED_SLOTS 4U        /* preset stProductInfo.ucCustomFieldCount for fixed-slot mode */
#define FRU_HW_DATA_LEN 32U
#define FRU_EEPROM_TYPE_MIN 9U
#define FRU_EEPROM_TYPE_MAX 15U
#define FRU_BUS_NUMBER_MAX 15U

#pragma pack(push, 1)

/* ---- decoded FRU record */

/*
 * Common header (IPMI Platform Management FRU Information Storage Definition, section 8). Offsets in 8-byte
 * units, 0 = area absent. For the encoder the five offsets are presence flags only.
 */
typedef struct
{
    u8 ucFormatVersion; /* 1 */
    u8 ucInternalUseAreaStartOffset;
    u8 ucChassisInfoAreaStartOffset;
    u8 ucBoardInfoAreaStartOffset;
    u8 ucProductInfoAreaStartOffset;
    u8 ucMultiRecordAreaStartOffset;
    u8 ucPad;
    u8 ucChecksum; /* the eight bytes sum to 0 modulo 256 */
} FRU_COMMON_HEADER_S;

typedef struct
{
    u8 ucFormatVersion; /* 1 */
    u8 *pucData;        /* heap text, NUL-terminated */
} FRU_INTERNAL_USE_AREA_S;

/*
 * Info areas (same document, sections 10 to 12). Every text is a NUL-terminated heap buffer; the size byte
 * ahead of it is the size in bytes of the buffer that the parser allocated, terminator included. The encoder
 * measures the text.
 */
typedef struct
{
    u8 ucFormatVersion;
    u8 ucAreaLength;      /* as read, in 8-byte units; the encoder computes it anew */
    char *pucChassisType; /* description text, for example "Rack Mount Chassis", in a 64-byte buffer */
    u8 ucChassisPartNumLen;
    u8 *pucChassisPartNum;
    u8 ucChassisSerialNumLen;
    u8 *pucChassisSerialNum;
    u8 **ppucCustomFields; /* heap array of ucCustomFieldCount heap texts, or null */
    u8 ucCustomFieldCount;
} FRU_CHASSIS_INFO_S;

typedef struct
{
    u8 ucFormatVersion;
    u8 ucAreaLength;
    u8 ucLanguage;
    u8 aucMfgDateTime[3]; /* minutes since 1996-01-01 00:00, least significant byte first */
    u8 ucBoardMfrLen;
    u8 *pucBoardMfr;
    u8 ucBoardProductNameLen;
    u8 *pucBoardProductName;
    u8 ucBoardSerialNumLen;
    u8 *pucBoardSerialNum;
    u8 ucBoardPartNumLen;
    u8 *pucBoardPartNum;
    u8 ucFRUFileIDLen;
    u8 *pucFRUFileID;
    u8 **ppucCustomFields;
    u8 ucCustomFieldCount;
} FRU_BOARD_INFO_S;

typedef struct
{
    u8 ucFormatVersion;
    u8 ucAreaLength;
    u8 ucLanguage;
    u8 ucMfrNameLen;
    u8 *pucMfrName;
    u8 ucProductNameLen;
    u8 *pucProductName;
    u8 ucProductPartNumLen;
    u8 *pucProductPartNum;
    u8 ucProductVersionLen;
    u8 *pucProductVersion;
    u8 ucProductSerialNumLen;
    u8 *pucProductSerialNum;
    u8 ucAssetTagLen;
    u8 *pucAssetTag;
    u8 ucFRUFileIDLen;
    u8 *pucFRUFileID;
    u8 **ppucCustomFields;
    u8 ucCustomFieldCount;
} FRU_PRODUCT_INFO_S;

/* One MultiRecord (same document, section 16): the five header bytes and the data. */
typedef struct
{
    u8 ucRecordTypeID;
    u8 ucRecordFormat;   /* bit 7: last record of the list */
    u8 ucRecordLength;   /* data bytes */
    u8 ucRecordChecksum; /* zero checksum of the data */
    u8 ucHeaderChecksum; /* zero checksum of the five header bytes */
    u8 *pucRecordData;   /* heap, exactly ucRecordLength bytes, not terminated; null: unused entry */
} FRU_MULTIRECORD_S;

/*
 * A decoded FRU image. Clear it to zero before the first use; release what it owns with
 * FRU_ANALYZER_SafeFree(), also after a failed decode; never copy it while it owns buffers.
 */
typedef struct
{
    FRU_COMMON_HEADER_S stCommonHeader;
    FRU_INTERNAL_USE_AREA_S stInternalUseArea;
    FRU_CHASSIS_INFO_S stChassisInfo;
    FRU_BOARD_INFO_S stBoardInfo;
    FRU_PRODUCT_INFO_S stProductInfo;
    FRU_MULTIRECORD_S astMultiRecord[FRU_MULTIRECORD_MAX]; /* used entries are a prefix */
} FRU_DATA_S;

/* ---- hardware FRU block */

typedef struct
{
    u8 ucBoardCrc8; /* CRC-8 over the following 15 bytes */
    u8 aucBoardType[4];
    u8 ucPCBVer;
    u8 ucEEPROMVer;
    u8 ucCPLDVer;
    u8 aucBoardReserved[8];
} FRU_HW_BOARD_INFO_S;

typedef struct
{
    u8 ucDiagCrc8; /* CRC-8 over the following 15 bytes */
    u8 aucDiagReserved[14];
    u8 ucOEMFlag;
} FRU_HW_DIAG_INFO_S;

typedef struct
{
    FRU_HW_BOARD_INFO_S stHwBoardInfo;
    FRU_HW_DIAG_INFO_S stHwDiagInfo;
} FRU_HW_DATA_S;

/* ---- custom fields as texts */

typedef struct
{
    char acChassisCustomField1[64]; /* the second chassis custom field, cut to 63 characters */
    char acChassisCustomField2[64]; /* the third */
    char *pcChassisCustomFields;    /* heap: all non-empty ones, one a line, escaped; or null */
    u32 uiChassisCustomFieldsLen;
    char acBoardCustomField0[64]; /* the first board custom field */
    char *pcBoardCustomFields;
    u32 uiBoardCustomFieldsLen;
    char *pcProductCustomFields;
    u32 uiProductCustomFieldsLen;
} FRU_CUSTOM_FIELD_S;

/* ---- cache records (multi-byte members little-endian) */

/* What the controller's FRU service knows of one FRU device; one record per device ID. */
typedef struct
{
    u8 ucDeviceID;
    u8 aucReserved1[2];
    u16 usStartOffset; /* where the FRU image begins inside the EEPROM */
    u16 usSize;        /* FRU image size in bytes; also the length of the cached image */
    u8 ucReserved7;
    u8 ucAccessType; /* fourth byte of Get FRU Inventory Area Info */
    u8 aucReserved9[2];
    u8 ucEEPROMType; /* FRU_EEPROM_TYPE_MIN to FRU_EEPROM_TYPE_MAX */
    u8 aucReserved12[2];
    char acFRUName[16];
    char acImageFilePath[128]; /* stored image that restores the device */
    u8 ucBusNumber;            /* I2C bus, 0 to FRU_BUS_NUMBER_MAX; the I2C location begins here */
    u8 ucAddress;
    u8 ucSwitchLevel;
    u8 aucReserved161[19];
    u8 ucDatabaseOnly; /* non-zero: served from the cache only */
    u8 ucReserved181;
    u8 ucFieldFlag; /* which label IDs the device accepts */
    u8 ucReserved183;
} FRU_DEVICE_INFO_S;

typedef struct
{
    u8 aucReserved[32];
    u8 ucDeviceID;
    u8 ucComponentType;
    u8 ucInstance;
    u16 usSDRRecordID;
} FRU_DEVICE_TBL_ENTRY_S;

typedef struct
{
    u8 ucCount; /* valid entries */
    FRU_DEVICE_TBL_ENTRY_S astEntry[FRU_DEVICE_TBL_MAX];
    u8 aucReserved[2];
} FRU_DEVICE_TBL_S;

typedef struct
{
    u8 aucData[32]; /* opaque to this library */
} FRU_SDR_S;

/* ---- requests */

/* Read FRU Data request (IPMI 2.0, section 34.2). */
typedef struct
{
    u8 ucDeviceID;
    u16 usOffset;
    u8 ucCount;
} FRU_READ_REQ_S;

/* The operation log: who speaks, and what FRU_AddClearFRULog() and its like take for a result. */
#define FRU_OPERATELOG_MODULE 17U
#define FRU_OPERATELOG_SOURCE 12U
#define FRU_OPERATELOG_FAILED 4
#define FRU_OPERATELOG_SUCCEEDED 6

typedef struct
{
    u8 ucComponentType;     /* in */
    u8 ucInstance;          /* in */
    u32 uiReserved;         /* not used */
    char acOperateLog[512]; /* out: sentence for the caller's operation log */
    char acFRUName[16];     /* out */
    u8 ucOperateLogType;    /* out: FRU_OPERATELOG_SOURCE */
} FRU_CLEAR_PARA_S;

typedef struct
{
    u8 ucComponentType;     /* in */
    u8 ucInstance;          /* in */
    u32 uiLabelID;          /* out */
    char acLabelName[64];   /* in */
    char acLabelValue[80];  /* in; a MAC address is upper-cased in place */
    u32 uiLabelValueLen;    /* out: length of acLabelValue */
    char acOperateLog[512]; /* out: sentence for the caller's operation log */
    char acFRUName[16];     /* out: the device's name, cut to 15 characters */
    u8 ucOperateLogType;    /* out: FRU_OPERATELOG_SOURCE */
    u8 ucFieldFlag;         /* out: the device's electronic-label field flag */
} FRU_SET_PARA_S;

#define FRU_EVENT_KIND_LABEL 3U /* a label was written */
#define FRU_EVENT_KIND_CLEAR 4U /* a FRU was cleared */

typedef struct
{
    u32 uiKind;
    u8 ucComponentType;
    u8 ucInstance;
    u16 usReserved6;
    u32 uiLabelID; /* kind FRU_EVENT_KIND_LABEL, else 0 */
    u16 usReserved12;
    u16 usReserved14;
} FRU_EVENT_S;

typedef struct
{
    u8 aucData[1334]; /* layout of the receiving service */
} FRU_FEATURE_UPDATE_S;

typedef struct
{
    u8 ucRecordTypeID; /* FRU_MR_TYPE_MANAGEMENT_ACCESS */
    u8 ucSubType;      /* FRU_MR_SUBTYPE_..., 1 to 7 */
    u32 uiLength;      /* bytes of the value, 1 to 256 */
    u8 *pucBuf;        /* the value; stays the caller's */
} FRU_MR_PARAM_S;

#define FRU_ASSEMBLE_SLOT_LEN 128U
#define FRU_ASSEMBLE_SLOTS 14U

/* Texts for an image from scratch; an empty slot is not given. Slots 0 to 2 are not read. */
typedef struct
{
    char acSlot[FRU_ASSEMBLE_SLOTS][FRU_ASSEMBLE_SLOT_LEN];
} FRU_ASSEMBLE_LABEL_S;

/* ---- OEM configuration */

typedef struct
{
    char acCopyrightCn[256];
    char acCopyrightEn[256];
    char acBoardManufacturer[64];
    char acProductManufacturer[64];
    char acProductName[64];
    char acQbx[64]; /* software name */
    u8 ucOemFlag;
    u16 usCheckArea;
    u32 uiPrivateOid;
    u8 ucUserId;
    u8 ucLogoCidFlag;
    char acProductSerialNumber[64];
    char acProductAssetTag[64];
    char acProductExtra1[64];
    char acProductExtra2[64];
    char acProductExtra3[64];
    char acProductExtra4[64];
    char acProductPartNumber[64];
    char acChassisPartNumber[64];
    char acBoardProductName[64];
    char acProductVersion[64];
} FRU_OEM_CONF_S;

/* ---- label catalogue */

typedef struct
{
    u32 uiLabelID; /* 1 to 29, 31 to 35 */
    const char *pcLabelName;
    u32 uiMinLen; /* characters */
    u32 uiMaxLen; /* characters */
    u8 ucNoneAllowed;
    u32 (*pfnSetLabel)(u8 *pucLabelValue, FRU_DATA_S *pstFRUData); /* null: not stored in the FRU record */
    void *pfnReserved;                                             /* null, never read */
} DIAG_FRU_LABEL_S;

typedef struct
{
    u8 ucFieldFlag;
    u8 aucStartID[4]; /* first label ID of each range */
    u8 aucEndID[4];   /* one past its last */
} DIAG_ELECTRONIC_FIELD_S;

#pragma pack(pop)

#endif
