// SPDX-License-Identifier: Apache-2.0
#include "commands/record_text.h"

#include <algorithm>

#include "lib_fru.h"
#include "terminal/console.h"
#include "toolkit/base/text.h"
#include "toolkit/image/record_words.h"

namespace {

constexpr size_t RECORD_COLUMNS = 96U; // 32 bytes in hex

// Long texts and hex go on many lines.
std::string Lines(const std::string &strText)
{
    std::string strOut;
    for (size_t i = 0; i < strText.size(); i += RECORD_COLUMNS) {
        strOut += "    " + strText.substr(i, RECORD_COLUMNS) + "\n";
    }
    return strOut;
}

std::string WhyNot(const RECORD_WORDS_S &stWords)
{
    return stWords.strWhyNot.empty()
               ? ""
               : "    " + Paint(Colour::Dim, "not decoded: " + stWords.strWhyNot) + "\n";
}

struct LINE_S
{
    std::string strName;
    std::string strText;
};

// A value a line; those of one of several alike share a line.
std::vector<LINE_S> LinesOf(const RECORD_WORDS_S &stWords)
{
    std::vector<LINE_S> vecLines;
    std::string strGroup;
    for (const RECORD_WORD_S &stWord : stWords.vecWords) {
        if (stWord.bFrame) {
            continue;
        }
        const std::string strText = EscapeText(stWord.strText);
        if (stWord.strGroup.empty()) {
            vecLines.push_back({stWord.strName, strText});
        } else if (stWord.strGroup != strGroup) {
            vecLines.push_back({stWord.strGroup, stWord.strName + " " + strText});
        } else {
            vecLines.back().strText += ", " + stWord.strName + " " + strText;
        }
        strGroup = stWord.strGroup;
    }
    return vecLines;
}

} // namespace

std::string RecordText(const MULTIRECORD_VIEW_S &stRecord)
{
    const RECORD_WORDS_S stWords = ReadRecord(stRecord.ucType, stRecord.vecData);
    // The name of the record has said the rest.
    const bool bText = stRecord.ucType == FRU_MR_TYPE_MANAGEMENT_ACCESS;
    if (stWords.vecWords.empty() || bText) {
        return Lines(EscapeText(stRecord.strText)) + WhyNot(stWords);
    }
    const std::vector<LINE_S> vecLines = LinesOf(stWords);
    size_t uiWidth = 0;
    for (const LINE_S &stLine : vecLines) {
        uiWidth = std::max(uiWidth, stLine.strName.size());
    }
    std::string strOut;
    for (const LINE_S &stLine : vecLines) {
        strOut +=
            Format("    %-*s  ", static_cast<int>(uiWidth), stLine.strName.c_str()) + stLine.strText + "\n";
    }
    if (stWords.uiMore < stRecord.vecData.size()) {
        strOut +=
            Lines(HexBytes(&stRecord.vecData[stWords.uiMore], stRecord.vecData.size() - stWords.uiMore));
    }
    return strOut + WhyNot(stWords);
}

std::string RecordLine(const MULTIRECORD_VIEW_S &stRecord)
{
    const RECORD_WORDS_S stWords = ReadRecord(stRecord.ucType, stRecord.vecData);
    const bool bText = stRecord.ucType == FRU_MR_TYPE_MANAGEMENT_ACCESS;
    const std::string strSummary = bText ? "" : RecordSummary(stWords);
    return EscapeText(strSummary.empty() ? stRecord.strText : strSummary);
}
