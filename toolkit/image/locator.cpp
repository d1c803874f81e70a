// SPDX-License-Identifier: Apache-2.0
#include "toolkit/image/locator.h"

#include <algorithm>
#include <array>

#include "lib_fru_access.h"

namespace {

constexpr u8 SDR_VERSION = 0x51U;
constexpr u8 SDR_TYPE_FRU_LOCATOR = 0x11U;
constexpr size_t SDR_HEADER_LEN = 5U;
constexpr u8 BMC_SLAVE_ADDRESS = 0x20U;
constexpr u8 LOGICAL_DEVICE = 0x80U;  // reached through Read and Write FRU Data
constexpr u8 DEVICE_TYPE_FRU = 0x10U; // FRU inventory device behind a management controller
constexpr u8 NAME_ASCII = 0xC0U;

constexpr u8 ENTITY_UNSPECIFIED = 0x00U;
constexpr u8 ENTITY_MANAGEMENT_MODULE = 0x06U;
constexpr u8 ENTITY_SYSTEM_BOARD = 0x07U;
constexpr u8 ENTITY_INSTANCE_MAX = 0x5FU; // above it an instance is relative to some other device

u8 EntityOf(u8 ucComponentType)
{
    if (ucComponentType == FRU_COMPONENT_BASEBOARD) {
        return ENTITY_SYSTEM_BOARD;
    }
    return ucComponentType == FRU_COMPONENT_BMC_CARD ? ENTITY_MANAGEMENT_MODULE : ENTITY_UNSPECIFIED;
}

} // namespace

ENTITY_S EntityList::Take(u8 ucComponentType, u8 ucInstance)
{
    const u8 ucID = EntityOf(ucComponentType);
    if (ucInstance <= ENTITY_INSTANCE_MAX && m_setTaken.emplace(ucID, ucInstance).second) {
        return {ucID, ucInstance};
    }
    for (u8 ucFree = 0U; ucFree <= ENTITY_INSTANCE_MAX; ++ucFree) {
        if (m_setTaken.emplace(ucID, ucFree).second) {
            return {ucID, ucFree};
        }
    }
    return {ucID, ENTITY_INSTANCE_MAX}; // more of one kind than IPMI can count
}

void EntityList::Note(const ENTITY_S &stEntity)
{
    m_setTaken.emplace(stEntity.ucID, stEntity.ucInstance);
}

std::vector<u8> MakeLocator(u16 usRecordID, u8 ucDeviceID, const ENTITY_S &stEntity, std::string strName)
{
    if (strName.empty()) {
        strName = "FRU " + std::to_string(ucDeviceID);
    }
    for (char &cLetter : strName) {
        cLetter = cLetter >= ' ' && cLetter <= '~' ? cLetter : '?';
    }
    strName += strName.size() == 1U ? " " : "";
    strName.resize(std::min<size_t>(strName.size(), LOCATOR_NAME_MAX));
    const std::array<u8, LOCATOR_FIXED_LEN> aucFixed = {
        static_cast<u8>(usRecordID & 0xFFU),
        static_cast<u8>(usRecordID >> 8U),
        SDR_VERSION,
        SDR_TYPE_FRU_LOCATOR,
        static_cast<u8>(LOCATOR_FIXED_LEN + strName.size() - SDR_HEADER_LEN),
        BMC_SLAVE_ADDRESS,
        ucDeviceID,
        LOGICAL_DEVICE,
        0U, // channel 0
        0U,
        DEVICE_TYPE_FRU,
        0U,
        stEntity.ucID,
        stEntity.ucInstance,
        0U,
        static_cast<u8>(NAME_ASCII | strName.size())};
    std::vector<u8> vecBytes(aucFixed.size() + strName.size());
    std::copy(strName.begin(), strName.end(), std::copy(aucFixed.begin(), aucFixed.end(), vecBytes.begin()));
    return vecBytes;
}
