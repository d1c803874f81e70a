// How a command fails: one line for people, and the exit code that goes with it.
#ifndef FRUCTL_ERROR_H
#define FRUCTL_ERROR_H

#include <stdexcept>
#include <string>

enum EXIT_CODE_E
{
    EXIT_CODE_OK = 0,
    EXIT_CODE_FAILED = 1,
    EXIT_CODE_DIFFERENT = 1, // of 'diff', which tells trouble by 2
    EXIT_CODE_USAGE = 2
};

// The line says what was refused, why, and what would be accepted. It never holds a line feed.
class FRUCTL_ERROR : public std::runtime_error
{
  public:
    FRUCTL_ERROR(EXIT_CODE_E enCode, const std::string &strLine)
        : std::runtime_error(strLine), m_enCode(enCode)
    {}
    EXIT_CODE_E Code() const
    {
        return m_enCode;
    }

  private:
    EXIT_CODE_E m_enCode;
};

[[noreturn]] inline void Fail(const std::string &strLine)
{
    throw FRUCTL_ERROR(EXIT_CODE_FAILED, strLine);
}

[[noreturn]] inline void FailUsage(const std::string &strLine)
{
    throw FRUCTL_ERROR(EXIT_CODE_USAGE, strLine);
}

#endif
