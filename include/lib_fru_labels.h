/* SPDX-License-Identifier: Apache-2.0 */
/*
 * libbmcfru, labels: editing named fields of a FRU device.
 *
 * An electronic label is one field of a device's FRU inventory under a display name, such as "Board Serial
 * Number". Names, IDs and limits stand in the catalogue below; LIB_FRU_WriteElectronicLabel() changes one
 * label of one device, and the functions around it are its steps. The fields are those of the IPMI Platform
 * Management FRU Information Storage Definition, sections 10 to 12.
 *
 * Nothing is locked: a write reads the whole image, changes one field and writes the whole image, so callers
 * serialise the writes of one device. Every failure is reported to the diagnostic log. A null pointer
 * argument answers FRU_ERR_NULL_POINTER unless said otherwise. Texts are NUL-terminated; a request block
 * whose name or value has no NUL within its member is refused as an unknown name or an invalid value.
 */
#ifndef LIB_FRU_LABELS_H
#define LIB_FRU_LABELS_H

#include "lib_fru_types.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/* ---- catalogue */

/* Label IDs. There is no 30; power-supply fields bear names of board labels. */
enum
{
    FRU_LABEL_CHASSIS_TYPE = 1,
    FRU_LABEL_CHASSIS_PART_NUMBER,
    FRU_LABEL_CHASSIS_SERIAL_NUMBER,
    FRU_LABEL_CHASSIS_CUSTOMER_SERIAL_NUMBER,
    FRU_LABEL_CHASSIS_MAC_ADDRESS,
    FRU_LABEL_CHASSIS_MAC_ADDRESS_COUNT,
    FRU_LABEL_CHASSIS_CLEI_CODE,
    FRU_LABEL_CHASSIS_LOCATION_NODE_ID,
    FRU_LABEL_BOARD_LANGUAGE,
    FRU_LABEL_BOARD_MFG_DATE,
    FRU_LABEL_BOARD_MANUFACTURER,
    FRU_LABEL_BOARD_PRODUCT_NAME,
    FRU_LABEL_BOARD_SERIAL_NUMBER,
    FRU_LABEL_BOARD_PART_NUMBER,
    FRU_LABEL_BOARD_FRU_FILE_ID,
    FRU_LABEL_BOARD_TOP_SERIAL_NUMBER,
    FRU_LABEL_PRODUCT_LANGUAGE,
    FRU_LABEL_PRODUCT_MANUFACTURER,
    FRU_LABEL_PRODUCT_PRODUCT_NAME,
    FRU_LABEL_PRODUCT_SERIAL_NUMBER,
    FRU_LABEL_PRODUCT_PART_NUMBER,
    FRU_LABEL_PRODUCT_VERSION,
    FRU_LABEL_PRODUCT_ASSET_TAG,
    FRU_LABEL_PRODUCT_FRU_FILE_ID,
    FRU_LABEL_PRODUCT_NODE_TYPE,
    FRU_LABEL_PRODUCT_NODE_PSU,
    FRU_LABEL_PRODUCT_NODE_NETWORK,
    FRU_LABEL_PRODUCT_NODE_POWER,
    FRU_LABEL_HARDWARE,
    FRU_LABEL_PSU_PRODUCT_NAME = 31,
    FRU_LABEL_PSU_SERIAL_NUMBER,
    FRU_LABEL_PSU_MFG_DATE,
    FRU_LABEL_PSU_MANUFACTURER,
    FRU_LABEL_PSU_PART_NUMBER
};
#define FRU_LABEL_NOT_FOUND 36U /* what lookups answer for "no such label" */

#define FRU_LABEL_ROWS 34U /* rows of the catalogue as it is delivered */

/*
 * The labels, g_uiDIAG_FruLabelMaxNum rows in the order of their IDs, packed: 25 bytes a row where pointers
 * have 4. Lookups by name find the first row, so the board label. Table and count lie in writable data, every
 * lookup goes by them, and pfnSetLabel is called as it stands there; whoever changes them does so before any
 * label call is under way. What a label's values must look like besides their length goes by its name.
 */
extern DIAG_FRU_LABEL_S g_astDIAG_FruLabel[];
extern u32 g_uiDIAG_FruLabelMaxNum;

/*
 * Which label IDs a device accepts, by the field flag of its device information record: 9 rows, read-only.
 * Range i holds the IDs from aucStartID[i] up to and without aucEndID[i].
 */
extern const DIAG_ELECTRONIC_FIELD_S g_astDIAG_ElectronicField[];
extern const u32 g_uiDIAG_ElectronicFieldMaxNum;

/* The label ID of a name, compared whole and with its case; FRU_LABEL_NOT_FOUND; FRU_ERR_NULL_POINTER. */
u32 FindLabelIDByName(const char *pcLableName);

/*
 * The power-supply field of a name: "Board Product Name" 0, "Board Serial Number" 1, "Mfg.Date" 2, "Board
 * Manufacturer" 3, "Board Part Number" 4; FRU_LABEL_NOT_FOUND for every other name and for a null pointer.
 */
u32 FRU_GetPsuFieldIDByName(const char *pcLableName);

/*
 * Fills the ranges of the record whose ucFieldFlag the caller has set.
 * 0; FRU_ERR_NULL_POINTER; FRU_ERR_FAILED: no such flag, the record is left as it was.
 */
u32 ConfirmElectroniclabelField(DIAG_ELECTRONIC_FIELD_S *pstElectronicField);

/* ---- checks: 1 accepted, 0 refused; the reason is in the diagnostic log only */

/* Whether the block's acLabelName may be written on a device with the block's ucFieldFlag. 0 for a null
 * block. */
u32 isLabelNameValid(const FRU_SET_PARA_S *pstFRUSetPara);

/*
 * Whether a value is acceptable for the label pcName. iValueLen is the value's length in characters as the
 * caller counted it: the limits are held against the measured length, the blank check and the messages go by
 * iValueLen. uiComponentType 0 allows part numbers of 63 characters whatever the catalogue says. Accepted
 * are: a value that begins with "NONE" where the catalogue allows it; for "Chassis MAC Address" twelve
 * hexadecimal digits, which are upper-cased in pcValue (also when the value is then refused); for "Chassis
 * Type" one of the 30 descriptions; for "Mfg.Date" what isLabelValueMfgDateNormal() accepts; for the language
 * codes 0 to 136; for all others characters 0x20 to 0x7E. Custom-field labels refuse one character. 0 for a
 * null pointer.
 */
u32 isLabelValueValid(const char *pcName, char *pcValue, i32 iValueLen, u32 uiComponentType);

/*
 * Whether a text is a manufacturing date up to the year 2025: "2024-4-5", "2024-4-5 6:7:8", "2024-04-05" or
 * "2024-04-05 06:07:08", zero-filled throughout or nowhere. February has 29 days. 0 for a null pointer.
 */
i32 isLabelValueMfgDateNormal(const char *pcValue);

/* ---- setters */

/*
 * Each stores one value in the record pstFRUData, without any check of it and without I/O. pucLabelValue is a
 * heap buffer (malloc and its like) with NUL-terminated text.
 *
 * Text setters free the text that was there and take pucLabelValue over; FRU_ANALYZER_SafeFree() frees it.
 * Custom field setters do the same in one slot of an area's custom fields: chassis 0 to 4 customer serial
 * number, MAC address, MAC address count, CLEI code, location node ID; board 0 top serial number; product 0
 * to 3 node type, PSU, network, power. The language setters store the decimal number's low 8 bits and the
 * date setter the three date bytes; they keep nothing, the buffer stays the caller's.
 *
 * 0; FRU_ERR_NULL_POINTER: a null argument, or the area has no custom-field array; FRU_ERR_FAILED: the area
 * has too few custom fields, or the date does not parse. After a failure the record is as it was and the
 * buffer is still the caller's.
 */
u32 setChassisType(u8 *pucLabelValue, FRU_DATA_S *pstFRUData); /* text; a description, not a code */
u32 setChassisPartNum(u8 *pucLabelValue, FRU_DATA_S *pstFRUData);
u32 setChassisSerialNum(u8 *pucLabelValue, FRU_DATA_S *pstFRUData);
u32 setChassisCustomerSerialNum(u8 *pucLabelValue, FRU_DATA_S *pstFRUData); /* custom field 0 */
u32 setChassisMACAddress(u8 *pucLabelValue, FRU_DATA_S *pstFRUData);        /* 1 */
u32 setChassisMACAddressCount(u8 *pucLabelValue, FRU_DATA_S *pstFRUData);   /* 2 */
u32 setChassisClEICode(u8 *pucLabelValue, FRU_DATA_S *pstFRUData);          /* 3 */
u32 setChassisLocationNodeID(u8 *pucLabelValue, FRU_DATA_S *pstFRUData);    /* 4 */
u32 setBoardLanuageCode(u8 *pucLabelValue, FRU_DATA_S *pstFRUData);         /* language */
u32 setBoardMfgDate(u8 *pucLabelValue, FRU_DATA_S *pstFRUData);             /* date */
u32 setBoardManufacturer(u8 *pucLabelValue, FRU_DATA_S *pstFRUData);
u32 setBoardProductName(u8 *pucLabelValue, FRU_DATA_S *pstFRUData);
u32 setBoardSerialNumber(u8 *pucLabelValue, FRU_DATA_S *pstFRUData);
u32 setBoardPartNumber(u8 *pucLabelValue, FRU_DATA_S *pstFRUData);
u32 setBoardFRUFileID(u8 *pucLabelValue, FRU_DATA_S *pstFRUData);
u32 setBoardTopSerialNumber(u8 *pucLabelValue, FRU_DATA_S *pstFRUData); /* custom field 0 */
u32 setProductLanguageCode(u8 *pucLabelValue, FRU_DATA_S *pstFRUData);  /* language */
u32 setProductManufacturer(u8 *pucLabelValue, FRU_DATA_S *pstFRUData);
u32 setProductProductName(u8 *pucLabelValue, FRU_DATA_S *pstFRUData);
u32 setProductSerialNumber(u8 *pucLabelValue, FRU_DATA_S *pstFRUData);
u32 setProductPartNumber(u8 *pucLabelValue, FRU_DATA_S *pstFRUData);
u32 setProductVersion(u8 *pucLabelValue, FRU_DATA_S *pstFRUData);
u32 setProductAssetTag(u8 *pucLabelValue, FRU_DATA_S *pstFRUData);
u32 setProductFRUFileID(u8 *pucLabelValue, FRU_DATA_S *pstFRUData);
u32 setProductNodeType(u8 *pucLabelValue, FRU_DATA_S *pstFRUData);    /* custom field 0 */
u32 setProductNodePSU(u8 *pucLabelValue, FRU_DATA_S *pstFRUData);     /* 1 */
u32 setProductNodeNetwork(u8 *pucLabelValue, FRU_DATA_S *pstFRUData); /* 2 */
u32 setProductNodePower(u8 *pucLabelValue, FRU_DATA_S *pstFRUData);   /* 3 */

/* ---- label write */

/*
 * Writes one label of one device: reads the image (restoring a damaged one from its stored file), changes the
 * field, writes the image to device and cache, mirrors a "Product Serial Number" of component type 0 to its
 * file, and sends a FRU event. In: ucComponentType, ucInstance, acLabelName, acLabelValue. Out:
 * uiLabelValueLen always; once the device is known acFRUName, ucOperateLogType, ucFieldFlag and acOperateLog,
 * the sentence for the caller's operation log; uiLabelID once the name is known. An image without a product
 * area gets one with empty texts.
 *
 * 0; LIB_FRU_ERR_NULL_POINTER; LIB_FRU_ERR_NO_DEVICE: unknown device; LIB_FRU_ERR_LABEL: unknown or
 * disallowed label, invalid value, or image not readable, not changeable or not encodable. After these the
 * device is as it was (or as it was restored). A device or cache that refuses the encoded bytes shows in the
 * diagnostic log only.
 */
u32 LIB_FRU_WriteElectronicLabel(FRU_SET_PARA_S *pstFRUSetPara);

/*
 * Reads the record of the block's device into a zeroed pstFRUData, with an empty product area if it has none;
 * the caller releases it with FRU_ANALYZER_SafeFree(). 0; FRU_ERR_NULL_POINTER; FRU_ERR_FAILED: not readable,
 * not decodable, or no memory; the record is released.
 */
u32 FRU_GetElectronicLabel(const FRU_SET_PARA_S *pstFRUSetPara, FRU_DATA_S *pstFRUData);

/*
 * Checks name and value of a block whose uiLabelValueLen and ucFieldFlag are set; may upper-case
 * acLabelValue. 0; FRU_ERR_NULL_POINTER; FRU_ERR_FAILED: one of them is refused.
 */
u32 FRU_CheckElectronicLabel(FRU_SET_PARA_S *pstFRUSetPara);

/*
 * Stores a copy of the first uiLabelValueLen characters of acLabelValue (at most its 80) in the record
 * through the setter of uiLabelID. A label without a setter changes nothing and succeeds. 0;
 * FRU_ERR_NULL_POINTER, also for no memory; FRU_ERR_FAILED: no such ID, or the setter refused.
 */
u32 FRU_ReplaceElectronicLabel(const FRU_SET_PARA_S *pstFRUSetPara, FRU_DATA_S *pstFRUData);

/*
 * Encodes the record and writes it to device and cache with LIB_FRU_WriteArrayFRUData().
 * 0; the codes FRU_ERR_NULL_POINTER and FRU_ERR_FAILED as i32.
 */
i32 FRU_SetElectronicLabel(const FRU_SET_PARA_S *pstFRUSetPara, const FRU_DATA_S *pstFRUData);

/*
 * Fills acOperateLog from the block's other texts: iResult FRU_OPERATELOG_SUCCEEDED with the sentence of a
 * success, any other with that of a failure. Makes no entry. A null block is reported.
 */
void FRU_AddComOperateLog(i32 iResult, FRU_SET_PARA_S *pstFRUSetPara);

/*
 * What follows the write of a label on component type 0: FRU_LABEL_PRODUCT_SERIAL_NUMBER mirrors the
 * uiLabelValueLen bytes of pcLabelValue with FRU_UpdateProductSN(), every other ID does nothing. A null value
 * is reported.
 */
void FRU_UpdateFRUInfo(u32 uiLabelID, const char *pcLabelValue, u32 uiLabelValueLen);

/* ---- product serial number file */

/*
 * Rewrites "/mnt/sdmmc0p4/board/ProductSerialNumber" with exactly uiLength bytes of pcWriteBuf (no terminator
 * is needed or added), makes it readable by others, and copies it to "/var/network/ProductSerialNumber". The
 * directory is made when it is missing; a copy that fails is neither reported nor told.
 * 0; FRU_ERR_NULL_POINTER; FRU_ERR_FAILED: not written, or only in part.
 */
u32 LIB_FRU_WritePSNToFile(const char *pcWriteBuf, u32 uiLength);

/* LIB_FRU_WritePSNToFile() with a message of its own. 0; FRU_ERR_NULL_POINTER; FRU_ERR_FAILED. */
u32 FRU_UpdateProductSN(const char *pcLabelValue, u32 uiLength);

/*
 * Reads at most uiSize bytes of the file into pcPSNName; the size stands first. The text is not terminated:
 * clear the buffer beforehand and pass a size that leaves room for the NUL. A longer file is read in part. 0;
 * FRU_ERR_NULL_POINTER; FRU_ERR_FILE_MISSING: no file, which is not logged; FRU_ERR_FILE_OPEN;
 * FRU_ERR_FILE_EMPTY: nothing read.
 */
u32 LIB_FRU_GetPSNFromFile(u32 uiSize, char *pcPSNName);

/* ---- hardware label */

/*
 * Writes the label "Hardware FRU Label": the first seven bytes of acLabelValue, raw, become board type (4),
 * PCB, EEPROM and CPLD version of the device's hardware FRU block. Neither the value nor the device's field
 * flag is checked, and no event is sent. Out: acFRUName, ucOperateLogType, acOperateLog and uiLabelID as with
 * LIB_FRU_WriteElectronicLabel(); uiLabelValueLen and ucFieldFlag are left alone.
 *
 * 0; FRU_ERR_NULL_POINTER; LIB_FRU_ERR_NO_DEVICE: unknown device or unknown label name; FRU_ERR_FAILED:
 * another label's name, or the block could not be read or written.
 */
u32 LIB_FRU_WriteHWInfo(FRU_SET_PARA_S *pstFRUSetPara);

/* FRU_AddComOperateLog() for the hardware label, with its own sentence of success. */
void FRU_AddHWOperateLog(i32 iResult, FRU_SET_PARA_S *pstFRUSetPara);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
