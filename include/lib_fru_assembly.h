/* SPDX-License-Identifier: Apache-2.0 */
/* libbmcfru, assembly: an image from label texts. */
#ifndef LIB_FRU_ASSEMBLY_H
#define LIB_FRU_ASSEMBLY_H

#include "lib_fru_types.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/* Indices of FRU_ASSEMBLE_LABEL_S.acSlot. */
#define FRU_ASSEMBLE_BOARD_MFG_DATE 3U /* as LIB_FRU_CaclMfgDateTime() reads it */
#define FRU_ASSEMBLE_BOARD_MANUFACTURER 4U
#define FRU_ASSEMBLE_BOARD_PRODUCT_NAME 5U
#define FRU_ASSEMBLE_BOARD_SERIAL_NUMBER 6U
#define FRU_ASSEMBLE_BOARD_PART_NUMBER 7U
#define FRU_ASSEMBLE_PRODUCT_MANUFACTURER 8U
#define FRU_ASSEMBLE_PRODUCT_NAME 9U
#define FRU_ASSEMBLE_PRODUCT_PART_NUMBER 10U
#define FRU_ASSEMBLE_PRODUCT_VERSION 11U
#define FRU_ASSEMBLE_PRODUCT_SERIAL_NUMBER 12U
#define FRU_ASSEMBLE_PRODUCT_ASSET_TAG 13U

/*
 * Builds a whole FRU image (IPMI Platform Management FRU Information Storage Definition, sections 8, 11 and
 * 12) from label texts and puts it into the cache, for a device that has no readable image of its own. The
 * device is not written.
 *
 * pstFRUInfo gives the device's ID and its FRU size in bytes (8 to 256), which is also the length of the
 * cached image; no other member is read. pstFRULabel gives the texts, each NUL-terminated within its 128
 * bytes and of at most 63 characters; an empty one is not given. The board area is built when any of the
 * slots 3 to 7 is given, the product area for any of 8 to 13; language bytes are 0, there are no custom
 * fields and the file IDs are empty. A date that does not parse is logged and leaves the date bytes 0.
 *
 * 0: the image is in the cache. FRU_ERR_NULL_POINTER: an argument is null. FRU_ERR_FAILED: no memory, a text
 * without a NUL in its slot or too long, areas that do not fit the FRU size, an FRU size out of range, or a
 * failure of the cache; nothing was put there.
 */
u32 FRU_AssembleBin(const FRU_DEVICE_INFO_S *pstFRUInfo, const FRU_ASSEMBLE_LABEL_S *pstFRULabel);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
