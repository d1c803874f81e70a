// SPDX-License-Identifier: Apache-2.0
// What every back end's transfers have in common: the lock, the end of the chip, pages, reading back.
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <vector>

#include "eeprom/registry.h"
#include "eeprom/write_protect.h"

namespace host {

namespace {

constexpr u32 g_uiPageMost = 4096; // as a back end may declare it

// A chip, opened for one transfer.
class Chip
{
  public:
    Chip(const SELECTION_S &stSelection, const TRANSFER_S &stTransfer)
        : m_stSelection(stSelection), m_stTransfer(stTransfer)
    {}
    ~Chip()
    {
        if (m_bOpen) {
            m_stSelection.pstBackend->pfnClose(&m_stOpen);
        }
    }
    Chip(const Chip &) = delete;
    Chip &operator=(const Chip &) = delete;

    bool Open(bool bWrite);
    // With the chip's lock held; an errno value.
    int Read(u32 uiOffset, u32 uiLength, u8 *pucBuf);
    int WritePage(WriteEnable *pstEnable, u32 uiDone, u32 uiPage);
    // What lies ahead of the chip's end.
    u32 Held() const
    {
        const u32 uiOffset = m_stTransfer.uiOffset;
        const u32 uiLeft = uiOffset < m_stOpen.uiCapacity ? m_stOpen.uiCapacity - uiOffset : 0U;
        return std::min(m_stTransfer.uiLength, uiLeft);
    }
    // Bytes of a page of the chip from uiAt on, at most uiLeft.
    u32 Page(u32 uiAt, u32 uiLeft) const
    {
        return std::min(uiLeft, m_stOpen.uiPage - uiAt % m_stOpen.uiPage);
    }
    i32 Failed(const char *pcWhat, int iError) const;

  private:
    std::string Name() const;
    std::string Reason(int iError) const;
    int Enable(WriteEnable *pstEnable);

    const SELECTION_S &m_stSelection;
    const TRANSFER_S &m_stTransfer;
    BMCHOST_BACKEND_OPEN_S m_stOpen = {};
    bool m_bOpen = false;
};

std::string Chip::Reason(int iError) const
{
    return m_stOpen.acWhy[0] == '\0' ? files::Reason(iError) : m_stOpen.acWhy;
}

std::string Chip::Name() const
{
    return m_stTransfer.strChip +
           (m_stOpen.acWhere[0] == '\0' ? "" : std::string(" (") + m_stOpen.acWhere + ")");
}

i32 Chip::Failed(const char *pcWhat, int iError) const
{
    HOST_LOG(BMC_DIAG_ERROR, "EEPROM %s: %s %u bytes at %#x: %s", Name().c_str(), pcWhat,
             m_stTransfer.uiLength, m_stTransfer.uiOffset, Reason(iError).c_str());
    return g_iNoTransfer;
}

bool Chip::Open(bool bWrite)
{
    const std::string strRoot = PlaceOf("/").strBase;
    const BMCHOST_BACKEND_CHIP_S stChip = {m_stTransfer.strChip.c_str(), m_stSelection.strSettings.c_str(),
                                           strRoot.c_str(), bWrite ? 1U : 0U};
    int iError = m_stSelection.pstBackend->pfnOpen(&stChip, &m_stOpen);
    m_bOpen = iError == 0;
    if (iError == 0 && (m_stOpen.uiPage == 0U || m_stOpen.uiPage > g_uiPageMost)) {
        iError = EINVAL;
    }
    if (iError != 0) {
        HOST_LOG(BMC_DIAG_ERROR, "EEPROM %s: %s", Name().c_str(), Reason(iError).c_str());
    }
    return iError == 0;
}

int Chip::Read(u32 uiOffset, u32 uiLength, u8 *pucBuf)
{
    u32 uiDone = 0;
    while (uiDone < uiLength) {
        u32 uiGot = 0;
        const int iError = m_stSelection.pstBackend->pfnRead(&m_stOpen, uiOffset + uiDone, uiLength - uiDone,
                                                             pucBuf + uiDone, &uiGot);
        if (iError != 0) {
            return iError;
        }
        if (uiGot == 0U || uiGot > uiLength - uiDone) {
            (void)BMC_Scnprintf(m_stOpen.acWhy, sizeof(m_stOpen.acWhy),
                                "short answer, %u of %u bytes, though the chip is said to have %u", uiDone,
                                uiLength, m_stOpen.uiCapacity);
            return EIO;
        }
        uiDone += uiGot;
    }
    return 0;
}

int Chip::Enable(WriteEnable *pstEnable)
{
    std::string strWhy;
    const int iError = pstEnable->Begin(&strWhy);
    (void)BMC_Strlcpy(m_stOpen.acWhy, strWhy.c_str(), sizeof(m_stOpen.acWhy));
    return iError;
}

int Chip::WritePage(WriteEnable *pstEnable, u32 uiDone, u32 uiPage)
{
    const u32 uiAt = m_stTransfer.uiOffset + uiDone;
    const u8 *pucNew = m_stTransfer.pucBuf + uiDone;
    std::vector<u8> vecOld(uiPage);
    std::vector<u8> vecNow(uiPage);
    int iError = Read(uiAt, uiPage, vecOld.data());
    // A page that holds the bytes already is left alone: it costs a chip's life, and time.
    if (iError != 0 || memcmp(vecOld.data(), pucNew, uiPage) == 0) {
        return iError;
    }
    iError = Enable(pstEnable);
    if (iError != 0) {
        return iError;
    }
    iError = m_stSelection.pstBackend->pfnWrite(&m_stOpen, uiAt, uiPage, pucNew);
    iError = iError == 0 ? Read(uiAt, uiPage, vecNow.data()) : iError;
    if (iError != 0 || memcmp(vecNow.data(), pucNew, uiPage) == 0) {
        return iError;
    }
    const bool bUnchanged = vecNow == vecOld;
    (void)BMC_Scnprintf(m_stOpen.acWhy, sizeof(m_stOpen.acWhy),
                        bUnchanged
                            ? "acknowledged, and unchanged from byte %#x on: the chip is write-protected"
                            : "acknowledged, but what is read back from byte %#x on is something else",
                        uiAt);
    return bUnchanged ? EROFS : EIO;
}

std::string LockPath(const std::string &strChip)
{
    return BMCHOST_LOCK_DIR "/eeprom-" + strChip + ".lock";
}

int TakeLock(files::LockFile *pstLock, const std::string &strChip)
{
    const files::PLACE_S stPlace = WritePlaceOf(LockPath(strChip).c_str());
    int iError = pstLock->Take(stPlace, g_uiLockPatienceMs);
    if (iError == ENOENT) {
        iError = files::MakeDirectories({stPlace.strBase, BMCHOST_LOCK_DIR});
        iError = iError == 0 ? pstLock->Take(stPlace, g_uiLockPatienceMs) : iError;
    }
    return iError;
}

// A line that a killed writer has left released is asserted before anything else is done with the chip.
void ProtectLeftOver(const std::string &strChip)
{
    if (!IsLeftEnabled(strChip)) {
        return;
    }
    std::string strWhy;
    const int iError = ProtectAgain(strChip, &strWhy);
    if (iError != 0) {
        HOST_LOG(BMC_DIAG_ERROR, "EEPROM %s: %s", strChip.c_str(),
                 strWhy.empty() ? files::Reason(iError).c_str() : strWhy.c_str());
    }
}

i32 WritePages(Chip *pstChip, files::LockFile *pstLock, WriteEnable *pstEnable, const TRANSFER_S &stTransfer,
               u32 uiTotal)
{
    u32 uiDone = 0;
    while (uiDone < uiTotal) {
        const u32 uiAt = stTransfer.uiOffset + uiDone;
        const u32 uiPage = pstChip->Page(uiAt, uiTotal - uiDone);
        int iError = pstLock->IsHeld() ? 0 : pstLock->Resume(g_uiLockPatienceMs);
        iError = iError == 0 ? pstChip->WritePage(pstEnable, uiDone, uiPage) : iError;
        if (iError != 0) {
            return pstChip->Failed("writing", iError);
        }
        if (!pstEnable->HasLine()) {
            pstLock
                ->Pause(); // others may read between two pages, where they do not take the line for left over
        }
        uiDone += uiPage;
        if (stTransfer.pfnProgress != nullptr) {
            const BMCHOST_EEPROM_PROGRESS_S stStep = {stTransfer.strChip.c_str(), uiAt, uiDone, uiTotal};
            stTransfer.pfnProgress(&stStep, stTransfer.pContext);
        }
    }
    std::string strWhy;
    if (pstEnable->End(&strWhy) != 0) {
        HOST_LOG(BMC_DIAG_ERROR, "EEPROM %s: %s", stTransfer.strChip.c_str(), strWhy.c_str());
        return g_iNoTransfer; // the bytes are there, but nobody may think that all is as before
    }
    return static_cast<i32>(uiDone);
}

// The lock that nobody has had yet; an errno value where we may not.
int TakeFirst(files::LockFile *pstLock, const std::string &strChip)
{
    try {
        return TakeLock(pstLock, strChip);
    } catch (const std::exception &) {
        return EACCES;
    }
}

// A line left released, found by one who only reads; a guest in the root may not, and reads all the same.
void ProtectForReader(const std::string &strChip)
{
    try {
        files::LockFile stWriters;
        if (TakeLock(&stWriters, strChip) == 0) { // else a writer is at work
            ProtectLeftOver(strChip);
        }
    } catch (const std::exception &error) {
        HOST_LOG(BMC_DIAG_WARNING, "EEPROM %s: its write-protect line may be released: %s", strChip.c_str(),
                 error.what());
    }
}

// With the lock of the chip, where there is one.
i32 ReadLocked(const SELECTION_S &stSelection, const TRANSFER_S &stTransfer)
{
    Chip stChip(stSelection, stTransfer);
    if (!stChip.Open(false)) {
        return g_iNoTransfer;
    }
    u8 ucProbe = 0; // that it answers is asked for also where nothing is read
    const u32 uiTotal = stChip.Held();
    const int iError = uiTotal == 0U ? stChip.Read(0U, 1U, &ucProbe)
                                     : stChip.Read(stTransfer.uiOffset, uiTotal, stTransfer.pucBuf);
    return iError == 0 ? static_cast<i32>(uiTotal) : stChip.Failed("reading", iError);
}

} // namespace

i32 ReadThrough(const SELECTION_S &stSelection, const TRANSFER_S &stTransfer)
{
    if (IsLeftEnabled(stTransfer.strChip)) {
        ProtectForReader(stTransfer.strChip);
    }
    const files::PLACE_S stPlace = PlaceOf(LockPath(stTransfer.strChip).c_str());
    files::LockFile stLock; // no page of a write comes in between
    int iLock = stLock.Share(stPlace, g_uiLockPatienceMs);
    if (iLock == ENOENT) {
        iLock = TakeFirst(&stLock, stTransfer.strChip); // a real chip answers nobody while somebody writes it
    }
    if (iLock == ETIMEDOUT) {
        return Chip(stSelection, stTransfer).Failed("locking for reading", iLock);
    }
    // Without the right to the lock file we are a guest who reads.
    const i32 iCount = ReadLocked(stSelection, stTransfer);
    if (iLock != 0 && iCount > 0 && stLock.Share(stPlace, g_uiLockPatienceMs) == 0) {
        return ReadLocked(stSelection, stTransfer); // the first writer came meanwhile
    }
    return iCount;
}

i32 WriteThrough(const SELECTION_S &stSelection, const TRANSFER_S &stTransfer)
{
    Chip stChip(stSelection, stTransfer);
    files::LockFile stLock;
    const int iLock = TakeLock(&stLock, stTransfer.strChip);
    if (iLock != 0) {
        return stChip.Failed("locking for writing", iLock);
    }
    ProtectLeftOver(stTransfer.strChip);
    if (!stChip.Open(true)) {
        return g_iNoTransfer;
    }
    const u32 uiTotal = stChip.Held();
    u8 ucProbe = 0;
    const int iError = uiTotal == 0U ? stChip.Read(0U, 1U, &ucProbe) : 0;
    if (iError != 0) {
        return stChip.Failed("reading", iError);
    }
    WriteEnable stEnable(stTransfer.strChip, ReadProtectLine(stSelection.strSettings));
    return WritePages(&stChip, &stLock, &stEnable, stTransfer, uiTotal);
}

} // namespace host
