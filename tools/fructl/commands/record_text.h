// SPDX-License-Identifier: Apache-2.0
// A MultiRecord for people.
#ifndef FRUCTL_COMMANDS_RECORD_TEXT_H
#define FRUCTL_COMMANDS_RECORD_TEXT_H

#include <string>

#include "toolkit/image/record.h"

// Its values, one a line; hex, and why, where they are not known.
std::string RecordText(const MULTIRECORD_VIEW_S &stRecord);

// What says most of it, in one line.
std::string RecordLine(const MULTIRECORD_VIEW_S &stRecord);

#endif
