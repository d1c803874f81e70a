// SPDX-License-Identifier: Apache-2.0
#include "simulated_bus.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <linux/i2c-dev.h>
#include <linux/i2c.h>
#include <mutex>
#include <new>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "eeprom/i2c_bus.h"

namespace chips {

namespace {

constexpr u32 CHIPS_MAX = 16;
constexpr u32 BYTE_US = 25; // at 400 kHz
constexpr u32 OPEN_MAX_FILES = 8;
constexpr int FIRST_FD = 1000;

// Shared by the processes of a test.
struct BUS_S
{
    SIMULATED_CHIP_S astChips[CHIPS_MAX];
    u32 uiChips;
    u32 uiNowUs; // the bus's own time: it runs on with waits and bytes
    bool bSmbusOnly;
    bool bForced;
};
BUS_S *g_pstBus;
int g_iLockFile = -1;
std::mutex g_mtxBus;
// This process's open buses: the adapter of each; -1: free.
int g_aiOpen[OPEN_MAX_FILES];

// One transfer at a time, in all processes. The lock falls with its process.
class BusLock
{
  public:
    BusLock() : m_lock(g_mtxBus)
    {
        Set(F_WRLCK);
    }
    ~BusLock()
    {
        Set(F_UNLCK);
    }

  private:
    static void Set(short iType)
    {
        struct flock stRange = {};
        stRange.l_type = iType;
        stRange.l_whence = SEEK_SET;
        while (fcntl(g_iLockFile, F_SETLKW, &stRange) != 0 && errno == EINTR) {
        }
    }
    std::lock_guard<std::mutex> m_lock;
};

void FinishPage(SIMULATED_CHIP_S &stChip)
{
    for (u32 i = 0; i < stChip.uiPendingLength; i++) {
        const u32 uiPageStart = stChip.uiPendingAt / stChip.uiPage * stChip.uiPage;
        stChip.aucBytes[uiPageStart + (stChip.uiPendingAt + i) % stChip.uiPage] = stChip.aucPending[i];
    }
    std::atomic_signal_fence(std::memory_order_seq_cst);
    stChip.uiPendingLength = 0;
}

// The chip that answers to an address; puiBlock: the part of the offset in it.
SIMULATED_CHIP_S *Answering(u32 uiAdapter, u32 uiAddress, u32 *puiBlock)
{
    for (u32 i = 0; i < g_pstBus->uiChips; i++) {
        SIMULATED_CHIP_S &stChip = g_pstBus->astChips[i];
        const u32 uiBlocks = stChip.uiAddressBytes == 1U ? std::max(stChip.uiSize / 256U, 1U) : 1U;
        if (stChip.uiAdapter == uiAdapter && uiAddress - stChip.uiAddress < uiBlocks) {
            *puiBlock = uiAddress - stChip.uiAddress;
            FinishPage(stChip);
            return &stChip;
        }
    }
    return nullptr;
}

int Refuse(SIMULATED_CHIP_S &stChip, int iError)
{
    stChip.uiRefused++;
    errno = iError;
    return -1;
}

// A message from the master: the offset, and bytes that wrap round inside the page.
bool Take(SIMULATED_CHIP_S &stChip, u32 uiBlock, const struct i2c_msg &stMessage)
{
    if (stMessage.len < stChip.uiAddressBytes) {
        return true;
    }
    const u8 *pucBytes = stMessage.buf;
    u32 uiOffset = *pucBytes++;
    if (stChip.uiAddressBytes == 2U) {
        uiOffset = uiOffset * 256U + *pucBytes++;
    }
    stChip.uiPointer = (uiBlock * 256U + uiOffset) % stChip.uiSize;
    const u32 uiCount = stMessage.len - stChip.uiAddressBytes;
    if (uiCount == 0U) {
        return true;
    }
    if (stChip.bRefusesWrites) {
        return false;
    }
    stChip.uiWrites++;
    if (stChip.bProtected) {
        return true;
    }
    // Of more than a page the last bytes are in the page register.
    const u32 uiDropped = uiCount > stChip.uiPage ? uiCount - stChip.uiPage : 0U;
    memcpy(stChip.aucPending, pucBytes + uiDropped, uiCount - uiDropped);
    const u32 uiPageStart = stChip.uiPointer / stChip.uiPage * stChip.uiPage;
    stChip.uiPendingAt = uiPageStart + (stChip.uiPointer + uiDropped) % stChip.uiPage;
    std::atomic_signal_fence(std::memory_order_seq_cst); // whole before it counts
    stChip.uiPendingLength = uiCount - uiDropped;
    std::atomic_signal_fence(std::memory_order_seq_cst);
    FinishPage(stChip);
    stChip.uiBusyUntilUs = g_pstBus->uiNowUs + stChip.uiWriteTimeUs;
    return true;
}

int Transfer(u32 uiAdapter, const struct i2c_rdwr_ioctl_data &stData)
{
    for (u32 i = 0; i < stData.nmsgs; i++) {
        const struct i2c_msg &stMessage = stData.msgs[i];
        u32 uiBlock = 0;
        SIMULATED_CHIP_S *pstChip = Answering(uiAdapter, stMessage.addr, &uiBlock);
        g_pstBus->uiNowUs += (1U + stMessage.len) * BYTE_US;
        if (pstChip == nullptr) {
            errno = ENXIO;
            return -1;
        }
        if (pstChip->bHangs) {
            return Refuse(*pstChip, ETIMEDOUT);
        }
        if (pstChip->uiArbitrationLost != 0U) {
            pstChip->uiArbitrationLost--;
            return Refuse(*pstChip, EAGAIN);
        }
        if (pstChip->bAbsent || static_cast<i32>(pstChip->uiBusyUntilUs - g_pstBus->uiNowUs) > 0) {
            return Refuse(*pstChip, ENXIO);
        }
        const bool bRead = (stMessage.flags & I2C_M_RD) != 0U;
        if (bRead && pstChip->uiLongestRead != 0U && stMessage.len > pstChip->uiLongestRead) {
            return Refuse(*pstChip, EOPNOTSUPP);
        }
        if (!bRead && !Take(*pstChip, uiBlock, stMessage)) {
            return Refuse(*pstChip, EREMOTEIO);
        }
        for (u32 uiAt = 0; bRead && uiAt < stMessage.len; uiAt++) {
            stMessage.buf[uiAt] = pstChip->aucBytes[pstChip->uiPointer];
            pstChip->uiPointer = (pstChip->uiPointer + 1U) % pstChip->uiSize;
        }
    }
    return static_cast<int>(stData.nmsgs);
}

int Open(const char *pcPath)
{
    const BusLock lock;
    const char *pcNumber = strstr(pcPath, "/i2c-");
    const u32 uiAdapter = pcNumber == nullptr ? 0U : static_cast<u32>(strtoul(pcNumber + 5, nullptr, 10));
    const bool bThere =
        std::any_of(g_pstBus->astChips, g_pstBus->astChips + g_pstBus->uiChips,
                    [&](const SIMULATED_CHIP_S &stChip) { return stChip.uiAdapter == uiAdapter; });
    const auto pFree = std::find(std::begin(g_aiOpen), std::end(g_aiOpen), -1);
    if (!bThere || pFree == std::end(g_aiOpen)) {
        errno = bThere ? EMFILE : ENOENT;
        return -1;
    }
    *pFree = static_cast<int>(uiAdapter);
    return FIRST_FD + static_cast<int>(pFree - std::begin(g_aiOpen));
}

int Control(int iFd, unsigned long uiRequest, void *pArgument)
{
    const BusLock lock;
    const u32 uiAdapter = static_cast<u32>(g_aiOpen[iFd - FIRST_FD]);
    if (uiRequest == I2C_FUNCS) {
        *static_cast<unsigned long *>(pArgument) = g_pstBus->bSmbusOnly ? I2C_FUNC_SMBUS_EMUL : I2C_FUNC_I2C;
        return 0;
    }
    if (uiRequest == I2C_SLAVE || uiRequest == I2C_SLAVE_FORCE) {
        u32 uiBlock = 0;
        const SIMULATED_CHIP_S *pstChip =
            Answering(uiAdapter, static_cast<u32>(reinterpret_cast<uintptr_t>(pArgument)), &uiBlock);
        g_pstBus->bForced = g_pstBus->bForced || uiRequest == I2C_SLAVE_FORCE;
        errno = EBUSY;
        return pstChip != nullptr && pstChip->bHasDriver ? -1 : 0;
    }
    if (uiRequest == I2C_RDWR) {
        return Transfer(uiAdapter, *static_cast<const struct i2c_rdwr_ioctl_data *>(pArgument));
    }
    errno = ENOTTY;
    return -1;
}

void Close(int iFd)
{
    const BusLock lock;
    g_aiOpen[iFd - FIRST_FD] = -1;
}

u32 NowUs()
{
    const BusLock lock;
    return g_pstBus->uiNowUs;
}

void WaitUs(u32 uiMicroseconds)
{
    const BusLock lock;
    g_pstBus->uiNowUs += uiMicroseconds;
}

constexpr host::I2C_BUS_S SIMULATED = {Open, Control, Close, NowUs, WaitUs};

} // namespace

void StartBus()
{
    void *pShared = mmap(nullptr, sizeof(BUS_S), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(pShared, MAP_FAILED);
    g_pstBus = new (pShared) BUS_S();
    std::string strLock = testing::TempDir() + "/simulated-bus.XXXXXX";
    g_iLockFile = mkstemp(strLock.data());
    ASSERT_GE(g_iLockFile, 0);
    ASSERT_EQ(unlink(strLock.c_str()), 0);
    std::fill(std::begin(g_aiOpen), std::end(g_aiOpen), -1);
    host::SetI2cBus(&SIMULATED);
}

void StopBus()
{
    host::SetI2cBus(nullptr);
    EXPECT_EQ(OpenCount(), 0U);
    EXPECT_FALSE(WasForced());
    (void)close(g_iLockFile);
    (void)munmap(g_pstBus, sizeof(BUS_S));
}

SIMULATED_CHIP_S &LaySimulated(u32 uiAdapter, u32 uiAddress, u32 uiAddressBytes, u32 uiPage,
                               const std::vector<u8> &vecContent)
{
    SIMULATED_CHIP_S *pstChip = FindSimulated(uiAdapter, uiAddress);
    if (pstChip == nullptr) {
        EXPECT_LT(g_pstBus->uiChips, CHIPS_MAX);
        pstChip = &g_pstBus->astChips[g_pstBus->uiChips++];
    }
    *pstChip = {};
    pstChip->uiAdapter = uiAdapter;
    pstChip->uiAddress = uiAddress;
    pstChip->uiAddressBytes = uiAddressBytes;
    pstChip->uiPage = uiPage;
    pstChip->uiWriteTimeUs = 4000U;
    pstChip->uiSize = static_cast<u32>(vecContent.size());
    std::copy(vecContent.begin(), vecContent.end(), pstChip->aucBytes);
    return *pstChip;
}

SIMULATED_CHIP_S *FindSimulated(u32 uiAdapter, u32 uiAddress)
{
    for (u32 i = 0; i < g_pstBus->uiChips; i++) {
        SIMULATED_CHIP_S &stChip = g_pstBus->astChips[i];
        if (stChip.uiAdapter == uiAdapter && stChip.uiAddress == uiAddress) {
            return &stChip;
        }
    }
    return nullptr;
}

std::vector<u8> ContentOf(SIMULATED_CHIP_S &stChip)
{
    const BusLock lock;
    FinishPage(stChip);
    return {stChip.aucBytes, stChip.aucBytes + stChip.uiSize};
}

void SetPlainTransfers(bool bPlain)
{
    g_pstBus->bSmbusOnly = !bPlain;
}

u32 OpenCount()
{
    return static_cast<u32>(
        std::count_if(std::begin(g_aiOpen), std::end(g_aiOpen), [](int iAdapter) { return iAdapter >= 0; }));
}

bool WasForced()
{
    return g_pstBus->bForced;
}

} // namespace chips
