// SPDX-License-Identifier: Apache-2.0
// What the codec's tests share: a record that releases itself, decoding from exact-size
// buffers, message lines.
#ifndef TESTS_UNIT_CODEC_TEST_HELPER_H
#define TESTS_UNIT_CODEC_TEST_HELPER_H

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "fake/fake_platform.h"
#include "lib_fru_codec.h"
#include "support/image_builder.h"
#include "support/record_builder.h"

namespace codec {

using image::BYTES;
using model::Str;
using model::Strs;
using LINES = std::vector<std::string>;

class RECORD
{
  public:
    RECORD() : m_stData() {}
    ~RECORD()
    {
        FRU_ANALYZER_SafeFree(&m_stData);
    }
    RECORD(const RECORD &) = delete;
    RECORD &operator=(const RECORD &) = delete;

    FRU_DATA_S *operator->()
    {
        return &m_stData;
    }
    FRU_DATA_S *Get()
    {
        return &m_stData;
    }

  private:
    FRU_DATA_S m_stData;
};

inline u32 Decode(const BYTES &vecImage, FRU_DATA_S *pstFRUData)
{
    const std::unique_ptr<u8[]> upImage = image::Exact(vecImage);
    return FRU_ANALYZER_InterpretFRUData(upImage.get(), static_cast<u32>(vecImage.size()), pstFRUData);
}

// A message line of the codec; category 0.
inline std::string Line(u32 uiSeverity, const std::string &strText)
{
    return "0/" + std::to_string(uiSeverity) + " lib_fru_analyzer.c: " + strText;
}

inline std::string Null(const std::string &strFunction, const std::string &strPointer)
{
    return fake::NullMessage("lib_fru_analyzer.c", strFunction, strPointer);
}

// The decoder's debug line of an area's custom fields.
inline std::string CountLine(const std::string &strArea, u32 uiCount, u32 uiLeft)
{
    return Line(7, strArea + " CustomField count is " + std::to_string(uiCount) + ", length is " +
                       std::to_string(uiLeft) + ".");
}

} // namespace codec

#endif
