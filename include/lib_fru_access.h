/* SPDX-License-Identifier: Apache-2.0 */
/*
 * libbmcfru, access: device table, device I/O, retrieval, array write and clear.
 *
 * A component is named by its type and instance; the device table in the database turns them into a FRU
 * device ID, the device information record says where the device is. Both are fetched anew by every call.
 * Nothing is locked: callers serialise writes and clears of one device. Every failure is reported to the
 * diagnostic log. Buffers stay the caller's; out-parameters are left as they were on a failure, unless said
 * otherwise.
 */
#ifndef LIB_FRU_ACCESS_H
#define LIB_FRU_ACCESS_H

#include "lib_fru_types.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/* ---- components with a meaning of their own */

#define FRU_COMPONENT_BASEBOARD 0x00U /* its instance 0 is the main FRU */
#define FRU_COMPONENT_BMC_CARD 0x30U
#define FRU_INSTANCE_MAIN 0U
#define FRU_DEVICE_ID_BASEBOARD 0U

/* ---- device table */

/*
 * Copies the FRU device table (3703 bytes) to *pstFRUDeviceTbl.
 * 0; LIB_FRU_ERR_NULL_POINTER; LIB_FRU_ERR_NO_DEVICE: no table in the database.
 */
u32 LIB_FRU_GetFRUDeviceTbl(FRU_DEVICE_TBL_S *pstFRUDeviceTbl);

/*
 * Device ID of a component: the first table entry with this type and instance, of at most 100.
 * 0; FRU_ERR_NULL_POINTER; FRU_ERR_FAILED: no table, or no such component. (The codes are those of internal
 * calls; the other calls here answer LIB_FRU_ERR_NO_DEVICE_ID.)
 */
u32 LIB_FRU_GetDeviceID(u8 ucComponentType, u8 ucInstance, u8 *pucDeviceID);

/*
 * Copies the device information record (184 bytes) of a component.
 * 0; LIB_FRU_ERR_NULL_POINTER; LIB_FRU_ERR_NO_DEVICE_ID: no such component; LIB_FRU_ERR_NO_DEVICE: its device
 * has no record.
 */
u32 LIB_FRU_GetFRUDeviceInfo(u8 ucComponentType, u8 ucInstance, FRU_DEVICE_INFO_S *pstFRUDeviceInfo);

/*
 * Copies the SDR (32 bytes, not interpreted) of the first table entry with this SDR record ID.
 * 0; LIB_FRU_ERR_NULL_POINTER; LIB_FRU_ERR_NO_DEVICE: no table; LIB_FRU_ERR_SIZE: no such record ID;
 * LIB_FRU_ERR_READ: the device has no SDR.
 */
u32 LIB_FRU_GetSDRByRecordID(u16 usRecordID, FRU_SDR_S *pstFRUSDR);

/*
 * The table's count of FRU devices; 0 devices when there is no table.
 * 0; LIB_FRU_ERR_NULL_POINTER.
 */
u32 LIB_FRU_GetFRUTotalNum(u8 *pucFRUTotalNum);

/* ---- device I/O */

/*
 * Reads uiLength bytes at usOffset of the EEPROM (not of the FRU: the record's start offset is not added)
 * into pucBuf. Returns the bytes read, fewer than uiLength at the EEPROM's end, or a negative value: the
 * codes FRU_ERR_NULL_POINTER, FRU_ERR_FAILED (EEPROM type not within FRU_EEPROM_TYPE_MIN to ..._MAX) and
 * FRU_ERR_OUT_OF_RANGE (bus number above FRU_BUS_NUMBER_MAX) as i32, or the result of the EEPROM access.
 */
i32 LIB_FRU_ReadFromEEPROM(const FRU_DEVICE_INFO_S *pstFRUInfo, u16 usOffset, u32 uiLength, u8 *pucBuf);

/*
 * Reads uiTotalLen bytes of a FRU into pucFRUBuf through LIB_FRU_ReadFRUData(). *pstFRUReadReq names the
 * device, the offset and the count of the first chunk; further chunks have up to 128 bytes. It is moved on in
 * place: on success it holds the final offset and a count of 0, on a failure the chunk that failed. uiReqLen
 * (low byte) and uiArg are handed on. Chunks are spaced by the counts that were asked for: where a device
 * answers one short, the bytes that are missing are those of the chunk before, at the same place in it, and
 * zeros in the first.
 * 0; FRU_ERR_NULL_POINTER; FRU_ERR_NO_MEMORY; FRU_ERR_FAILED: uiTotalLen is 0, or a chunk could not be read
 * (pucFRUBuf then holds the chunks before it).
 */
u32 LIB_FRU_GetFRUDataFromEEPROM(u32 uiTotalLen, FRU_READ_REQ_S *pstFRUReadReq, u32 uiReqLen, u8 *pucFRUBuf,
                                 u32 uiArg);

/* ---- decoded FRU data */

#define FRU_READ_MODE_PLAIN 1U   /* read only */
#define FRU_READ_MODE_RECOVER 2U /* an invalid common header is answered by a recovery, see below */

/* ucArg and uiArg are handed on and looked at by nobody; calls give one of these. */
#define FRU_READ_ARG_NONE 0U
#define FRU_READ_ARG_USUAL 1U
#define FRU_WRITE_ARG_USUAL 1U

/*
 * Reads and decodes the image of a component's device (IPMI Platform Management FRU Information Storage
 * Definition). With FRU_READ_MODE_RECOVER an invalid common header makes the call write the stored image file
 * named in the device information to the device and its cache, once, and read again. ucArg is handed to
 * LIB_FRU_ReadFRUData(). *pstFRUData is not cleared: it keeps what the caller left in it, and the decoder
 * heeds preset custom-field counts; zero it first. Release it with FRU_ANALYZER_SafeFree() whatever the
 * result.
 * 0; LIB_FRU_ERR_NULL_POINTER; LIB_FRU_ERR_NO_DEVICE_ID: no such component; LIB_FRU_ERR_NO_DEVICE: its device
 * has no record; LIB_FRU_ERR_SIZE: FRU size 0, or out of memory; LIB_FRU_ERR_READ: read or recovery failed,
 * or the common header is invalid; else the code of FRU_ANALYZER_InterpretFRUData().
 */
u32 LIB_FRU_GetFRUData(u8 ucComponentType, u8 ucInstance, u8 ucReadMode, u8 ucArg, FRU_DATA_S *pstFRUData);

/*
 * Decodes the cached image of a component's device; never touches the device. *pstFRUData is cleared as soon
 * as the image has been read, so it must own nothing; release it with FRU_ANALYZER_SafeFree(). 0;
 * LIB_FRU_ERR_NULL_POINTER; LIB_FRU_ERR_NO_DEVICE_ID: no such component; LIB_FRU_ERR_NO_DEVICE: its device
 * has no record; LIB_FRU_ERR_SIZE: FRU size 0, or out of memory; LIB_FRU_ERR_READ: no cached image of the FRU
 * size; LIB_FRU_ERR_DECODE: decoding failed, the record is empty again.
 */
u32 LIB_FRU_GetFRUDataFromDB(u8 ucComponentType, u8 ucInstance, FRU_DATA_S *pstFRUData);

/* ---- whole-image writes */

/*
 * Encodes the record and writes it to a component's device, in chunks of up to 127 bytes, then stores the
 * image, zero-filled to the FRU size, in the cache. uiArg is not used. 0, also when the device did not take a
 * chunk, when the image is longer than the FRU (both stop the write and leave the last step out) or when the
 * cache could not be written: those are told in the diagnostic log only. LIB_FRU_ERR_NULL_POINTER;
 * LIB_FRU_ERR_NO_DEVICE_ID: no such component; LIB_FRU_ERR_NO_DEVICE: its device has no record;
 * LIB_FRU_ERR_SIZE: FRU size below 8, or out of memory; LIB_FRU_ERR_ENCODE: encoding failed. Nothing is
 * written on these.
 */
u32 LIB_FRU_WriteArrayFRUData(u8 ucComponentType, u8 ucInstance, const FRU_DATA_S *pstFRUData, u32 uiArg);

/*
 * The same for a caller who knows the device ID and the FRU size in bytes (the cached image has its low 16
 * bits as length). 0 as above; LIB_FRU_ERR_NULL_POINTER; LIB_FRU_ERR_SIZE; LIB_FRU_ERR_ENCODE.
 */
u32 LIB_FRU_OEM_WriteArrayFRUData(u8 ucDeviceID, u32 uiFRUSize, const FRU_DATA_S *pstFRUData);

/*
 * Erases a component's FRU: after a trial read every byte becomes 0xFF, on the device and in the cache;
 * device 0 (the baseboard) loses its product serial number too; a FRU event is sent. The block names the
 * component and receives the FRU name, the log source and the sentence for the caller's operation log:
 * that of a failure on every failure, untouched when the device information is missing. 0;
 * LIB_FRU_ERR_NULL_POINTER; LIB_FRU_ERR_NO_DEVICE: no device information, or the device does not answer with
 * its FRU size (nothing is written); LIB_FRU_ERR_SIZE: FRU size 0, or out of memory; LIB_FRU_ERR_LABEL: the
 * device did not take all bytes.
 */
u32 LIB_FRU_ClearFRUElectronicLabel(FRU_CLEAR_PARA_S *pstFRUClearPara);

/*
 * Fills the operation-log sentence of the block with its FRU name: that of a success for iResult
 * FRU_OPERATELOG_SUCCEEDED, else that of a failure. Makes no entry. A null block is reported.
 */
void FRU_AddClearFRULog(i32 iResult, FRU_CLEAR_PARA_S *pstFRUClearPara);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
