// SPDX-License-Identifier: Apache-2.0
// One FRU device for the tests of lib_fru: its records in the database, its EEPROM, and the lines that it
// leaves in the journals.
#ifndef TESTS_UNIT_FRU_DEVICE_H
#define TESTS_UNIT_FRU_DEVICE_H

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "fake/fake_platform.h"
#include "lib_fru_types.h"

namespace device {

using fake::BYTES;
using LINES = std::vector<std::string>;

constexpr u8 g_ucID = 0x21;
constexpr u8 g_ucType = 5;
constexpr u8 g_ucInstance = 2;
constexpr u8 g_ucBus = 3;
constexpr u8 g_ucAddress = 0xA2;
constexpr u16 g_usStart = 0x40;
constexpr u8 g_ucOutside = 0xEE;  // EEPROM bytes that are not the FRU's
constexpr size_t g_uiBehind = 32; // EEPROM bytes behind the FRU

constexpr u32 g_uiKeyInfo = 0x10810000U;
constexpr u32 g_uiKeySdr = 0x10810100U;
constexpr u32 g_uiKeyImage = 0x10810200U;
constexpr u32 g_uiKeyFlag = 0x108103FFU;
constexpr u32 g_uiKeyStatus = 0x10810400U;
constexpr u32 g_uiKeyTable = 0x108105FFU;

// ---- records

inline FRU_DEVICE_INFO_S Info(u16 usSize, u8 ucDeviceID = g_ucID)
{
    FRU_DEVICE_INFO_S stInfo;
    (void)memset(&stInfo, 0x5A, sizeof(stInfo)); // what is reserved is not looked at
    stInfo.ucDeviceID = ucDeviceID;
    stInfo.usStartOffset = g_usStart;
    stInfo.usSize = usSize;
    stInfo.ucAccessType = 0x01;
    stInfo.ucEEPROMType = 9;
    (void)strncpy(stInfo.acFRUName, "PSU2", sizeof(stInfo.acFRUName));
    (void)strncpy(stInfo.acImageFilePath, "/opt/fru/psu.bin", sizeof(stInfo.acImageFilePath));
    stInfo.ucBusNumber = g_ucBus;
    stInfo.ucAddress = g_ucAddress;
    stInfo.ucSwitchLevel = 7;
    stInfo.ucDatabaseOnly = 0;
    return stInfo;
}

template <typename RECORD_S> BYTES Bytes(const RECORD_S &stRecord)
{
    BYTES vecBytes(sizeof(stRecord));
    (void)memcpy(vecBytes.data(), &stRecord, sizeof(stRecord));
    return vecBytes;
}

inline void PutInfo(const FRU_DEVICE_INFO_S &stInfo)
{
    fake::Db()[g_uiKeyInfo | stInfo.ucDeviceID] = Bytes(stInfo);
}

struct ENTRY_S
{
    u8 ucDeviceID;
    u8 ucComponentType;
    u8 ucInstance;
    u16 usRecordID;
};

inline FRU_DEVICE_TBL_S Table(const std::vector<ENTRY_S> &vecEntries)
{
    FRU_DEVICE_TBL_S stTable = {};
    stTable.ucCount = static_cast<u8>(vecEntries.size());
    for (size_t i = 0; i < vecEntries.size() && i < FRU_DEVICE_TBL_MAX; ++i) {
        (void)memset(stTable.astEntry[i].aucReserved, 0x77, sizeof(stTable.astEntry[i].aucReserved));
        stTable.astEntry[i].ucDeviceID = vecEntries[i].ucDeviceID;
        stTable.astEntry[i].ucComponentType = vecEntries[i].ucComponentType;
        stTable.astEntry[i].ucInstance = vecEntries[i].ucInstance;
        stTable.astEntry[i].usSDRRecordID = vecEntries[i].usRecordID;
    }
    return stTable;
}

inline void PutTable(const FRU_DEVICE_TBL_S &stTable)
{
    fake::Db()[g_uiKeyTable] = Bytes(stTable);
}

inline void PutStatus(u8 ucStatus, u8 ucDeviceID = g_ucID)
{
    fake::Db()[g_uiKeyStatus | ucDeviceID] = {ucStatus};
}

inline BYTES &Cached(u8 ucDeviceID = g_ucID)
{
    return fake::Db()[g_uiKeyImage | ucDeviceID];
}

// ---- EEPROM

inline BYTES &Chip()
{
    return fake::Eeprom(g_ucBus, g_ucAddress);
}

// An EEPROM that holds the image at the start offset and other bytes around it.
inline BYTES ChipWith(const BYTES &vecImage)
{
    BYTES vecChip(g_usStart + vecImage.size() + g_uiBehind, g_ucOutside);
    std::copy(vecImage.begin(), vecImage.end(), vecChip.begin() + g_usStart);
    return vecChip;
}

// The whole device: table, record, trusted cache, and the same image in cache and EEPROM.
inline void Provision(const BYTES &vecImage, u8 ucDeviceID = g_ucID)
{
    PutTable(Table({{ucDeviceID, g_ucType, g_ucInstance, 0x1234}}));
    PutInfo(Info(static_cast<u16>(vecImage.size()), ucDeviceID));
    PutStatus(0, ucDeviceID);
    Cached(ucDeviceID) = vecImage;
    Chip() = ChipWith(vecImage);
}

// Bytes that differ from each other, so that a wrong offset shows.
inline BYTES Pattern(size_t uiSize, u8 ucFirst = 0)
{
    BYTES vecBytes(uiSize);
    for (size_t i = 0; i < uiSize; ++i) {
        vecBytes[i] = static_cast<u8>(ucFirst + i * 7U + (i >> 8U));
    }
    return vecBytes;
}

inline BYTES Part(const BYTES &vecBytes, size_t uiFrom, size_t uiCount)
{
    return BYTES(vecBytes.begin() + static_cast<std::ptrdiff_t>(uiFrom),
                 vecBytes.begin() + static_cast<std::ptrdiff_t>(uiFrom + uiCount));
}

// ---- lines of the journals

inline std::string Line(u32 uiCategory, u32 uiSeverity, const std::string &strText)
{
    return std::to_string(uiCategory) + "/" + std::to_string(uiSeverity) + " lib_fru.c: " + strText;
}

inline std::string Null(const std::string &strFunction, const std::string &strPointer)
{
    return fake::NullMessage("lib_fru.c", strFunction, strPointer);
}

inline std::string Hex(u32 uiValue)
{
    char acText[16];
    (void)snprintf(acText, sizeof(acText), "%#x", uiValue);
    return acText;
}

inline std::string DbGet(u32 uiKey, u32 uiLength, u32 uiResult = 0)
{
    return "DB_Get " + Hex(uiKey) + " " + std::to_string(uiLength) + " -> " + Hex(uiResult);
}

inline std::string DbPut(u32 uiKey, u32 uiLength, u32 uiResult = 0)
{
    return "DB_Put " + Hex(uiKey) + " " + std::to_string(uiLength) + " lib_fru_db.c -> " + Hex(uiResult);
}

inline std::string Eeprom(const std::string &strDirection, u32 uiOffset, u32 uiLength, i32 iResult)
{
    return "EEPROM " + strDirection + " type=9 bus=3 addr=0xa2 switch=7 off=" + Hex(uiOffset) +
           " len=" + std::to_string(uiLength) + " -> " + std::to_string(iResult);
}

// The platform calls without the database's openings.
inline LINES Calls()
{
    LINES vecCalls = fake::Calls();
    vecCalls.erase(std::remove(vecCalls.begin(), vecCalls.end(), "DB_Open"), vecCalls.end());
    return vecCalls;
}

} // namespace device

#endif
