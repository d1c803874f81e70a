#include "progress.h"

#include <cstdio>
#include <unistd.h>

#include "bmcfru_host.h"

namespace {

void Show(const BMCHOST_EEPROM_PROGRESS_S *pstProgress, void *pContext)
{
    fprintf(stderr, "\r%s: %u of %u bytes at 0x%x of %s ",
            static_cast<const PROGRESS *>(pContext)->What().c_str(), pstProgress->uiDone,
            pstProgress->uiTotal, pstProgress->uiOffset, pstProgress->pcChip);
}

} // namespace

PROGRESS::PROGRESS(std::string strWhat) : m_strWhat(std::move(strWhat)), m_bShown(isatty(STDERR_FILENO) == 1)
{
    if (m_bShown) {
        BMCHOST_SetEepromProgress(Show, this);
    }
}

PROGRESS::~PROGRESS()
{
    if (m_bShown) {
        BMCHOST_SetEepromProgress(nullptr, nullptr);
        fprintf(stderr, "\r\x1b[K");
    }
}
