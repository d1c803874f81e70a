// SPDX-License-Identifier: Apache-2.0
// The sizes and offsets that other processes and the database rely on; nothing here is code.
#include "lib_fru_types.h"

namespace {

// A structure's size on any target: its size with 4-byte pointers, and what wider pointers add.
constexpr size_t SizeWith(size_t uiSize32, size_t uiPointers)
{
    return uiSize32 + uiPointers * (sizeof(void *) - 4U);
}

static_assert(sizeof(FRU_COMMON_HEADER_S) == 8);
static_assert(sizeof(FRU_INTERNAL_USE_AREA_S) == SizeWith(5, 1));
static_assert(sizeof(FRU_CHASSIS_INFO_S) == SizeWith(21, 4));
static_assert(sizeof(FRU_BOARD_INFO_S) == SizeWith(36, 6));
static_assert(sizeof(FRU_PRODUCT_INFO_S) == SizeWith(43, 8));
static_assert(sizeof(FRU_MULTIRECORD_S) == SizeWith(9, 1));
static_assert(sizeof(FRU_DATA_S) == SizeWith(689, 83));
static_assert(offsetof(FRU_DATA_S, stInternalUseArea) == 8);
static_assert(offsetof(FRU_DATA_S, stChassisInfo) == SizeWith(13, 1));
static_assert(offsetof(FRU_DATA_S, stBoardInfo) == SizeWith(34, 5));
static_assert(offsetof(FRU_DATA_S, stProductInfo) == SizeWith(70, 11));
static_assert(offsetof(FRU_DATA_S, astMultiRecord) == SizeWith(113, 19));
static_assert(offsetof(FRU_CHASSIS_INFO_S, ucCustomFieldCount) == SizeWith(20, 4));
static_assert(offsetof(FRU_BOARD_INFO_S, aucMfgDateTime) == 3);
static_assert(offsetof(FRU_BOARD_INFO_S, ucCustomFieldCount) == SizeWith(35, 6));
static_assert(offsetof(FRU_PRODUCT_INFO_S, ucCustomFieldCount) == SizeWith(42, 8));
static_assert(offsetof(FRU_MULTIRECORD_S, pucRecordData) == 5);

static_assert(sizeof(FRU_HW_BOARD_INFO_S) == 16);
static_assert(sizeof(FRU_HW_DIAG_INFO_S) == 16);
static_assert(sizeof(FRU_HW_DATA_S) == 32);
static_assert(offsetof(FRU_HW_DATA_S, stHwDiagInfo) == 16);
static_assert(sizeof(FRU_CUSTOM_FIELD_S) == SizeWith(216, 3));

static_assert(sizeof(FRU_DEVICE_INFO_S) == 184);
static_assert(offsetof(FRU_DEVICE_INFO_S, usStartOffset) == 3);
static_assert(offsetof(FRU_DEVICE_INFO_S, usSize) == 5);
static_assert(offsetof(FRU_DEVICE_INFO_S, ucAccessType) == 8);
static_assert(offsetof(FRU_DEVICE_INFO_S, ucEEPROMType) == 11);
static_assert(offsetof(FRU_DEVICE_INFO_S, acFRUName) == 14);
static_assert(offsetof(FRU_DEVICE_INFO_S, acImageFilePath) == 30);
static_assert(offsetof(FRU_DEVICE_INFO_S, ucBusNumber) == 158);
static_assert(offsetof(FRU_DEVICE_INFO_S, ucAddress) == 159);
static_assert(offsetof(FRU_DEVICE_INFO_S, ucSwitchLevel) == 160);
static_assert(offsetof(FRU_DEVICE_INFO_S, ucDatabaseOnly) == 180);
static_assert(offsetof(FRU_DEVICE_INFO_S, ucFieldFlag) == 182);
static_assert(sizeof(FRU_DEVICE_TBL_ENTRY_S) == 37);
static_assert(offsetof(FRU_DEVICE_TBL_ENTRY_S, ucDeviceID) == 32);
static_assert(offsetof(FRU_DEVICE_TBL_ENTRY_S, usSDRRecordID) == 35);
static_assert(sizeof(FRU_DEVICE_TBL_S) == 3703);
static_assert(offsetof(FRU_DEVICE_TBL_S, astEntry) == 1);
static_assert(sizeof(FRU_SDR_S) == 32);

static_assert(sizeof(FRU_READ_REQ_S) == 4);
static_assert(offsetof(FRU_READ_REQ_S, usOffset) == 1);
static_assert(sizeof(FRU_CLEAR_PARA_S) == 535);
static_assert(offsetof(FRU_CLEAR_PARA_S, acOperateLog) == 6);
static_assert(offsetof(FRU_CLEAR_PARA_S, acFRUName) == 518);
static_assert(offsetof(FRU_CLEAR_PARA_S, ucOperateLogType) == 534);
static_assert(sizeof(FRU_SET_PARA_S) == 684);
static_assert(offsetof(FRU_SET_PARA_S, acLabelName) == 6);
static_assert(offsetof(FRU_SET_PARA_S, acLabelValue) == 70);
static_assert(offsetof(FRU_SET_PARA_S, uiLabelValueLen) == 150);
static_assert(offsetof(FRU_SET_PARA_S, acOperateLog) == 154);
static_assert(offsetof(FRU_SET_PARA_S, acFRUName) == 666);
static_assert(offsetof(FRU_SET_PARA_S, ucFieldFlag) == 683);
static_assert(sizeof(FRU_EVENT_S) == 16);
static_assert(offsetof(FRU_EVENT_S, uiLabelID) == 8);
static_assert(sizeof(FRU_FEATURE_UPDATE_S) == 1334);
static_assert(sizeof(FRU_MR_PARAM_S) == SizeWith(10, 1));
static_assert(sizeof(FRU_ASSEMBLE_LABEL_S) == 1792);
static_assert(sizeof(FRU_OEM_CONF_S) == 1417);
static_assert(offsetof(FRU_OEM_CONF_S, ucOemFlag) == 768);
static_assert(offsetof(FRU_OEM_CONF_S, acProductSerialNumber) == 777);

static_assert(sizeof(DIAG_FRU_LABEL_S) == SizeWith(25, 3));
static_assert(offsetof(DIAG_FRU_LABEL_S, ucNoneAllowed) == SizeWith(16, 1));
static_assert(sizeof(DIAG_ELECTRONIC_FIELD_S) == 9);

} // namespace
