// SPDX-License-Identifier: Apache-2.0
// The matchers beside the expressions that they stand for, over generated texts.
#include "lib_fru_write/value_forms.h"

#include <array>
#include <random>

#include <gtest/gtest.h>

#include <regex.h>

#include "label_texts.h"
#include "lib_fru_write/regular_expression.h"

namespace {

// In the order of the forms' bits: bare, bare with a time, filled, filled with a time.
const std::array<const char *, 4> g_apcDates = {
    "^[0-9]{4}-((([13578]|(10|12))-([1-9]|[1-2][0-9]|3[0-1]))|(2-([1-9]|[1-2][0-9]))|"
    "(([469]|11)-([1-9]|[1-2][0-9]|30)))$",
    "^[0-9]{4}-((([13578]|(10|12))-([1-9]|[1-2][0-9]|3[0-1]))|(2-([1-9]|[1-2][0-9]))|"
    "(([469]|11)-([1-9]|[1-2][0-9]|30))) ([0-9]|[1][0-9]|2[0-3]):([0-9]|[1-5][0-9]):([0-9]|[1-5][0-9])$",
    "^[0-9]{4}-(((0[13578]|(10|12))-(0[1-9]|[1-2][0-9]|3[0-1]))|(02-(0[1-9]|[1-2][0-9]))|"
    "((0[469]|11)-(0[1-9]|[1-2][0-9]|30)))$",
    "^[0-9]{4}-(((0[13578]|(10|12))-(0[1-9]|[1-2][0-9]|3[0-1]))|(02-(0[1-9]|[1-2][0-9]))|"
    "((0[469]|11)-(0[1-9]|[1-2][0-9]|30))) (0[0-9]|[1][0-9]|2[0-3]):(0[0-9]|[1-5][0-9]):(0[0-9]|[1-5][0-9])$",
};
const char g_acMac[] = "^([0-9a-fA-F]{2})(([0-9a-fA-F]{2}){5})$";

// An expression compiled once: compiling it is what costs.
class Expression
{
  public:
    explicit Expression(const char *pcPattern)
    {
        EXPECT_EQ(regcomp(&m_stRegex, pcPattern, REG_EXTENDED | REG_NOSUB), 0);
    }
    ~Expression()
    {
        regfree(&m_stRegex);
    }
    Expression(const Expression &) = delete;
    Expression &operator=(const Expression &) = delete;
    bool Matches(const std::string &strText) const
    {
        return regexec(&m_stRegex, strText.c_str(), 0U, nullptr, 0) == 0;
    }

  private:
    regex_t m_stRegex = {};
};

class Dates
{
  public:
    void Compare(const std::string &strText)
    {
        u32 uiExpected = 0U;
        for (u32 i = 0; i < m_astExpressions.size(); ++i) {
            if (m_astExpressions[i].Matches(strText)) {
                uiExpected |= 1U << i;
                ++m_auiMatched[i];
            }
        }
        ++m_uiTexts;
        if (FRU_DateForms(strText.c_str()) != uiExpected) {
            ADD_FAILURE() << "\"" << strText << "\": " << FRU_DateForms(strText.c_str()) << ", not "
                          << uiExpected;
        }
    }
    u32 Texts() const
    {
        return m_uiTexts;
    }
    u32 Matched(u32 uiForm) const
    {
        return m_auiMatched[uiForm];
    }

  private:
    std::array<Expression, 4> m_astExpressions = {Expression(g_apcDates[0]), Expression(g_apcDates[1]),
                                                  Expression(g_apcDates[2]), Expression(g_apcDates[3])};
    std::array<u32, 4> m_auiMatched = {};
    u32 m_uiTexts = 0U;
};

// The same numbers in every run.
class Random
{
  public:
    u32 Below(size_t uiLimit)
    {
        return static_cast<u32>(m_stEngine() % uiLimit);
    }

  private:
    std::mt19937 m_stEngine{20251231U};
};

// One or two digits, usually a number that fits, with or without a zero in front.
std::string Number(Random &stRandom, u32 uiLimit)
{
    const u32 uiNumber = stRandom.Below(stRandom.Below(8U) == 0U ? 100U : uiLimit);
    return (uiNumber < 10U && stRandom.Below(2U) == 0U ? "0" : "") + std::to_string(uiNumber);
}

// With a time or without; each number decides for itself whether it is filled.
std::string Date(Random &stRandom)
{
    const auto fnNumber = [&](u32 uiLimit) { return Number(stRandom, uiLimit); };
    std::string strDate =
        std::to_string(1000U + stRandom.Below(9000U)) + "-" + fnNumber(13U) + "-" + fnNumber(32U);
    if (stRandom.Below(2U) == 0U) {
        strDate += " " + fnNumber(25U) + ":" + fnNumber(61U) + ":" + fnNumber(61U);
    }
    return strDate;
}

// Up to three small changes.
std::string Damaged(Random &stRandom, std::string strText)
{
    static const std::string g_strBytes = "0123456789012345678900119-- ::./aA\n\t\xB2\xC2\xE0\xFF";
    for (u32 uiChanges = stRandom.Below(4U); uiChanges != 0U; --uiChanges) {
        const size_t uiAt = stRandom.Below(strText.size() + 1U);
        const char cByte = g_strBytes[stRandom.Below(g_strBytes.size())];
        const u32 uiHow = stRandom.Below(3U);
        if (uiHow == 0U) {
            strText.insert(uiAt, 1U, cByte);
        } else if (uiAt < strText.size()) {
            uiHow == 1U ? (void)strText.erase(uiAt, 1U) : (void)(strText[uiAt] = cByte);
        }
    }
    return strText;
}

TEST(ValueForms, AYearIsFourDigits)
{
    Dates dates;
    for (const char *pcYear :
         {"", "x", "1x", "12x", "123x", "x123", "1x23", "12x4", "20 4", "-202", "/202", ":202"}) {
        dates.Compare(pcYear);
        dates.Compare(pcYear + std::string("-01-01"));
        dates.Compare(pcYear + std::string("-1-1 1:1:1"));
    }
    EXPECT_EQ(dates.Matched(0) + dates.Matched(1) + dates.Matched(2) + dates.Matched(3), 0U);
}

TEST(ValueForms, EveryDayOfEveryMonthIsWhatItsExpressionSays)
{
    Dates stDates;
    std::vector<std::string> vecNumbers;
    for (u32 i = 0; i < 100U; ++i) {
        vecNumbers.push_back(std::to_string(i));
        if (i < 10U) {
            vecNumbers.push_back("0" + std::to_string(i));
        }
    }
    for (const std::string &strMonth : vecNumbers) {
        for (const std::string &strDay : vecNumbers) {
            stDates.Compare("2024-" + strMonth + "-" + strDay);
            stDates.Compare("2024-" + strMonth + "-" + strDay + " 10:20:30");
        }
    }
    for (const char *pcDate : {"2024-4-5 ", "2024-04-05 "}) {
        for (const std::string &strNumber : vecNumbers) {
            stDates.Compare(pcDate + strNumber + ":0:0");
            stDates.Compare(pcDate + strNumber + ":00:00");
            stDates.Compare(std::string(pcDate) + "0:" + strNumber + ":0");
            stDates.Compare(std::string(pcDate) + "00:" + strNumber + ":00");
            stDates.Compare(std::string(pcDate) + "0:0:" + strNumber);
            stDates.Compare(std::string(pcDate) + "00:00:" + strNumber);
        }
    }
}

TEST(ValueForms, AMillionTextsAreDatesWhereTheExpressionsSaySo)
{
    Random stRandom;
    Dates stDates;
    while (stDates.Texts() < 1000000U) {
        stDates.Compare(Damaged(stRandom, Date(stRandom)));
    }
    for (u32 i = 0; i < 4U; ++i) {
        EXPECT_GT(stDates.Matched(i), 1000U) << "too few dates of form " << i;
        EXPECT_LT(stDates.Matched(i), 500000U) << "too few others than form " << i;
    }
}

TEST(ValueForms, ShortTextsOfADatesBytesAreDatesWhereTheExpressionsSaySo)
{
    // Every ending of five bytes behind a year.
    static const std::string g_strBytes("012349- :\0", 10U);
    Dates stDates;
    for (u32 i = 0; i < 100000U; ++i) {
        std::string strText = "2024-";
        for (u32 uiRest = i, uiByte = 0; uiByte < 5U; ++uiByte, uiRest /= 10U) {
            strText += g_strBytes[uiRest % 10U];
        }
        stDates.Compare(strText.c_str());
    }
}

TEST(ValueForms, TheExpressionsAreThoseThatTheLibraryWouldCompile)
{
    Random stRandom;
    for (u32 i = 0; i < 500U; ++i) {
        const std::string strText = Damaged(stRandom, Date(stRandom));
        for (u32 uiForm = 0; uiForm < 4U; ++uiForm) {
            EXPECT_EQ(checkRegularExpressionCorrect(strText.c_str(), g_apcDates[uiForm]),
                      FRU_DateForms(strText.c_str()) >> uiForm & 1U)
                << strText;
        }
    }
}

TEST(ValueForms, MacAddressesAreWhatTheirExpressionSays)
{
    static const std::string g_strBytes = "0123456789abcdefABCDEF0123456789abcdefABCDEFgG/:@`\xC9";
    const Expression stExpression(g_acMac);
    Random stRandom;
    u32 uiAddresses = 0U;
    for (u32 i = 0; i < 200000U; ++i) {
        std::string strText(stRandom.Below(4U) == 0U ? stRandom.Below(20U) : 12U, '0');
        for (char &cByte : strText) {
            cByte = g_strBytes[stRandom.Below(g_strBytes.size())];
        }
        const bool bAddress = stExpression.Matches(strText);
        uiAddresses += bAddress ? 1U : 0U;
        EXPECT_EQ(FRU_IsMacAddress(strText.c_str()), bAddress) << strText;
    }
    EXPECT_GT(uiAddresses, 1000U);
}

TEST(ValueForms, EveryByteIsInTheClassesOfAsciiAndNoOthers)
{
    for (u32 i = 1U; i < 256U; ++i) {
        const char acText[] = {static_cast<char>(i), '\0'};
        EXPECT_EQ(FRU_IsDigits(acText), i >= 0x30U && i <= 0x39U) << i;
        EXPECT_EQ(FRU_IsPrintable(acText), i >= 0x20U && i <= 0x7EU) << i;
        EXPECT_EQ(FRU_IsSpace(acText[0]), i == 0x20U || (i >= 0x09U && i <= 0x0DU)) << i;
        char acUpper[] = {static_cast<char>(i), '\0'};
        FRU_ToUpper(acUpper);
        EXPECT_EQ(acUpper[0], static_cast<char>(i >= 0x61U && i <= 0x7AU ? i - 0x20U : i)) << i;
    }
    EXPECT_FALSE(FRU_IsSpace('\0'));
    EXPECT_TRUE(FRU_IsDigits(""));
    EXPECT_TRUE(FRU_IsPrintable(""));
    EXPECT_FALSE(FRU_IsMacAddress(""));
}

} // namespace
