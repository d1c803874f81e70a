// SPDX-License-Identifier: Apache-2.0
#include "bench_device.h"

#include <cstdlib>
#include <cstring>

#include "bench_image.h"
#include "lib_fru.h"
#include "memory/memory_platform.h"

void bench::Provision(u32 uiSize, u8 ucCacheStatus)
{
    FRU_DEVICE_TBL_S stTable{};
    stTable.ucCount = 1;
    FRU_DEVICE_INFO_S stInfo{};
    stInfo.usSize = static_cast<u16>(uiSize);
    stInfo.ucEEPROMType = 9;
    stInfo.ucFieldFlag = 7;
    (void)strcpy(stInfo.acFRUName, "BaseBoard");
    (void)strcpy(stInfo.acImageFilePath, "/opt/fru/BaseBoard.bin");
    memory::Eeprom() = InEeprom(FullImage(), uiSize);
    if (FRU_DB_PutFRUDeviceTbl(&stTable) != FRU_OK || FRU_DB_PutFRUDeviceInfo(0, &stInfo) != FRU_OK ||
        FRU_DB_PutFRUData(0, static_cast<u16>(uiSize), memory::Eeprom().data()) != FRU_OK ||
        FRU_DB_PutFRUDataCacheStatus(0, ucCacheStatus) != FRU_OK) {
        abort();
    }
}
