// What the codec's tests share: a record that releases itself, decoding from exact-size buffers, message
// lines.
#ifndef TESTS_UNIT_CODEC_TEST_HELPER_H
#define TESTS_UNIT_CODEC_TEST_HELPER_H

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "fake/fake_platform.h"
#include "lib_fru_codec.h"
#include "support/image_builder.h"

namespace codec {

using image::BYTES;
using LINES = std::vector<std::string>;

constexpr u8 g_ucCustom = 0xFFU; // "the custom fields" where a field index is asked for

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

// Any text pointer of the record as a string; null reads as "(null)".
inline std::string Str(const void *pText)
{
    return pText == nullptr ? "(null)" : static_cast<const char *>(pText);
}

inline LINES Strs(u8 *const *ppucTexts, u32 uiCount)
{
    LINES vecTexts;
    for (u32 i = 0; ppucTexts != nullptr && i < uiCount; ++i) {
        vecTexts.push_back(Str(ppucTexts[i]));
    }
    return vecTexts;
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

inline std::string CountLine(const std::string &strArea, u32 uiCount, u32 uiLeft)
{
    return Line(7, strArea + " CustomField count is " + std::to_string(uiCount) + ", length is " +
                       std::to_string(uiLeft) + ".");
}

} // namespace codec

#endif
