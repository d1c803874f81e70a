// SPDX-License-Identifier: Apache-2.0
#include "sdr_repository.h"

#include <algorithm>
#include <cstring>
#include <ctime>
#include <string>

#include "ipmi_codes.h"
#include "lib_fru.h"
#include "toolkit/image/locator.h"

namespace {

// FRU Device Locator (IPMI 2.0, section 43.8).
constexpr u8 SDR_VERSION = 0x51U;
constexpr u8 SDR_TYPE_FRU_LOCATOR = 0x11U;
constexpr size_t SDR_HEADER_LEN = 5U;
constexpr size_t SDR_VERSION_INDEX = 2U;
constexpr size_t SDR_TYPE_INDEX = 3U;
constexpr size_t SDR_LENGTH_INDEX = 4U;
constexpr size_t LOCATOR_DEVICE_ID_INDEX = 6U;
constexpr size_t LOCATOR_NAME_TYPE_INDEX = 15U;
constexpr u8 LOCATOR_NAME_LEN_MASK = 0x1FU;
constexpr size_t LOCATOR_ENTITY_INDEX = 12U;

constexpr u16 RECORD_ID_FIRST = 0x0000U;
constexpr u16 RECORD_ID_LAST = 0xFFFFU;

constexpr size_t GET_SDR_REQ_LEN = 6U;
constexpr size_t GET_SDR_RES_HEADER_LEN = 3U;
constexpr u8 GET_SDR_WHOLE_RECORD = 0xFFU;
constexpr u8 OPERATION_SUPPORT = 0x03U; // Reserve and Get Allocation Info; the repository cannot be written

u8 LowByte(size_t uiValue)
{
    return static_cast<u8>(uiValue & 0xFFU);
}

u8 HighByte(size_t uiValue)
{
    return LowByte(uiValue >> 8U);
}

u16 Word(const u8 *pucBytes)
{
    return static_cast<u16>(pucBytes[0] | (pucBytes[1] << 8U));
}

// The record comes from another process: a locator only if it is one in every byte that a client relies on.
bool IsLocatorOf(u8 ucDeviceID, const FRU_SDR_S &stSdr)
{
    const u8 *pucSdr = stSdr.aucData;
    const size_t uiLength = SDR_HEADER_LEN + pucSdr[SDR_LENGTH_INDEX];
    return pucSdr[SDR_VERSION_INDEX] == SDR_VERSION && pucSdr[SDR_TYPE_INDEX] == SDR_TYPE_FRU_LOCATOR &&
           uiLength <= sizeof(stSdr.aucData) &&
           uiLength >= LOCATOR_FIXED_LEN + (pucSdr[LOCATOR_NAME_TYPE_INDEX] & LOCATOR_NAME_LEN_MASK) &&
           pucSdr[LOCATOR_DEVICE_ID_INDEX] == ucDeviceID;
}

// The locator that the FRU service has put into the cache, or nothing.
std::vector<u8> LocatorOfService(u8 ucDeviceID)
{
    FRU_SDR_S stSdr = {};
    if (FRU_DB_GetFRUSDR(ucDeviceID, &stSdr) != FRU_OK || !IsLocatorOf(ucDeviceID, stSdr)) {
        return {};
    }
    return {stSdr.aucData, stSdr.aucData + SDR_HEADER_LEN + stSdr.aucData[SDR_LENGTH_INDEX]};
}

bool IsTaken(const std::vector<SDR_S> &vecSdrs, u16 usRecordID)
{
    return std::any_of(vecSdrs.begin(), vecSdrs.end(),
                       [usRecordID](const SDR_S &stSdr) { return stSdr.usRecordID == usRecordID; });
}

bool IsUsable(u16 usRecordID)
{
    return usRecordID != RECORD_ID_FIRST && usRecordID != RECORD_ID_LAST;
}

// Entries with an ID of their own keep it whatever comes before them; the others fill what is free from 1 on.
void NumberSdrs(std::vector<SDR_S> &vecSdrs)
{
    std::vector<SDR_S> vecDone;
    for (SDR_S &stSdr : vecSdrs) {
        if (IsTaken(vecDone, stSdr.usRecordID)) {
            stSdr.usRecordID = RECORD_ID_FIRST;
        }
        vecDone.push_back({stSdr.usRecordID, {}});
    }
    u16 usFree = 1U;
    for (SDR_S &stSdr : vecSdrs) {
        if (!IsUsable(stSdr.usRecordID)) {
            while (IsTaken(vecSdrs, usFree)) {
                ++usFree;
            }
            stSdr.usRecordID = usFree;
        }
        stSdr.vecBytes[0] = LowByte(stSdr.usRecordID);
        stSdr.vecBytes[1] = HighByte(stSdr.usRecordID);
    }
}

void AppendTime(std::vector<u8> *pvecRes, u32 uiTime)
{
    for (u32 uiShift = 0U; uiShift < 32U; uiShift += 8U) {
        pvecRes->push_back(LowByte(uiTime >> uiShift));
    }
}

// The clock of the stamps, which may be ahead of the machine's after many changes in one second.
std::vector<u8> RepositoryTime(u32 uiChangedAt)
{
    std::vector<u8> vecRes = {IPMI_CC_OK};
    AppendTime(&vecRes, std::max(static_cast<u32>(time(nullptr)), uiChangedAt));
    return vecRes;
}

std::vector<u8> RepositoryInfo(size_t uiCount, u32 uiChangedAt)
{
    std::vector<u8> vecRes = {IPMI_CC_OK, SDR_VERSION, LowByte(uiCount), HighByte(uiCount), 0U, 0U};
    for (int i = 0; i < 2; ++i) { // most recent addition, most recent erase: told apart by nobody here
        AppendTime(&vecRes, uiChangedAt);
    }
    vecRes.push_back(OPERATION_SUPPORT);
    return vecRes;
}

// One unit for each record, none free.
std::vector<u8> AllocationInfo(size_t uiCount)
{
    const size_t uiUnit = LOCATOR_FIXED_LEN + LOCATOR_NAME_MAX;
    return {
        IPMI_CC_OK, LowByte(uiCount), HighByte(uiCount), LowByte(uiUnit), HighByte(uiUnit), 0U, 0U, 0U, 0U,
        1U};
}

} // namespace

std::vector<SDR_S> ListSdrs()
{
    FRU_DEVICE_TBL_S stTable = {};
    std::vector<SDR_S> vecSdrs;
    if (LIB_FRU_GetFRUDeviceTbl(&stTable) != FRU_OK) {
        return vecSdrs;
    }
    const u32 uiCount = std::min<u32>(stTable.ucCount, FRU_DEVICE_TBL_MAX);
    EntityList stEntities;
    std::vector<std::pair<FRU_DEVICE_TBL_ENTRY_S, std::string>> vecNamed; // in step with the SDRs
    for (u32 i = 0U; i < uiCount; ++i) {
        const FRU_DEVICE_TBL_ENTRY_S &stEntry = stTable.astEntry[i];
        FRU_DEVICE_INFO_S stInfo = {};
        if (FRU_DB_GetFRUDeviceInfo(stEntry.ucDeviceID, &stInfo) != FRU_OK) {
            continue;
        }
        const std::vector<u8> vecLocator = LocatorOfService(stEntry.ucDeviceID);
        if (!vecLocator.empty()) {
            stEntities.Note({vecLocator[LOCATOR_ENTITY_INDEX], vecLocator[LOCATOR_ENTITY_INDEX + 1U]});
        }
        vecSdrs.push_back({stEntry.usSDRRecordID, vecLocator});
        vecNamed.emplace_back(
            stEntry, std::string(stInfo.acFRUName, strnlen(stInfo.acFRUName, sizeof(stInfo.acFRUName))));
    }
    // What the service says stays as it is; the others get what is left.
    for (size_t i = 0U; i < vecSdrs.size(); ++i) {
        const FRU_DEVICE_TBL_ENTRY_S &stEntry = vecNamed[i].first;
        if (vecSdrs[i].vecBytes.empty()) {
            const ENTITY_S stEntity = stEntities.Take(stEntry.ucComponentType, stEntry.ucInstance);
            vecSdrs[i].vecBytes = MakeLocator(0U, stEntry.ucDeviceID, stEntity, vecNamed[i].second);
        }
    }
    NumberSdrs(vecSdrs);
    return vecSdrs;
}

u32 SDR_REPOSITORY::Answer(u8 ucCommand, const u8 *pucReq, u32 uiReqLen, u32 uiRoom, u8 *pucRes)
{
    if (uiRoom == 0U) {
        return 0U;
    }
    std::vector<u8> vecRes = Respond(ucCommand, pucReq, uiReqLen, uiRoom);
    if (vecRes.size() > uiRoom) {
        vecRes = {IPMI_CC_CANNOT_RETURN_COUNT};
    }
    std::copy(vecRes.begin(), vecRes.end(), pucRes);
    return static_cast<u32>(vecRes.size());
}

std::vector<u8> SDR_REPOSITORY::Respond(u8 ucCommand, const u8 *pucReq, u32 uiReqLen, u32 uiRoom)
{
    const std::vector<SDR_S> vecSdrs = ListSdrs();
    NoteChange(vecSdrs);
    switch (ucCommand) {
    case IPMI_CMD_GET_SDR_REPOSITORY_INFO:
        return RepositoryInfo(vecSdrs.size(), m_uiChangedAt);
    case IPMI_CMD_GET_SDR_ALLOCATION_INFO:
        return AllocationInfo(vecSdrs.size());
    case IPMI_CMD_RESERVE_SDR_REPOSITORY:
        m_usReservation = static_cast<u16>(m_usReservation == RECORD_ID_LAST ? 1U : m_usReservation + 1U);
        m_bReserved = true;
        return {IPMI_CC_OK, LowByte(m_usReservation), HighByte(m_usReservation)};
    case IPMI_CMD_GET_SDR_REPOSITORY_TIME:
        return RepositoryTime(m_uiChangedAt);
    case IPMI_CMD_GET_SDR:
        return GetSdr(vecSdrs, pucReq, uiReqLen, uiRoom);
    default:
        return {IPMI_CC_INVALID_COMMAND};
    }
}

std::vector<u8> SDR_REPOSITORY::GetSdr(const std::vector<SDR_S> &vecSdrs, const u8 *pucReq, u32 uiReqLen,
                                       u32 uiRoom) const
{
    if (uiReqLen < GET_SDR_REQ_LEN) {
        return {IPMI_CC_REQUEST_LENGTH};
    }
    const u16 usReservation = Word(pucReq);
    const u16 usRecordID = Word(pucReq + 2U);
    const size_t uiOffset = pucReq[4];
    // A record read in pieces must be one record: the repository may not have changed in between.
    if (uiOffset != 0U && (!m_bReserved || usReservation != m_usReservation)) {
        return {IPMI_CC_RESERVATION};
    }
    size_t uiIndex = 0U;
    if (usRecordID == RECORD_ID_LAST) {
        uiIndex = vecSdrs.empty() ? 0U : vecSdrs.size() - 1U;
    } else if (usRecordID != RECORD_ID_FIRST) {
        while (uiIndex < vecSdrs.size() && vecSdrs[uiIndex].usRecordID != usRecordID) {
            ++uiIndex;
        }
    }
    if (uiIndex >= vecSdrs.size()) {
        return {IPMI_CC_NOT_PRESENT};
    }
    const std::vector<u8> &vecBytes = vecSdrs[uiIndex].vecBytes;
    if (uiOffset >= vecBytes.size()) {
        return {IPMI_CC_OUT_OF_RANGE};
    }
    const size_t uiLeft = vecBytes.size() - uiOffset;
    const size_t uiCount = pucReq[5] == GET_SDR_WHOLE_RECORD ? uiLeft : pucReq[5];
    if (uiCount > uiLeft) {
        return {IPMI_CC_OUT_OF_RANGE};
    }
    if (GET_SDR_RES_HEADER_LEN + uiCount > uiRoom) {
        return {IPMI_CC_CANNOT_RETURN_COUNT};
    }
    const u16 usNext = uiIndex + 1U < vecSdrs.size() ? vecSdrs[uiIndex + 1U].usRecordID : RECORD_ID_LAST;
    std::vector<u8> vecRes = {IPMI_CC_OK, LowByte(usNext), HighByte(usNext)};
    const auto itBegin = vecBytes.begin() + static_cast<std::ptrdiff_t>(uiOffset);
    vecRes.insert(vecRes.end(), itBegin, itBegin + static_cast<std::ptrdiff_t>(uiCount));
    return vecRes;
}

// A change gives the repository a new time stamp, by which clients throw their copies away, and
// cancels the reservation.
void SDR_REPOSITORY::NoteChange(const std::vector<SDR_S> &vecSdrs)
{
    std::vector<u8> vecAll;
    for (const SDR_S &stSdr : vecSdrs) {
        vecAll.insert(vecAll.end(), stSdr.vecBytes.begin(), stSdr.vecBytes.end());
    }
    if (m_uiChangedAt != 0U && vecAll == m_vecLastSeen) {
        return;
    }
    // Never the stamp that the former contents had, even within one second.
    m_uiChangedAt = std::max(static_cast<u32>(time(nullptr)), m_uiChangedAt + 1U);
    m_vecLastSeen = std::move(vecAll);
    m_bReserved = false;
}
