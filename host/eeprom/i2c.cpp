// SPDX-License-Identifier: Apache-2.0
#include "eeprom/i2c.h"

#include <algorithm>
#include <cerrno>
#include <linux/i2c-dev.h>
#include <linux/i2c.h>

#include "eeprom/i2c_bus.h"
#include "eeprom/registry.h"
#include "eeprom/settings.h"

namespace host {

namespace {

constexpr u32 g_uiBlock = 256;        // what one byte of offset reaches
constexpr u32 g_uiTwoByteSize = 4096; // smaller chips take one byte of offset
constexpr u32 g_uiOneByteSize = 2048; // larger ones cannot: three bits of block
constexpr u32 g_uiReadMost = 128;     // bytes that one transfer reads; what an adapter cannot is halved
constexpr u32 g_uiReadLeast = 8;
constexpr u32 g_uiPageMax = 256;
constexpr u32 g_uiPollUs = 500;        // between two asks whether the chip answers again
constexpr u32 g_uiArbitrationMax = 20; // so often another master may win

bool IsPowerOfTwo(u32 uiNumber)
{
    return uiNumber != 0U && (uiNumber & (uiNumber - 1U)) == 0U;
}

// The address that the wire carries for an offset, and the offset's own bytes ahead of the data.
u32 WireOf(const I2C_CHIP_S &stChip, u32 uiOffset)
{
    return stChip.uiAddressBytes == 1U ? stChip.uiAddress | uiOffset / g_uiBlock : stChip.uiAddress;
}

u16 PutOffset(const I2C_CHIP_S &stChip, u32 uiOffset, u8 *pucOut)
{
    u16 usCount = 0;
    if (stChip.uiAddressBytes == 2U) {
        pucOut[usCount++] = static_cast<u8>(uiOffset >> 8U);
    }
    pucOut[usCount++] = static_cast<u8>(uiOffset & 0xFFU);
    return usCount;
}

// Messages as one transfer, tried again while the chip is in its write cycle or another master wins.
class Attempt
{
  public:
    Attempt(const I2C_CHIP_S &stChip, int iFd)
        : m_iFd(iFd), m_uiBegin(I2cBus().pfnNowUs()),
          // A clone may need longer than its data sheet says, and a busy machine comes late.
          m_uiPatienceUs(stChip.uiWriteTimeMs * 2000U + 5000U)
    {}

    int Run(struct i2c_msg *pstMessages, u32 uiCount, std::string *pstrWhy)
    {
        for (;;) {
            struct i2c_rdwr_ioctl_data stData = {pstMessages, uiCount};
            const int iDone = I2cBus().pfnControl(m_iFd, I2C_RDWR, &stData);
            if (iDone == static_cast<int>(uiCount)) {
                return 0;
            }
            if (iDone >= 0) {
                *pstrWhy = "short answer, " + std::to_string(iDone) + " of " + std::to_string(uiCount) +
                           " messages of the transfer";
                return EIO;
            }
            const int iError = errno;
            if (!MayTryAgain(iError)) {
                *pstrWhy = Words(iError);
                return iError == EREMOTEIO ? ENXIO : iError;
            }
        }
    }

  private:
    bool MayTryAgain(int iError)
    {
        if (iError == EINTR) {
            return true;
        }
        if (iError == EAGAIN) {
            m_uiLost++;
            I2cBus().pfnWaitUs(g_uiPollUs * (1U + m_uiLost % 4U)); // not in step with the other master
            return m_uiLost < g_uiArbitrationMax;
        }
        const bool bSilent = iError == ENXIO || iError == EREMOTEIO || iError == EIO;
        if (!bSilent || I2cBus().pfnNowUs() - m_uiBegin >= m_uiPatienceUs) {
            return false;
        }
        I2cBus().pfnWaitUs(g_uiPollUs);
        return true;
    }
    std::string Words(int iError) const
    {
        switch (iError) {
        case EAGAIN:
            return "arbitration lost to another master " + std::to_string(m_uiLost) + " times";
        case ENXIO:
        case EREMOTEIO:
            return "nobody answers";
        case ETIMEDOUT:
            return "the bus hangs";
        default:
            return files::Reason(iError);
        }
    }

    int m_iFd;
    u32 m_uiBegin;
    u32 m_uiPatienceUs;
    u32 m_uiLost = 0;
};

// Sets the chip's pointer and reads on from there, within one block.
int ReadOnce(const I2C_CHIP_S &stChip, int iFd, u32 uiOffset, u32 uiLength, u8 *pucBuf, std::string *pstrWhy)
{
    u8 aucOffset[2];
    const u16 usWire = static_cast<u16>(WireOf(stChip, uiOffset));
    struct i2c_msg astMessages[2] = {
        {usWire, 0, PutOffset(stChip, uiOffset, aucOffset), aucOffset},
        {usWire, I2C_M_RD, static_cast<u16>(uiLength), pucBuf},
    };
    return Attempt(stChip, iFd).Run(astMessages, 2U, pstrWhy);
}

void RequireGeometry(const I2C_CHIP_S &stChip)
{
    if (!IsPowerOfTwo(stChip.uiSize)) {
        throw SettingsError("eepromSize: " + std::to_string(stChip.uiSize) +
                            " is refused; accepted: a power of two, as chips have it");
    }
    if (stChip.uiAddressBytes == 1U && stChip.uiSize > g_uiOneByteSize) {
        throw SettingsError("addressBytes: 1 reaches 2048 bytes, and eepromSize says " +
                            std::to_string(stChip.uiSize) + "; accepted: 2");
    }
    // The second byte would be written into such a chip at every read.
    if (stChip.uiAddressBytes == 2U && stChip.uiSize < g_uiTwoByteSize) {
        throw SettingsError("addressBytes: chips below 4096 bytes take one byte, and eepromSize says " +
                            std::to_string(stChip.uiSize) + "; accepted: 1");
    }
    if (!IsPowerOfTwo(stChip.uiPage) || stChip.uiPage > stChip.uiSize) {
        throw SettingsError("pageSize: " + std::to_string(stChip.uiPage) +
                            " is refused; accepted: a power of two up to 256, as the data sheet says");
    }
    const u32 uiBlocks = stChip.uiAddressBytes == 1U ? std::max(stChip.uiSize / g_uiBlock, 1U) : 1U;
    if ((stChip.uiAddress & (uiBlocks - 1U)) != 0U) {
        throw SettingsError("address: a chip of " + std::to_string(stChip.uiSize) + " bytes takes " +
                            std::to_string(uiBlocks) + " addresses, and the first of them is a multiple of " +
                            std::to_string(uiBlocks));
    }
}

} // namespace

I2C_CHIP_S ReadI2cChip(const std::string &strSettings)
{
    const Settings stSettings(strSettings);
    stSettings.Allow({"adapter", "addressBytes", "pageSize", "writeTimeMs"});
    const I2C_CHIP_S stChip = {stSettings.Adapter(),
                               stSettings.WireAddress(),
                               stSettings.Number("size", 16U, 0x10000U),
                               stSettings.Number("addressBytes", 1U, 2U),
                               stSettings.Number("pageSize", 1U, g_uiPageMax),
                               stSettings.Number("writeTimeMs", 1U, 100U)};
    RequireGeometry(stChip);
    return stChip;
}

int OpenI2cChip(const I2C_CHIP_S &stChip, int *piFd, std::string *pstrWhy)
{
    const std::string strBus = DevDirectory() + "/i2c-" + std::to_string(stChip.uiAdapter);
    const int iFd = I2cBus().pfnOpen(strBus.c_str());
    if (iFd < 0) {
        const int iError = errno;
        *pstrWhy = strBus + ": " + files::Reason(iError) +
                   (iError == ENOENT ? " (is the module i2c-dev there?)" : "");
        return iError == ENOENT ? ENXIO : iError;
    }
    bool bEnough = false;
    int iError = RequireI2cFunctions(iFd, &bEnough);
    if (iError == 0 && !bEnough) {
        *pstrWhy = "the bus takes SMBus commands only, no plain transfers";
        iError = EOPNOTSUPP;
    }
    for (u32 uiOffset = 0; iError == 0 && uiOffset < stChip.uiSize; uiOffset += g_uiBlock) {
        iError = ClaimI2cAddress(iFd, WireOf(stChip, uiOffset));
        if (iError == EBUSY) {
            *pstrWhy =
                "a driver of the kernel holds the address; it is never forced (the back end 'kernel' goes "
                "through the driver)";
        }
        if (stChip.uiAddressBytes == 2U) {
            break; // one address
        }
    }
    if (iError != 0) {
        *pstrWhy = pstrWhy->empty() ? files::Reason(iError) : *pstrWhy;
        I2cBus().pfnClose(iFd);
        return iError;
    }
    *piFd = iFd;
    return 0;
}

int ReadI2cChip(const I2C_CHIP_S &stChip, int iFd, u32 uiOffset, u32 uiLength, u8 *pucBuf,
                std::string *pstrWhy)
{
    u32 uiMost = g_uiReadMost;
    u32 uiDone = 0;
    while (uiDone < uiLength) {
        const u32 uiAt = uiOffset + uiDone;
        const u32 uiInBlock = stChip.uiAddressBytes == 1U ? g_uiBlock - uiAt % g_uiBlock : uiLength;
        const u32 uiCount = std::min({uiLength - uiDone, uiInBlock, uiMost});
        const int iError = ReadOnce(stChip, iFd, uiAt, uiCount, pucBuf + uiDone, pstrWhy);
        if (iError == EOPNOTSUPP && uiMost > g_uiReadLeast) {
            uiMost /= 2U; // the adapter's longest message
            pstrWhy->clear();
        } else if (iError != 0) {
            return iError;
        } else {
            uiDone += uiCount;
        }
    }
    return 0;
}

int WriteI2cPage(const I2C_CHIP_S &stChip, int iFd, u32 uiOffset, u32 uiLength, const u8 *pucBuf,
                 std::string *pstrWhy)
{
    u8 aucMessage[2U + g_uiPageMax];
    const u16 usOffset = PutOffset(stChip, uiOffset, aucMessage);
    std::copy(pucBuf, pucBuf + uiLength, aucMessage + usOffset);
    struct i2c_msg stMessage = {static_cast<u16>(WireOf(stChip, uiOffset)), 0,
                                static_cast<u16>(usOffset + uiLength), aucMessage};
    const int iWrite = Attempt(stChip, iFd).Run(&stMessage, 1U, pstrWhy);
    // The chip acknowledges nothing in its write cycle: the first read that it answers is the end of that.
    u8 ucByte = 0;
    std::string strReadWhy;
    const int iRead = ReadOnce(stChip, iFd, uiOffset, 1U, &ucByte, &strReadWhy);
    if (iWrite == ENXIO && iRead == 0) {
        *pstrWhy = "it answers reads and refuses the write: the chip is write-protected";
        return EROFS;
    }
    if (iWrite == 0 && iRead != 0) {
        *pstrWhy = "it took the page and does not answer any more after twice its write time of " +
                   std::to_string(stChip.uiWriteTimeMs) + " ms (" + strReadWhy + ")";
        return iRead;
    }
    return iWrite;
}

// ---- the table ----

namespace {

struct HANDLE_S
{
    I2C_CHIP_S stChip;
    int iFd;
};

int Check(const char *pcSettings, size_t uiSize, char *pcWhy)
{
    return Guarded(pcWhy, uiSize, [&] {
        (void)ReadI2cChip(pcSettings);
        return 0;
    });
}

// Runs a step that tells its reason as a text.
template <typename WORK> int Told(BMCHOST_BACKEND_OPEN_S *pstOpen, WORK fnWork)
{
    return Guarded(pstOpen->acWhy, sizeof(pstOpen->acWhy), [&] {
        std::string strWhy;
        const int iError = fnWork(&strWhy);
        (void)BMC_Strlcpy(pstOpen->acWhy, strWhy.c_str(), sizeof(pstOpen->acWhy));
        return iError;
    });
}

int Open(const BMCHOST_BACKEND_CHIP_S *pstChip, BMCHOST_BACKEND_OPEN_S *pstOpen)
{
    return Told(pstOpen, [&](std::string *pstrWhy) {
        auto upHandle = std::make_unique<HANDLE_S>();
        upHandle->stChip = ReadI2cChip(pstChip->pcSettings);
        const I2C_CHIP_S &stChip = upHandle->stChip;
        (void)BMC_Strlcpy(pstOpen->acWhere, WhereText(stChip.uiAdapter, stChip.uiAddress).c_str(),
                          sizeof(pstOpen->acWhere));
        const int iError = OpenI2cChip(stChip, &upHandle->iFd, pstrWhy);
        if (iError == 0) {
            pstOpen->uiCapacity = stChip.uiSize;
            pstOpen->uiPage = stChip.uiPage;
            pstOpen->pHandle = upHandle.release();
        }
        return iError;
    });
}

int ReadBytes(BMCHOST_BACKEND_OPEN_S *pstOpen, u32 uiOffset, u32 uiLength, u8 *pucBuf, u32 *puiDone)
{
    const HANDLE_S *pstHandle = static_cast<const HANDLE_S *>(pstOpen->pHandle);
    return Told(pstOpen, [&](std::string *pstrWhy) {
        const int iError =
            ReadI2cChip(pstHandle->stChip, pstHandle->iFd, uiOffset, uiLength, pucBuf, pstrWhy);
        *puiDone = iError == 0 ? uiLength : 0U;
        return iError;
    });
}

int WriteBytes(BMCHOST_BACKEND_OPEN_S *pstOpen, u32 uiOffset, u32 uiLength, const u8 *pucBuf)
{
    const HANDLE_S *pstHandle = static_cast<const HANDLE_S *>(pstOpen->pHandle);
    return Told(pstOpen, [&](std::string *pstrWhy) {
        return WriteI2cPage(pstHandle->stChip, pstHandle->iFd, uiOffset, uiLength, pucBuf, pstrWhy);
    });
}

void Close(BMCHOST_BACKEND_OPEN_S *pstOpen)
{
    HANDLE_S *pstHandle = static_cast<HANDLE_S *>(pstOpen->pHandle);
    I2cBus().pfnClose(pstHandle->iFd);
    delete pstHandle;
}

} // namespace

const BMCHOST_BACKEND_S g_stI2cBackend = {
    BMCHOST_BACKEND_VERSION, "i2c", Check, Open, ReadBytes, WriteBytes, Close,
};

} // namespace host
