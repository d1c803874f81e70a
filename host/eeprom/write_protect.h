// SPDX-License-Identifier: Apache-2.0
// A chip's write-protect line: released for a write, asserted again. A writer that is killed in between leaves a note in
// the root, by which the next transfer with the chip asserts the line, whatever the kernel has made of it since.
#ifndef BMCHOST_EEPROM_WRITE_PROTECT_H
#define BMCHOST_EEPROM_WRITE_PROTECT_H

#include <optional>
#include <string>

#include "bmc_types.h"

namespace host {

struct PROTECT_LINE_S
{
    std::string strGpioChip; // as gpiodetect shows it: name, label, number or path
    u32 uiLine;
    bool bActiveLow; // a low line protects; usually a high one does
};

// The member "writeProtect" of a chip's settings; throws SettingsError.
std::optional<PROTECT_LINE_S> ReadProtectLine(const std::string &strSettings);

// With the chip's lock held until it is gone. Results are 0 or an errno value with the reason.
class WriteEnable
{
  public:
    WriteEnable(std::string strChip, std::optional<PROTECT_LINE_S> optLine)
        : m_strChip(std::move(strChip)), m_optLine(std::move(optLine))
    {}
    ~WriteEnable();
    WriteEnable(const WriteEnable &) = delete;
    WriteEnable &operator=(const WriteEnable &) = delete;

    bool HasLine() const
    {
        return m_optLine.has_value();
    }
    // Notes it, then releases the line; again: nothing. Nothing either where the chip has no line.
    int Begin(std::string *pstrWhy);
    // Asserts the line and drops the note.
    int End(std::string *pstrWhy);

  private:
    std::string m_strChip;
    std::optional<PROTECT_LINE_S> m_optLine;
    void *m_pLine = nullptr;
};

// True when a writer has left the line released.
bool IsLeftEnabled(const std::string &strChip);
// Asserts it; the chip's lock is held, so that no writer lives.
int ProtectAgain(const std::string &strChip, std::string *pstrWhy);

} // namespace host

#endif
