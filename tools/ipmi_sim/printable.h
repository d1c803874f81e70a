// SPDX-License-Identifier: Apache-2.0
// Text that may hold bytes of a device, made fit for a terminal.
#ifndef IPMI_SIM_PRINTABLE_H
#define IPMI_SIM_PRINTABLE_H

#include <string>

// Each byte that is no printable ASCII becomes a question mark.
inline std::string Printable(std::string strText)
{
    for (char &cLetter : strText) {
        cLetter = cLetter >= ' ' && cLetter <= '~' ? cLetter : '?';
    }
    return strText;
}

#endif
