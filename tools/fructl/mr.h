// fructl mr: the MultiRecords of FRU images.
#ifndef FRUCTL_MR_H
#define FRUCTL_MR_H

#include <array>
#include <string>
#include <vector>

#include "commands.h"

using GUID_BYTES = std::array<u8, 16>;

// A GUID's usual text as FRU_innerUpdateMultiRecord() takes it: the whole of it least significant byte first,
// so that the record's first three groups come to lie least significant byte first and the rest in the text's
// order, which is how GuidText() and readers of the record read it. Fails as wrong usage for any other text.
GUID_BYTES ParseGuid(const std::string &strText);

// 0, or what the library's MultiRecord calls mean by their result.
std::string MultiRecordStatus(u32 uiStatus);

// The device that MultiRecords are merged into: component type 0, instance 0.
constexpr const char *MAIN_FRU = "0x00:0";

// Adds "mr add"; it stands in cmd_mr_add.cpp.
void AddMrAddCommand(CLI::App &stMr, SESSION_S &stSession);

#endif
