// A line on the terminal while an EEPROM is being written.
#ifndef FRUCTL_PROGRESS_H
#define FRUCTL_PROGRESS_H

#include <string>

// Shows how far the writing is as long as it lives, on stderr and only when that is a terminal.
class PROGRESS
{
  public:
    explicit PROGRESS(std::string strWhat);
    ~PROGRESS();
    PROGRESS(const PROGRESS &) = delete;
    PROGRESS &operator=(const PROGRESS &) = delete;

    const std::string &What() const
    {
        return m_strWhat;
    }

  private:
    std::string m_strWhat;
    bool m_bShown;
};

#endif
