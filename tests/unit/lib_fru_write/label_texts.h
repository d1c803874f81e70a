// SPDX-License-Identifier: Apache-2.0
// What the tests of this module say of messages and bytes.
#ifndef TESTS_LABEL_TEXTS_H
#define TESTS_LABEL_TEXTS_H

#include <memory>
#include <string>
#include <vector>

#include "fake/fake_platform.h"

namespace label {

using LINES = std::vector<std::string>;

inline std::string Line(u32 uiSeverity, const std::string &strText)
{
    return "0/" + std::to_string(uiSeverity) + " lib_fru_write.c: " + strText;
}

inline std::string Null(const std::string &strFunction, const std::string &strPointer)
{
    return fake::NullMessage("lib_fru_write.c", strFunction, strPointer);
}

inline fake::BYTES Bytes(const std::string &strText)
{
    return {strText.begin(), strText.end()};
}

// Text and terminator in a buffer of exactly that size, so that a read past it shows.
inline std::unique_ptr<char[]> Text(const std::string &strText)
{
    auto upBuffer = std::make_unique<char[]>(strText.size() + 1U);
    (void)std::copy(strText.begin(), strText.end(), upBuffer.get());
    return upBuffer;
}

// The same without a terminator.
inline std::unique_ptr<char[]> Exactly(const std::string &strText)
{
    auto upBuffer = std::make_unique<char[]>(strText.size());
    (void)std::copy(strText.begin(), strText.end(), upBuffer.get());
    return upBuffer;
}

// What the date check says of its four patterns.
inline std::string DateReport(int iNotFill, int iNotFillExt, int iFill, int iFillExt)
{
    return Line(6U, "After Correct, bRetNotFill:" + std::to_string(iNotFill) +
                        ", bRetNotFillExt:" + std::to_string(iNotFillExt) +
                        ", bRetFill:" + std::to_string(iFill) + ", bRetFillExt:" + std::to_string(iFillExt));
}

} // namespace label

#endif
