// SPDX-License-Identifier: Apache-2.0
#include "test_root.h"

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <gtest/gtest.h>

#include "bmcfru_host.h"
#include "fake/fake_platform.h"

namespace {

std::string g_strRoot;
std::vector<std::string> g_vecRoots;

// Leaves nothing behind in /tmp.
struct ROOTS_S
{
    ~ROOTS_S()
    {
        for (const std::string &strRoot : g_vecRoots) {
            std::error_code stIgnored;
            std::filesystem::remove_all(strRoot, stIgnored);
        }
    }
};

constexpr u32 KEY_DEVICE_INFO = 0x10810000U;
constexpr u32 KEY_IMAGE = 0x10810200U;
constexpr u32 KEY_CACHE_STATUS = 0x10810400U;
constexpr u32 KEY_TABLE = 0x108105FFU;
constexpr u8 EEPROM_TYPE = 9U;
constexpr u8 EEPROM_BUS = 1U;

template <typename TYPE> fake::BYTES BytesOf(const TYPE &stRecord)
{
    fake::BYTES vecBytes(sizeof(stRecord));
    memcpy(vecBytes.data(), &stRecord, sizeof(stRecord));
    return vecBytes;
}

} // namespace

// The platform's own, as far as these tests need it.
u32 BMCHOST_ResolvePath(const char *pcPath, size_t uiSize, char *pcOut)
{
    const std::string strPath = g_strRoot + pcPath;
    if (g_strRoot.empty() || strPath.size() >= uiSize) {
        return 1U;
    }
    memcpy(pcOut, strPath.c_str(), strPath.size() + 1U);
    return 0U;
}

void SetTestRoot(const std::string &strRoot)
{
    g_strRoot = strRoot;
}

std::string MakeTestRoot()
{
    char acTemplate[] = "/tmp/bmcfru_ipmi_XXXXXX";
    const char *pcRoot = mkdtemp(acTemplate);
    EXPECT_NE(pcRoot, nullptr);
    SetTestRoot(acTemplate);
    static const ROOTS_S g_stRoots;
    g_vecRoots.emplace_back(acTemplate);
    return acTemplate;
}

void AddDevice(u8 ucDeviceID, const std::string &strName, u16 usSize, u8 ucFirstByte)
{
    FRU_DEVICE_INFO_S stInfo = {};
    stInfo.ucDeviceID = ucDeviceID;
    stInfo.usSize = usSize;
    stInfo.ucEEPROMType = EEPROM_TYPE;
    stInfo.ucBusNumber = EEPROM_BUS;
    stInfo.ucAddress = ucDeviceID;
    memcpy(stInfo.acFRUName, strName.data(), std::min(strName.size(), sizeof(stInfo.acFRUName)));
    fake::BYTES vecImage(usSize);
    for (size_t i = 0U; i < usSize; ++i) {
        vecImage[i] = static_cast<u8>(ucFirstByte + i);
    }
    fake::Db()[KEY_DEVICE_INFO | ucDeviceID] = BytesOf(stInfo);
    fake::Db()[KEY_IMAGE | ucDeviceID] = vecImage;
    fake::Db()[KEY_CACHE_STATUS | ucDeviceID] = {0U};
    fake::Eeprom(EEPROM_BUS, ucDeviceID) = vecImage;
}

void PutTable(std::initializer_list<TABLE_ROW_S> lstRows)
{
    FRU_DEVICE_TBL_S stTable = {};
    for (const TABLE_ROW_S &stRow : lstRows) {
        FRU_DEVICE_TBL_ENTRY_S &stEntry = stTable.astEntry[stTable.ucCount++];
        stEntry.ucDeviceID = stRow.ucDeviceID;
        stEntry.ucComponentType = stRow.ucComponentType;
        stEntry.ucInstance = stRow.ucInstance;
        stEntry.usSDRRecordID = stRow.usRecordID;
    }
    fake::Db()[KEY_TABLE] = BytesOf(stTable);
}
