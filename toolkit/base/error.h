// SPDX-License-Identifier: Apache-2.0
// How something fails: one line for people, and whether the one who asked or the controller was at fault.
#ifndef TOOLKIT_BASE_ERROR_H
#define TOOLKIT_BASE_ERROR_H

#include <stdexcept>
#include <string>

enum class ErrorClass
{
    Failed, // it was tried, or could not be
    Usage   // what was asked for makes no sense
};

// The line says what was refused, why, and what would be accepted. It never holds a line feed.
class Error : public std::runtime_error
{
  public:
    Error(ErrorClass enClass, const std::string &strLine) : std::runtime_error(strLine), m_enClass(enClass) {}
    ErrorClass Class() const
    {
        return m_enClass;
    }

  private:
    ErrorClass m_enClass;
};

[[noreturn]] inline void Fail(const std::string &strLine)
{
    throw Error(ErrorClass::Failed, strLine);
}

[[noreturn]] inline void FailUsage(const std::string &strLine)
{
    throw Error(ErrorClass::Usage, strLine);
}

#endif
