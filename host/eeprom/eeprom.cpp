// EEPROMs as image files: a file's length is the chip's capacity, its write bits are the write-protect pin.
#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include "bmc_eeprom.h"
#include "support/host.h"

namespace {

constexpr u8 g_ucFirstI2cType = 9;
constexpr u8 g_ucLastI2cType = 15;
constexpr i32 g_iNoChip = -1;

struct PROGRESS_S
{
    void (*pfnProgress)(const BMCHOST_EEPROM_PROGRESS_S *pstProgress, void *pContext);
    void *pContext;
};
PROGRESS_S g_stProgress; // guarded by mtxEeprom
std::atomic<u32> g_uiDelayUs;

bool IsNameUsable(std::string_view svName)
{
    return !svName.empty() && svName.front() != '.' && std::none_of(svName.begin(), svName.end(), [](char c) {
        return c == '/' || c == '\\' || static_cast<unsigned char>(c) < 0x20U || c == 0x7F;
    });
}

// The image's file name without ".bin"; empty when a device name cannot be one.
std::string ChipName(u8 ucType, const void *pLocation)
{
    if (ucType < g_ucFirstI2cType || ucType > g_ucLastI2cType) {
        const char *pcName = static_cast<const char *>(pLocation);
        return IsNameUsable(pcName) ? pcName : "";
    }
    const u8 *pucLocation = static_cast<const u8 *>(pLocation);
    char acName[48];
    (void)BMC_Scnprintf(acName, sizeof(acName), "bus%u-addr0x%02x", static_cast<unsigned>(pucLocation[0]),
                        static_cast<unsigned>(pucLocation[1]));
    std::string strName = acName;
    return pucLocation[2] == 0U ? strName : strName + "-switch" + std::to_string(pucLocation[2]);
}

std::string ImagePath(const std::string &strChip)
{
    return host::Resolve((BMCHOST_EEPROM_DIR "/" + strChip + ".bin").c_str());
}

struct TRANSFER_S
{
    const std::string &strChip;
    int iFd;
    u8 *pucBuf;
    u32 uiOffset;
    u32 uiTotal; // what the chip holds of the caller's range
};

i32 Failed(const TRANSFER_S &stTransfer, const char *pcWhat)
{
    HOST_LOG(BMC_DIAG_ERROR, "EEPROM %s: %s %u bytes at %#x: %s", stTransfer.strChip.c_str(), pcWhat,
             stTransfer.uiTotal, stTransfer.uiOffset, host::ErrText(errno));
    return g_iNoChip;
}

i32 ReadChip(const TRANSFER_S &stTransfer)
{
    const host::FILE_LOCK lock(stTransfer.iFd, LOCK_SH); // no page of a write comes in between
    u32 uiDone = 0;
    while (lock && uiDone < stTransfer.uiTotal) {
        const ssize_t iRead = pread(stTransfer.iFd, stTransfer.pucBuf + uiDone, stTransfer.uiTotal - uiDone,
                                    static_cast<off_t>(stTransfer.uiOffset) + uiDone);
        if (iRead == 0) {
            break; // somebody cut the chip short since
        }
        if (iRead < 0 && errno != EINTR) {
            return Failed(stTransfer, "reading");
        }
        uiDone += iRead > 0 ? static_cast<u32>(iRead) : 0U;
    }
    return lock ? static_cast<i32>(uiDone) : Failed(stTransfer, "locking");
}

void Wait(u32 uiMicroseconds)
{
    struct timespec stLeft = {static_cast<time_t>(uiMicroseconds / 1000000U),
                              static_cast<long>(uiMicroseconds % 1000000U) * 1000L};
    while (nanosleep(&stLeft, &stLeft) != 0 && errno == EINTR) {
    }
}

bool WritePage(const TRANSFER_S &stTransfer, u32 uiDone, u32 uiPage)
{
    const host::FILE_LOCK lock(stTransfer.iFd, LOCK_EX);
    const off_t iAt = static_cast<off_t>(stTransfer.uiOffset) + uiDone;
    const ssize_t iPage = static_cast<ssize_t>(uiPage);
    u8 aucOld[BMCHOST_EEPROM_PAGE];
    if (!lock) {
        return false;
    }
    errno = EIO; // for a chip that somebody cut short since
    if (pread(stTransfer.iFd, aucOld, uiPage, iAt) != iPage) {
        return false;
    }
    ssize_t iWritten = -1;
    do {
        iWritten = pwrite(stTransfer.iFd, stTransfer.pucBuf + uiDone, uiPage, iAt);
    } while (iWritten < 0 && errno == EINTR);
    if (iWritten != iPage) {
        const int iError = iWritten < 0 ? errno : ENOSPC;
        // A chip writes a page or does not: where the disk took a part, what was there goes back.
        if (iWritten > 0 && pwrite(stTransfer.iFd, aucOld, static_cast<size_t>(iWritten), iAt) != iWritten) {
            HOST_LOG(BMC_DIAG_ERROR, "EEPROM %s: page at %#llx is damaged", stTransfer.strChip.c_str(),
                     static_cast<unsigned long long>(iAt));
        }
        errno = iError;
        return false;
    }
    const u32 uiDelayUs = g_uiDelayUs;
    if (uiDelayUs != 0U) {
        Wait(uiDelayUs); // the chip answers nobody in its write cycle
    }
    return true;
}

// Page by page, as a chip takes it: one that is killed or fails meanwhile leaves whole pages.
i32 WriteChip(const TRANSFER_S &stTransfer)
{
    PROGRESS_S stProgress;
    {
        const std::lock_guard<std::mutex> lock(host::Locks().mtxEeprom);
        stProgress = g_stProgress;
    }
    u32 uiDone = 0;
    while (uiDone < stTransfer.uiTotal) {
        const u32 uiAt = stTransfer.uiOffset + uiDone;
        const u32 uiPage =
            std::min(stTransfer.uiTotal - uiDone, BMCHOST_EEPROM_PAGE - uiAt % BMCHOST_EEPROM_PAGE);
        if (!WritePage(stTransfer, uiDone, uiPage)) {
            return Failed(stTransfer, "writing");
        }
        uiDone += uiPage;
        if (stProgress.pfnProgress != nullptr) {
            const BMCHOST_EEPROM_PROGRESS_S stStep = {stTransfer.strChip.c_str(), uiAt, uiDone,
                                                      stTransfer.uiTotal};
            stProgress.pfnProgress(&stStep, stProgress.pContext);
        }
    }
    // What a chip has acknowledged survives a power cut. Files that are chips themselves know no sync.
    if (uiDone != 0U && fdatasync(stTransfer.iFd) != 0 && errno != EINVAL && errno != ENOSYS &&
        errno != EROFS) {
        return Failed(stTransfer, "writing");
    }
    return static_cast<i32>(uiDone);
}

i32 Transfer(u8 ucType, const void *pLocation, u8 *pucBuf, u32 uiOffset, u32 uiLength, u8 ucDirection)
{
    const bool bWrite = ucDirection == BMC_EEPROM_WRITE;
    if (pLocation == nullptr || (pucBuf == nullptr && uiLength != 0U) ||
        (!bWrite && ucDirection != BMC_EEPROM_READ)) {
        return g_iNoChip;
    }
    const std::string strChip = ChipName(ucType, pLocation);
    if (strChip.empty()) {
        HOST_LOG(BMC_DIAG_ERROR, "EEPROM name refused");
        return g_iNoChip;
    }
    struct stat stStat;
    const host::FD fd = host::OpenRegular(ImagePath(strChip), bWrite ? O_RDWR : O_RDONLY, &stStat);
    if (!fd) {
        HOST_LOG(BMC_DIAG_WARNING, "EEPROM %s: %s", strChip.c_str(), host::ErrText(errno));
        return g_iNoChip;
    }
    // Asked of the mode itself, so that the pin holds for the superuser too.
    if (bWrite && (stStat.st_mode & 0222U) == 0U) {
        HOST_LOG(BMC_DIAG_WARNING, "EEPROM %s: write-protected", strChip.c_str());
        return g_iNoChip;
    }
    const uint64_t uiCapacity = std::min<uint64_t>(static_cast<uint64_t>(stStat.st_size), INT32_MAX);
    const uint64_t uiLeft = uiOffset < uiCapacity ? uiCapacity - uiOffset : 0U;
    const TRANSFER_S stTransfer = {strChip, fd.Get(), pucBuf, uiOffset,
                                   static_cast<u32>(std::min<uint64_t>(uiLength, uiLeft))};
    return bWrite ? WriteChip(stTransfer) : ReadChip(stTransfer);
}

} // namespace

extern "C" {

i32 ReadWriteEEPROM(u8 ucType, const void *pLocation, u8 *pucBuf, u32 uiOffset, u32 uiLength, u8 ucDirection)
{
    return host::Shield(g_iNoChip,
                        [&] { return Transfer(ucType, pLocation, pucBuf, uiOffset, uiLength, ucDirection); });
}

u32 BMCHOST_GetEepromPath(u8 ucType, const void *pLocation, size_t uiSize, char *pcOut)
{
    if (pcOut == nullptr || uiSize == 0U) {
        return host::g_uiFailed;
    }
    *pcOut = '\0';
    return host::Shield(host::g_uiFailed, [&] {
        const std::string strChip = pLocation == nullptr ? "" : ChipName(ucType, pLocation);
        const std::string strPath = strChip.empty() ? "" : ImagePath(strChip);
        if (strPath.empty() || strPath.size() >= uiSize) {
            return host::g_uiFailed;
        }
        (void)memcpy(pcOut, strPath.c_str(), strPath.size() + 1U);
        return 0U;
    });
}

void BMCHOST_SetEepromProgress(void (*pfnProgress)(const BMCHOST_EEPROM_PROGRESS_S *pstProgress,
                                                   void *pContext),
                               void *pContext)
{
    const std::lock_guard<std::mutex> lock(host::Locks().mtxEeprom);
    g_stProgress = {pfnProgress, pContext};
}

void BMCHOST_SetEepromWriteDelayUs(u32 uiMicroseconds)
{
    g_uiDelayUs = uiMicroseconds;
}

} // extern "C"
