// fructl oem: the OEM configuration file.
#ifndef FRUCTL_OEM_H
#define FRUCTL_OEM_H

#include <vector>

#include "commands.h"

// A text of the OEM configuration record.
struct OEM_TEXT_S
{
    const char *pcKey; // in the file
    size_t uiOffset;   // in FRU_OEM_CONF_S

    const char *TextIn(const FRU_OEM_CONF_S &stConf) const
    {
        return reinterpret_cast<const char *>(&stConf) + uiOffset;
    }
};

// All of them, in the record's order.
const std::vector<OEM_TEXT_S> &OemTexts();

// Adds "oem sync"; it stands in cmd_oem_sync.cpp.
void AddOemSyncCommand(CLI::App &stOem, SESSION_S &stSession);

#endif
