// SPDX-License-Identifier: Apache-2.0
#include "toolkit/base/near.h"

#include <algorithm>
#include <utility>

#include "toolkit/base/text.h"

namespace {

constexpr size_t NEAR_NAMES = 3U;

std::string Lower(std::string strText)
{
    for (char &cChar : strText) {
        cChar = (cChar >= 'A' && cChar <= 'Z') ? static_cast<char>(cChar - 'A' + 'a') : cChar;
    }
    return strText;
}

// Changes of one character that make the one text of the other.
size_t Distance(const std::string &strLeft, const std::string &strRight)
{
    std::vector<size_t> vecRow(strRight.size() + 1U);
    for (size_t j = 0; j < vecRow.size(); j++) {
        vecRow[j] = j;
    }
    for (size_t i = 0; i < strLeft.size(); i++) {
        size_t uiDiagonal = vecRow[0];
        vecRow[0] = i + 1U;
        for (size_t j = 0; j < strRight.size(); j++) {
            const size_t uiChange = uiDiagonal + (strLeft[i] == strRight[j] ? 0U : 1U);
            uiDiagonal = vecRow[j + 1U];
            vecRow[j + 1U] = std::min({uiChange, vecRow[j] + 1U, vecRow[j + 1U] + 1U});
        }
    }
    return vecRow.back();
}

} // namespace

std::vector<std::string> NearNames(const std::string &strText, const std::vector<std::string> &vecNames)
{
    const std::string strLower = Lower(strText);
    std::vector<std::pair<size_t, std::string>> vecNear;
    for (const std::string &strName : vecNames) {
        const size_t uiDistance = Distance(strLower, Lower(strName));
        const bool bPart = strText.size() >= 3U && Lower(strName).find(strLower) != std::string::npos;
        // Of a short name not all may differ.
        const bool bNear =
            uiDistance <= std::max<size_t>(2U, strName.size() / 4U) && 2U * uiDistance <= strName.size();
        if (bNear) {
            vecNear.emplace_back(uiDistance, strName);
        } else if (bPart) {
            vecNear.emplace_back(100U + strName.size(), strName);
        }
    }
    std::stable_sort(vecNear.begin(), vecNear.end(),
                     [](const auto &stLeft, const auto &stRight) { return stLeft.first < stRight.first; });
    std::vector<std::string> vecOut;
    for (size_t i = 0; i < vecNear.size() && i < NEAR_NAMES; i++) {
        vecOut.push_back(vecNear[i].second);
    }
    return vecOut;
}

std::string DidYouMean(const std::string &strText, const std::vector<std::string> &vecNames)
{
    std::vector<std::string> vecNear;
    for (const std::string &strName : NearNames(strText, vecNames)) {
        vecNear.push_back("'" + EscapeText(strName) + "'");
    }
    return vecNear.empty() ? "" : "; did you mean " + Join(vecNear, " or ") + "?";
}
