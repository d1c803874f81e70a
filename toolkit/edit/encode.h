// SPDX-License-Identifier: Apache-2.0
// Image files made from records.
#ifndef TOOLKIT_EDIT_ENCODE_H
#define TOOLKIT_EDIT_ENCODE_H

#include <string>
#include <vector>

#include "lib_fru_types.h"
#include "toolkit/image/record.h"

// The record's image, filled up with 0xff to strSize bytes where that is not empty. Fails when it would not
// read back as the record; strDocument is where the record comes from.
std::vector<u8> MakeImageFile(const Record &stRecord, const std::string &strDocument,
                              const std::string &strSize);

// Writes the file (*.hex: readable hex) when it reads back the same; else it fails and leaves what was there.
void WriteImageFile(const std::string &strPath, const std::vector<u8> &vecImage);

#endif
