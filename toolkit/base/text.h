// SPDX-License-Identifier: Apache-2.0
// Texts: formatting, hex, and making bytes that came from a device safe to print.
#ifndef TOOLKIT_BASE_TEXT_H
#define TOOLKIT_BASE_TEXT_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "lib_fru_types.h"

// printf into a std::string.
std::string Format(const char *pcFormat, ...) __attribute__((format(printf, 1, 2)));

// Bytes as "0a ff", with the separator between them.
std::string HexBytes(const u8 *pucBytes, size_t uiLength, const char *pcSeparator = " ");
std::string HexBytes(const std::vector<u8> &vecBytes, const char *pcSeparator = " ");

// For a terminal: printable ASCII as it is, a backslash doubled, every other byte as \xNN.
std::string EscapeText(std::string_view strBytes);

// Lines of another program as a terminal may have them: what is no printable ASCII becomes \xNN, ends of
// lines stay.
std::string PrintableLines(std::string_view strText);

// For JSON: the bytes read as Latin-1, as the FRU format says, in UTF-8. Nothing is lost.
std::string Latin1ToUtf8(std::string_view strBytes);

// The way back; nothing when a character is beyond U+00FF or the text is not UTF-8.
std::optional<std::string> Utf8ToLatin1(std::string_view strText);

// "1 area", "2 areas".
std::string Count(size_t uiCount, const char *pcSingular, const char *pcPlural = nullptr);

std::string Join(const std::vector<std::string> &vecTexts, const char *pcSeparator);

// A whole number, decimal or 0x, at most uiMax; nothing when the text is anything else.
std::optional<u32> ParseNumber(std::string_view strText, u32 uiMax);

// Hex digits, two a byte, with blanks anywhere between bytes; nothing when the text is anything else.
std::optional<std::vector<u8>> ParseHexBytes(std::string_view strText);

// A status code of the library with its meaning: "0x29000003 (no such component)".
std::string StatusText(u32 uiStatus);

#endif
