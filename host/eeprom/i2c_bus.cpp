// SPDX-License-Identifier: Apache-2.0
#include "eeprom/i2c_bus.h"

#include <atomic>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <linux/i2c-dev.h>
#include <linux/i2c.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include "eeprom/chip.h"

namespace host {

namespace {

int Open(const char *pcPath)
{
    return open(pcPath, O_RDWR | O_CLOEXEC | O_NOCTTY);
}

int Control(int iFd, unsigned long uiRequest, void *pArgument)
{
    return ioctl(iFd, uiRequest, pArgument);
}

void Close(int iFd)
{
    (void)close(iFd);
}

u32 NowUs()
{
    struct timespec stNow = {};
    (void)clock_gettime(CLOCK_MONOTONIC, &stNow);
    return static_cast<u32>(static_cast<uint64_t>(stNow.tv_sec) * 1000000U +
                            static_cast<uint64_t>(stNow.tv_nsec) / 1000U);
}

constexpr I2C_BUS_S g_stMachine = {Open, Control, Close, NowUs, WaitUs};
std::atomic<const I2C_BUS_S *> g_pstBus{&g_stMachine};

} // namespace

void SetI2cBus(const I2C_BUS_S *pstBus)
{
    g_pstBus = pstBus == nullptr ? &g_stMachine : pstBus;
}

const I2C_BUS_S &I2cBus()
{
    return *g_pstBus;
}

int RequireI2cFunctions(int iFd, bool *pbEnough)
{
    unsigned long uiFunctions = 0;
    if (I2cBus().pfnControl(iFd, I2C_FUNCS, &uiFunctions) < 0) {
        return errno;
    }
    *pbEnough = (uiFunctions & I2C_FUNC_I2C) != 0U;
    return 0;
}

int ClaimI2cAddress(int iFd, u32 uiAddress)
{
    // ioctl takes it as a number in the place of a pointer.
    const uintptr_t uiNumber = uiAddress;
    void *pAddress = nullptr;
    (void)memcpy(&pAddress, &uiNumber, sizeof(pAddress));
    return I2cBus().pfnControl(iFd, I2C_SLAVE, pAddress) < 0 ? errno : 0;
}

} // namespace host
