// SPDX-License-Identifier: Apache-2.0
// The contract tests' chips on a real bus: what a test lays lies at the begin of a chip that is larger.
#include "real_chips.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <linux/i2c-dev.h>
#include <linux/i2c.h>
#include <map>
#include <sstream>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "chip_root.h"

namespace {

constexpr u32 PAGE = 32;
constexpr int TRIES = 100;    // of a chip that may be in its write cycle
std::map<u32, u32> g_mapLaid; // address, bytes that the test laid

struct TARGET_S
{
    std::string strBackend;
    u32 uiBus = 0;
    u32 auiAddresses[2] = {};
};

TARGET_S Target()
{
    const char *pcChips = getenv("BMCFRU_TARGET_CHIPS");
    TARGET_S stTarget;
    std::istringstream(pcChips == nullptr ? "" : pcChips) >> stTarget.strBackend >> stTarget.uiBus >>
        std::hex >> stTarget.auiAddresses[0] >> stTarget.auiAddresses[1];
    return stTarget;
}

bool IsFirst(u8 ucType, const void *pLocation)
{
    constexpr u8 aucFirst[3] = {1, 0xA0, 0};
    return ucType >= 9U && ucType <= 15U && memcmp(pLocation, aucFirst, sizeof(aucFirst)) == 0;
}

// The chip of the contract's location, and the other one for every chip beside it.
u32 AddressOf(u8 ucType, const void *pLocation)
{
    return Target().auiAddresses[IsFirst(ucType, pLocation) ? 0 : 1];
}

std::string FileOf(u8 ucType, const void *pLocation)
{
    char acPath[64];
    (void)snprintf(acPath, sizeof(acPath), "/sys/bus/i2c/devices/%u-%04x/eeprom",
                   static_cast<unsigned>(Target().uiBus),
                   static_cast<unsigned>(AddressOf(ucType, pLocation)));
    return acPath;
}

bool IsKernel()
{
    return Target().strBackend == "kernel";
}

void Transfer(u32 uiAddress, std::vector<u8> vecOut, u8 *pucIn, u32 uiIn)
{
    const int iFd = open(("/dev/i2c-" + std::to_string(Target().uiBus)).c_str(), O_RDWR | O_CLOEXEC);
    ASSERT_GE(iFd, 0) << strerror(errno);
    struct i2c_msg astMessages[2] = {
        {static_cast<u16>(uiAddress), 0, static_cast<u16>(vecOut.size()), vecOut.data()},
        {static_cast<u16>(uiAddress), I2C_M_RD, static_cast<u16>(uiIn), pucIn},
    };
    struct i2c_rdwr_ioctl_data stData = {astMessages, uiIn == 0U ? 1U : 2U};
    int iDone = -1;
    for (int i = 0; i < TRIES && iDone < 0; ++i) {
        iDone = ioctl(iFd, I2C_RDWR, &stData);
        controller::Pause(iDone < 0 ? 1000U : 0U);
    }
    (void)close(iFd);
    ASSERT_EQ(iDone, static_cast<int>(stData.nmsgs)) << strerror(errno);
}

} // namespace

namespace real {

controller::BYTES ReadChip(u8 ucType, const void *pLocation, u32 uiOffset, u32 uiLength)
{
    controller::BYTES vecBytes(uiLength);
    if (IsKernel()) {
        const int iFd = open(FileOf(ucType, pLocation).c_str(), O_RDONLY | O_CLOEXEC);
        EXPECT_EQ(pread(iFd, vecBytes.data(), uiLength, static_cast<off_t>(uiOffset)),
                  static_cast<ssize_t>(uiLength));
        (void)close(iFd);
        return vecBytes;
    }
    for (u32 uiAt = 0; uiAt < uiLength; uiAt += PAGE) {
        const u32 uiFrom = uiOffset + uiAt;
        Transfer(AddressOf(ucType, pLocation), {static_cast<u8>(uiFrom >> 8U), static_cast<u8>(uiFrom)},
                 vecBytes.data() + uiAt, std::min(PAGE, uiLength - uiAt));
    }
    return vecBytes;
}

void WriteChip(u8 ucType, const void *pLocation, u32 uiOffset, const controller::BYTES &vecBytes)
{
    const u32 uiLength = static_cast<u32>(vecBytes.size());
    if (IsKernel()) {
        const int iFd = open(FileOf(ucType, pLocation).c_str(), O_WRONLY | O_CLOEXEC);
        EXPECT_EQ(pwrite(iFd, vecBytes.data(), uiLength, static_cast<off_t>(uiOffset)),
                  static_cast<ssize_t>(uiLength));
        (void)close(iFd);
        return;
    }
    for (u32 uiAt = 0; uiAt < uiLength;) {
        const u32 uiFrom = uiOffset + uiAt;
        const u32 uiCount = std::min(PAGE - uiFrom % PAGE, uiLength - uiAt);
        std::vector<u8> vecOut = {static_cast<u8>(uiFrom >> 8U), static_cast<u8>(uiFrom)};
        vecOut.insert(vecOut.end(), vecBytes.begin() + uiAt, vecBytes.begin() + uiAt + uiCount);
        Transfer(AddressOf(ucType, pLocation), vecOut, nullptr, 0);
        uiAt += uiCount;
    }
}

} // namespace real

namespace chips {

void StartChips()
{
    if (Target().strBackend.empty()) {
        GTEST_SKIP() << "BMCFRU_TARGET_CHIPS names no chips that may be written to";
    }
    if (IsKernel()) {
        for (const u32 uiAddress : Target().auiAddresses) {
            char acPath[64];
            (void)snprintf(acPath, sizeof(acPath), "/sys/bus/i2c/devices/%u-%04x/eeprom",
                           static_cast<unsigned>(Target().uiBus), static_cast<unsigned>(uiAddress));
            ASSERT_EQ(chmod(acPath, 0600), 0); // what a test before may have changed
        }
    }
}

void StopChips() {}

} // namespace chips

namespace controller {

const u32 g_uiPageSize = PAGE;

void LayChip(u8 ucType, const void *pLocation, const BYTES &vecContent)
{
    ASSERT_LE(vecContent.size(), real::CAPACITY);
    real::WriteChip(ucType, pLocation, 0, vecContent);
    nlohmann::json stSettings = {{"backend", Target().strBackend},
                                 {"adapter", Target().uiBus},
                                 {"address", AddressOf(ucType, pLocation)},
                                 {"size", real::CAPACITY}};
    if (!IsKernel()) {
        stSettings.update({{"addressBytes", 2}, {"pageSize", PAGE}, {"writeTimeMs", 5}});
    }
    chips::Configure(chips::NameOf(ucType, pLocation), stSettings);
    g_mapLaid[AddressOf(ucType, pLocation)] = static_cast<u32>(vecContent.size());
}

BYTES ChipContent(u8 ucType, const void *pLocation)
{
    return real::ReadChip(ucType, pLocation, 0, g_mapLaid[AddressOf(ucType, pLocation)]);
}

// Of a raw chip it is a pin, which nothing here can pull: those tests are not run over one.
void ProtectChip(u8 ucType, const void *pLocation)
{
    ASSERT_TRUE(IsKernel());
    ASSERT_EQ(chmod(FileOf(ucType, pLocation).c_str(), 0444), 0);
}

} // namespace controller
