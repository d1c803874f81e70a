// SPDX-License-Identifier: Apache-2.0
// Files of JSON that the toolkit keeps in a controller, numbered, each with a checksum over what it says.
#ifndef TOOLKIT_CONTROLLER_RECORD_FILE_H
#define TOOLKIT_CONTROLLER_RECORD_FILE_H

#include <optional>
#include <string>
#include <vector>

#include "lib_fru_types.h"
#include "toolkit/base/json.h"

// The numbers of the files in a directory of the controller, in order. No directory: none.
std::vector<u32> RecordNumbers(const std::string &strDirectory);

// Fails when the directory belongs neither to the user nor to root nor to the controller's owner: what somebody
// else has laid there is not to be done with the user's rights.
void RequireTrusted(const std::string &strDirectory);

// One file's content. Fails when it cannot be read, is damaged, or is of another kind.
Json ReadRecordFile(const std::string &strDirectory, u32 uiNumber, const char *pcKind);

// Writes it, whole or not at all, and durably.
void WriteRecordFile(const std::string &strDirectory, u32 uiNumber, const char *pcKind,
                     const Json &stContent);

// Removes it; one that is not there is as good.
void RemoveRecordFile(const std::string &strDirectory, u32 uiNumber);

// Bytes as they stand in such a file: hex, or null for none.
Json OptionalHex(const std::optional<std::vector<u8>> &optBytes);
std::optional<std::vector<u8>> OptionalBytes(const Json &stHex);

// The time now, as the journals of the controller tell it: "2024-05-01T12:34:56Z".
std::string TimeNow();

#endif
