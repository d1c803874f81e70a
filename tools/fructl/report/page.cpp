// SPDX-License-Identifier: Apache-2.0
#include "report/page.h"

#include <algorithm>

#include "report/html.h"
#include "report/pieces.h"
#include "toolkit/base/text.h"
#include "toolkit/image/fields.h"

// The files page.html, page.css and page.js, as they stand beside this one.
extern const char REPORT_PAGE_HTML[];
extern const char REPORT_PAGE_CSS[];
extern const char REPORT_PAGE_JS[];

namespace {

constexpr size_t BYTES_PER_LINE = 16U;

std::string Element(const char *pcTag, const std::string &strClass, const std::string &strHtml)
{
    const std::string strTag = pcTag;
    return "<" + strTag + (strClass.empty() ? "" : " class=\"" + strClass + "\"") + ">" + strHtml + "</" +
           strTag + ">";
}

std::string Cell(const std::string &strText)
{
    return Element("td", "", strText.empty() ? Element("span", "dim", "&ndash;") : HtmlText(strText));
}

std::string Badge(const INVENTORY_S &stDevice)
{
    const bool bErased = stDevice.stState.enImage == ImageState::Erased;
    return stDevice.IsGood() ? Element("span", "badge good", "good")
                             : Element("span", "badge wrong",
                                       bErased                         ? "erased"
                                       : stDevice.optImage.has_value() ? "not in order"
                                                                       : "unreadable");
}

// The first of the areas that says it, also in an image that is not in order as a whole.
std::string Identity(const INVENTORY_S &stDevice, Field enField)
{
    for (const Area enArea : {Area::Product, Area::Board, Area::Chassis}) {
        for (const SPAN_S &stSpan : stDevice.stSeen.vecSpans) {
            if (stSpan.stField == FIELD_ID_S{enArea, enField} && !stSpan.strText.empty()) {
                return stSpan.strText;
            }
        }
    }
    return "";
}

std::string SummaryHtml(const std::vector<INVENTORY_S> &vecInventory)
{
    std::string strRows;
    for (size_t i = 0; i < vecInventory.size(); i++) {
        const INVENTORY_S &stDevice = vecInventory[i];
        const auto &optDevice = stDevice.stTarget.optDevice;
        strRows +=
            "<tr><td>" + Format("<a href=\"#device-%zu\">", i) + HtmlText(stDevice.Name()) + "</a></td>" +
            Element("td", "", Badge(stDevice)) + Cell(Identity(stDevice, Field::ProductName)) +
            Cell(Identity(stDevice, Field::PartNumber)) + Cell(Identity(stDevice, Field::SerialNumber)) +
            Cell(optDevice.has_value() ? Format("%u", optDevice->stEntry.ucDeviceID) : "") +
            Cell(optDevice.has_value() ? optDevice->Component() : "") +
            Element("td", "number",
                    stDevice.optImage.has_value() ? Format("%zu", stDevice.optImage->uiStored) : "") +
            Cell(optDevice.has_value() ? CacheStateName(stDevice.stState.enCache) : "") + "</tr>\n";
    }
    return "<div class=\"summary\"><table>\n<tr><th>Device</th><th>Health</th><th>Product</th><th>Part "
           "number</th><th>Serial number</th><th>ID</th><th>Component</th><th class=\"number\">Bytes</th>"
           "<th>Cache</th></tr>\n" +
           strRows + "</table></div>\n";
}

// What of a device has no bytes to point at.
std::string WhereHtml(const INVENTORY_S &stDevice)
{
    std::vector<std::string> vecParts;
    if (stDevice.stTarget.optDevice.has_value()) {
        const DEVICE_S &stOf = *stDevice.stTarget.optDevice;
        vecParts.push_back(Format("FRU device ID %u, ", stOf.stEntry.ucDeviceID) + stOf.Component());
        if (stOf.bHasInfo && !stOf.IsDatabaseOnly()) {
            vecParts.push_back(Format("EEPROM on bus %u, address 0x%02x, from byte 0x%04x",
                                      stOf.stInfo.ucBusNumber, stOf.stInfo.ucAddress,
                                      stOf.stInfo.usStartOffset));
        }
        vecParts.push_back(std::string("cached image: ") + CacheStateName(stDevice.stState.enCache));
    }
    if (stDevice.optImage.has_value()) {
        vecParts.push_back(Count(stDevice.optImage->uiStored, "byte"));
    }
    return Element("p", "dim", HtmlText(Join(vecParts, "; "))) + "\n";
}

size_t PieceAt(const std::vector<PIECE_S> &vecPieces, u32 uiOffset)
{
    const auto itPiece = std::find_if(vecPieces.begin(), vecPieces.end(), [uiOffset](const PIECE_S &stPiece) {
        return stPiece.uiOffset <= uiOffset && uiOffset < stPiece.uiOffset + stPiece.uiLength;
    });
    return static_cast<size_t>(itPiece - vecPieces.begin());
}

std::string FindingsHtml(const INVENTORY_S &stDevice, const std::vector<PIECE_S> &vecPieces)
{
    std::string strItems;
    if (!stDevice.strFailure.empty()) {
        strItems += Element("li", "wrong", HtmlText(stDevice.strFailure)) + "\n";
    }
    for (const FINDING_S &stFinding : stDevice.stSeen.vecFindings) {
        strItems += Format("<li data-s=\"%zu\" tabindex=\"0\" class=\"%s\">",
                           PieceAt(vecPieces, stFinding.uiOffset), stFinding.bWarning ? "warning" : "wrong") +
                    HtmlText(FindingText(stFinding)) + (stFinding.bWarning ? " (a warning only)" : "") +
                    "</li>\n";
    }
    return strItems.empty()
               ? ""
               : Element("ul", stDevice.IsGood() ? "findings mild" : "findings", "\n" + strItems) + "\n";
}

std::string FieldRow(size_t uiPiece, const std::string &strName, const std::string &strText,
                     const std::string &strNote, const std::string &strProblem)
{
    std::string strValue = strText.empty() ? Element("span", "dim", "&ndash;") : HtmlText(strText);
    if (!strNote.empty()) {
        strValue += " " + Element("span", "note", HtmlText(strNote));
    }
    if (!strProblem.empty()) {
        strValue += " " + Element("span", "wrong", HtmlText(strProblem));
    }
    return Format("<tr data-s=\"%zu\" tabindex=\"0\">", uiPiece) + Element("th", "", HtmlText(strName)) +
           Element("td", "", strValue) + "</tr>\n";
}

// Values that share bytes have a line each, and the same bytes.
std::string FieldRows(const PIECE_S &stPiece, size_t uiPiece)
{
    std::string strOut;
    for (const auto &stValue : stPiece.vecValues) {
        strOut += FieldRow(uiPiece, stValue.first, stValue.second, stPiece.strNote, stPiece.strProblem);
    }
    return stPiece.vecValues.empty()
               ? FieldRow(uiPiece, stPiece.strName, stPiece.strText, stPiece.strNote, stPiece.strProblem)
               : strOut;
}

std::string FieldsHtml(const std::vector<PIECE_S> &vecPieces)
{
    std::string strOut;
    const PIECE_S *pstBefore = nullptr;
    for (size_t i = 0; i < vecPieces.size(); i++) {
        const PIECE_S &stPiece = vecPieces[i];
        if (!stPiece.bField) {
            continue;
        }
        if (pstBefore == nullptr || pstBefore->enArea != stPiece.enArea) {
            strOut += (pstBefore == nullptr ? "" : "</table>\n") +
                      Element("h3", AreaKey(stPiece.enArea), AreaName(stPiece.enArea)) + "\n<table>\n";
        }
        if (!stPiece.strRecord.empty() &&
            (pstBefore == nullptr || pstBefore->strRecord != stPiece.strRecord)) {
            strOut +=
                "<tr class=\"record\"><th colspan=\"2\">" + HtmlText(stPiece.strRecord) + "</th></tr>\n";
        }
        strOut += FieldRows(stPiece, i);
        pstBefore = &stPiece;
    }
    return Element("div", "fields",
                   pstBefore == nullptr ? Element("p", "dim", "No field can be read.")
                                        : strOut + "</table>\n") +
           "\n";
}

// Bytes, each in its piece; the first that belongs to one bears its meaning.
class MapHtml
{
  public:
    MapHtml(const IMAGE_S &stImage, const IMAGE_LAYOUT_S &stLayout, const std::vector<PIECE_S> &vecPieces)
        : m_stImage(stImage), m_vecPieces(vecPieces), m_vecOwner(stImage.uiStored, vecPieces.size()),
          m_vecFault(stImage.uiStored), m_vecNamed(vecPieces.size())
    {
        for (size_t i = vecPieces.size(); i-- > 0U;) { // of pieces that overlap the first has the byte
            std::fill_n(m_vecOwner.begin() + vecPieces[i].uiOffset, vecPieces[i].uiLength, i);
        }
        for (const FINDING_S &stFinding : stLayout.vecFindings) {
            if (!stFinding.bWarning && stFinding.uiOffset < stImage.uiStored) {
                m_vecFault[stFinding.uiOffset] = true;
            }
        }
    }

    std::string Html()
    {
        std::string strOut;
        for (size_t i = 0; i < m_stImage.uiStored;) {
            const size_t uiRows = RunRows(i);
            strOut += uiRows > 1U ? RunHtml(i, uiRows * BYTES_PER_LINE) : RowHtml(i);
            i += std::max<size_t>(uiRows, 1U) * BYTES_PER_LINE;
        }
        return strOut;
    }

  private:
    // Whole lines from there on that say one value over and over.
    size_t RunRows(size_t uiAt) const
    {
        const PIECE_S &stPiece = m_vecPieces[m_vecOwner[uiAt]];
        return stPiece.bRun ? (stPiece.uiOffset + stPiece.uiLength - uiAt) / BYTES_PER_LINE : 0U;
    }

    std::string ByteHtml(size_t uiAt, const std::string &strText, bool bNames, const char *pcClass = "")
    {
        const size_t uiPiece = m_vecOwner[uiAt];
        const PIECE_S &stPiece = m_vecPieces[uiPiece];
        std::string strOut =
            Format("<i data-s=\"%zu\" class=\"%s%s%s%s\"", uiPiece, AreaKey(stPiece.enArea),
                   uiPiece % 2U == 0U ? "" : " odd", m_vecFault[uiAt] ? " fault" : "", pcClass);
        if (bNames && !m_vecNamed[uiPiece]) {
            m_vecNamed[uiPiece] = true;
            strOut += " data-n=\"" + HtmlText(stPiece.Meaning()) + "\"";
        }
        return strOut + ">" + strText + "</i>";
    }

    std::string RowHtml(size_t uiAt)
    {
        std::string strHex;
        std::string strAscii;
        for (size_t i = uiAt; i < std::min(uiAt + BYTES_PER_LINE, m_stImage.uiStored); i++) {
            const u8 ucByte = m_stImage.vecBytes[i];
            const bool bPrintable = ucByte >= 0x20U && ucByte < 0x7FU;
            strHex += ByteHtml(i, Format("%02x", ucByte), true);
            strAscii +=
                ByteHtml(i, bPrintable ? HtmlText(std::string(1U, static_cast<char>(ucByte))) : ".", false);
        }
        return Element("div", "row",
                       Element("span", "at", Format("%04zx", uiAt)) + Element("span", "hex", strHex) +
                           Element("span", "ascii", strAscii)) +
               "\n";
    }

    std::string RunHtml(size_t uiAt, size_t uiLength)
    {
        const std::string strText = Format("%02x ... (%zu bytes)", m_stImage.vecBytes[uiAt], uiLength);
        return Element("div", "row",
                       Element("span", "at", Format("%04zx", uiAt)) +
                           Element("span", "hex", ByteHtml(uiAt, strText, true, " run"))) +
               "\n";
    }

    const IMAGE_S &m_stImage;
    const std::vector<PIECE_S> &m_vecPieces;
    std::vector<size_t> m_vecOwner; // of each byte
    std::vector<bool> m_vecFault;
    std::vector<bool> m_vecNamed; // of each piece
};

std::string LegendHtml(const std::vector<PIECE_S> &vecPieces)
{
    std::string strOut;
    for (size_t i = 0; i <= static_cast<size_t>(Area::Hardware); i++) {
        const Area enArea = static_cast<Area>(i);
        size_t uiBytes = 0U;
        for (const PIECE_S &stPiece : vecPieces) {
            uiBytes += stPiece.enArea == enArea ? stPiece.uiLength : 0U;
        }
        if (uiBytes != 0U) {
            strOut +=
                Element("span", "",
                        Element("i", AreaKey(enArea), "&nbsp;") + AreaName(enArea) + Format(" %zu", uiBytes));
        }
    }
    return Element("p", "legend", strOut) + "\n";
}

std::string DeviceHtml(const INVENTORY_S &stDevice, size_t uiIndex)
{
    const std::vector<PIECE_S> vecPieces = stDevice.optImage.has_value()
                                               ? PiecesOf(*stDevice.optImage, stDevice.stSeen)
                                               : std::vector<PIECE_S>();
    std::string strOut = Format("<section class=\"device\" id=\"device-%zu\">\n", uiIndex) +
                         Element("h2", "", HtmlText(stDevice.Name()) + " " + Badge(stDevice)) + "\n" +
                         WhereHtml(stDevice) + FindingsHtml(stDevice, vecPieces);
    if (!vecPieces.empty()) {
        MapHtml stMap(*stDevice.optImage, stDevice.stSeen, vecPieces);
        strOut += Element("div", "columns",
                          "\n" + FieldsHtml(vecPieces) +
                              Element("div", "map",
                                      "\n<p class=\"tell\" aria-live=\"polite\">Point at a byte to see its "
                                      "field, or at a field to see its bytes; a click keeps it.</p>\n" +
                                          stMap.Html() + LegendHtml(vecPieces))) +
                  "\n";
    }
    return strOut + "</section>\n";
}

} // namespace

std::string PageHtml(const std::vector<INVENTORY_S> &vecInventory, const std::string &strOf,
                     const std::string &strMade)
{
    const size_t uiGood =
        static_cast<size_t>(std::count_if(vecInventory.begin(), vecInventory.end(),
                                          [](const INVENTORY_S &stDevice) { return stDevice.IsGood(); }));
    const size_t uiWrong = vecInventory.size() - uiGood;
    const std::string strHealth =
        uiWrong == 0U
            ? Element("span", "good", "all in order")
            : Element("span", "wrong", Format("%zu of %zu not in order", uiWrong, vecInventory.size()));
    std::string strBody = Element("h1", "", "FRU inventory") + "\n" +
                          Element("p", "dim", HtmlText(strOf) + "; " + strHealth) + "\n" +
                          SummaryHtml(vecInventory);
    for (size_t i = 0; i < vecInventory.size(); i++) {
        strBody += DeviceHtml(vecInventory[i], i);
    }
    HtmlTemplate stPage(REPORT_PAGE_HTML);
    stPage.Fill("title", HtmlText("FRU inventory: " + strOf));
    stPage.Fill("style", REPORT_PAGE_CSS);
    stPage.Fill("body", strBody + Element("footer", "", HtmlText(strMade)));
    stPage.Fill("script", REPORT_PAGE_JS);
    return stPage.Html();
}
