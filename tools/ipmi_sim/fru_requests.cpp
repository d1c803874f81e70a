// SPDX-License-Identifier: Apache-2.0
#include "fru_requests.h"

#include <cstring>

#include "ipmi_codes.h"
#include "lib_fru.h"
#include "write_lock.h"

namespace {

constexpr u32 AREA_INFO_REQ_LEN = 1U;
constexpr u32 AREA_INFO_RES_LEN = 4U;
constexpr u32 READ_REQ_LEN = 4U;
constexpr u32 READ_COUNT_INDEX = 3U;
constexpr u32 READ_RES_HEADER_LEN = 2U;
constexpr u32 WRITE_REQ_HEADER_LEN = 3U;
constexpr u32 WRITE_RES_LEN = 2U;
constexpr u32 WRITE_DATA_MAX = 0xFFU;
constexpr u32 RES_LEN_MAX = READ_RES_HEADER_LEN + 0xFFU;

u32 GetAreaInfo(const u8 *pucReq, u32 uiReqLen, u32 uiRoom, u8 *pucRes)
{
    if (uiReqLen < AREA_INFO_REQ_LEN) {
        pucRes[0] = IPMI_CC_REQUEST_LENGTH;
        return 1U;
    }
    if (uiRoom < AREA_INFO_RES_LEN) {
        pucRes[0] = IPMI_CC_CANNOT_RETURN_COUNT;
        return 1U;
    }
    return LIB_FRU_GetFRUAreaInfo(pucReq, uiReqLen, pucRes);
}

u32 ReadData(const u8 *pucReq, u32 uiReqLen, u32 uiRoom, u8 *pucRes)
{
    if (uiReqLen < READ_REQ_LEN) {
        pucRes[0] = IPMI_CC_REQUEST_LENGTH;
        return 1U;
    }
    if (uiRoom < READ_RES_HEADER_LEN + pucReq[READ_COUNT_INDEX]) {
        pucRes[0] = IPMI_CC_CANNOT_RETURN_COUNT;
        return 1U;
    }
    return LIB_FRU_ReadFRUData(pucReq, static_cast<u8>(READ_REQ_LEN), pucRes, 0U);
}

u32 WriteData(const u8 *pucReq, u32 uiReqLen, u32 uiRoom, u8 *pucRes)
{
    if (uiReqLen <= WRITE_REQ_HEADER_LEN) {
        pucRes[0] = IPMI_CC_REQUEST_LENGTH;
        return 1U;
    }
    if (uiReqLen - WRITE_REQ_HEADER_LEN > WRITE_DATA_MAX) {
        pucRes[0] = IPMI_CC_REQUEST_FIELD_LIMIT;
        return 1U;
    }
    if (uiRoom < WRITE_RES_LEN) {
        pucRes[0] = IPMI_CC_CANNOT_RETURN_COUNT;
        return 1U;
    }
    // The handler reads, patches and puts back the cached image: a label write in between would be lost.
    const WRITE_LOCK stLock;
    if (!stLock.Held()) {
        pucRes[0] = IPMI_CC_NODE_BUSY;
        return 1U;
    }
    return LIB_FRU_WriteFRUData(pucReq, uiReqLen, pucRes);
}

} // namespace

u32 AnswerFruRequest(u8 ucCommand, const u8 *pucReq, u32 uiReqLen, u32 uiRoom, u8 *pucRes)
{
    if (uiRoom == 0U) {
        return 0U;
    }
    // The handlers may fill more than the transport has room for, so they never get its buffer.
    u8 aucRes[RES_LEN_MAX] = {};
    u32 uiResLen = 1U;
    switch (ucCommand) {
    case IPMI_CMD_GET_FRU_AREA_INFO:
        uiResLen = GetAreaInfo(pucReq, uiReqLen, uiRoom, aucRes);
        break;
    case IPMI_CMD_READ_FRU_DATA:
        uiResLen = ReadData(pucReq, uiReqLen, uiRoom, aucRes);
        break;
    case IPMI_CMD_WRITE_FRU_DATA:
        uiResLen = WriteData(pucReq, uiReqLen, uiRoom, aucRes);
        break;
    default:
        aucRes[0] = IPMI_CC_INVALID_COMMAND;
        break;
    }
    if (uiResLen > uiRoom) { // a device that answers more than it was asked for
        aucRes[0] = IPMI_CC_CANNOT_RETURN_COUNT;
        uiResLen = 1U;
    }
    memcpy(pucRes, aucRes, uiResLen);
    return uiResLen;
}
