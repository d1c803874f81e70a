// SPDX-License-Identifier: Apache-2.0
// A caller's locale changes nothing that the library decides: each call answers in these locales, byte for
// byte, what it answers in the plain one.
#include <clocale>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <memory>

#include <gtest/gtest.h>

#include "fake/fake_platform.h"
#include "lib_fru.h"
#include "lib_fru_write/regular_expression.h"

namespace {

const char *const g_apcLocales[] = {"en_US.UTF-8", "en_US.ISO-8859-1"};

// The process's locale for the life of a test.
class Locale
{
  public:
    explicit Locale(const char *pcName)
    {
        (void)setenv("LOCPATH", BMCFRU_LOCALE_DIR, 1);
        m_bSet = setlocale(LC_ALL, pcName) != nullptr;
    }
    ~Locale()
    {
        (void)setlocale(LC_ALL, "C");
        (void)unsetenv("LOCPATH");
    }
    Locale(const Locale &) = delete;
    Locale &operator=(const Locale &) = delete;
    bool IsSet() const
    {
        return m_bSet;
    }

  private:
    bool m_bSet = false;
};

using ANSWERS = std::vector<std::string>;

void SameInAllLocales(const std::function<ANSWERS()> &fnAsk)
{
    const ANSWERS vecPlain = fnAsk();
    ASSERT_FALSE(vecPlain.empty());
    for (const char *pcLocale : g_apcLocales) {
        const Locale stLocale(pcLocale);
        ASSERT_TRUE(stLocale.IsSet()) << pcLocale << " is not to be had";
        const ANSWERS vecAnswers = fnAsk();
        ASSERT_EQ(vecAnswers.size(), vecPlain.size());
        for (size_t i = 0; i < vecPlain.size(); ++i) {
            EXPECT_EQ(vecAnswers[i], vecPlain[i]) << pcLocale;
        }
    }
}

// Each text with each byte in front, behind, inside, and instead of its last byte.
std::vector<std::string> WithEveryByte(const std::vector<std::string> &vecTexts)
{
    std::vector<std::string> vecResult = vecTexts;
    for (const std::string &strText : vecTexts) {
        for (u32 i = 1U; i < 256U; ++i) {
            const std::string strByte(1U, static_cast<char>(i));
            vecResult.push_back(strByte + strText);
            vecResult.push_back(strText + strByte);
            vecResult.push_back(strText.substr(0U, strText.size() / 2U) + strByte +
                                strText.substr(strText.size() / 2U));
            vecResult.push_back(strText.substr(0U, strText.size() - 1U) + strByte);
            vecResult.push_back(strText.substr(0U, strText.size() - 1U) + "\xC2" + strByte);
        }
    }
    return vecResult;
}

// The text as a call may change it, in a buffer of its own.
std::unique_ptr<char[]> Writable(const std::string &strText)
{
    auto upText = std::make_unique<char[]>(strText.size() + 1U);
    (void)memcpy(upText.get(), strText.c_str(), strText.size() + 1U);
    return upText;
}

std::string Verdict(const std::string &strName, const std::string &strValue)
{
    const auto upValue = Writable(strValue);
    const u32 uiValid =
        isLabelValueValid(strName.c_str(), upValue.get(), static_cast<i32>(strValue.size()), 1U);
    return strName + " [" + strValue + "] -> " + std::to_string(uiValid) + " [" + upValue.get() + "]";
}

TEST(Locale, ChangesNoVerdictOnALabelsValue)
{
    // One label for each kind of value, and the kinds of texts that it knows.
    const std::vector<std::pair<std::string, std::vector<std::string>>> vecCases = {
        {"Chassis Type", {"Rack Mount Chassis"}},
        {"Mfg.Date", {"2024-1-1", "2024-01-01 10:20:30"}},
        {"Language Code", {"13"}},
        {"Chassis MAC Address", {"00a0c9141e3f"}},
        {"CLEI Code", {"NONE", "   ", "code"}},
        {"Board Serial Number", {"   ", "serial"}},
    };
    SameInAllLocales([&] {
        ANSWERS vecAnswers;
        fake::Reset();
        for (const auto &[strName, vecTexts] : vecCases) {
            for (const std::string &strValue : WithEveryByte(vecTexts)) {
                vecAnswers.push_back(Verdict(strName, strValue));
            }
        }
        const ANSWERS vecMessages = fake::Messages();
        vecAnswers.insert(vecAnswers.end(), vecMessages.begin(), vecMessages.end());
        return vecAnswers;
    });
}

TEST(Locale, MakesNoDigitOfASuperscript)
{
    for (const char *pcLocale : g_apcLocales) {
        const Locale stLocale(pcLocale);
        ASSERT_TRUE(stLocale.IsSet());
        EXPECT_EQ(isLabelValueMfgDateNormal("2024-1-1"), 1);
        EXPECT_EQ(isLabelValueMfgDateNormal("2024-1-1\xC2\xB2"), 0); // superscript two in UTF-8
        EXPECT_EQ(isLabelValueMfgDateNormal("2024-1-\xC2\xB2"), 0);
        EXPECT_EQ(isLabelValueMfgDateNormal("2024-1-1\xB2"), 0); // and in ISO 8859-1
        EXPECT_EQ(checkRegularExpressionCorrect("\xC2\xB2", "^[0-9]$"), 0U);
        EXPECT_EQ(checkRegularExpressionCorrect("\xB2", "^[0-9]$"), 0U);
    }
}

TEST(Locale, MakesNoHexadecimalDigitOfAnAccentedLetter)
{
    for (const char *pcLocale : g_apcLocales) {
        const Locale stLocale(pcLocale);
        ASSERT_TRUE(stLocale.IsSet());
        char acCapital[] = "00a0c9141e3\xC9"; // E with an acute accent in ISO 8859-1
        EXPECT_EQ(isLabelValueValid("Chassis MAC Address", acCapital, 12, 1U), 0U);
        EXPECT_STREQ(acCapital, "00A0C9141E3\xC9");
        char acSmall[] = "00a0c9141e3\xE9";
        EXPECT_EQ(isLabelValueValid("Chassis MAC Address", acSmall, 12, 1U), 0U);
        EXPECT_STREQ(acSmall, "00A0C9141E3\xE9"); // not in upper case either
    }
}

TEST(Locale, IsTheCallersAgainAfterAnExpression)
{
    const Locale stLocale(g_apcLocales[0]);
    ASSERT_TRUE(stLocale.IsSet());
    const size_t uiBefore = MB_CUR_MAX;
    ASSERT_GT(uiBefore, 1U);
    EXPECT_EQ(checkRegularExpressionCorrect("\xC3\xA9", "^.$"), 0U); // two bytes, not one letter
    EXPECT_EQ(checkRegularExpressionCorrect("\xC3\xA9", "^..$"), 1U);
    EXPECT_EQ(checkRegularExpressionCorrect("x", "("), 0U);
    EXPECT_EQ(MB_CUR_MAX, uiBefore);
}

TEST(Locale, ChangesNothingInManufacturingDates)
{
    const std::vector<std::string> vecDates = WithEveryByte({"2024-1-1", "2024-01-01 10:20:30", "7"});
    SameInAllLocales([&] {
        ANSWERS vecAnswers;
        for (const std::string &strDate : vecDates) {
            FRU_DATA_S stData = {};
            const u32 uiResult = LIB_FRU_CaclMfgDateTime(strDate.c_str(), &stData);
            vecAnswers.push_back(strDate + " -> " + std::to_string(uiResult));
            for (const u8 ucByte : stData.stBoardInfo.aucMfgDateTime) {
                vecAnswers.back() += " " + std::to_string(ucByte);
            }
        }
        return vecAnswers;
    });
}

TEST(Locale, ChangesNothingInLanguageCodes)
{
    const std::vector<std::string> vecCodes = WithEveryByte({"25", "136"});
    SameInAllLocales([&] {
        ANSWERS vecAnswers;
        for (const std::string &strCode : vecCodes) {
            FRU_DATA_S stData = {};
            const auto upCode = Writable(strCode);
            (void)setBoardLanuageCode(reinterpret_cast<u8 *>(upCode.get()), &stData);
            vecAnswers.push_back(strCode + " -> " + std::to_string(stData.stBoardInfo.ucLanguage));
        }
        return vecAnswers;
    });
}

TEST(Locale, ChangesNothingInSoftwareNamesAndEscapedTexts)
{
    const std::vector<std::string> vecTexts = WithEveryByte({"abcXYZ019", "a\"b\\c"});
    SameInAllLocales([&] {
        ANSWERS vecAnswers;
        for (const std::string &strText : vecTexts) {
            const auto upText = Writable(strText);
            char *pcEscaped = FRU_ANALYZER_Escape(strText.c_str());
            const u32 uiLegal = FRU_CheckCharaIsLegal(upText.get());
            vecAnswers.push_back(std::string(pcEscaped == nullptr ? "" : pcEscaped) + " " + upText.get() +
                                 " " + std::to_string(uiLegal));
            free(pcEscaped);
        }
        return vecAnswers;
    });
}

} // namespace
