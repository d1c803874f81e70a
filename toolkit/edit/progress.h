// SPDX-License-Identifier: Apache-2.0
// How far the writing of a device is, told to whoever shows it.
#ifndef TOOLKIT_EDIT_PROGRESS_H
#define TOOLKIT_EDIT_PROGRESS_H

#include <string>

#include "lib_fru_types.h"

// Whoever shows it.
class ProgressView
{
  public:
    virtual ~ProgressView() = default;
    // A page is written: of strWhat uiDone bytes of uiTotal.
    virtual void Show(const std::string &strWhat, u32 uiDone, u32 uiTotal) = 0;
    // Nothing is being written any more.
    virtual void End() = 0;
};

// Tells the view of every page that is written as long as it lives.
class WriteProgress
{
  public:
    // No view: nothing is told. Of a write in several calls, uiBytes from uiFirst on in the chip, the whole
    // is told; else each call's own share.
    WriteProgress(ProgressView *pstView, std::string strWhat, u32 uiFirst = 0, u32 uiBytes = 0);
    ~WriteProgress();
    WriteProgress(const WriteProgress &) = delete;
    WriteProgress &operator=(const WriteProgress &) = delete;

    // After a page: in the chip it begins at uiOffset, of the call's uiTotal bytes uiDone are written.
    void Page(u32 uiOffset, u32 uiDone, u32 uiTotal) const;

  private:
    ProgressView *m_pstView;
    std::string m_strWhat;
    u32 m_uiFirst;
    u32 m_uiBytes;
};

#endif
