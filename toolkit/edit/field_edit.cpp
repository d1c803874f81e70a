// SPDX-License-Identifier: Apache-2.0
#include "toolkit/edit/field_edit.h"

#include <algorithm>
#include <map>

#include "lib_fru.h"
#include "toolkit/base/error.h"
#include "toolkit/base/text.h"
#include "toolkit/image/checksum.h"
#include "toolkit/image/erased.h"
#include "toolkit/image/field_code.h"
#include "toolkit/image/mfg_date.h"
#include "toolkit/image/names.h"

namespace {

constexpr size_t FIXED_AT = 2U; // behind version and length: chassis type or language
constexpr size_t DATE_AT = 3U;
constexpr u8 ENGLISH = 25U;
constexpr size_t RECORD_DATA_MAX = 0xFFU;
constexpr u8 RECORD_FORMAT = 2U;
constexpr u8 RECORD_FORMAT_BITS = 0x7FU;

[[noreturn]] void RefuseValue(const FIELD_EDIT_S &stEdit, const std::string &strAccepted)
{
    FailRefused(stEdit.strName + ": '" + EscapeText(stEdit.strValue) +
                "' is refused; accepted: " + strAccepted);
}

u8 ChassisTypeOf(const FIELD_EDIT_S &stEdit)
{
    const std::vector<std::string> vecNames = ChassisTypeNames();
    const auto itName = std::find(vecNames.begin(), vecNames.end(), stEdit.strValue);
    const std::optional<u32> optCode = ParseNumber(stEdit.strValue, static_cast<u32>(vecNames.size()) - 1U);
    if (itName == vecNames.end() && !optCode.has_value()) {
        RefuseValue(stEdit, Format("0 to %zu, or a name such as '%s'", vecNames.size() - 1U,
                                   ChassisTypeName(0x17U).c_str()));
    }
    return static_cast<u8>(optCode.value_or(static_cast<u32>(itName - vecNames.begin())));
}

u8 LanguageOf(const FIELD_EDIT_S &stEdit, u8 ucOld)
{
    const std::string &strValue = stEdit.strValue;
    if (!stEdit.bNumber && strValue == LanguageName(ucOld)) {
        return ucOld; // two codes have one name
    }
    const std::string strCode =
        !stEdit.bNumber && strValue.rfind("code ", 0) == 0 ? strValue.substr(5) : strValue;
    const std::optional<u32> optCode =
        !stEdit.bNumber && strValue == LanguageName(0U) ? 0U : ParseNumber(strCode, 0xFFU);
    if (!optCode.has_value()) {
        RefuseValue(stEdit, "0 to 255, or English");
    }
    return static_cast<u8>(*optCode);
}

u32 MfgMinutesOf(const FIELD_EDIT_S &stEdit)
{
    if (stEdit.bNumber) {
        const std::optional<u32> optMinutes = ParseNumber(stEdit.strValue, MFG_DATE_MAX);
        if (!optMinutes.has_value()) {
            RefuseValue(stEdit, Format("0 to %u, minutes since 1996-01-01", MFG_DATE_MAX));
        }
        return *optMinutes;
    }
    const MFG_DATE_S stDate =
        ParseMfgDate(stEdit.strValue.empty() ? MFG_DATE_UNSPECIFIED : stEdit.strValue, stEdit.bWrap);
    if (!stDate.strWhyNot.empty()) {
        FailRefused(stEdit.strName + ": '" + EscapeText(stEdit.strValue) + "' is refused, for " +
                    stDate.strWhyNot + "; accepted: " + MFG_DATES_ACCEPTED);
    }
    return stDate.uiMinutes;
}

// The edits of one image, made on its parts.
class Editor
{
  public:
    Editor(const std::vector<u8> &vecImage, const ROOM_S &stRoom)
        : m_stParts(TakeApart(vecImage)), m_stRoom(stRoom)
    {}
    void Make(const FIELD_EDIT_S &stEdit);
    std::vector<u8> Result();

  private:
    AREA_PARTS_S &Existing(const FIELD_EDIT_S &stEdit);
    INFO_PARTS_S &Info(const FIELD_EDIT_S &stEdit);
    void AddArea(const FIELD_EDIT_S &stEdit);
    void SetFixed(const FIELD_EDIT_S &stEdit, Kind enKind, INFO_PARTS_S &stInfo) const;
    void SetField(const FIELD_EDIT_S &stEdit);
    size_t CustomAt(const FIELD_EDIT_S &stEdit, const INFO_PARTS_S &stInfo) const;
    void EditInternalUse(const FIELD_EDIT_S &stEdit);
    void SetInternalText(const FIELD_EDIT_S &stEdit, AREA_PARTS_S &stArea) const;
    void EditRecord(const FIELD_EDIT_S &stEdit);

    IMAGE_PARTS_S m_stParts;
    const ROOM_S m_stRoom;
    std::map<Area, INFO_PARTS_S> m_mapInfos; // those that are edited
    std::optional<RECORD_PARTS_S> m_optRecords;
};

AREA_PARTS_S &Editor::Existing(const FIELD_EDIT_S &stEdit)
{
    const Area enArea = stEdit.stField.enArea;
    AREA_PARTS_S *pstArea = m_stParts.Find(enArea);
    if (pstArea == nullptr) {
        FailRefused(std::string("it has no ") + AreaName(enArea) + "; " +
                    (enArea == Area::MultiRecord
                         ? "multiRecord[+]=TYPE:HEX begins one"
                         : std::string("--add-area ") + AreaKey(enArea) + " makes one"));
    }
    return *pstArea;
}

INFO_PARTS_S &Editor::Info(const FIELD_EDIT_S &stEdit)
{
    const Area enArea = stEdit.stField.enArea;
    AREA_PARTS_S &stArea = Existing(stEdit);
    const auto itInfo = m_mapInfos.find(enArea);
    return itInfo != m_mapInfos.end() ? itInfo->second
                                      : m_mapInfos.emplace(enArea, TakeInfoApart(stArea)).first->second;
}

void Editor::AddArea(const FIELD_EDIT_S &stEdit)
{
    const Area enArea = stEdit.stField.enArea;
    if (m_stParts.Find(enArea) != nullptr) {
        FailRefused(std::string("it has a ") + AreaName(enArea) + " already");
    }
    AREA_PARTS_S stArea = {enArea, 0U, 0U, {}};
    if (enArea == Area::InternalUse) {
        stArea.vecBytes = {1U, 0xC0U, FRU_FIELD_END, 0U, 0U, 0U, 0U, 0U};
    } else {
        stArea.vecBytes = PutInfoTogether(EmptyInfo(enArea), enArea);
    }
    m_stParts.vecAreas.push_back(stArea);
}

void Editor::SetFixed(const FIELD_EDIT_S &stEdit, Kind enKind, INFO_PARTS_S &stInfo) const
{
    std::vector<u8> &vecPrefix = stInfo.vecPrefix;
    if (stEdit.optAs.has_value()) {
        FailUsage(stEdit.strName + " is no text and has no encoding; accepted: without --as");
    }
    if (enKind == Kind::ChassisType) {
        vecPrefix[FIXED_AT] = ChassisTypeOf(stEdit);
    } else if (enKind == Kind::Language) {
        vecPrefix[FIXED_AT] = LanguageOf(stEdit, vecPrefix[FIXED_AT]);
    } else {
        const u32 uiMinutes = MfgMinutesOf(stEdit);
        StoreMfgDate(uiMinutes, &vecPrefix[DATE_AT]);
    }
}

size_t Editor::CustomAt(const FIELD_EDIT_S &stEdit, const INFO_PARTS_S &stInfo) const
{
    const size_t uiCount = stInfo.vecFields.size() - stInfo.uiNamed;
    if (stEdit.stField.uiIndex >= uiCount) {
        const std::string strArea = AreaKey(stEdit.stField.enArea);
        Fail(ErrorClass::NotFound,
             "it has no " + stEdit.strName + ": " + Count(uiCount, "custom field") +
                 (uiCount == 0U ? "" : Format(", counted from 0 to %zu", uiCount - 1U)) + "; " + strArea +
                 ".custom[+]=VALUE adds one");
    }
    return stInfo.uiNamed + stEdit.stField.uiIndex;
}

void Editor::SetField(const FIELD_EDIT_S &stEdit)
{
    INFO_PARTS_S &stInfo = Info(stEdit);
    const bool bForeign = stEdit.stField.enArea != Area::Chassis && stInfo.vecPrefix[FIXED_AT] != 0U &&
                          stInfo.vecPrefix[FIXED_AT] != ENGLISH;
    const FIELD_STYLE_S stStyle = {stEdit.optAs, true, bForeign};
    if (stEdit.enEdit == Edit::Remove) {
        const size_t uiAt = CustomAt(stEdit, stInfo);
        stInfo.vecFields.erase(stInfo.vecFields.begin() + static_cast<std::ptrdiff_t>(uiAt));
        return;
    }
    if (stEdit.enEdit == Edit::Append) {
        stInfo.vecFields.push_back(FieldBytes({0xC0U}, stEdit.strValue, stStyle));
        return;
    }
    size_t uiAt = 0;
    if (stEdit.stField.enField == Field::Custom) {
        uiAt = CustomAt(stEdit, stInfo);
    } else {
        for (const FIELD_ROW_S &stRow : FindAreaRow(stEdit.stField.enArea)->vecFields) {
            if (stRow.enField == stEdit.stField.enField && stRow.enKind != Kind::Text) {
                SetFixed(stEdit, stRow.enKind, stInfo);
                return;
            }
            if (stRow.enField == stEdit.stField.enField) {
                break;
            }
            uiAt += stRow.enKind == Kind::Text ? 1U : 0U;
        }
    }
    try {
        stInfo.vecFields[uiAt] = FieldBytes(stInfo.vecFields[uiAt], stEdit.strValue, stStyle);
    } catch (const Error &stError) {
        throw Error(stError.Class(), stEdit.strName + ": " + stError.what(), stError.Accepted());
    }
}

// The one length-coded text that this system keeps there, behind it an end mark.
void Editor::SetInternalText(const FIELD_EDIT_S &stEdit, AREA_PARTS_S &stArea) const
{
    std::vector<u8> &vecBytes = stArea.vecBytes;
    const size_t uiEnd = vecBytes.size() > 1U ? 2U + (vecBytes[1] & FRU_FIELD_MAX_TEXT) : 0U;
    if (uiEnd == 0U || uiEnd >= vecBytes.size() || vecBytes[uiEnd] != FRU_FIELD_END) {
        FailRefused("its internal use area holds raw data and no text; internalUse=HEX replaces all of it");
    }
    const std::vector<u8> vecField =
        FieldBytes({vecBytes.begin() + 1, vecBytes.begin() + static_cast<std::ptrdiff_t>(uiEnd)},
                   stEdit.strValue, {stEdit.optAs, false, false});
    std::vector<u8> vecNew = {vecBytes[0]};
    vecNew.insert(vecNew.end(), vecField.begin(), vecField.end());
    vecNew.push_back(FRU_FIELD_END);
    const size_t uiSize =
        std::max(vecBytes.size(), (vecNew.size() + FRU_AREA_UNIT - 1U) / FRU_AREA_UNIT * FRU_AREA_UNIT);
    // What stands behind the text stays where it is, as far as the text leaves it.
    if (vecNew.size() < vecBytes.size()) {
        const size_t uiKept = std::max(vecNew.size(), uiEnd + 1U);
        vecNew.resize(uiKept, 0U);
        vecNew.insert(vecNew.end(), vecBytes.begin() + static_cast<std::ptrdiff_t>(uiKept), vecBytes.end());
    }
    vecNew.resize(uiSize, 0U);
    vecBytes = vecNew;
}

void Editor::EditInternalUse(const FIELD_EDIT_S &stEdit)
{
    AREA_PARTS_S &stArea = Existing(stEdit);
    if (stEdit.stField.enField == Field::Data) {
        SetInternalText(stEdit, stArea);
        return;
    }
    const std::optional<std::vector<u8>> optData =
        stEdit.strValue.empty() ? std::vector<u8>() : ParseHexBytes(stEdit.strValue);
    if (!optData.has_value() || stEdit.optAs.value_or(Encoding::Binary) != Encoding::Binary) {
        RefuseValue(stEdit,
                    "hex digits, two a byte, for all bytes behind the area's first; internalUse.data=TEXT "
                    "sets the text that this system keeps there");
    }
    const u8 ucLast = stArea.vecBytes.back();
    std::vector<u8> vecNew = {stArea.vecBytes[0]};
    vecNew.insert(vecNew.end(), optData->begin(), optData->end());
    const size_t uiSize = (vecNew.size() + FRU_AREA_UNIT - 1U) / FRU_AREA_UNIT * FRU_AREA_UNIT;
    vecNew.resize(std::max(uiSize, stArea.vecBytes.size()), ucLast == ERASED ? ERASED : u8{0});
    stArea.vecBytes = vecNew;
}

// "HEX", or "TYPE:HEX" for another type than it has.
RecordBytes ParseRecord(const FIELD_EDIT_S &stEdit, const RecordBytes *pvecOld, bool bLast)
{
    const size_t uiColon = stEdit.strValue.find(':');
    const std::optional<u32> optType =
        uiColon == std::string::npos ? std::nullopt : ParseNumber(stEdit.strValue.substr(0, uiColon), 0xFFU);
    const std::optional<std::vector<u8>> optData =
        ParseHexBytes(uiColon == std::string::npos ? stEdit.strValue : stEdit.strValue.substr(uiColon + 1U));
    const bool bTyped = optType.has_value() || (pvecOld != nullptr && uiColon == std::string::npos);
    if (!bTyped || !optData.has_value() || optData->empty() || optData->size() > RECORD_DATA_MAX ||
        stEdit.optAs.value_or(Encoding::Binary) != Encoding::Binary) {
        RefuseValue(stEdit,
                    std::string(pvecOld == nullptr ? "" : "HEX or ") +
                        "TYPE:HEX, the record's type (0 to 255, such as 0xc0) and its 1 to 255 bytes of "
                        "data; header and checksums are made");
    }
    const u8 ucFormat =
        pvecOld == nullptr ? RECORD_FORMAT : static_cast<u8>((*pvecOld)[1] & RECORD_FORMAT_BITS);
    return MakeRecord(optType.has_value() ? static_cast<u8>(*optType) : (*pvecOld)[0], ucFormat, *optData,
                      bLast);
}

void Editor::EditRecord(const FIELD_EDIT_S &stEdit)
{
    AREA_PARTS_S *pstArea = m_stParts.Find(Area::MultiRecord);
    if (pstArea == nullptr && stEdit.enEdit == Edit::Append) {
        m_stParts.vecAreas.push_back({Area::MultiRecord, 0U, 0U, {}});
        m_optRecords = RECORD_PARTS_S();
    } else if (!m_optRecords.has_value()) {
        m_optRecords = TakeRecordsApart(Existing(stEdit).vecBytes);
    }
    std::vector<RecordBytes> &vecRecords = m_optRecords->vecRecords;
    const bool bRest = std::any_of(m_optRecords->vecRest.begin(), m_optRecords->vecRest.end(),
                                   [](u8 ucByte) { return ucByte != 0U && ucByte != ERASED; });
    if (stEdit.enEdit == Edit::Append) {
        if (bRest && !m_optRecords->bEnds) {
            Fail(ErrorClass::Damaged,
                 Format("its MultiRecords are damaged behind record %zu, so that none can come "
                        "behind them; 'fructl verify' tells where",
                        vecRecords.size()));
        }
        m_optRecords->vecRest.clear();
        vecRecords.push_back(ParseRecord(stEdit, nullptr, true));
        return;
    }
    const size_t uiIndex = stEdit.stField.uiIndex;
    if (uiIndex >= vecRecords.size()) {
        Fail(ErrorClass::NotFound,
             "it has no " + stEdit.strName + ": " + Count(vecRecords.size(), "MultiRecord") +
                 (bRest ? " before a damaged one" : "") +
                 (vecRecords.empty() ? "" : Format(", counted from 0 to %zu", vecRecords.size() - 1U)));
    }
    if (stEdit.enEdit == Edit::Remove) {
        vecRecords.erase(vecRecords.begin() + static_cast<std::ptrdiff_t>(uiIndex));
        return;
    }
    const bool bLast = (vecRecords[uiIndex][1] & FRU_MULTIRECORD_END_OF_LIST) != 0U;
    vecRecords[uiIndex] = ParseRecord(stEdit, &vecRecords[uiIndex], bLast);
}

void Editor::Make(const FIELD_EDIT_S &stEdit)
{
    const Area enArea = stEdit.stField.enArea;
    if (stEdit.enEdit == Edit::RemoveArea) {
        (void)Existing(stEdit);
        m_stParts.Remove(enArea);
    } else if (stEdit.enEdit == Edit::AddArea) {
        AddArea(stEdit);
    } else if (enArea == Area::MultiRecord) {
        EditRecord(stEdit);
    } else if (enArea == Area::InternalUse) {
        EditInternalUse(stEdit);
    } else {
        SetField(stEdit);
    }
}

std::vector<u8> Editor::Result()
{
    for (const auto &[enArea, stInfo] : m_mapInfos) {
        AREA_PARTS_S &stArea = *m_stParts.Find(enArea);
        const INFO_PARTS_S stOld = TakeInfoApart(stArea);
        if (stOld.vecPrefix != stInfo.vecPrefix || stOld.vecFields != stInfo.vecFields) {
            stArea.vecBytes = PutInfoTogether(stInfo, enArea);
        }
    }
    if (m_optRecords.has_value()) {
        m_stParts.Find(Area::MultiRecord)->vecBytes = PutRecordsTogether(*m_optRecords);
        if (m_optRecords->vecRecords.empty() && m_optRecords->vecRest.empty()) {
            m_stParts.Remove(Area::MultiRecord);
        }
    }
    return PutTogether(m_stParts, m_stRoom);
}

// Names are those of the image as it was: what is removed goes from the last on, what is added comes last.
int TurnOf(const FIELD_EDIT_S &stEdit)
{
    switch (stEdit.enEdit) {
    case Edit::RemoveArea:
        return 0;
    case Edit::AddArea:
        return 1;
    case Edit::Set:
        return 2;
    case Edit::Remove:
        return 3;
    default:
        return 4;
    }
}

} // namespace

std::vector<u8> EditImage(const std::vector<u8> &vecImage, const ROOM_S &stRoom,
                          const std::vector<FIELD_EDIT_S> &vecEdits)
{
    std::vector<FIELD_EDIT_S> vecOrdered = vecEdits;
    std::stable_sort(vecOrdered.begin(), vecOrdered.end(),
                     [](const FIELD_EDIT_S &stOne, const FIELD_EDIT_S &stOther) {
                         const int iOne = TurnOf(stOne);
                         const int iOther = TurnOf(stOther);
                         return iOne != iOther ? iOne < iOther
                                               : stOne.enEdit == Edit::Remove &&
                                                     stOne.stField.uiIndex > stOther.stField.uiIndex;
                     });
    Editor stEditor(vecImage, stRoom);
    for (const FIELD_EDIT_S &stEdit : vecOrdered) {
        stEditor.Make(stEdit);
    }
    return stEditor.Result();
}
