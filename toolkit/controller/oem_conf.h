// SPDX-License-Identifier: Apache-2.0
// The OEM configuration file.
#ifndef TOOLKIT_CONTROLLER_OEM_CONF_H
#define TOOLKIT_CONTROLLER_OEM_CONF_H

#include <vector>

#include "lib_fru_types.h"

constexpr const char *OEM_CONF_FILE = "/conf/oempack/bmc/CID_OEM.conf";

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

#endif
