// SPDX-License-Identifier: Apache-2.0
// One FRU device in the fake platform: its table entry, its information record and its chip.
#ifndef TESTS_UNIT_LIB_FRU_ONE_DEVICE_H
#define TESTS_UNIT_LIB_FRU_ONE_DEVICE_H

#include <cstring>
#include <string>
#include <vector>

#include "fake/fake_platform.h"
#include "lib_fru_types.h"

namespace one_device {

constexpr u8 g_ucBus = 2U;
constexpr u8 g_ucAddress = 0xA0U;

inline FRU_DEVICE_INFO_S Info(u8 ucDeviceID, u16 usSize)
{
    FRU_DEVICE_INFO_S stInfo = {};
    stInfo.ucDeviceID = ucDeviceID;
    stInfo.usSize = usSize;
    stInfo.ucEEPROMType = 9;
    stInfo.ucBusNumber = g_ucBus;
    stInfo.ucAddress = g_ucAddress;
    (void)strcpy(stInfo.acFRUName, "Board");
    return stInfo;
}

inline void PutInfo(const FRU_DEVICE_INFO_S &stInfo)
{
    const u8 *pucInfo = reinterpret_cast<const u8 *>(&stInfo);
    fake::Db()[0x10810000U | stInfo.ucDeviceID].assign(pucInfo, pucInfo + sizeof(stInfo));
}

inline void PutTable(u8 ucDeviceID, u8 ucComponentType, u8 ucInstance)
{
    FRU_DEVICE_TBL_S stTable = {};
    stTable.ucCount = 1;
    stTable.astEntry[0].ucDeviceID = ucDeviceID;
    stTable.astEntry[0].ucComponentType = ucComponentType;
    stTable.astEntry[0].ucInstance = ucInstance;
    const u8 *pucTable = reinterpret_cast<const u8 *>(&stTable);
    fake::Db()[0x108105FFU].assign(pucTable, pucTable + sizeof(stTable));
}

// A device that holds an image and whose cache is not trusted.
inline void Put(u8 ucDeviceID, u8 ucComponentType, u8 ucInstance, const fake::BYTES &vecImage)
{
    PutTable(ucDeviceID, ucComponentType, ucInstance);
    PutInfo(Info(ucDeviceID, static_cast<u16>(vecImage.size())));
    fake::Db()[0x10810400U | ucDeviceID] = {1};
    fake::Eeprom(g_ucBus, g_ucAddress) = vecImage;
}

// The same with a header that does not hold, and a stored image that a recovery would write over it.
inline void PutDamaged(u8 ucDeviceID, u8 ucComponentType, u8 ucInstance, const fake::BYTES &vecImage)
{
    Put(ucDeviceID, ucComponentType, ucInstance, vecImage);
    FRU_DEVICE_INFO_S stInfo = Info(ucDeviceID, static_cast<u16>(vecImage.size()));
    (void)strcpy(stInfo.acImageFilePath, "/opt/fru/board.bin");
    PutInfo(stInfo);
    fake::WriteFile("/opt/fru/board.bin", vecImage);
    fake::Eeprom(g_ucBus, g_ucAddress)[7] ^= 0xFFU;
}

// The messages of lib_fru itself, without those of the decoder below it.
inline std::vector<std::string> OwnMessages()
{
    std::vector<std::string> vecOwn;
    for (const std::string &strMessage : fake::Messages()) {
        if (strMessage.find(" lib_fru.c: ") != std::string::npos) {
            vecOwn.push_back(strMessage);
        }
    }
    return vecOwn;
}

} // namespace one_device

#endif
