// SPDX-License-Identifier: Apache-2.0
#include "terminal/changes.h"

#include "terminal/console.h"
#include "toolkit/base/text.h"

namespace {

std::string Side(const char *pcMark, Colour enColour, const std::optional<std::string> &optText)
{
    return optText.has_value()
               ? "    " + Paint(enColour, pcMark + ShownText(optText->empty() ? "-" : *optText)) + "\n"
               : "";
}

} // namespace

std::string FieldChangesText(const std::vector<DIFFERENCE_S> &vecDifferences)
{
    std::string strOut;
    const DIFFERENCE_S *pstBefore = nullptr;
    for (const DIFFERENCE_S &stDifference : vecDifferences) {
        if (pstBefore == nullptr || pstBefore->stField.enArea != stDifference.stField.enArea) {
            strOut += "\n" + Paint(Colour::Bold, AreaName(stDifference.stField.enArea)) + "\n";
        }
        strOut += "  " + FieldName(stDifference.stField) + "\n";
        strOut += Side("- ", Colour::Red, stDifference.optLeft);
        strOut += Side("+ ", Colour::Green, stDifference.optRight);
        pstBefore = &stDifference;
    }
    return strOut;
}

std::string ByteChangesText(const std::vector<BYTE_RUN_S> &vecRuns)
{
    constexpr size_t LINE = 16U;
    size_t uiCount = 0;
    std::string strRows;
    for (const BYTE_RUN_S &stRun : vecRuns) {
        uiCount += stRun.vecOld.size();
        for (size_t i = 0; i < stRun.vecOld.size(); i += LINE) {
            const size_t uiPart = std::min(LINE, stRun.vecOld.size() - i);
            strRows += Format("    0x%04zx  ", stRun.uiOffset + i) +
                       HexBytes(stRun.vecOld.data() + i, uiPart) + " -> " +
                       HexBytes(stRun.vecNew.data() + i, uiPart) + "\n";
        }
    }
    return "  " +
           (uiCount == 0U ? std::string("no byte would change") : Count(uiCount, "byte") + " would change") +
           "\n" + strRows;
}
