// SPDX-License-Identifier: Apache-2.0
// Image files: plain bytes, or readable hex (*.hex, described in examples/README.md).
#ifndef TOOLKIT_IMAGE_IMAGE_FILE_H
#define TOOLKIT_IMAGE_IMAGE_FILE_H

#include <string>
#include <vector>

#include "lib_fru_types.h"

// The image that a file holds: readable hex when the name ends in ".hex", else the bytes as they are. A stream
// ("-", a pipe) has no such name: what is nothing but text there is readable hex.
std::vector<u8> ReadImageFile(const std::string &strPath);

// Readable hex to bytes; strName stands in front of the line number in the error.
std::vector<u8> ParseHexText(const std::string &strText, const std::string &strName);

// Bytes as readable hex, 16 a line behind their offset.
std::string HexText(const std::vector<u8> &vecBytes);

#endif
