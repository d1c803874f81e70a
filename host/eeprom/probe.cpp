// SPDX-License-Identifier: Apache-2.0
// Which of the usual addresses answer on a raw bus.
#include <cerrno>
#include <linux/i2c-dev.h>
#include <linux/i2c.h>

#include "eeprom/i2c_bus.h"
#include "eeprom/settings.h"

namespace host {

namespace {

// One byte from where the chip's pointer stands: nothing goes to the chip but its address, so that no chip, however
// many bytes of offset it takes, can understand a write.
u8 Ask(int iFd, u32 uiAddress, std::string *pstrWhy)
{
    const int iClaim = ClaimI2cAddress(iFd, uiAddress);
    if (iClaim != 0) {
        return iClaim == EBUSY ? BMCHOST_I2C_DRIVER : BMCHOST_I2C_SILENT;
    }
    u8 ucByte = 0;
    struct i2c_msg stMessage = {static_cast<u16>(uiAddress), I2C_M_RD, 1, &ucByte};
    struct i2c_rdwr_ioctl_data stData = {&stMessage, 1};
    if (I2cBus().pfnControl(iFd, I2C_RDWR, &stData) == 1) {
        return BMCHOST_I2C_ANSWERS;
    }
    if (errno == ETIMEDOUT) {
        *pstrWhy = "the bus hangs";
    }
    return BMCHOST_I2C_SILENT;
}

u32 Probe(u32 uiBus, u8 *pucFound, std::string *pstrWhy)
{
    const std::string strBus = DevDirectory() + "/i2c-" + std::to_string(uiBus);
    const int iFd = I2cBus().pfnOpen(strBus.c_str());
    if (iFd < 0) {
        *pstrWhy = strBus + ": " + files::Reason(errno);
        return g_uiFailed;
    }
    bool bEnough = false;
    const int iError = RequireI2cFunctions(iFd, &bEnough);
    if (iError != 0 || !bEnough) {
        *pstrWhy = strBus + ": " + (iError != 0 ? files::Reason(iError) : "it takes SMBus commands only");
    }
    for (u32 i = 0; i < BMCHOST_I2C_PROBED && pstrWhy->empty(); i++) {
        pucFound[i] = Ask(iFd, BMCHOST_I2C_FIRST + i, pstrWhy);
    }
    I2cBus().pfnClose(iFd);
    return pstrWhy->empty() ? 0U : g_uiFailed;
}

} // namespace

} // namespace host

extern "C" u32 BMCHOST_ProbeI2c(u32 uiBus, u8 *pucFound, size_t uiSize, char *pcWhy)
{
    if (pucFound == nullptr || pcWhy == nullptr || uiSize == 0U) {
        return host::g_uiFailed;
    }
    *pcWhy = '\0';
    return host::Shield(host::g_uiFailed, [&] {
        std::string strWhy;
        const u32 uiRet = host::Probe(uiBus, pucFound, &strWhy);
        (void)BMC_Strlcpy(pcWhy, strWhy.c_str(), static_cast<u32>(uiSize));
        return uiRet;
    });
}
