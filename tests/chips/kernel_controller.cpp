// SPDX-License-Identifier: Apache-2.0
// The contract tests' chips behind the kernel's driver: files of a directory tree that plays /sys.
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sys/stat.h>

#include "bmcfru_host.h"
#include "chip_root.h"
#include "controller.h"

namespace {

constexpr u32 NAMED_ADAPTER = 20; // chips with a name lie here
constexpr u32 SWITCH_ADAPTER = 100;

// Linux's number of the bus of a chip; the channels of a switch have their own.
u32 AdapterOf(u8 ucType, const void *pLocation)
{
    if (ucType < 9U || ucType > 15U) {
        return NAMED_ADAPTER + static_cast<u32>(static_cast<const char *>(pLocation)[0]);
    }
    const u8 *pucLocation = static_cast<const u8 *>(pLocation);
    return pucLocation[0] + pucLocation[2] * SWITCH_ADAPTER;
}

std::filesystem::path FileOf(u8 ucType, const void *pLocation)
{
    return chips::Root() + "/sys/bus/i2c/devices/" + std::to_string(AdapterOf(ucType, pLocation)) +
           "-0050/eeprom";
}

} // namespace

namespace chips {

void StartChips()
{
    ASSERT_EQ(setenv("FRUCTL_SYS", (Root() + "/sys").c_str(), 1), 0);
}

void StopChips()
{
    ASSERT_EQ(unsetenv("FRUCTL_SYS"), 0);
}

} // namespace chips

namespace controller {

const u32 g_uiPageSize = 32;

void LayChip(u8 ucType, const void *pLocation, const BYTES &vecContent)
{
    const std::filesystem::path pathFile = FileOf(ucType, pLocation);
    std::filesystem::create_directories(pathFile.parent_path());
    std::ofstream(pathFile, std::ios::binary | std::ios::trunc)
        .write(reinterpret_cast<const char *>(vecContent.data()), static_cast<long>(vecContent.size()));
    chips::Configure(chips::NameOf(ucType, pLocation), {{"backend", "kernel"},
                                                        {"adapter", AdapterOf(ucType, pLocation)},
                                                        {"address", "0xa0"},
                                                        {"size", vecContent.size()}});
}

BYTES ChipContent(u8 ucType, const void *pLocation)
{
    const std::filesystem::path pathFile = FileOf(ucType, pLocation);
    BYTES vecContent(static_cast<size_t>(std::filesystem::file_size(pathFile)));
    std::ifstream(pathFile, std::ios::binary)
        .read(reinterpret_cast<char *>(vecContent.data()), static_cast<std::streamsize>(vecContent.size()));
    return vecContent;
}

void ProtectChip(u8 ucType, const void *pLocation)
{
    ASSERT_EQ(chmod(FileOf(ucType, pLocation).c_str(), 0444), 0);
}

} // namespace controller
