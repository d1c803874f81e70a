// SPDX-License-Identifier: Apache-2.0
#include "toolkit/image/record_words.h"

#include <algorithm>
#include <cctype>
#include <cstdint>

#include "lib_fru.h"
#include "toolkit/base/text.h"
#include "toolkit/image/multirecord.h"
#include "toolkit/image/record_tables.h"

namespace {

constexpr u32 NO_PORT = 31U;
constexpr u8 TOP_BIT = 0x80U; // of an address in a list of I2C devices; names have it clear

struct UNIT_WORDS_S
{
    Unit enUnit;
    const char *pcKey;   // behind a member's name
    const char *pcShown; // behind the number
    u32 uiParts;         // what programs are given, of one of what is shown
    int iDecimals;
};

constexpr UNIT_WORDS_S UNITS[] = {
    {Unit::None, "", "", 1U, 0},
    {Unit::Watts, "Watts", " W", 1U, 0},
    {Unit::VoltAmperes, "VoltAmperes", " VA", 1U, 0},
    {Unit::Volts, "Millivolts", " V", 1000U, 2},
    {Unit::Millivolts, "Millivolts", " mV", 1U, 0},
    {Unit::Amperes, "Milliamperes", " A", 1000U, 1},
    {Unit::Milliamperes, "Milliamperes", " mA", 1U, 0},
    {Unit::WholeAmperes, "Amperes", " A", 1U, 0},
    {Unit::Milliseconds, "Milliseconds", " ms", 1U, 0},
    {Unit::Seconds, "Seconds", " s", 1U, 0},
    {Unit::Hertz, "Hertz", " Hz", 1U, 0},
    {Unit::Megahertz, "Megahertz", " MHz", 1U, 0},
    {Unit::PerSecond, "PerSecond", " rotations a second", 1U, 0},
};
static_assert(std::size(UNITS) == static_cast<size_t>(Unit::PerSecond) + 1U);

// A value as its row has it, for people and for programs.
struct VALUE_S
{
    std::string strText; // raw
    Json stJson;
};

class Reader
{
  public:
    explicit Reader(const std::vector<u8> &vecData)
        : m_vecData(vecData), m_uiLength(static_cast<u32>(vecData.size()))
    {
        m_stWords.stFields = Json::object();
    }
    RECORD_WORDS_S Read(const std::vector<SECTION_S> &vecSections);

  private:
    bool Sections(const std::vector<SECTION_S> &vecSections, const std::string &strGroup, Json &stTarget);
    bool Section(const SECTION_S &stSection, const std::string &strGroup, Json &stTarget);
    bool Element(const SECTION_S &stSection, const std::string &strGroup, Json &stTarget);
    bool I2cDevices(const SECTION_S &stSection, Json &stTarget);
    void Row(const WORD_ROW_S &stRow, const std::string &strGroup, Json &stTarget);
    uint64_t RawOf(const WORD_ROW_S &stRow) const;
    VALUE_S NumberOf(const WORD_ROW_S &stRow, uint64_t ulRaw) const;
    VALUE_S ValueOf(const WORD_ROW_S &stRow, u32 uiLength, uint64_t ulRaw) const;

    const std::vector<u8> &m_vecData;
    const u32 m_uiLength;
    u32 m_uiAt = 0; // where the section begins
    bool m_bFrame = false;
    RECORD_WORDS_S m_stWords;
};

uint64_t Reader::RawOf(const WORD_ROW_S &stRow) const
{
    uint64_t ulRaw = 0;
    for (u32 i = 0; i < stRow.ucWidth && i < sizeof(ulRaw); i++) {
        ulRaw |= uint64_t{m_vecData[m_uiAt + stRow.ucOffset + i]} << 8U * i;
    }
    ulRaw >>= stRow.ucShift;
    return stRow.ucBits == 0U ? ulRaw : ulRaw & ((uint64_t{1} << stRow.ucBits) - 1U);
}

VALUE_S Reader::NumberOf(const WORD_ROW_S &stRow, uint64_t ulRaw) const
{
    if (static_cast<int64_t>(ulRaw) == stRow.iNone) {
        return {"unspecified", nullptr};
    }
    int64_t lValue = stRow.enForm == Form::Signed ? static_cast<int16_t>(ulRaw) : static_cast<int64_t>(ulRaw);
    lValue *= stRow.usScale * ((m_vecData[m_uiAt] & stRow.ucTenfold) != 0 ? 10 : 1);
    const UNIT_WORDS_S &stUnit = UNITS[static_cast<size_t>(stRow.enUnit)];
    return {Format("%.*f", stUnit.iDecimals, static_cast<double>(lValue) / stUnit.uiParts) + stUnit.pcShown,
            lValue};
}

VALUE_S Reader::ValueOf(const WORD_ROW_S &stRow, u32 uiLength, uint64_t ulRaw) const
{
    const u8 *pucBytes = m_vecData.data() + m_uiAt + stRow.ucOffset;
    switch (stRow.enForm) {
    case Form::Unsigned:
    case Form::Signed:
        return NumberOf(stRow, ulRaw);
    case Form::Flag:
        return {ulRaw != 0U ? "yes" : "no", ulRaw != 0U};
    case Form::Hex:
        return {Format("0x%0*llx", ((stRow.ucBits != 0U ? stRow.ucBits : stRow.ucWidth * 8) + 7) / 8 * 2,
                       static_cast<unsigned long long>(ulRaw)),
                ulRaw};
    case Form::Port:
        return ulRaw == NO_PORT ? VALUE_S{"none", nullptr} : NumberOf(stRow, ulRaw);
    case Form::Named: {
        const auto itName = std::find_if(
            stRow.pvecNames->begin(), stRow.pvecNames->end(),
            [ulRaw](const CODE_NAME_S &stName) { return stName.ucFirst <= ulRaw && ulRaw <= stName.ucLast; });
        const std::string strCode = Format("%u", static_cast<u32>(ulRaw));
        const bool bRange = itName != stRow.pvecNames->end() && itName->ucFirst != itName->ucLast;
        const std::string strName =
            itName == stRow.pvecNames->end() ? "unknown, code " + strCode : itName->pcName;
        return {strName + (bRange ? ", code " + strCode : ""), ulRaw};
    }
    case Form::Bits: {
        std::vector<std::string> vecNumbers;
        Json stBits = Json::array();
        for (u32 i = 0; i < stRow.ucBits; i++) {
            if ((ulRaw >> i & 1U) != 0U) {
                vecNumbers.push_back(std::to_string(i));
                stBits.push_back(i);
            }
        }
        return {vecNumbers.empty() ? "none" : Join(vecNumbers, " "), stBits};
    }
    case Form::Guid:
        return {GuidText(pucBytes), GuidText(pucBytes)};
    case Form::Text: {
        const std::string strText(reinterpret_cast<const char *>(pucBytes), uiLength);
        return {strText, Latin1ToUtf8(strText)};
    }
    default:
        return {HexBytes(pucBytes, uiLength), HexBytes(pucBytes, uiLength)};
    }
}

void Reader::Row(const WORD_ROW_S &stRow, const std::string &strGroup, Json &stTarget)
{
    const u32 uiOffset = m_uiAt + stRow.ucOffset;
    const u32 uiLength = stRow.ucWidth != 0U ? stRow.ucWidth : m_uiLength - uiOffset;
    const bool bReserved = stRow.enForm == Form::Reserved;
    const VALUE_S stValue = ValueOf(stRow, uiLength, RawOf(stRow));
    if (uiLength != 0U) {
        m_stWords.vecWords.push_back({uiOffset, uiLength, strGroup, stRow.pcName, stValue.strText,
                                      bReserved || m_bFrame, stRow.bMain});
    }
    if (bReserved) {
        return;
    }
    if (stRow.enForm == Form::Named) {
        stTarget[stRow.pcKey] = stValue.strText;
        stTarget[std::string(stRow.pcKey) + "Code"] = stValue.stJson;
        return;
    }
    stTarget[std::string(stRow.pcKey) + UNITS[static_cast<size_t>(stRow.enUnit)].pcKey] = stValue.stJson;
}

// False, and why, when the data end before it does.
bool Reader::Element(const SECTION_S &stSection, const std::string &strGroup, Json &stTarget)
{
    m_bFrame = stSection.bFrame;
    for (const WORD_ROW_S &stRow : stSection.vecRows) {
        if (m_uiAt + std::min<u32>(stRow.ucOffset + stRow.ucWidth, stSection.ucSize) > m_uiLength) {
            m_stWords.strWhyNot = "it ends after " + Count(m_uiLength, "byte") + ", before " +
                                  (strGroup.empty() ? "" : strGroup + ", ") + stRow.pcName;
            return false;
        }
        Row(stRow, strGroup, stTarget);
    }
    const bool bRest = !stSection.vecRows.empty() && stSection.vecRows.back().ucWidth == 0U;
    m_uiAt = bRest ? m_uiLength : m_uiAt + stSection.ucSize;
    return Sections(stSection.vecInner, strGroup, stTarget);
}

// Each device: its addresses, bytes whose top bit is set, and its name, whose bytes have it clear.
bool Reader::I2cDevices(const SECTION_S &stSection, Json &stTarget)
{
    Json &stList = stTarget[stSection.pcKey] = Json::array();
    while (m_uiAt < m_uiLength) {
        const std::string strGroup = Format("%s %zu", stSection.pcName, stList.size() + 1U);
        const u32 uiFirst = m_uiAt;
        Json stAddresses = Json::array();
        std::vector<std::string> vecAddresses;
        for (; m_uiAt < m_uiLength && (m_vecData[m_uiAt] & TOP_BIT) != 0; m_uiAt++) {
            const u32 uiAddress = m_vecData[m_uiAt] & ~u32{TOP_BIT};
            stAddresses.push_back(uiAddress);
            vecAddresses.push_back(Format("0x%02x", uiAddress));
        }
        const u32 uiName = m_uiAt;
        while (m_uiAt < m_uiLength && isprint(m_vecData[m_uiAt]) != 0 && (m_vecData[m_uiAt] & TOP_BIT) == 0) {
            m_uiAt++;
        }
        if (uiName == uiFirst || uiName == m_uiAt) {
            m_stWords.strWhyNot = "its device string is no list of addresses and names";
            return false;
        }
        const std::string strName(m_vecData.begin() + uiName, m_vecData.begin() + m_uiAt);
        m_stWords.vecWords.push_back(
            {uiFirst, uiName - uiFirst, strGroup, "addresses", Join(vecAddresses, " "), false, false});
        m_stWords.vecWords.push_back({uiName, m_uiAt - uiName, strGroup, "name", strName, false, true});
        stList.push_back({{"addresses", stAddresses}, {"name", strName}});
    }
    return true;
}

bool Reader::Section(const SECTION_S &stSection, const std::string &strGroup, Json &stTarget)
{
    if (stSection.enRepeat == Repeat::Once) {
        return Element(stSection, strGroup, stTarget);
    }
    if (stSection.enRepeat == Repeat::I2cDevices) {
        return I2cDevices(stSection, stTarget);
    }
    const bool bCounted = stSection.enRepeat == Repeat::Counted;
    const u32 uiCount = bCounted ? m_vecData[m_uiAt - 1U] : m_uiLength; // more than there can be
    Json stList = Json::array();
    for (u32 i = 0; i < uiCount && (bCounted || m_uiAt + stSection.ucSize <= m_uiLength); i++) {
        const std::string strOne = Format("%s %u", stSection.pcName, i + 1U);
        Json stElement = Json::object();
        if (!Element(stSection, strGroup.empty() ? strOne : strGroup + ", " + strOne, stElement)) {
            return false;
        }
        stList.push_back(stElement);
    }
    stTarget[stSection.pcKey] = stList;
    return true;
}

bool Reader::Sections(const std::vector<SECTION_S> &vecSections, const std::string &strGroup, Json &stTarget)
{
    return std::all_of(vecSections.begin(), vecSections.end(),
                       [&](const SECTION_S &stSection) { return Section(stSection, strGroup, stTarget); });
}

RECORD_WORDS_S Reader::Read(const std::vector<SECTION_S> &vecSections)
{
    if (!Sections(vecSections, "", m_stWords.stFields)) {
        return {{}, nullptr, m_stWords.strWhyNot, 0U};
    }
    m_stWords.uiMore = m_uiAt;
    if (m_uiAt < m_uiLength) {
        m_stWords.strWhyNot =
            Format("%u of its %u bytes are more than its type has", m_uiLength - m_uiAt, m_uiLength);
    }
    return std::move(m_stWords);
}

std::string WhyUnknown(u8 ucType, const std::vector<u8> &vecData)
{
    const i32 iManufacturer = ManufacturerOf(ucType, vecData);
    if (ucType == FRU_MR_TYPE_MANAGEMENT_ACCESS) {
        return vecData.empty() ? "it has no sub-type" : Format("sub-type 0x%02x is not known", vecData[0]);
    }
    if (iManufacturer == PICMG && vecData.size() > OEM_SUB_TYPE) {
        return Format("the layout of PICMG's record 0x%02x is not known", vecData[OEM_SUB_TYPE]);
    }
    if (iManufacturer != ANY) {
        return Format("an OEM record of manufacturer 0x%06x, whose layout is not known",
                      static_cast<u32>(iManufacturer));
    }
    return IsReservedMultiRecord(ucType) ? "its type is reserved" : "the layout of its type is not known";
}

} // namespace

RECORD_WORDS_S ReadRecord(u8 ucType, const std::vector<u8> &vecData)
{
    const RECORD_ROW_S *pstRow = FindRecordRow(ucType, vecData);
    if (pstRow == nullptr) {
        return {{}, nullptr, WhyUnknown(ucType, vecData), 0U};
    }
    if (pstRow->vecSections.empty()) {
        return {{}, nullptr, "the layout of such records is not known", 0U};
    }
    return Reader(vecData).Read(pstRow->vecSections);
}

std::string RecordTitle(u8 ucType, const std::vector<u8> &vecData)
{
    const RECORD_ROW_S *pstRow = FindRecordRow(ucType, vecData);
    if (pstRow != nullptr && pstRow->pcTitle != nullptr) {
        return pstRow->pcTitle;
    }
    const bool bAccess = ucType == FRU_MR_TYPE_MANAGEMENT_ACCESS && pstRow != nullptr;
    return MultiRecordTypeName(ucType) +
           (bAccess ? std::string(", ") + ManagementAccessName(vecData[0]) : "");
}

std::string RecordSummary(const RECORD_WORDS_S &stWords)
{
    std::vector<std::string> vecParts;
    for (const RECORD_WORD_S &stWord : stWords.vecWords) {
        if (stWord.bMain) {
            vecParts.push_back(stWord.strName + " " + stWord.strText);
        }
    }
    return Join(vecParts, ", ");
}

std::vector<RECORD_PART_S> RecordParts(const SPAN_S &stSpan, const std::vector<u8> &vecImage)
{
    constexpr u32 LENGTH = 3U; // of the header's bytes, from its end back
    if (stSpan.stField.enField != Field::RecordData || stSpan.uiOffset < FRU_MULTIRECORD_HEADER_LEN ||
        stSpan.uiLength != vecImage[stSpan.uiOffset - LENGTH]) {
        return {};
    }
    const auto itData = vecImage.begin() + stSpan.uiOffset;
    const std::vector<u8> vecData(itData, itData + stSpan.uiLength);
    const RECORD_WORDS_S stWords =
        ReadRecord(vecImage[stSpan.uiOffset - FRU_MULTIRECORD_HEADER_LEN], vecData);
    std::vector<RECORD_PART_S> vecParts;
    for (size_t i = 0; i < stWords.vecWords.size();) {
        const RECORD_WORD_S &stFirst = stWords.vecWords[i];
        size_t uiNext = i;
        std::vector<std::string> vecNames;
        std::vector<std::string> vecBoth;
        std::vector<std::pair<std::string, std::string>> vecValues;
        for (; uiNext < stWords.vecWords.size() && stWords.vecWords[uiNext].uiOffset == stFirst.uiOffset;
             uiNext++) {
            const RECORD_WORD_S &stWord = stWords.vecWords[uiNext];
            vecNames.push_back(stWord.strName);
            vecValues.emplace_back(stWord.strName, stWord.strText);
            vecBoth.push_back(stWord.strName + " " + stWord.strText);
        }
        const bool bOne = uiNext == i + 1U;
        const bool bGroup = !stFirst.strGroup.empty();
        const std::string strNames = Join(vecNames, ", ");
        vecParts.push_back({stSpan.uiOffset + stFirst.uiOffset,
                            stFirst.uiLength,
                            !bGroup ? strNames
                            : bOne  ? stFirst.strGroup + ", " + strNames
                                    : stFirst.strGroup,
                            bOne ? stFirst.strText : Join(vecBoth, ", "),
                            !bOne && !bGroup,
                            {}});
        if (vecParts.back().bNamesInText) {
            vecParts.back().vecValues = vecValues;
        }
        i = uiNext;
    }
    if (!stWords.vecWords.empty() && stWords.uiMore < stSpan.uiLength) {
        vecParts.push_back({stSpan.uiOffset + stWords.uiMore,
                            stSpan.uiLength - stWords.uiMore,
                            "more, not decoded",
                            "",
                            false,
                            {}});
    }
    return vecParts;
}

std::string RECORD_PART_S::Meaning() const
{
    return bNamesInText ? EscapeText(strText) : strName + (strText.empty() ? "" : ": " + EscapeText(strText));
}
