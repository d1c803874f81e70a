// SPDX-License-Identifier: Apache-2.0
#include "toolkit/edit/labels.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "lib_fru.h"
#include "toolkit/base/error.h"
#include "toolkit/base/near.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/diagnostics.h"
#include "toolkit/image/mfg_date.h"
#include "toolkit/image/names.h"

namespace {

struct PLACE_S
{
    FIELD_ID_S stField;
    Accepts enAccepts;
};

Accepts AcceptsOf(Kind enKind)
{
    switch (enKind) {
    case Kind::ChassisType:
        return Accepts::ChassisType;
    case Kind::Language:
        return Accepts::Language;
    case Kind::MfgDate:
        return Accepts::Date;
    default:
        return Accepts::Text;
    }
}

// Where a label's field is, and what it takes.
PLACE_S PlaceOf(u32 uiLabelID)
{
    for (const AREA_ROW_S &stArea : AreaRows()) {
        for (const FIELD_ROW_S &stRow : stArea.vecFields) {
            if (stRow.uiLabel == uiLabelID) {
                return {{stArea.enArea, stRow.enField}, AcceptsOf(stRow.enKind)};
            }
        }
        const u32 uiSlot = uiLabelID - stArea.stCustom.uiFirstLabel;
        if (uiLabelID >= stArea.stCustom.uiFirstLabel && uiSlot < stArea.stCustom.uiLabels) {
            return {{stArea.enArea, Field::Custom, uiSlot},
                    uiLabelID == FRU_LABEL_CHASSIS_MAC_ADDRESS ? Accepts::MacAddress : Accepts::CustomText};
        }
    }
    return {{Area::Unused, Field::Unused}, Accepts::Hardware};
}

LABEL_S MakeLabel(const DIAG_FRU_LABEL_S &stRow)
{
    const PLACE_S stPlace = PlaceOf(stRow.uiLabelID);
    LABEL_S stLabel = {stRow.uiLabelID,           stRow.pcLabelName, stRow.uiMinLen,    stRow.uiMaxLen,
                       stRow.ucNoneAllowed == 1U, stPlace.stField,   stPlace.enAccepts, std::nullopt};
    const u32 uiPsuField = FRU_GetPsuFieldIDByName(stLabel.strName.c_str());
    if (uiPsuField != FRU_LABEL_NOT_FOUND) {
        stLabel.optPsuField = uiPsuField;
    }
    return stLabel;
}

FRU_SET_PARA_S NameBlock(const DEVICE_S &stDevice, const LABEL_S &stLabel)
{
    FRU_SET_PARA_S stPara = {};
    stPara.ucComponentType = stDevice.stEntry.ucComponentType;
    stPara.ucInstance = stDevice.stEntry.ucInstance;
    stPara.ucFieldFlag = stDevice.stInfo.ucFieldFlag;
    memcpy(stPara.acLabelName, stLabel.strName.data(),
           std::min(stLabel.strName.size(), sizeof(stPara.acLabelName) - 1U));
    return stPara;
}

std::vector<std::string> AcceptedNames(const DEVICE_S &stDevice)
{
    std::vector<std::string> vecNames;
    for (const LABEL_S &stLabel : Labels()) {
        if (IsAccepted(stDevice, stLabel) && stLabel.IsStored()) {
            vecNames.push_back(stLabel.strName);
        }
    }
    return vecNames;
}

std::string AcceptedText(const std::vector<std::string> &vecNames)
{
    return "; accepted: " + (vecNames.empty() ? "none" : Join(vecNames, ", "));
}

bool IsDigits(const std::string &strText)
{
    return strText.find_first_not_of("0123456789") == std::string::npos;
}

// What a label takes, behind "accepted: ".
std::string AcceptedValues(const LABEL_S &stLabel, u8 ucComponentType)
{
    const std::string strNone = stLabel.bNoneAllowed ? ", or NONE" : "";
    switch (stLabel.enAccepts) {
    case Accepts::MacAddress:
        return "12 hexadecimal digits without separators, such as 02005E1000A0" + strNone;
    case Accepts::ChassisType:
        return Join(ChassisTypeNames(), ", ");
    case Accepts::Date:
        return "2024-03-18 or 2024-03-18 09:30:00, wholly with leading zeros or wholly without (2024-3-18 "
               "9:30:0), 1996-01-01 to 2025-12-31, now, or unspecified";
    case Accepts::Language:
        return "0 to 136, in decimal digits";
    default:
        break;
    }
    const u32 uiMax = MaxLength(stLabel, ucComponentType);
    return (stLabel.uiMinLen == 0U ? Format("up to %u", uiMax)
                                   : Format("%u to %u", stLabel.uiMinLen, uiMax)) +
           " printable ASCII characters" + strNone;
}

// What the value is refused for, in the order in which the library checks; empty when nothing of what is
// known. It is asked only about values that the library refuses.
std::string WhyRefused(const LABEL_S &stLabel, const std::string &strValue, u8 ucComponentType,
                       const std::vector<std::string> &vecSaid)
{
    if (strValue.size() < stLabel.uiMinLen || strValue.size() > MaxLength(stLabel, ucComponentType)) {
        return "it has " + Count(strValue.size(), "character");
    }
    // Some labels may be blank; the library has said whether this one's blanks were the reason.
    if (std::find(vecSaid.begin(), vecSaid.end(), "Label Value is null.") != vecSaid.end()) {
        return "it is blank";
    }
    if (strValue.size() == 1U && stLabel.stField.enField == Field::Custom) {
        return "a custom field of one character would begin with 0xc1, the mark that ends the fields";
    }
    if (strValue.compare(0, 4U, "NONE") == 0 && !stLabel.bNoneAllowed) {
        return "it begins with NONE, which stands for an absent value, and this label always has one";
    }
    if (stLabel.enAccepts == Accepts::MacAddress) {
        return "it is no MAC address";
    }
    if (stLabel.enAccepts == Accepts::ChassisType) {
        return "it is no chassis type" + DidYouMean(strValue, ChassisTypeNames());
    }
    if (stLabel.enAccepts == Accepts::Date) {
        return WhyNoLabelDate(strValue);
    }
    if (stLabel.IsNumber()) {
        return IsDigits(strValue) ? "it is too large" : "it is no number";
    }
    for (size_t i = 0; i < strValue.size(); i++) {
        const u8 ucByte = static_cast<u8>(strValue[i]);
        if (ucByte < 0x20U || ucByte > 0x7EU) {
            return Format("its byte %zu is 0x%02x", i + 1U, ucByte);
        }
    }
    return "the library refuses it (" + Join(vecSaid, " | ") + ")";
}

} // namespace

const char *AcceptsText(Accepts enAccepts)
{
    switch (enAccepts) {
    case Accepts::CustomText:
        return "text, but not one character";
    case Accepts::MacAddress:
        return "12 hexadecimal digits";
    case Accepts::ChassisType:
        return "name of a chassis type";
    case Accepts::Language:
        return "number, 0 to 136";
    case Accepts::Date:
        return "date, or date and time";
    case Accepts::Hardware:
        return "bytes of the hardware FRU block";
    default:
        return "text";
    }
}

const std::vector<LABEL_S> &Labels()
{
    static const std::vector<LABEL_S> vecLabels = [] {
        std::vector<LABEL_S> vecRows;
        for (u32 i = 0; i < g_uiDIAG_FruLabelMaxNum; i++) {
            const DIAG_FRU_LABEL_S stRow = g_astDIAG_FruLabel[i];
            // The first row of a name is the one that the name stands for.
            if (FindLabelIDByName(stRow.pcLabelName) == stRow.uiLabelID) {
                vecRows.push_back(MakeLabel(stRow));
            }
        }
        return vecRows;
    }();
    return vecLabels;
}

const LABEL_S &FindLabel(const std::string &strName)
{
    const u32 uiID = FindLabelIDByName(strName.c_str());
    std::vector<std::string> vecNames;
    for (const LABEL_S &stLabel : Labels()) {
        if (stLabel.uiID == uiID) {
            return stLabel;
        }
        vecNames.push_back(stLabel.strName);
    }
    FailRefused("there is no label '" + EscapeText(strName) + "'" + DidYouMean(strName, vecNames) +
                    "; 'fructl label list' tells all names",
                vecNames);
}

bool IsAccepted(const DEVICE_S &stDevice, const LABEL_S &stLabel)
{
    const FRU_SET_PARA_S stPara = NameBlock(stDevice, stLabel);
    return isLabelNameValid(&stPara) == 1U;
}

u32 MaxLength(const LABEL_S &stLabel, u8 ucComponentType)
{
    // On component type 0 part numbers of chassis and product have the format's whole length.
    const bool bPartNumber =
        stLabel.uiID == FRU_LABEL_CHASSIS_PART_NUMBER || stLabel.uiID == FRU_LABEL_PRODUCT_PART_NUMBER;
    return ucComponentType == 0U && bPartNumber ? FRU_FIELD_MAX_TEXT : stLabel.uiMaxLen;
}

void RequireAcceptedName(const DEVICE_S &stDevice, const LABEL_S &stLabel)
{
    const std::vector<std::string> vecAccepted = AcceptedNames(stDevice);
    if (!IsAccepted(stDevice, stLabel)) {
        FailRefused(stDevice.Title() + " does not take the label '" + stLabel.strName +
                        "' (its field flag is " + Format("%u", stDevice.stInfo.ucFieldFlag) + ")" +
                        AcceptedText(vecAccepted),
                    vecAccepted);
    }
    if (!stLabel.IsStored()) {
        FailRefused("the label '" + stLabel.strName +
                        "' is kept in the hardware FRU block and not in the FRU image, where 'label' would "
                        "store nothing; 'fructl hw set' writes it" +
                        AcceptedText(vecAccepted),
                    vecAccepted);
    }
}

void RequireAcceptedValue(const DEVICE_S &stDevice, const LABEL_S &stLabel, const std::string &strValue)
{
    constexpr size_t BLOCK = sizeof(FRU_SET_PARA_S::acLabelValue);
    const u8 ucType = stDevice.stEntry.ucComponentType;
    const std::string strWhat = "'" + EscapeText(strValue) + "' is refused for '" + stLabel.strName + "': ";
    const std::string strAccepted = "; accepted: " + AcceptedValues(stLabel, ucType);
    if (strValue.size() >= BLOCK) {
        FailRefused(strWhat +
                    Format("it has %zu bytes, and a request holds %zu", strValue.size(), BLOCK - 1U) +
                    strAccepted);
    }
    std::array<char, BLOCK> acValue = {};
    memcpy(acValue.data(), strValue.data(), strValue.size());
    ClearDiagnostics();
    if (isLabelValueValid(stLabel.strName.c_str(), acValue.data(), static_cast<i32>(strValue.size()),
                          ucType) != 1U) {
        FailRefused(strWhat + WhyRefused(stLabel, strValue, ucType, TakeDiagnostics()) + strAccepted,
                    stLabel.enAccepts == Accepts::ChassisType ? ChassisTypeNames()
                                                              : std::vector<std::string>());
    }
    // The library takes the year 1995, too, and stores it as 2026.
    const std::string strWhyNot = stLabel.enAccepts == Accepts::Date ? WhyNoLabelDate(strValue) : "";
    if (!strWhyNot.empty()) {
        FailRefused(strWhat + strWhyNot + strAccepted);
    }
}

std::optional<std::string> LabelValue(const RECORD_VIEW_S &stView, const LABEL_S &stLabel)
{
    const AREA_VIEW_S *pstArea = stView.Find(stLabel.stField.enArea);
    if (pstArea == nullptr) {
        return std::nullopt;
    }
    if (stLabel.stField.enField == Field::Custom) {
        const u32 uiSlot = stLabel.stField.uiIndex;
        return uiSlot < pstArea->vecCustomFields.size()
                   ? std::optional<std::string>(pstArea->vecCustomFields[uiSlot])
                   : std::nullopt;
    }
    const FIELD_VIEW_S *pstField = pstArea->Find(stLabel.stField.enField);
    if (pstField == nullptr) {
        return std::nullopt;
    }
    return stLabel.IsNumber() ? Format("%u", pstField->optNumber.value_or(0U)) : pstField->strText;
}

std::string WhyNoValue(const RECORD_VIEW_S &stView, const LABEL_S &stLabel)
{
    if (!stLabel.IsStored()) {
        return "not in the FRU image";
    }
    const AREA_VIEW_S *pstArea = stView.Find(stLabel.stField.enArea);
    if (pstArea == nullptr) {
        return std::string("no ") + AreaName(stLabel.stField.enArea);
    }
    const size_t uiCount = pstArea->vecCustomFields.size();
    return uiCount == 0U ? "no custom fields there" : "only " + Count(uiCount, "custom field") + " there";
}
