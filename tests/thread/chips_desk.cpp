// SPDX-License-Identifier: Apache-2.0
#include "chips.h"

#include <climits>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>

#include "bmcfru_host.h"

namespace {

std::string g_strRoot;

} // namespace

namespace chips {

void Start()
{
    g_strRoot = (std::filesystem::temp_directory_path() / "bmcfru-thread.XXXXXX").string();
    ASSERT_NE(mkdtemp(g_strRoot.data()), nullptr);
    ASSERT_EQ(BMCHOST_SetRoot(g_strRoot.c_str()), 0U);
    BMCHOST_SetDiagSink([](const BMCHOST_DIAG_S *, void *) {}, nullptr);
    BMCHOST_SetEepromWriteDelayUs(0);
}

void Stop()
{
    BMCHOST_SetDiagSink(nullptr, nullptr);
    std::filesystem::remove_all(g_strRoot);
}

void Put(const FRU_DEVICE_INFO_S &stInfo, const std::vector<u8> &vecImage)
{
    char acPath[PATH_MAX];
    // The location stands in the record as the EEPROM access takes it.
    ASSERT_EQ(BMCHOST_GetEepromPath(stInfo.ucEEPROMType, &stInfo.ucBusNumber, sizeof(acPath), acPath), 0U);
    std::filesystem::create_directories(std::filesystem::path(acPath).parent_path());
    std::ofstream(acPath, std::ios::binary)
        .write(reinterpret_cast<const char *>(vecImage.data()),
               static_cast<std::streamsize>(vecImage.size()));
}

} // namespace chips
