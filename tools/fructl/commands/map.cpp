// SPDX-License-Identifier: Apache-2.0
// fructl map: an image's bytes, each with the area and field that it belongs to.
#include "commands/commands.h"
#include "terminal/console.h"
#include "terminal/json_out.h"
#include "terminal/wrap.h"
#include "toolkit/base/json.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/source.h"
#include "toolkit/controller/target.h"
#include "toolkit/image/encoding.h"
#include "toolkit/image/fields.h"
#include "toolkit/image/image.h"
#include "toolkit/image/layout.h"
#include "toolkit/image/record_words.h"
#include "toolkit/task/shown.h"

namespace {

constexpr size_t BYTES_PER_LINE = 16U;
constexpr size_t HEX_WIDTH = 3U * BYTES_PER_LINE + 1U;
constexpr size_t UNITS_PER_LINE = 64U;
constexpr size_t INDENT = 2U;

struct AREA_STYLE_S
{
    char cLetter; // in the overview
    Colour enColour;
};

AREA_STYLE_S StyleOf(Area enArea)
{
    static const AREA_STYLE_S astStyles[] = {
        {'H', Colour::Bold},   {'I', Colour::Magenta}, {'C', Colour::Green}, {'B', Colour::Cyan},
        {'P', Colour::Yellow}, {'M', Colour::Blue},    {'.', Colour::Dim},   {'W', Colour::Bold}};
    return astStyles[static_cast<size_t>(enArea)];
}

// One letter for each 8 bytes, the unit in which areas are placed.
std::string Overview(const std::vector<SPAN_S> &vecSpans, size_t uiLength)
{
    std::vector<Area> vecUnits((uiLength + FRU_AREA_UNIT - 1U) / FRU_AREA_UNIT, Area::Unused);
    for (const SPAN_S &stSpan : vecSpans) {
        for (size_t i = stSpan.uiOffset / FRU_AREA_UNIT;
             stSpan.stField.enArea != Area::Unused &&
             i <= (stSpan.uiOffset + stSpan.uiLength - 1U) / FRU_AREA_UNIT && i < vecUnits.size();
             i++) {
            vecUnits[i] = stSpan.stField.enArea;
        }
    }
    std::string strOut;
    for (size_t i = 0; i < vecUnits.size(); i++) {
        const AREA_STYLE_S stStyle = StyleOf(vecUnits[i]);
        if (i % UNITS_PER_LINE == 0U) {
            strOut += (i == 0U ? "" : "\n") + Paint(Colour::Dim, Format("  %04zx  ", i * FRU_AREA_UNIT));
        }
        strOut += Paint(stStyle.enColour, std::string(1U, stStyle.cLetter));
    }
    return strOut + "\n";
}

std::string Legend(const std::vector<SPAN_S> &vecSpans)
{
    size_t auiBytes[static_cast<size_t>(Area::Hardware) + 1U] = {};
    for (const SPAN_S &stSpan : vecSpans) {
        auiBytes[static_cast<size_t>(stSpan.stField.enArea)] += stSpan.uiLength;
    }
    std::vector<std::string> vecParts;
    for (size_t i = 0; i < std::size(auiBytes); i++) {
        if (auiBytes[i] != 0U) {
            const Area enArea = static_cast<Area>(i);
            vecParts.push_back(Paint(StyleOf(enArea).enColour, std::string(1U, StyleOf(enArea).cLetter)) +
                               Format(" %s %zu", AreaName(enArea), auiBytes[i]));
        }
    }
    const size_t uiWidth = TerminalWidth();
    std::string strOut;
    for (const std::string &strLine :
         WrapText("One letter is 8 bytes. Bytes in each area: " + Join(vecParts, ", "),
                  uiWidth > INDENT ? uiWidth - INDENT : uiWidth)) {
        strOut += std::string(INDENT, ' ') + strLine + "\n";
    }
    return strOut;
}

std::string Meaning(const SPAN_S &stSpan)
{
    std::string strOut = FieldName(stSpan.stField);
    strOut += stSpan.strText.empty() ? "" : ": " + ShownText(stSpan.strText);
    strOut +=
        stSpan.stNote.IsTold() ? Paint(Colour::Dim, " (" + ShownUtf8(NoteText(stSpan.stNote)) + ")") : "";
    strOut += stSpan.strProblem.empty() ? "" : "  " + Paint(Colour::Red, "<- " + stSpan.strProblem);
    return strOut;
}

// Bytes, sixteen a line, and beside the first of them what they mean.
std::string BytesText(const std::vector<u8> &vecBytes, u32 uiOffset, u32 uiLength, Colour enColour,
                      const std::string &strMeaning)
{
    std::string strOut;
    for (size_t i = uiOffset; i < uiOffset + uiLength; i += BYTES_PER_LINE) {
        const std::string strHex = HexBytes(&vecBytes[i], std::min(BYTES_PER_LINE, uiOffset + uiLength - i));
        strOut += Paint(Colour::Dim, Format("  %04zx  ", i)) + Paint(enColour, strHex);
        strOut += i == uiOffset ? std::string(HEX_WIDTH - strHex.size(), ' ') + strMeaning : "";
        strOut += "\n";
    }
    return strOut;
}

// A record's data, each of its values on lines of its own; what is wrong with it all stands beside the first.
std::string PartsText(const SPAN_S &stSpan, const std::vector<RECORD_PART_S> &vecParts,
                      const std::vector<u8> &vecBytes)
{
    const std::string strRecord = FieldName({Area::MultiRecord, Field::OneRecord, stSpan.stField.uiIndex});
    std::string strProblem =
        stSpan.strProblem.empty() ? "" : "  " + Paint(Colour::Red, "<- " + stSpan.strProblem);
    std::string strOut;
    for (const RECORD_PART_S &stPart : vecParts) {
        strOut += BytesText(vecBytes, stPart.uiOffset, stPart.uiLength, StyleOf(Area::MultiRecord).enColour,
                            strRecord + " " + stPart.Meaning() + strProblem);
        strProblem.clear();
    }
    return strOut;
}

// The span's bytes, sixteen a line, its meaning beside the first of them. A long run of one value is
// told, not shown.
std::string SpanText(const SPAN_S &stSpan, const std::vector<u8> &vecBytes)
{
    const Colour enColour = StyleOf(stSpan.stField.enArea).enColour;
    const bool bRun = stSpan.stField.enArea == Area::Unused && stSpan.uiLength > BYTES_PER_LINE &&
                      stSpan.stNote.enNote == Note::OneValue;
    if (bRun) {
        const std::string strRun = Format("%02x ... (%u bytes)", vecBytes[stSpan.uiOffset], stSpan.uiLength);
        const std::string strPad(strRun.size() < HEX_WIDTH ? HEX_WIDTH - strRun.size() : 1U, ' ');
        return Paint(Colour::Dim, Format("  %04x  ", stSpan.uiOffset)) + Paint(enColour, strRun) + strPad +
               Meaning(stSpan) + "\n";
    }
    const std::vector<RECORD_PART_S> vecParts = RecordParts(stSpan, vecBytes);
    return vecParts.empty() ? BytesText(vecBytes, stSpan.uiOffset, stSpan.uiLength, enColour, Meaning(stSpan))
                            : PartsText(stSpan, vecParts, vecBytes);
}

struct MAP_S
{
    TARGET_OPTIONS_S stTarget;
    SOURCE_OPTION_S stSource;
    OFFSET_OPTION_S stOffset;
};

// Bytes are shown whatever they are; that the other image of a device is another one is for 'verify' to tell.
void RunMap(const SESSION_S &stSession, const MAP_S &stOptions)
{
    const TARGET_S stTarget = ResolveTarget(stSession, stOptions.stTarget);
    const IMAGE_S stWhole = ReadShown(stTarget, stOptions.stSource.Chosen());
    const LOCATED_S stLocated = LocateImage(stSession, stTarget, stWhole, stOptions.stOffset);
    const IMAGE_S &stImage = stLocated.stImage;
    const IMAGE_LAYOUT_S stLayout = LayoutOf(stImage, stTarget.HasFixedSlots());
    if (stSession.bJson) {
        Json stJson = MapShownJson(stTarget, stImage);
        if (stLocated.uiOffset != 0U) {
            stJson["imageOffset"] = stLocated.uiOffset;
        }
        PrintJson(stJson);
        return;
    }
    std::string strOut = Paint(Colour::Bold, stTarget.Title()) +
                         Format("  %s, %zu bytes\n\n", SourceName(stImage.enSource), stImage.uiStored);
    strOut += Overview(stLayout.vecSpans, stImage.uiStored) + Legend(stLayout.vecSpans);
    const SPAN_S *pstBefore = nullptr;
    for (const SPAN_S &stSpan : stLayout.vecSpans) {
        if (pstBefore == nullptr || pstBefore->stField.enArea != stSpan.stField.enArea) {
            strOut +=
                "\n" + Paint(StyleOf(stSpan.stField.enArea).enColour, AreaName(stSpan.stField.enArea)) + "\n";
        }
        strOut += SpanText(stSpan, stImage.vecBytes);
        pstBefore = &stSpan;
    }
    strOut += stLayout.vecFindings.empty() ? "" : "\nWhat is wrong\n";
    for (const FINDING_S &stFinding : stLayout.vecFindings) {
        strOut += "  " + FindingText(stFinding) + "\n";
    }
    Print(strOut);
}

} // namespace

void AddMapCommand(const Command &stParent, SESSION_S &stSession)
{
    const auto pstOptions = std::make_shared<MAP_S>();
    const Command stCommand =
        stParent.Add("map", "Show which byte of an image belongs to which area and field",
                     "fructl map baseboard\nfructl map ./dump.bin\nfructl map examples/psu1.hex --json");
    AddTargetOptions(stCommand, pstOptions->stTarget, true);
    AddSourceOption(stCommand, pstOptions->stSource);
    AddOffsetOption(stCommand, pstOptions->stOffset);
    stCommand.Run([&stSession, pstOptions] { RunMap(stSession, *pstOptions); });
}
