// SPDX-License-Identifier: Apache-2.0
#include "toolkit/controller/lint.h"

#include <algorithm>
#include <map>

#include "lib_fru.h"
#include "toolkit/base/error.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/source.h"
#include "toolkit/image/mfg_date.h"
#include "toolkit/image/record.h"
#include "toolkit/image/role.h"

namespace {

struct RULE_S
{
    LintRule enRule;
    const char *pcWord;
    const char *pcMeaning;
};

constexpr RULE_S RULES[] = {
    {LintRule::Unreadable, "unreadable", "the image cannot be read; 'fructl verify' tells where it is wrong"},
    {LintRule::NoSerial, "no-serial", "no area tells a serial number"},
    {LintRule::Placeholder, "placeholder", "a text that only holds a place"},
    {LintRule::Double, "double", "a serial number, MAC address or unique ID that another device has"},
    {LintRule::Blanks, "blanks", "blanks around a text, or where none belong"},
    {LintRule::DateUnset, "date-unset", "no manufacturing date is told"},
    {LintRule::DateFuture, "date-future", "the manufacturing date has not come yet"},
};

const RULE_S &RowOf(LintRule enRule)
{
    return RULES[static_cast<size_t>(enRule)];
}

class Linter
{
  public:
    explicit Linter(const std::vector<TARGET_S> &vecTargets) : m_vecTargets(vecTargets) {}
    LINT_S Run();

  private:
    using VALUE_KEY = std::pair<FIELD_ID_S, std::string>;

    void Find(LintRule enRule, const FIELD_ID_S &stField, const std::string &strValue,
              const std::string &strWhat);
    void Target();
    void Record(const RECORD_VIEW_S &stView);
    void Text(const FIELD_ID_S &stField, const std::string &strText);
    void Date(const FIELD_ID_S &stField, u32 uiMinutes);
    void UniqueIDs(const RECORD_VIEW_S &stView);
    void Doubles();

    const std::vector<TARGET_S> &m_vecTargets;
    LINT_S m_stLint;
    size_t m_uiTarget = 0;  // the one that is looked at
    bool m_bSerial = false; // it tells a serial number
    std::map<VALUE_KEY, std::vector<size_t>> m_mapHolders;
};

void Linter::Find(LintRule enRule, const FIELD_ID_S &stField, const std::string &strValue,
                  const std::string &strWhat)
{
    m_stLint.vecFindings.push_back({m_uiTarget, enRule, stField, strValue, strWhat});
}

void Linter::Text(const FIELD_ID_S &stField, const std::string &strText)
{
    const Role enRole = RoleOf(stField, m_vecTargets[m_uiTarget].HasFixedSlots());
    // NONE stands for an absent value there.
    const bool bNone = stField.enField == Field::Custom && strText.compare(0, 4U, "NONE") == 0;
    if (enRole == Role::Other || bNone || strText.empty()) {
        return;
    }
    m_bSerial = m_bSerial || stField.enField == Field::SerialNumber;
    const std::string strPlaceholder = WhyPlaceholder(strText, TextKindOf(enRole));
    if (!strPlaceholder.empty()) {
        Find(LintRule::Placeholder, stField, strText, strPlaceholder);
        return; // its blanks say no more, and it will be double
    }
    const std::string strBlanks = WhyBlanks(strText, TextKindOf(enRole));
    if (!strBlanks.empty()) {
        Find(LintRule::Blanks, stField, strText, strBlanks);
    }
    if (enRole == Role::Identity) {
        m_mapHolders[{stField, strText}].push_back(m_uiTarget);
    }
}

void Linter::Date(const FIELD_ID_S &stField, u32 uiMinutes)
{
    constexpr uint64_t ELSEWHERE = 14U * 60U; // somewhere it is so late already
    if (uiMinutes == 0U) {
        Find(LintRule::DateUnset, stField, MfgDateText(uiMinutes), "it is unspecified");
    } else if (uiMinutes > MfgDateClock() + ELSEWHERE) {
        Find(LintRule::DateFuture, stField, MfgDateText(uiMinutes),
             uiMinutes == MFG_DATE_MAX ? "its bytes are erased" : "it has not come yet");
    }
}

// Records that name the server as a whole.
void Linter::UniqueIDs(const RECORD_VIEW_S &stView)
{
    for (size_t i = 0; i < stView.vecMultiRecords.size(); i++) {
        const MULTIRECORD_VIEW_S &stRecord = stView.vecMultiRecords[i];
        const bool bUnique = stRecord.ucType == FRU_MR_TYPE_MANAGEMENT_ACCESS && !stRecord.vecData.empty() &&
                             stRecord.vecData[0] == FRU_MR_SUBTYPE_SYSTEM_UNIQUE_ID;
        if (bUnique) {
            m_mapHolders[{{Area::MultiRecord, Field::OneRecord, static_cast<u32>(i)}, stRecord.strText}]
                .push_back(m_uiTarget);
        }
    }
}

void Linter::Record(const RECORD_VIEW_S &stView)
{
    m_bSerial = false;
    for (const AREA_VIEW_S &stArea : stView.vecAreas) {
        for (const FIELD_VIEW_S &stField : stArea.vecFields) {
            const FIELD_ID_S stID = {stArea.enArea, stField.enField};
            if (stField.enField == Field::MfgDate) {
                Date(stID, stField.optNumber.value_or(0U));
            } else {
                Text(stID, stField.strText);
            }
        }
        for (size_t i = 0; i < stArea.vecCustomFields.size(); i++) {
            Text({stArea.enArea, Field::Custom, static_cast<u32>(i)}, stArea.vecCustomFields[i]);
        }
    }
    UniqueIDs(stView);
    if (!m_bSerial) {
        Find(LintRule::NoSerial, {Area::Unused, Field::Unused}, "", "no area tells a serial number");
    }
}

void Linter::Target()
{
    const TARGET_S &stTarget = m_vecTargets[m_uiTarget];
    try {
        const IMAGE_S stImage = ReadShown(stTarget, std::nullopt);
        if (LayoutOf(stImage, stTarget.HasFixedSlots()).vecAreas == std::vector<Area>{Area::Hardware}) {
            return;
        }
        m_stLint.uiChecked++;
        ::Record stRecord;
        DecodeShown(stTarget, stImage, stRecord);
        Record(ViewRecord(*stRecord.Data()));
    } catch (const Error &stError) {
        Find(LintRule::Unreadable, {Area::Unused, Field::Unused}, "", stError.what());
    }
}

// Each holder is told the first of the others.
void Linter::Doubles()
{
    for (const auto &[stKey, vecHolders] : m_mapHolders) {
        for (size_t i = 0; i < vecHolders.size() && vecHolders.size() > 1U; i++) {
            const size_t uiOther = vecHolders[i == 0U ? 1U : 0U];
            m_uiTarget = vecHolders[i];
            const std::string strMore =
                vecHolders.size() == 2U ? "" : Format(" and %zu more", vecHolders.size() - 2U);
            const bool bSelf = uiOther == m_uiTarget;
            if (!bSelf) {
                Find(LintRule::Double, stKey.first, stKey.second,
                     m_vecTargets[uiOther].Title() + strMore + " has it, too");
            }
        }
    }
}

LINT_S Linter::Run()
{
    for (m_uiTarget = 0; m_uiTarget < m_vecTargets.size(); m_uiTarget++) {
        Target();
    }
    Doubles();
    std::stable_sort(m_stLint.vecFindings.begin(), m_stLint.vecFindings.end(),
                     [](const LINT_FINDING_S &stLeft, const LINT_FINDING_S &stRight) {
                         return stLeft.uiTarget < stRight.uiTarget;
                     });
    return m_stLint;
}

} // namespace

const char *LintWord(LintRule enRule)
{
    return RowOf(enRule).pcWord;
}

const char *LintMeaning(LintRule enRule)
{
    return RowOf(enRule).pcMeaning;
}

const std::vector<LintRule> &LintRules()
{
    static const std::vector<LintRule> vecRules = [] {
        std::vector<LintRule> vecAll;
        for (const RULE_S &stRule : RULES) {
            vecAll.push_back(stRule.enRule);
        }
        return vecAll;
    }();
    return vecRules;
}

LINT_S Lint(const std::vector<TARGET_S> &vecTargets)
{
    return Linter(vecTargets).Run();
}
