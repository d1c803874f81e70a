// SPDX-License-Identifier: Apache-2.0
// What two images say differently, for people.
#ifndef FRUCTL_TERMINAL_CHANGES_H
#define FRUCTL_TERMINAL_CHANGES_H

#include <string>
#include <vector>

#include "toolkit/image/differences.h"

// Under the area's name each field with "- old" and "+ new".
std::string FieldChangesText(const std::vector<DIFFERENCE_S> &vecDifferences);

// How many bytes would change, and the runs, at most 16 bytes a line: "0x00dd  4c 48 -> 4d 49".
std::string ByteChangesText(const std::vector<BYTE_RUN_S> &vecRuns);

#endif
