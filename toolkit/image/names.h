// SPDX-License-Identifier: Apache-2.0
// Names that the FRU format gives to numbers, for people.
#ifndef TOOLKIT_IMAGE_NAMES_H
#define TOOLKIT_IMAGE_NAMES_H

#include <string>
#include <vector>

#include "lib_fru_types.h"

// "Rack Mount Chassis" for 0x17, as the library decodes it; empty when it knows no such type.
std::string ChassisTypeName(u8 ucType);

// All of them, in the order of their codes.
std::vector<std::string> ChassisTypeNames();

// "English" for 0 and 25, else "code N".
std::string LanguageName(u8 ucLanguage);

// IPMI completion codes.
const char *CompletionCodeName(u8 ucCode);

#endif
