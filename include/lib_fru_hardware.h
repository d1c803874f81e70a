/* SPDX-License-Identifier: Apache-2.0 */
/* libbmcfru, hardware: hardware FRU block on devices, serial numbers. */
#ifndef LIB_FRU_HARDWARE_H
#define LIB_FRU_HARDWARE_H

#include "lib_fru_types.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

#define FRU_HW_ARG_USUAL 1U

/*
 * Reads the 32-byte hardware FRU block from offset 0 of a component's EEPROM. The device's FRU size must be
 * 32. uiArg is not used; calls give FRU_HW_ARG_USUAL. A block whose CRC-8 bytes do not fit is delivered as it
 * is, with a warning in the log. FRU_OK; LIB_FRU_ERR_NULL_POINTER; LIB_FRU_ERR_NO_DEVICE_ID: no such
 * component (numbers above 255 name none); LIB_FRU_ERR_NO_DEVICE: no device information, not readable, or of
 * another size.
 */
u32 LIB_FRU_GetHWFRUData(u32 uiArg, u32 uiComponentType, u32 uiInstance, FRU_HW_DATA_S *pstHWFRU);

/*
 * Writes the hardware FRU block, 32 bytes, to offset 0 of a component's EEPROM. Both CRC-8 bytes are computed
 * anew, in *pstHWData too.
 * FRU_OK; LIB_FRU_ERR_NULL_POINTER; LIB_FRU_ERR_NO_DEVICE_ID: no such component (numbers above 255 name
 * none); LIB_FRU_ERR_NO_DEVICE: no device information; LIB_FRU_ERR_ENCODE; LIB_FRU_ERR_SIZE: the device took
 * fewer bytes, or failed.
 */
u32 LIB_FRU_WriteHWFRUBinToDevice(u32 uiComponentType, u32 uiInstance, FRU_HW_DATA_S *pstHWData);

/*
 * Reads and decodes the FRU image of the first object of that component type in the product's hardware
 * description, straight from its EEPROM, past device table and cache. *pstFRUData is the caller's, cleared to
 * zero before; released with FRU_ANALYZER_SafeFree(). An image that does not decode gives FRU_OK and a record
 * without texts; the log has the reason.
 * FRU_OK; LIB_FRU_ERR_NULL_POINTER; FRU_ERR_HW_NAMESPACE; FRU_ERR_HW_XML; FRU_ERR_HW_NO_OBJECT;
 * FRU_ERR_NO_MEMORY (also for an image size of 0); FRU_ERR_FAILED: no object list, or the EEPROM gave another
 * number of bytes.
 */
u32 LIB_FRU_GetBaseboardFRUDataByI2C(u32 uiComponentType, FRU_DATA_S *pstFRUData);

/*
 * Serial numbers as texts. The output holds uiSize bytes and gets at most uiSize - 1 characters and a NUL; a
 * field that the record lacks is an empty text. All return FRU_OK, LIB_FRU_ERR_NULL_POINTER, or
 * LIB_FRU_ERR_READ when the FRU could not be read (the output stays as it is).
 */

/* Along the normal path: device table, cache, device. */
u32 LIB_FRU_GetBaseboardChassisSN(u32 uiSize, char *pucChassisSN); /* chassis area of component type 0 */
u32 LIB_FRU_GetBaseboardProductSN(u32 uiSize, char *pucProductSN); /* product area of component type 0 */
u32 LIB_FRU_GetMainBoardSN(u32 uiSize, char *pucBoardSN);          /* board area of component type 0 */
u32 LIB_FRU_GetBmcCardSN(u32 uiSize, char *pucBoardSN);            /* board area of component type 0x30 */

/* Along the direct path of LIB_FRU_GetBaseboardFRUDataByI2C(); a damaged image gives an empty text. */
u32 LIB_FRU_GetBaseboardProductSNByI2C(u32 uiSize, char *pucProductSN);
u32 LIB_FRU_GetMainBoardSNByI2C(u32 uiSize, char *pucBoardSN);
u32 LIB_FRU_GetBmcCardSNByI2C(u32 uiSize, char *pucBoardSN);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
