// SPDX-License-Identifier: Apache-2.0
// Transfers with an image file: reads at once, writes page by page, as a chip takes them.
#include "eeprom/chip.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace host {

namespace {

std::string ImagePath(const std::string &strChip)
{
    return BMCHOST_EEPROM_DIR "/" + strChip + ".bin";
}

std::string LockPath(const std::string &strChip)
{
    return BMCHOST_LOCK_DIR "/eeprom-" + strChip + ".lock";
}

i32 Failed(const TRANSFER_S &stTransfer, const char *pcWhat, int iError)
{
    HOST_LOG(BMC_DIAG_ERROR, "EEPROM %s: %s %u bytes at %#x: %s", stTransfer.strChip.c_str(), pcWhat,
             stTransfer.uiLength, stTransfer.uiOffset, files::Reason(iError).c_str());
    return g_iNoTransfer;
}

// What the chip holds of the caller's range.
u32 Held(const TRANSFER_S &stTransfer, const struct stat &stStat)
{
    const uint64_t uiCapacity = std::min<uint64_t>(static_cast<uint64_t>(stStat.st_size), INT32_MAX);
    const uint64_t uiLeft = stTransfer.uiOffset < uiCapacity ? uiCapacity - stTransfer.uiOffset : 0U;
    return static_cast<u32>(std::min<uint64_t>(stTransfer.uiLength, uiLeft));
}

// The bytes read; negative with errno set.
i32 ReadBytes(const TRANSFER_S &stTransfer, int iFd, u32 uiTotal)
{
    u32 uiDone = 0;
    while (uiDone < uiTotal) {
        const ssize_t iRead = pread(iFd, stTransfer.pucBuf + uiDone, uiTotal - uiDone,
                                    static_cast<off_t>(stTransfer.uiOffset) + uiDone);
        if (iRead == 0) {
            break; // somebody cut the chip short since
        }
        if (iRead < 0 && errno != EINTR) {
            return g_iNoTransfer;
        }
        uiDone += iRead > 0 ? static_cast<u32>(iRead) : 0U;
    }
    return static_cast<i32>(uiDone);
}

// A write on its way.
struct WRITE_S
{
    const TRANSFER_S &stTransfer;
    const FAULT_S &stFault;
    int iFd;
    u32 uiTotal;
    files::LockFile stLock;
    bool bChanged;
};

// The power goes: half of the page is new, of the rest nobody knows.
int Tear(const WRITE_S &stWrite, u32 uiDone, u32 uiPage)
{
    u8 aucPage[BMCHOST_EEPROM_PAGE];
    (void)memcpy(aucPage, stWrite.stTransfer.pucBuf + uiDone, uiPage);
    for (u32 i = uiPage / 2U; i < uiPage; ++i) {
        aucPage[i] = static_cast<u8>(~aucPage[i]);
    }
    const off_t iAt = static_cast<off_t>(stWrite.stTransfer.uiOffset) + uiDone;
    (void)!pwrite(stWrite.iFd, aucPage, uiPage, iAt);
    return ECANCELED;
}

// With the chip's lock held; an errno value.
int PutPage(WRITE_S *pstWrite, u32 uiDone, u32 uiPage)
{
    const off_t iAt = static_cast<off_t>(pstWrite->stTransfer.uiOffset) + uiDone;
    const u8 *pucNew = pstWrite->stTransfer.pucBuf + uiDone;
    u8 aucOld[BMCHOST_EEPROM_PAGE];
    int iError = files::ReadExactly(pstWrite->iFd, aucOld, uiPage, iAt); // EIO: cut short since
    // A page that holds the bytes already is left alone: it costs a chip's life, and time.
    if (iError != 0 || memcmp(aucOld, pucNew, uiPage) == 0) {
        return iError;
    }
    ssize_t iWritten = -1;
    do {
        iWritten = pwrite(pstWrite->iFd, pucNew, uiPage, iAt);
    } while (iWritten < 0 && errno == EINTR);
    if (iWritten == static_cast<ssize_t>(uiPage)) {
        pstWrite->bChanged = true;
        WaitUs(pstWrite->stTransfer.uiDelayUs); // the chip answers nobody in its write cycle
        return 0;
    }
    iError = iWritten < 0 ? errno : ENOSPC;
    // A chip writes a page or does not: where the disk took a part, what was there goes back.
    const bool bDamaged =
        iWritten > 0 && pwrite(pstWrite->iFd, aucOld, static_cast<size_t>(iWritten), iAt) != iWritten;
    return bDamaged ? EIO : iError;
}

int WritePage(WRITE_S *pstWrite, u32 uiDone, u32 uiPage)
{
    const int iError = pstWrite->stLock.Resume(g_uiLockPatienceMs);
    if (iError != 0) {
        return iError;
    }
    const u32 uiAt = pstWrite->stTransfer.uiOffset + uiDone;
    const FAULT_S &stFault = pstWrite->stFault;
    const bool bHere = !stFault.bValue || (stFault.uiValue >= uiAt && stFault.uiValue < uiAt + uiPage);
    const int iResult = stFault.enFault == Fault::Torn && bHere ? Tear(*pstWrite, uiDone, uiPage)
                        : stFault.enFault == Fault::Protected   ? 0
                                                                : PutPage(pstWrite, uiDone, uiPage);
    pstWrite->stLock.Pause();
    return iResult;
}

int OpenLock(files::LockFile *pstLock, const std::string &strChip)
{
    const files::PLACE_S stPlace = WritePlaceOf(LockPath(strChip).c_str());
    int iError = pstLock->Take(stPlace, g_uiLockPatienceMs);
    if (iError == ENOENT) {
        iError = files::MakeDirectories({stPlace.strBase, BMCHOST_LOCK_DIR});
        iError = iError == 0 ? pstLock->Take(stPlace, g_uiLockPatienceMs) : iError;
    }
    pstLock->Pause();
    return iError;
}

i32 WritePages(WRITE_S *pstWrite)
{
    const TRANSFER_S &stTransfer = pstWrite->stTransfer;
    u32 uiDone = 0;
    while (uiDone < pstWrite->uiTotal) {
        const u32 uiAt = stTransfer.uiOffset + uiDone;
        const u32 uiPage =
            std::min(pstWrite->uiTotal - uiDone, BMCHOST_EEPROM_PAGE - uiAt % BMCHOST_EEPROM_PAGE);
        const int iError = WritePage(pstWrite, uiDone, uiPage);
        if (iError != 0) {
            if (iError == ECANCELED) {
                EndFault(stTransfer.strChip);
            }
            return Failed(stTransfer, "writing", iError);
        }
        uiDone += uiPage;
        if (stTransfer.pfnProgress != nullptr) {
            const BMCHOST_EEPROM_PROGRESS_S stStep = {stTransfer.strChip.c_str(), uiAt, uiDone,
                                                      pstWrite->uiTotal};
            stTransfer.pfnProgress(&stStep, stTransfer.pContext);
        }
    }
    // What a chip has acknowledged survives a power cut. Files that are chips themselves know no sync.
    if (pstWrite->bChanged && fdatasync(pstWrite->iFd) != 0 && errno != EINVAL && errno != ENOSYS &&
        errno != EROFS) {
        return Failed(stTransfer, "writing", errno);
    }
    return static_cast<i32>(uiDone);
}

// The image's descriptor; negative result with a message.
bool OpenImage(const std::string &strChip, bool bWrite, files::Fd *pstFile, struct stat *pstStat)
{
    const std::string strPath = ImagePath(strChip);
    const files::PLACE_S stPlace = bWrite ? WritePlaceOf(strPath.c_str()) : PlaceOf(strPath.c_str());
    // Asked of the mode itself, so that the pin holds for the superuser too, and before opening: for anybody
    // else that fails first.
    if (bWrite && files::Status(stPlace, pstStat) == 0 && (pstStat->st_mode & 0222U) == 0U) {
        HOST_LOG(BMC_DIAG_WARNING, "EEPROM %s: write-protected", strChip.c_str());
        return false;
    }
    const int iError =
        files::OpenRegular(stPlace, bWrite ? O_RDWR : O_RDONLY, files::Links::Ours, pstFile, pstStat);
    if (iError != 0) {
        HOST_LOG(BMC_DIAG_WARNING, "EEPROM %s: %s", strChip.c_str(), files::Reason(iError).c_str());
    }
    return iError == 0;
}

} // namespace

i32 ReadChip(const TRANSFER_S &stTransfer)
{
    const FAULT_S stFault = ReadFault(stTransfer.strChip);
    files::Fd stFile;
    struct stat stStat;
    if (FailsByFault(stTransfer.strChip, stFault) ||
        !OpenImage(stTransfer.strChip, false, &stFile, &stStat)) {
        return g_iNoTransfer;
    }
    const files::PLACE_S stLockPlace = PlaceOf(LockPath(stTransfer.strChip).c_str());
    const u32 uiTotal = Held(stTransfer, stStat);
    i32 iCount = g_iNoTransfer;
    int iError = 0;
    {
        files::LockFile stLock; // no page of a write comes in between
        iError = stLock.Share(stLockPlace, g_uiLockPatienceMs);
        // Without a lock file nobody has written yet; without the right to it we are a guest who reads.
        const bool bNoLock = iError != 0 && iError != ETIMEDOUT;
        if (iError == 0 || bNoLock) {
            iCount = ReadBytes(stTransfer, stFile.Get(), uiTotal);
            iError = iCount < 0 ? errno : 0;
        }
        if (bNoLock && iError == 0 && stLock.Share(stLockPlace, g_uiLockPatienceMs) == 0) {
            iCount = ReadBytes(stTransfer, stFile.Get(), uiTotal); // the first writer came meanwhile
            iError = iCount < 0 ? errno : 0;
        }
    }
    return iError == 0 ? iCount : Failed(stTransfer, "reading", iError);
}

i32 WriteChip(const TRANSFER_S &stTransfer)
{
    const FAULT_S stFault = ReadFault(stTransfer.strChip);
    files::Fd stFile;
    struct stat stStat;
    if (FailsByFault(stTransfer.strChip, stFault) || !OpenImage(stTransfer.strChip, true, &stFile, &stStat)) {
        return g_iNoTransfer;
    }
    WRITE_S stWrite = {stTransfer, stFault, stFile.Get(), Held(stTransfer, stStat), {}, false};
    const int iError = stWrite.uiTotal == 0U ? 0 : OpenLock(&stWrite.stLock, stTransfer.strChip);
    return iError == 0 ? WritePages(&stWrite) : Failed(stTransfer, "locking", iError);
}

} // namespace host
