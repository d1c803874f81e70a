// SPDX-License-Identifier: Apache-2.0
#include "toolkit/edit/progress.h"

#include <algorithm>

#include "bmcfru_host.h"

namespace {

void TellPage(const BMCHOST_EEPROM_PROGRESS_S *pstProgress, void *pContext)
{
    static_cast<const WriteProgress *>(pContext)->Page(pstProgress->uiOffset, pstProgress->uiDone,
                                                       pstProgress->uiTotal);
}

} // namespace

WriteProgress::WriteProgress(ProgressView *pstView, std::string strWhat, u32 uiFirst, u32 uiBytes)
    : m_pstView(pstView), m_strWhat(std::move(strWhat)), m_uiFirst(uiFirst), m_uiBytes(uiBytes)
{
    if (m_pstView != nullptr) {
        BMCHOST_SetEepromProgress(TellPage, this);
    }
}

void WriteProgress::Page(u32 uiOffset, u32 uiDone, u32 uiTotal) const
{
    if (m_uiBytes != 0U) {
        const u32 uiPageEnd = (uiOffset / BMCHOST_EEPROM_PAGE + 1U) * BMCHOST_EEPROM_PAGE;
        uiDone = std::min(uiPageEnd - m_uiFirst, m_uiBytes);
        uiTotal = m_uiBytes;
    }
    m_pstView->Show(m_strWhat, uiDone, uiTotal);
}

WriteProgress::~WriteProgress()
{
    if (m_pstView != nullptr) {
        BMCHOST_SetEepromProgress(nullptr, nullptr);
        m_pstView->End();
    }
}
