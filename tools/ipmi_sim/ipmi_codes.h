// SPDX-License-Identifier: Apache-2.0
// Numbers of the IPMI Storage function that this service speaks (IPMI 2.0, sections 5.2, 33 and 34).
#ifndef IPMI_SIM_CODES_H
#define IPMI_SIM_CODES_H

#include "lib_fru_ipmi.h"
#include "lib_fru_types.h"

constexpr u8 IPMI_NETFN_APP = 0x06U;
constexpr u8 IPMI_NETFN_STORAGE = 0x0AU;

constexpr u8 IPMI_CMD_CLOSE_SESSION = 0x3CU;

constexpr u8 IPMI_CMD_GET_FRU_AREA_INFO = 0x10U;
constexpr u8 IPMI_CMD_READ_FRU_DATA = 0x11U;
constexpr u8 IPMI_CMD_WRITE_FRU_DATA = 0x12U;
constexpr u8 IPMI_CMD_GET_SDR_REPOSITORY_INFO = 0x20U;
constexpr u8 IPMI_CMD_GET_SDR_ALLOCATION_INFO = 0x21U;
constexpr u8 IPMI_CMD_RESERVE_SDR_REPOSITORY = 0x22U;
constexpr u8 IPMI_CMD_GET_SDR = 0x23U;
constexpr u8 IPMI_CMD_ADD_SDR = 0x24U;
constexpr u8 IPMI_CMD_CLEAR_SDR_REPOSITORY = 0x27U;
constexpr u8 IPMI_CMD_GET_SDR_REPOSITORY_TIME = 0x28U;
constexpr u8 IPMI_CMD_SET_SDR_REPOSITORY_TIME = 0x29U;

constexpr u8 IPMI_CC_OK = FRU_CC_OK;
constexpr u8 IPMI_CC_NODE_BUSY = 0xC0U;
constexpr u8 IPMI_CC_INVALID_COMMAND = 0xC1U;
constexpr u8 IPMI_CC_RESERVATION = 0xC5U;
constexpr u8 IPMI_CC_REQUEST_LENGTH = FRU_CC_REQUEST_LENGTH;
constexpr u8 IPMI_CC_REQUEST_FIELD_LIMIT = 0xC8U;
constexpr u8 IPMI_CC_OUT_OF_RANGE = FRU_CC_COUNT_EXCEEDS;
constexpr u8 IPMI_CC_CANNOT_RETURN_COUNT = 0xCAU;
constexpr u8 IPMI_CC_NOT_PRESENT = FRU_CC_NOT_PRESENT;
constexpr u8 IPMI_CC_PRIVILEGE = 0xD4U;

#endif
