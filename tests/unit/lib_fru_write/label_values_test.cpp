// SPDX-License-Identifier: Apache-2.0
// Values: isLabelValueValid().
#include <cstring>

#include <gtest/gtest.h>

#include "label_texts.h"
#include "lib_fru_analyzer/fields.h"
#include "lib_fru_labels.h"

namespace {

using label::DateReport;
using label::Line;
using label::LINES;
using label::Null;
using label::Text;

const char g_acNotNormal[] = "pcValue is not Norm.";
const char g_acBlank[] = "Label Value is null.";
const char g_acOneByte[] = "Write 1 bytes to this area is forbidden!\n";

std::string BadSize(i32 iValueLen)
{
    return "Label Value Size:" + std::to_string(iValueLen) + " invalid!";
}

struct VERDICT_S
{
    u32 uiResult;
    LINES vecMessages;
    std::string strValue; // as the check left it
};

bool operator==(const VERDICT_S &stLeft, const VERDICT_S &stRight)
{
    return stLeft.uiResult == stRight.uiResult && stLeft.vecMessages == stRight.vecMessages &&
           stLeft.strValue == stRight.strValue;
}

void PrintTo(const VERDICT_S &stVerdict, std::ostream *pStream)
{
    *pStream << stVerdict.uiResult << " [" << stVerdict.strValue << "]";
    for (const std::string &strLine : stVerdict.vecMessages) {
        *pStream << " {" << strLine << "}";
    }
}

VERDICT_S CheckCounted(const std::string &strName, const std::string &strValue, i32 iValueLen,
                       u32 uiType = 1U)
{
    fake::Reset();
    const auto upName = Text(strName);
    const auto upValue = Text(strValue);
    const u32 uiResult = isLabelValueValid(upName.get(), upValue.get(), iValueLen, uiType);
    return {uiResult, fake::Messages(), upValue.get()};
}

VERDICT_S Check(const std::string &strName, const std::string &strValue, u32 uiType = 1U)
{
    return CheckCounted(strName, strValue, static_cast<i32>(strValue.size()), uiType);
}

VERDICT_S Accepted(const std::string &strValue)
{
    return {1U, {}, strValue};
}

VERDICT_S Refused(const std::string &strValue, const std::string &strMessage)
{
    return {0U, {Line(2U, strMessage)}, strValue};
}

// The labels whose values are ordinary texts.
const char *const g_apcTextLabels[] = {
    "Chassis Part Number",  "Chassis Serial Number", "Board Manufacturer",  "Board Product Name",
    "Board Serial Number",  "Board Part Number",     "FRU File ID",         "Product Manufacturer",
    "Product Product Name", "Product Serial Number", "Product Part Number", "Product Version",
    "Product FRU File ID",  "Hardware FRU Label",
};
const char *const g_apcCustomTextLabels[] = {
    "Chassis Customer Serial Number",
    "Chassis MAC Address Count",
    "CLEI Code",
    "Chassis Location Node ID",
    "Board Top Serial Number",
    "Product Node Type",
    "Product Node PSU",
    "Product Node Network",
    "Product Node Power",
};

const DIAG_FRU_LABEL_S *Row(const std::string &strName)
{
    for (u32 i = 0; i < g_uiDIAG_FruLabelMaxNum; ++i) {
        if (strName == g_astDIAG_FruLabel[i].pcLabelName) {
            return &g_astDIAG_FruLabel[i];
        }
    }
    return nullptr;
}

bool Contains(const std::string &strText, const char *pcWord)
{
    return strText.find(pcWord) != std::string::npos;
}

bool BlankAllowed(const std::string &strName)
{
    return Contains(strName, "Node T") || Contains(strName, "Node PSU") ||
           Contains(strName, "Node Network") || Contains(strName, "Node Power") ||
           strName == "Board Top Serial Number" || strName == "Product Asset Tag";
}

// ---- values: arguments and lengths

TEST(LabelValue, ANullNameIsReportedBeforeANullValue)
{
    fake::Reset();
    char acValue[] = "value";
    EXPECT_EQ(isLabelValueValid(nullptr, acValue, 5, 1U), 0U);
    EXPECT_EQ(isLabelValueValid(nullptr, nullptr, 5, 1U), 0U);
    EXPECT_EQ(isLabelValueValid("FRU File ID", nullptr, 5, 1U), 0U);
    EXPECT_EQ(fake::Messages(),
              (LINES{Null("isLabelValueValid", "pcName"), Null("isLabelValueValid", "pcName"),
                     Null("isLabelValueValid", "pcValue")}));
}

TEST(LabelValue, AnUnknownNameIsRefusedAsABadSize)
{
    EXPECT_EQ(CheckCounted("no such label", "value", 77), Refused("value", BadSize(77)));
    EXPECT_EQ(CheckCounted("", "value", -3), Refused("value", BadSize(-3)));
    EXPECT_EQ(Check("fru file id", "value"), Refused("value", BadSize(5)));
}

TEST(LabelValue, AnEmptyCatalogueKnowsNoName)
{
    g_uiDIAG_FruLabelMaxNum = 0U;
    EXPECT_EQ(Check("FRU File ID", "value"), Refused("value", BadSize(5)));
    g_uiDIAG_FruLabelMaxNum = 34U;
}

TEST(LabelValue, EveryTextLabelHasItsLengthLimits)
{
    for (const char *pcName : g_apcTextLabels) {
        const u32 uiMin = Row(pcName)->uiMinLen;
        const u32 uiMax = Row(pcName)->uiMaxLen;
        for (u32 uiLength = 1U; uiLength <= 80U; ++uiLength) {
            const std::string strValue(uiLength, 'x');
            const bool bFits = uiLength >= uiMin && uiLength <= uiMax;
            EXPECT_EQ(Check(pcName, strValue),
                      bFits ? Accepted(strValue) : Refused(strValue, BadSize(static_cast<i32>(uiLength))))
                << pcName;
        }
        EXPECT_EQ(Check(pcName, ""), Refused("", BadSize(0))) << pcName;
    }
}

TEST(LabelValue, EveryCustomFieldHasItsLengthLimits)
{
    for (const char *pcName : g_apcCustomTextLabels) {
        const u32 uiMin = Row(pcName)->uiMinLen;
        const u32 uiMax = Row(pcName)->uiMaxLen;
        for (u32 uiLength = 1U; uiLength <= 80U; ++uiLength) {
            const std::string strValue(uiLength, 'x');
            const bool bFits = uiLength >= uiMin && uiLength <= uiMax;
            const VERDICT_S stExpected = !bFits ? Refused(strValue, BadSize(static_cast<i32>(uiLength)))
                                         : uiLength == 1 ? Refused(strValue, g_acOneByte)
                                                         : Accepted(strValue);
            EXPECT_EQ(Check(pcName, strValue), stExpected) << pcName;
        }
    }
}

TEST(LabelValue, AnAssetTagMayHaveAnyLengthUpToItsLimit)
{
    for (u32 uiLength = 0U; uiLength <= 80U; ++uiLength) {
        const std::string strValue(uiLength, 'x');
        EXPECT_EQ(Check("Product Asset Tag", strValue),
                  uiLength <= 63U ? Accepted(strValue)
                                  : Refused(strValue, BadSize(static_cast<i32>(uiLength))));
    }
}

TEST(LabelValue, TheMessageShowsTheCallersCountNotTheMeasuredOne)
{
    EXPECT_EQ(CheckCounted("Board Part Number", "0123456789ABCDEF", 5),
              Refused("0123456789ABCDEF", BadSize(5)));
    EXPECT_EQ(CheckCounted("Board Part Number", "x", 9), Refused("x", BadSize(9)));
    EXPECT_EQ(CheckCounted("Board Part Number", "0123456789ABCDE", 99), Accepted("0123456789ABCDE"));
}

TEST(LabelValue, PartNumbersOfComponentTypeZeroAreBoundedBySixtyThree)
{
    // As the catalogue stands both limits agree; the rule shows when a row says less or more.
    for (const u32 uiRow : {1U, 20U}) {
        const std::string strName = g_astDIAG_FruLabel[uiRow].pcLabelName;
        for (const u32 uiRowMax : {10U, 70U}) {
            g_astDIAG_FruLabel[uiRow].uiMaxLen = uiRowMax;
            for (u32 uiLength = 9U; uiLength <= 72U; ++uiLength) {
                const std::string strValue(uiLength, 'x');
                const VERDICT_S stBad = Refused(strValue, BadSize(static_cast<i32>(uiLength)));
                EXPECT_EQ(Check(strName, strValue, 0U), uiLength <= 63U ? Accepted(strValue) : stBad);
                EXPECT_EQ(Check(strName, strValue, 1U), uiLength <= uiRowMax ? Accepted(strValue) : stBad);
                EXPECT_EQ(Check(strName, strValue, 256U), uiLength <= uiRowMax ? Accepted(strValue) : stBad);
            }
        }
        g_astDIAG_FruLabel[uiRow].uiMaxLen = 63U;
    }
    // Only the two part numbers: a board part number keeps its own limit.
    EXPECT_EQ(Check("Board Part Number", std::string(16U, 'x'), 0U),
              Refused(std::string(16U, 'x'), BadSize(16)));
}

TEST(LabelValue, AValueWithoutATerminatorIsReadNoFurtherThanItsLimit)
{
    fake::Reset();
    const auto upValue = label::Exactly(std::string(64U, 'x'));
    EXPECT_EQ(isLabelValueValid("Product Serial Number", upValue.get(), 64, 1U), 0U);
    EXPECT_EQ(fake::Messages(), LINES{Line(2U, BadSize(64))});
}

// ---- values: blanks, one character, NONE

TEST(LabelValue, BlankValuesAreRefusedWhereTheyMeanNothing)
{
    for (u32 i = 0; i < 29U; ++i) {
        const std::string strName = g_astDIAG_FruLabel[i].pcLabelName;
        const u32 uiMin = g_astDIAG_FruLabel[i].uiMinLen;
        const std::string strBlanks(uiMin < 3U ? 3U : uiMin, ' ');
        EXPECT_EQ(Check(strName, strBlanks),
                  BlankAllowed(strName) ? Accepted(strBlanks) : Refused(strBlanks, g_acBlank))
            << strName;
    }
}

TEST(LabelValue, EveryKindOfWhiteSpaceIsBlank)
{
    EXPECT_EQ(Check("Board Serial Number", " \t\n\v\f\r"), Refused(" \t\n\v\f\r", g_acBlank));
    EXPECT_EQ(Check("Board Serial Number", "  ."), Accepted("  ."));
    EXPECT_EQ(Check("Product Asset Tag", "\t\t"), Refused("\t\t", g_acNotNormal));
}

TEST(LabelValue, TheBlankCheckGoesByTheCallersCount)
{
    EXPECT_EQ(CheckCounted("Board Serial Number", "  SN", 2), Refused("  SN", g_acBlank));
    EXPECT_EQ(CheckCounted("Board Serial Number", "  SN", 3), Accepted("  SN"));
    EXPECT_EQ(CheckCounted("Board Serial Number", "SN", 0), Refused("SN", g_acBlank));
    EXPECT_EQ(CheckCounted("Board Serial Number", "SN", -1), Refused("SN", g_acBlank));
    // A count beyond the text reaches its terminator, which is no white space, and nothing behind it.
    EXPECT_EQ(CheckCounted("Board Serial Number", "   ", 200), Accepted("   "));
}

TEST(LabelValue, AnEmptyValueIsAcceptedOnlyWhereBlanksAre)
{
    EXPECT_EQ(Check("Chassis Location Node ID", ""), Refused("", g_acBlank)); // its minimum is 0 all the same
    for (const char *pcName : {"Board Top Serial Number", "Product Asset Tag", "Product Node Type",
                               "Product Node PSU", "Product Node Network", "Product Node Power"}) {
        EXPECT_EQ(Check(pcName, ""), Accepted("")) << pcName;
    }
}

TEST(LabelValue, WhatLiesBehindTheEndOfAnEmptyValueDoesNotMatter)
{
    for (const char *pcName : {"Board Top Serial Number", "Product Node Type", "Product Node Power"}) {
        EXPECT_EQ(CheckCounted(pcName, std::string(3U, '\0'), 0), Accepted("")) << pcName;
        EXPECT_EQ(CheckCounted(pcName, std::string("\0xyz", 4U), 0), Accepted("")) << pcName;
    }
}

TEST(LabelValue, OneCharacterIsForbiddenInCustomFields)
{
    for (const char *pcName : {"Chassis Location Node ID", "Board Top Serial Number", "Product Node Type",
                               "Product Node PSU", "Product Node Network", "Product Node Power"}) {
        EXPECT_EQ(Check(pcName, "x"), Refused("x", g_acOneByte)) << pcName;
        EXPECT_EQ(Check(pcName, "\x7F"), Refused("\x7F", g_acOneByte)) << pcName;
        EXPECT_EQ(Check(pcName, "xy"), Accepted("xy")) << pcName;
    }
    EXPECT_EQ(Check("Product Node Type", " "), Refused(" ", g_acOneByte));
    EXPECT_EQ(Check("Chassis Location Node ID", " "), Refused(" ", g_acBlank));
    EXPECT_EQ(Check("Product Asset Tag", "x"), Accepted("x"));
    EXPECT_EQ(Check("Hardware FRU Label", "x"), Accepted("x"));
}

TEST(LabelValue, NoneClearsOnlyTheLabelsThatAllowIt)
{
    for (u32 i = 0; i < 29U; ++i) {
        const DIAG_FRU_LABEL_S &stLabel = g_astDIAG_FruLabel[i];
        const std::string strName = stLabel.pcLabelName;
        const u32 uiID = stLabel.uiLabelID;
        const bool bAllowed = (uiID >= 5U && uiID <= 8U) || uiID == 16U || uiID >= 25U;
        std::string strValue = "NONE";
        strValue.resize(stLabel.uiMinLen > 4U ? stLabel.uiMinLen : 4U, 'x');
        const VERDICT_S stExpected = stLabel.uiMaxLen < 4U     ? Refused(strValue, BadSize(4))
                                     : bAllowed && uiID != 29U ? Accepted(strValue)
                                                               : Refused(strValue, g_acNotNormal);
        EXPECT_EQ(Check(strName, strValue), stExpected) << strName;
    }
}

TEST(LabelValue, AnythingThatBeginsWithNoneIsNone)
{
    EXPECT_EQ(Check("Chassis MAC Address", "NONE0123"), Accepted("NONE0123"));
    EXPECT_EQ(Check("CLEI Code", "NONE\x80"), Accepted("NONE\x80"));
    EXPECT_EQ(Check("Board Serial Number", "NONEsuch"), Refused("NONEsuch", g_acNotNormal));
    EXPECT_EQ(Check("Board Serial Number", "NON"), Accepted("NON"));
    EXPECT_EQ(Check("Board Serial Number", "none"), Accepted("none"));
    EXPECT_EQ(Check("Board Serial Number", " NONE"), Accepted(" NONE"));
}

// ---- values: kinds

TEST(LabelValue, OrdinaryTextsArePrintableAscii)
{
    std::vector<std::string> vecNames(std::begin(g_apcTextLabels), std::end(g_apcTextLabels));
    vecNames.insert(vecNames.end(), std::begin(g_apcCustomTextLabels), std::end(g_apcCustomTextLabels));
    vecNames.emplace_back("Product Asset Tag");
    for (const std::string &strName : vecNames) {
        for (int iChar = 1; iChar <= 255; ++iChar) {
            const std::string strValue = {'a', static_cast<char>(iChar), 'z'};
            EXPECT_EQ(Check(strName, strValue),
                      iChar >= 0x20 && iChar <= 0x7E ? Accepted(strValue) : Refused(strValue, g_acNotNormal))
                << strName << " " << iChar;
        }
    }
    EXPECT_EQ(Check("Product Manufacturer", "M\xC3\xBCller"), Refused("M\xC3\xBCller", g_acNotNormal));
}

TEST(LabelValue, PsuNamesAreJudgedAsBoardLabels)
{
    EXPECT_EQ(Check("Board Part Number", std::string(15U, 'x')), Accepted(std::string(15U, 'x')));
    EXPECT_EQ(Check("Board Part Number", std::string(21U, 'x')), Refused(std::string(21U, 'x'), BadSize(21)));
}

TEST(LabelValue, AMacAddressIsUpperCasedInPlace)
{
    EXPECT_EQ(Check("Chassis MAC Address", "00a0c9141e3f"), Accepted("00A0C9141E3F"));
    EXPECT_EQ(Check("Chassis MAC Address", "0123456789AB"), Accepted("0123456789AB"));
    // It stays so when the value is refused after all.
    EXPECT_EQ(Check("Chassis MAC Address", "00a0c9141e3g"), Refused("00A0C9141E3G", g_acNotNormal));
}

TEST(LabelValue, AMacAddressIsTwelveHexadecimalDigits)
{
    const std::string strMac = "0123456789AB";
    for (u32 uiLength = 4U; uiLength < 12U; ++uiLength) {
        EXPECT_EQ(Check("Chassis MAC Address", strMac.substr(0, uiLength)),
                  Refused(strMac.substr(0, uiLength), g_acNotNormal));
    }
    EXPECT_EQ(Check("Chassis MAC Address", "012"), Refused("012", BadSize(3)));
    EXPECT_EQ(Check("Chassis MAC Address", strMac + "C"), Refused(strMac + "C", BadSize(13)));
    EXPECT_EQ(Check("Chassis MAC Address", "00:a0:c9:14:1e:3f"), Refused("00:a0:c9:14:1e:3f", BadSize(17)));
    EXPECT_EQ(Check("Chassis MAC Address", "00:a0:c9:14:"), Refused("00:A0:C9:14:", g_acNotNormal));
    EXPECT_EQ(Check("Chassis MAC Address", "none"), Refused("NONE", g_acNotNormal));
    EXPECT_EQ(Check("Chassis MAC Address", "            "), Refused("            ", g_acBlank));
    EXPECT_EQ(Check("Chassis MAC Address", "01234567\xE4\xF6"), Refused("01234567\xE4\xF6", g_acNotNormal));
}

TEST(LabelValue, OnlyMacAddressesAreUpperCased)
{
    EXPECT_EQ(Check("Chassis MAC Address Count", "0a"), Accepted("0a"));
    EXPECT_EQ(Check("Board Serial Number", "00a0c9141e3f"), Accepted("00a0c9141e3f"));
}

TEST(LabelValue, AChassisTypeIsOneOfThirtyTexts)
{
    for (u32 uiCode = 0; uiCode < FRU_CHASSIS_TYPE_COUNT; ++uiCode) {
        EXPECT_EQ(Check("Chassis Type", FRU_FindChassisDesc(uiCode)), Accepted(FRU_FindChassisDesc(uiCode)));
    }
    for (const char *pcType : {"rack mount chassis", "Rack Mount Chassi", "Rack Mount Chassis ", "23",
                               "Laptop", "Blade Enclosures", "NONE", "\x80\xFF"}) {
        EXPECT_EQ(Check("Chassis Type", pcType), Refused(pcType, g_acNotNormal));
    }
    EXPECT_EQ(Check("Chassis Type", std::string(22U, 'x')), Refused(std::string(22U, 'x'), BadSize(22)));
}

TEST(LabelValue, ALanguageCodeIsANumberUpToOneHundredAndThirtySix)
{
    for (const char *pcName : {"Language Code", "Product Language Code"}) {
        for (u32 uiCode = 0U; uiCode <= 999U; ++uiCode) {
            const std::string strCode = std::to_string(uiCode);
            EXPECT_EQ(Check(pcName, strCode),
                      uiCode <= 136U ? Accepted(strCode) : Refused(strCode, g_acNotNormal));
        }
        EXPECT_EQ(Check(pcName, "007"), Accepted("007"));
        for (const char *pcCode : {"1a", "-1", "+1", " 1", "1 ", "0x1", "1.0", "\xB2"}) {
            EXPECT_EQ(Check(pcName, pcCode), Refused(pcCode, g_acNotNormal)) << pcCode;
        }
        EXPECT_EQ(Check(pcName, ""), Refused("", BadSize(0)));
        EXPECT_EQ(Check(pcName, "0001"), Refused("0001", BadSize(4)));
        EXPECT_EQ(Check(pcName, "  "), Refused("  ", g_acBlank));
    }
}

TEST(LabelValue, AManufacturingDateIsAsTheDateCheckSays)
{
    VERDICT_S stVerdict = Check("Mfg.Date", "2024-1-1");
    EXPECT_EQ(stVerdict.uiResult, 1U);
    EXPECT_EQ(stVerdict.vecMessages, LINES{DateReport(1, 0, 0, 0)});
    stVerdict = Check("Mfg.Date", "2024-02-30");
    EXPECT_EQ(stVerdict.uiResult, 0U);
    EXPECT_EQ(stVerdict.vecMessages, (LINES{DateReport(0, 0, 0, 0), Line(2U, g_acNotNormal)}));
    EXPECT_EQ(Check("Mfg.Date", "2024-1-"), Refused("2024-1-", BadSize(7)));
    EXPECT_EQ(Check("Mfg.Date", "2024-01-01 00:00:000"), Refused("2024-01-01 00:00:000", BadSize(20)));
    EXPECT_EQ(Check("Mfg.Date", "NONE-1-1"), Refused("NONE-1-1", g_acNotNormal));
}

} // namespace
