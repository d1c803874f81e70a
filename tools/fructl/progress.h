// A line on the terminal while an EEPROM is being written.
#ifndef FRUCTL_PROGRESS_H
#define FRUCTL_PROGRESS_H

#include <string>

#include "lib_fru_types.h"

// Shows how far the writing is as long as it lives, on stderr and only when that is a terminal.
class PROGRESS
{
  public:
    // Of a write in several calls, uiBytes from uiFirst on in the chip, the whole; else each
    // call's own share.
    explicit PROGRESS(std::string strWhat, u32 uiFirst = 0, u32 uiBytes = 0);
    ~PROGRESS();
    PROGRESS(const PROGRESS &) = delete;
    PROGRESS &operator=(const PROGRESS &) = delete;

    // After a page: in the chip it begins at uiOffset, of the call's uiTotal bytes uiDone are written.
    void Show(u32 uiOffset, u32 uiDone, u32 uiTotal) const;

  private:
    std::string m_strWhat;
    u32 m_uiFirst;
    u32 m_uiBytes;
    bool m_bShown;
};

#endif
