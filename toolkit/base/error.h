// SPDX-License-Identifier: Apache-2.0
// How something fails: one line for people, and what kind of failure it is, which programs decide on.
#ifndef TOOLKIT_BASE_ERROR_H
#define TOOLKIT_BASE_ERROR_H

#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "lib_fru_types.h"

enum class ErrorClass
{
    Failed,       // none of the others
    Usage,        // what was asked for makes no sense
    Refused,      // a value, a name or what a file holds is not accepted
    NotFound,     // there is no such device, controller or file
    NoAnswer,     // a chip does not answer, or does not keep what is written
    Damaged,      // an image, a record or the database
    Busy,         // others kept it all the time that was waited
    NotPermitted, // the user's rights, somebody else's directory, a read-only file system
    DiskFull,     // the disk, or the user's share of it
    HalfWritten   // a write that was cut short could be neither finished nor undone
};

// The line says what was refused, why, and what would be accepted. It never holds a line feed.
class Error : public std::runtime_error
{
  public:
    Error(ErrorClass enClass, const std::string &strLine, std::vector<std::string> vecAccepted = {})
        : std::runtime_error(strLine), m_enClass(enClass), m_vecAccepted(std::move(vecAccepted))
    {}
    ErrorClass Class() const
    {
        return m_enClass;
    }
    // The library's own status code, where it was a call of the library that failed.
    const std::optional<u32> &Status() const
    {
        return m_optStatus;
    }
    void SetStatus(std::optional<u32> optStatus)
    {
        m_optStatus = optStatus;
    }
    // What the line tells behind "accepted: ", one by one: the list that it was made from, else that clause.
    std::vector<std::string> Accepted() const;

  private:
    ErrorClass m_enClass;
    std::vector<std::string> m_vecAccepted;
    std::optional<u32> m_optStatus;
};

[[noreturn]] inline void Fail(ErrorClass enClass, const std::string &strLine,
                              std::vector<std::string> vecAccepted = {})
{
    throw Error(enClass, strLine, std::move(vecAccepted));
}

[[noreturn]] inline void Fail(const std::string &strLine)
{
    Fail(ErrorClass::Failed, strLine);
}

[[noreturn]] inline void FailUsage(const std::string &strLine, std::vector<std::string> vecAccepted = {})
{
    Fail(ErrorClass::Usage, strLine, std::move(vecAccepted));
}

[[noreturn]] inline void FailRefused(const std::string &strLine, std::vector<std::string> vecAccepted = {})
{
    Fail(ErrorClass::Refused, strLine, std::move(vecAccepted));
}

// What kind of failure an errno value tells of.
ErrorClass ClassOfErrno(int iError);

// The stable word for a class: "no-answer".
const char *ErrorWord(ErrorClass enClass);

#endif
