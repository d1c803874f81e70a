#include "progress.h"

#include <algorithm>
#include <cstdio>
#include <unistd.h>

#include "bmcfru_host.h"

namespace {

void ShowPage(const BMCHOST_EEPROM_PROGRESS_S *pstProgress, void *pContext)
{
    static_cast<const PROGRESS *>(pContext)->Show(pstProgress->uiOffset, pstProgress->uiDone,
                                                  pstProgress->uiTotal);
}

} // namespace

PROGRESS::PROGRESS(std::string strWhat, u32 uiFirst, u32 uiBytes)
    : m_strWhat(std::move(strWhat)), m_uiFirst(uiFirst), m_uiBytes(uiBytes),
      m_bShown(isatty(STDERR_FILENO) == 1)
{
    if (m_bShown) {
        BMCHOST_SetEepromProgress(ShowPage, this);
    }
}

void PROGRESS::Show(u32 uiOffset, u32 uiDone, u32 uiTotal) const
{
    if (m_uiBytes != 0U) {
        const u32 uiPageEnd = (uiOffset / BMCHOST_EEPROM_PAGE + 1U) * BMCHOST_EEPROM_PAGE;
        uiDone = std::min(uiPageEnd - m_uiFirst, m_uiBytes);
        uiTotal = m_uiBytes;
    }
    fprintf(stderr, "\r%s: %u of %u bytes ", m_strWhat.c_str(), uiDone, uiTotal);
}

PROGRESS::~PROGRESS()
{
    if (m_bShown) {
        BMCHOST_SetEepromProgress(nullptr, nullptr);
        fprintf(stderr, "\r\x1b[K");
    }
}
