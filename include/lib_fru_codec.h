/* SPDX-License-Identifier: Apache-2.0 */
/*
 * libbmcfru, codec: image bytes <-> decoded record, hardware block, custom fields.
 *
 * Image format: IPMI Platform Management FRU Information Storage Definition v1.0, version 1 layouts. Nothing
 * here does I/O, uses the database or keeps state: calls on different records may run at the same time.
 */
#ifndef LIB_FRU_CODEC_H
#define LIB_FRU_CODEC_H

#include "lib_fru_types.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/*
 * Checks the common header (section 8) at pstHeader, 8 bytes.
 *
 * 0                   valid
 * LIB_FRU_ERR_HEADER  format version other than 1
 * LIB_FRU_ERR_SIZE    null pointer, or the eight bytes do not sum to 0
 */
u32 FRU_ANALYZER_CheckValidHeader(const u8 *pstHeader);

/*
 * Decodes the image of uiLength bytes at pucBuff into *pstFRUData.
 *
 * The caller clears the record to zero first. stChassisInfo.ucCustomFieldCount preset to
 * FRU_CHASSIS_FIXED_SLOTS and stProductInfo.ucCustomFieldCount preset to FRU_PRODUCT_FIXED_SLOTS ask for
 * exactly that many custom fields, missing ones as empty texts; more of them in the image fail the area. The
 * record owns what it then points to, also after a failure: release it with FRU_ANALYZER_SafeFree().
 *
 * Texts: 8-bit ASCII as it is, 6-bit ASCII (section 13) unpacked, binary as upper-case hexadecimal digits,
 * BCD plus as an empty text. An info area that ends with the image's last byte is refused: pass the whole
 * device, not the image's own length. A damaged MultiRecord area (section 16) leaves the record without
 * MultiRecord data, is told of in the log, and is no failure.
 *
 * 0                   decoded
 * LIB_FRU_ERR_READ    an area other than the MultiRecord area could not be decoded
 * LIB_FRU_ERR_HEADER  the common header is invalid, or uiLength is below 8
 * LIB_FRU_ERR_SIZE    null pointer, or uiLength is 0
 */
u32 FRU_ANALYZER_InterpretFRUData(const u8 *pucBuff, u32 uiLength, FRU_DATA_S *pstFRUData);

/*
 * Encodes the record into pucBuf of uiLength bytes, filled with zeros by the caller: the bytes between an
 * area's end mark and its checksum, and the header bytes of absent areas, are taken from there. Nothing is
 * written past uiLength. The record stays as it is.
 *
 * An area is emitted when its offset in stCommonHeader is not 0; the real offsets, area lengths and checksums
 * are computed. Texts become 8-bit ASCII fields; a custom field of a single byte is coded as FRU_FIELD_END,
 * the format's own end mark, so that a decoder takes it as the end of the list (section 13). A null text or
 * custom field leaves no field in the image, an empty one an empty field; a null custom-field array counts as
 * no fields. MultiRecord headers are copied as they are, their checksums included.
 *
 * The MultiRecord area counts for its size modulo 2048: of records that need 2048 bytes or more, the image's
 * returned size leaves bytes out. A caller that wants such an image whole decodes it again and compares.
 *
 * Returns the bytes of the image (at least 8), or -1: null pointer, uiLength below 8 or too small, a chassis
 * type that is no known text, a text above FRU_FIELD_MAX_TEXT bytes, an info area above 2040 bytes, an area
 * starting beyond byte 2040, a MultiRecord without data, or no MultiRecord with the end-of-list bit. The
 * buffer then holds part of an image and is not to be used.
 */
i32 FRU_ANALYZER_ConvertToArray(const FRU_DATA_S *pstFRUData, u32 uiLength, u8 *pucBuf);

/*
 * Releases every buffer that the record owns, with free(), and nulls the pointers; all other members stay, so
 * a second call does nothing. The record itself is the caller's. Null is logged and ignored.
 */
void FRU_ANALYZER_SafeFree(FRU_DATA_S *pstFRUData);

/*
 * Copies the hardware FRU block of uiSize bytes at pucBuff into *pstFruHwData. A wrong CRC-8 of either half
 * is logged as a warning and is no failure.
 *
 * 0                 copied
 * LIB_FRU_ERR_SIZE  null pointer, or uiSize other than FRU_HW_DATA_LEN; the record is untouched
 */
u32 FRU_ANALYZER_InterpretALLHwFRUData(const u8 *pucBuff, u32 uiSize, FRU_HW_DATA_S *pstFruHwData);

/*
 * Computes both CRC-8 bytes of the block, in the caller's record too, and copies its uiSize bytes to pucBuf.
 *
 * 0                 copied
 * LIB_FRU_ERR_SIZE  null pointer, or uiSize other than FRU_HW_DATA_LEN; nothing is written
 */
u32 FRU_ANALYZER_ConvertToHwArray(FRU_HW_DATA_S *pstHwData, u32 uiSize, u8 *pucBuf);

/*
 * Fills *pstFRUCustomField, cleared to zero by the caller, with the custom fields of a decoded record: slots
 * of 64 bytes for the second and third chassis field and the first board field, and for each area a heap text
 * of all fields that are not empty, a line feed behind each, escaped as by FRU_ANALYZER_Escape(); null when
 * there are none. Release it with FRU_ANALYZER_FreeCustomField().
 *
 * 0                   done; also when memory ran out while the product fields were joined, whose text is then
 *                     null
 * LIB_FRU_ERR_DECODE  out of memory; the heap texts are released and null, slots and lengths stay as they
 *                     were filled
 * LIB_FRU_ERR_SIZE    null pointer
 */
u32 FRU_ANALYZER_InterpretCustomField(const FRU_DATA_S *pstFRUData, FRU_CUSTOM_FIELD_S *pstFRUCustomField);

/* Frees and nulls the three heap texts; everything else stays. Null is logged and ignored. */
void FRU_ANALYZER_FreeCustomField(FRU_CUSTOM_FIELD_S *pstCustomField);

/*
 * Returns a new heap text, the caller's to free(): pcStr with a backslash before every single quote and
 * backslash, line feeds as backslash n and carriage returns as backslash r. Null when pcStr is null or memory
 * ran out.
 */
char *FRU_ANALYZER_Escape(const char *pcStr);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
