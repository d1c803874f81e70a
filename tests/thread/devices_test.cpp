// SPDX-License-Identifier: Apache-2.0
// Readers and writers of different devices, MultiRecord updates, destroys and the software name on many threads at once;
// linked with the fake platform and with the desk's.
#include <atomic>
#include <cstdio>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "chips.h"
#include "lib_fru.h"

namespace {

constexpr u8 DEVICES = 5; // device 0 is the baseboard, which gets MultiRecords
constexpr u32 ROUNDS = 20;
constexpr u16 FRU_SIZE = 512;
constexpr u8 COMPONENT = 0x20;

FRU_DEVICE_INFO_S DeviceInfo(u8 ucDevice)
{
    FRU_DEVICE_INFO_S stInfo = {};
    stInfo.ucDeviceID = ucDevice;
    stInfo.usSize = FRU_SIZE;
    stInfo.ucEEPROMType = FRU_EEPROM_TYPE_MIN;
    stInfo.ucBusNumber = ucDevice;
    stInfo.ucAddress = 0xA0;
    stInfo.ucFieldFlag = 7U;
    (void)snprintf(stInfo.acFRUName, sizeof(stInfo.acFRUName), "device%u", ucDevice);
    return stInfo;
}

u8 ComponentOf(u8 ucDevice)
{
    return ucDevice == 0U ? u8{FRU_COMPONENT_BASEBOARD} : COMPONENT;
}

void PutDevices()
{
    std::vector<u8> vecImage = {1, 0, 0, 0, 0, 0, 0, 0xFF};
    vecImage.resize(FRU_SIZE);
    FRU_DEVICE_TBL_S stTable = {};
    stTable.ucCount = DEVICES;
    for (u8 i = 0; i < DEVICES; i++) {
        stTable.astEntry[i].ucComponentType = ComponentOf(i);
        stTable.astEntry[i].ucInstance = i;
        stTable.astEntry[i].ucDeviceID = i;
        const FRU_DEVICE_INFO_S stInfo = DeviceInfo(i);
        chips::Put(stInfo, vecImage);
        ASSERT_EQ(FRU_DB_PutFRUDeviceInfo(i, &stInfo), FRU_OK);
        ASSERT_EQ(FRU_DB_PutFRUData(i, FRU_SIZE, vecImage.data()), FRU_OK);
        ASSERT_EQ(FRU_DB_PutFRUDataCacheStatus(i, 1U), FRU_OK);
    }
    ASSERT_EQ(FRU_DB_PutFRUDeviceTbl(&stTable), FRU_OK);
}

std::string SerialOf(u8 ucDevice)
{
    FRU_DATA_S stData = {};
    const u32 uiRet = LIB_FRU_GetFRUData(ComponentOf(ucDevice), ucDevice, FRU_READ_MODE_PLAIN, 0U, &stData);
    u8 *pucText = nullptr;
    (void)memcpy(&pucText, &stData.stProductInfo.pucProductSerialNum, sizeof(pucText));
    const std::string strText =
        uiRet == FRU_OK && pucText != nullptr ? reinterpret_cast<const char *>(pucText) : "";
    FRU_ANALYZER_SafeFree(&stData);
    return strText;
}

bool WriteAndRead(u8 ucDevice, u32 uiRound)
{
    FRU_SET_PARA_S stPara = {};
    stPara.ucComponentType = ComponentOf(ucDevice);
    stPara.ucInstance = ucDevice;
    (void)snprintf(stPara.acLabelName, sizeof(stPara.acLabelName), "Product Serial Number");
    (void)snprintf(stPara.acLabelValue, sizeof(stPara.acLabelValue), "D%u-%u", ucDevice, uiRound);
    const std::string strValue = stPara.acLabelValue;
    const u8 aucRead[] = {ucDevice, 0U, 0U, FRU_COMMON_HEADER_LEN};
    u8 aucHeader[FRU_READ_RES_HEADER_LEN + FRU_COMMON_HEADER_LEN] = {};
    return LIB_FRU_WriteElectronicLabel(&stPara) == FRU_OK && SerialOf(ucDevice) == strValue &&
           LIB_FRU_ReadFRUData(aucRead, sizeof(aucRead), aucHeader, 0U) == sizeof(aucHeader) &&
           aucHeader[FRU_READ_RES_HEADER_LEN] == 1U;
}

bool Update(u32 uiRound)
{
    u8 aucValue[4] = {static_cast<u8>(uiRound), 'a', 'b', 'c'};
    FRU_MR_PARAM_S stParam = {};
    stParam.ucRecordTypeID = FRU_MR_TYPE_MANAGEMENT_ACCESS;
    stParam.ucSubType = static_cast<u8>(1U + uiRound % 6U);
    stParam.uiLength = sizeof(aucValue);
    stParam.pucBuf = aucValue;
    return FRU_innerUpdateMultiRecord(&stParam) == FRU_OK;
}

// Every writer has its own device and must come through; whoever shares one or reads has to be without a race.
void RunThreads(std::atomic<u32> &uiFailures)
{
    std::vector<std::thread> vecThreads;
    const auto fnStart = [&](auto fnRound) {
        vecThreads.emplace_back([fnRound, &uiFailures] {
            for (u32 uiRound = 0; uiRound < ROUNDS; uiRound++) {
                uiFailures += fnRound(uiRound) ? 0U : 1U;
            }
        });
    };
    for (u8 i = 1; i < DEVICES; i++) {
        fnStart([i](u32 uiRound) { return WriteAndRead(i, uiRound); });
    }
    fnStart(Update);
    fnStart([](u32) {
        FRU_destroyMultiRecords();
        return true;
    });
    fnStart([](u32) {
        const char *pcName = FRU_GetSoftWareName();
        return pcName != nullptr && strnlen(pcName, FRU_SIZE) < FRU_SIZE;
    });
    fnStart([](u32) {
        for (u8 i = 0; i < DEVICES; i++) {
            (void)SerialOf(i);
        }
        return true;
    });
    for (std::thread &thread : vecThreads) {
        thread.join();
    }
}

TEST(DeviceThreads, WritersOfDifferentDevicesDoNotDisturbEachOther)
{
    chips::Start();
    PutDevices();
    std::atomic<u32> uiFailures{0};
    RunThreads(uiFailures);
    EXPECT_EQ(uiFailures, 0U);
    for (u8 i = 1; i < DEVICES; i++) {
        EXPECT_EQ(SerialOf(i), "D" + std::to_string(i) + "-" + std::to_string(ROUNDS - 1U));
    }
    FRU_destroyMultiRecords();
    chips::Stop();
}

} // namespace
