// SPDX-License-Identifier: Apache-2.0
// The kernel's EEPROM driver (at24): a file for each chip. Pages, waiting and retries are the driver's.
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

#include "eeprom/registry.h"
#include "eeprom/settings.h"

namespace host {

namespace {

// One call's bytes are written whole, whatever signal comes meanwhile; every common chip's page is a multiple
// of it or divides it.
constexpr u32 g_uiUsualPage = 32;
constexpr u32 g_uiPageMax = 256;

struct PLACED_S
{
    u32 uiAdapter;
    u32 uiAddress;
    u32 uiSize;
    u32 uiPage;
};

PLACED_S Read(const char *pcSettings)
{
    const Settings stSettings(pcSettings);
    stSettings.Allow({"adapter", "pageSize"});
    return {stSettings.Adapter(), stSettings.WireAddress(), stSettings.Number("size", 1U, 0x10000U),
            stSettings.Number("pageSize", 1U, g_uiPageMax, g_uiUsualPage)};
}

int Check(const char *pcSettings, size_t uiSize, char *pcWhy)
{
    return Guarded(pcWhy, uiSize, [&] {
        (void)Read(pcSettings);
        return 0;
    });
}

void Why(BMCHOST_BACKEND_OPEN_S *pstOpen, const std::string &strWhy)
{
    (void)BMC_Strlcpy(pstOpen->acWhy, strWhy.c_str(), sizeof(pstOpen->acWhy));
}

bool IsThere(const std::string &strPath)
{
    struct stat stStat = {};
    return stat(strPath.c_str(), &stStat) == 0;
}

// Which step on the way to the file is missing.
std::string WhyAbsent(const std::string &strDevices, const std::string &strChip, const PLACED_S &stPlaced)
{
    const std::string strBus = strDevices + "/i2c-" + std::to_string(stPlaced.uiAdapter);
    if (!IsThere(strBus)) {
        return "there is no bus " + std::to_string(stPlaced.uiAdapter) + " (" + strBus + ")";
    }
    if (!IsThere(strChip)) {
        return "the kernel knows no chip there (" + strChip +
               "); a device tree names it, or: echo 24c64 0x50 > " + strBus + "/new_device";
    }
    return "no EEPROM driver has the chip (" + strChip + "/eeprom): is the module at24 there?";
}

int OpenFile(const PLACED_S &stPlaced, bool bWrite, BMCHOST_BACKEND_OPEN_S *pstOpen)
{
    const std::string strDevices = SysDirectory() + "/bus/i2c/devices";
    char acName[32];
    (void)BMC_Scnprintf(acName, sizeof(acName), "%u-%04x", stPlaced.uiAdapter, stPlaced.uiAddress);
    const std::string strChip = strDevices + "/" + acName;
    const std::string strFile = strChip + "/eeprom";
    files::Fd stFile(open(strFile.c_str(), (bWrite ? O_RDWR : O_RDONLY) | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    const int iError = stFile ? 0 : errno;
    struct stat stStat = {};
    if (bWrite && iError != ENOENT && stat(strFile.c_str(), &stStat) == 0 && (stStat.st_mode & 0222U) == 0U) {
        // Asked of the mode, for the superuser's open() succeeds.
        Why(pstOpen, "write-protected: the driver has it as read-only");
        return EROFS;
    }
    if (iError != 0) {
        Why(pstOpen, iError == ENOENT || iError == ENOTDIR ? WhyAbsent(strDevices, strChip, stPlaced)
                                                           : strFile + ": " + files::Reason(iError));
        return iError == ENOENT || iError == ENOTDIR ? ENXIO : iError;
    }
    if (fstat(stFile.Get(), &stStat) != 0 || !S_ISREG(stStat.st_mode)) {
        Why(pstOpen, strFile + " is no file");
        return EINVAL;
    }
    if (static_cast<uint64_t>(stStat.st_size) != stPlaced.uiSize) {
        Why(pstOpen, "the driver has a chip of " + std::to_string(stStat.st_size) +
                         " bytes there, the description one of " + std::to_string(stPlaced.uiSize));
        return EINVAL;
    }
    pstOpen->pHandle = std::make_unique<int>(stFile.Release()).release();
    pstOpen->uiCapacity = stPlaced.uiSize;
    pstOpen->uiPage = stPlaced.uiPage;
    return 0;
}

int Open(const BMCHOST_BACKEND_CHIP_S *pstChip, BMCHOST_BACKEND_OPEN_S *pstOpen)
{
    return Guarded(pstOpen->acWhy, sizeof(pstOpen->acWhy), [&] {
        const PLACED_S stPlaced = Read(pstChip->pcSettings);
        (void)BMC_Strlcpy(pstOpen->acWhere, WhereText(stPlaced.uiAdapter, stPlaced.uiAddress).c_str(),
                          sizeof(pstOpen->acWhere));
        return OpenFile(stPlaced, pstChip->uiWrite != 0U, pstOpen);
    });
}

int FileOf(const BMCHOST_BACKEND_OPEN_S *pstOpen)
{
    return *static_cast<const int *>(pstOpen->pHandle);
}

// What the driver says when the chip does not.
int Told(BMCHOST_BACKEND_OPEN_S *pstOpen, int iError)
{
    if (iError == ENXIO || iError == EREMOTEIO || iError == ETIMEDOUT || iError == ENODEV) {
        Why(pstOpen, "nobody answers (" + files::Reason(iError) + ")");
        return ENXIO;
    }
    return iError;
}

int ReadBytes(BMCHOST_BACKEND_OPEN_S *pstOpen, u32 uiOffset, u32 uiLength, u8 *pucBuf, u32 *puiDone)
{
    ssize_t iRead = -1;
    do {
        iRead = pread(FileOf(pstOpen), pucBuf, uiLength, static_cast<off_t>(uiOffset));
    } while (iRead < 0 && errno == EINTR);
    *puiDone = iRead > 0 ? static_cast<u32>(iRead) : 0U;
    return iRead < 0 ? Told(pstOpen, errno) : 0;
}

int WriteBytes(BMCHOST_BACKEND_OPEN_S *pstOpen, u32 uiOffset, u32 uiLength, const u8 *pucBuf)
{
    ssize_t iWritten = -1;
    do {
        iWritten = pwrite(FileOf(pstOpen), pucBuf, uiLength, static_cast<off_t>(uiOffset));
    } while (iWritten < 0 && errno == EINTR);
    if (iWritten >= 0 && iWritten != static_cast<ssize_t>(uiLength)) {
        Why(pstOpen,
            "short answer, " + std::to_string(iWritten) + " of " + std::to_string(uiLength) + " bytes");
        return EIO;
    }
    return iWritten < 0 ? Told(pstOpen, errno) : 0;
}

void Close(BMCHOST_BACKEND_OPEN_S *pstOpen)
{
    const std::unique_ptr<int> upFile(static_cast<int *>(pstOpen->pHandle));
    (void)close(*upFile);
}

} // namespace

const BMCHOST_BACKEND_S g_stKernelBackend = {
    BMCHOST_BACKEND_VERSION, "kernel", Check, Open, ReadBytes, WriteBytes, Close,
};

} // namespace host
