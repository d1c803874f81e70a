// SPDX-License-Identifier: Apache-2.0
#include "toolkit/edit/assemble.h"

#include <algorithm>
#include <cstring>

#include "lib_fru.h"
#include "toolkit/base/error.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/cause.h"
#include "toolkit/edit/transaction.h"
#include "toolkit/image/fields.h"
#include "toolkit/image/mfg_date.h"
#include "toolkit/image/record.h"

namespace {

constexpr u32 ASSEMBLE_MAX = 256U; // bytes of the image
constexpr u32 FIRST_SLOT = FRU_ASSEMBLE_BOARD_MFG_DATE;

// The field that each slot from FIRST_SLOT on goes to.
constexpr FIELD_ID_S SLOT_FIELDS[] = {
    {Area::Board, Field::MfgDate},       {Area::Board, Field::Manufacturer},
    {Area::Board, Field::ProductName},   {Area::Board, Field::SerialNumber},
    {Area::Board, Field::PartNumber},    {Area::Product, Field::Manufacturer},
    {Area::Product, Field::ProductName}, {Area::Product, Field::PartNumber},
    {Area::Product, Field::Version},     {Area::Product, Field::SerialNumber},
    {Area::Product, Field::AssetTag},
};

std::string TextFor(const std::vector<NAME_VALUE_S> &vecGiven, const FIELD_ID_S &stField)
{
    for (const NAME_VALUE_S &stGiven : vecGiven) {
        if (SLOT_FIELDS[stGiven.uiIndex] == stField) {
            return stGiven.strValue;
        }
    }
    return "";
}

} // namespace

const std::vector<SETTABLE_S> &AssemblyTexts()
{
    static const std::vector<SETTABLE_S> vecSlots = {
        {"mfg-date", "board manufacturing date"},
        {"board-manufacturer", "board manufacturer"},
        {"board-product-name", "board product name"},
        {"board-serial-number", "board serial number"},
        {"board-part-number", "board part number"},
        {"product-manufacturer", "product manufacturer"},
        {"product-name", "product name"},
        {"product-part-number", "product part number"},
        {"product-version", "product version"},
        {"product-serial-number", "product serial number"},
        {"asset-tag", "product asset tag"},
    };
    return vecSlots;
}

namespace {

bool IsDate(const NAME_VALUE_S &stGiven)
{
    return FIRST_SLOT + stGiven.uiIndex == FRU_ASSEMBLE_BOARD_MFG_DATE;
}

void CheckText(const NAME_VALUE_S &stGiven)
{
    const char *pcName = AssemblyTexts()[stGiven.uiIndex].pcName;
    const std::string &strValue = stGiven.strValue;
    if (IsDate(stGiven)) {
        // The library would note a bad date in its log and go on with 1996-01-01.
        const std::string strWhyNot = WhyNoLabelDate(strValue);
        if (!strWhyNot.empty()) {
            FailRefused(std::string(pcName) + "=" + EscapeText(strValue) + " is refused: " + strWhyNot +
                        "; accepted: YYYY-MM-DD, with or without HH:MM:SS, as the label Mfg.Date takes it "
                        "('fructl date' tells more)");
        }
        return;
    }
    if (strValue.empty() || strValue.size() > size_t{FRU_FIELD_MAX_TEXT}) {
        FailRefused(Format("the value of %s has %zu characters; accepted: 1 to %zu", pcName, strValue.size(),
                           size_t{FRU_FIELD_MAX_TEXT}));
    }
}

// An image in the cache alone is right for a device that has no other. For one with an EEPROM it would hide
// what is in there, and the next label write would carry it into the EEPROM.
void CheckDevice(const DEVICE_S &stDevice, bool bForce)
{
    const u32 uiSize = stDevice.stInfo.usSize;
    if (uiSize > ASSEMBLE_MAX || uiSize < FRU_COMMON_HEADER_LEN) {
        FailRefused(stDevice.Title() + Format(" has %u bytes; an image can be assembled for %u to %u", uiSize,
                                              FRU_COMMON_HEADER_LEN, ASSEMBLE_MAX));
    }
    if (!bForce && !stDevice.IsDatabaseOnly()) {
        FailRefused(
            stDevice.Title() +
            " has an EEPROM; an image assembled into its cache would hide what is in there, and the next "
            "label write would carry it there; accepted: a databaseOnly device, or --force");
    }
}

FRU_ASSEMBLE_LABEL_S LabelsOf(const std::vector<NAME_VALUE_S> &vecGiven)
{
    FRU_ASSEMBLE_LABEL_S stLabels = {};
    for (const NAME_VALUE_S &stGiven : vecGiven) {
        const size_t uiLength = std::min(stGiven.strValue.size(), size_t{FRU_ASSEMBLE_SLOT_LEN - 1U});
        memcpy(stLabels.acSlot[FIRST_SLOT + stGiven.uiIndex], stGiven.strValue.data(), uiLength);
    }
    return stLabels;
}

// The record that the library will assemble: an area for each that is given a text.
void FillRecord(const std::vector<NAME_VALUE_S> &vecGiven, Record &stRecord)
{
    for (const Area enArea : {Area::Board, Area::Product}) {
        const AREA_ROW_S &stRow = *FindAreaRow(enArea);
        const bool bGiven = std::any_of(vecGiven.begin(), vecGiven.end(), [&](const NAME_VALUE_S &stGiven) {
            return SLOT_FIELDS[stGiven.uiIndex].enArea == enArea;
        });
        if (!bGiven) {
            continue;
        }
        stRecord.AddArea(stRow);
        for (const FIELD_ROW_S &stField : stRow.vecFields) {
            const std::string strText = TextFor(vecGiven, {enArea, stField.enField});
            if (stField.enKind == Kind::Text) {
                stRecord.Store(stField.uiOffset, HeapText(strText, strText.size() + 1U));
            } else if (stField.enKind == Kind::MfgDate && !strText.empty()) {
                (void)LIB_FRU_CaclMfgDateTime(strText.c_str(),
                                              stRecord.Data()); // a date: it has been checked
            }
        }
    }
}

} // namespace

std::vector<NAME_VALUE_S> ParseAssembly(const std::vector<std::string> &vecTexts)
{
    std::vector<NAME_VALUE_S> vecGiven = ParseNameValues(vecTexts, AssemblyTexts());
    for (NAME_VALUE_S &stGiven : vecGiven) {
        if (IsDate(stGiven)) {
            stGiven.strValue = LabelDate(stGiven.strValue);
        }
    }
    return vecGiven;
}

void CheckAssembly(const DEVICE_S &stDevice, const std::vector<NAME_VALUE_S> &vecGiven, bool bForce)
{
    for (const NAME_VALUE_S &stGiven : vecGiven) {
        CheckText(stGiven);
    }
    CheckDevice(stDevice, bForce);
}

CHANGE_S PlanAssembly(const DEVICE_S &stDevice, const std::vector<NAME_VALUE_S> &vecGiven)
{
    Record stRecord;
    FillRecord(vecGiven, stRecord);
    if (!EncodeRecord(stRecord, stDevice.stInfo.usSize).has_value()) {
        return PlanNothing(stDevice); // the library refuses by itself what cannot be encoded
    }
    // It has no custom fields, which a baseboard's reader would fill up; that is no loss.
    return PlanCachedRecord(stDevice, "these texts", stRecord, false);
}

static void Build(const DEVICE_S &stDevice, const std::vector<NAME_VALUE_S> &vecGiven,
                  const CHANGE_S &stChange)
{
    const FRU_ASSEMBLE_LABEL_S stLabels = LabelsOf(vecGiven);
    const OUTCOME_S stOutcome = ApplyChange(stChange, "assembling " + stDevice.Title(), nullptr,
                                            [&] { return FRU_AssembleBin(&stDevice.stInfo, &stLabels); });
    if (stOutcome.uiStatus != FRU_OK) {
        FailLibrary(ErrorClass::Failed,
                    "no image for " + stDevice.Title() +
                        " could be assembled: " + StatusText(stOutcome.uiStatus),
                    stOutcome.Hint() + "; the cache is as it was", stOutcome.uiStatus);
    }
    if (!stOutcome.strHomeDiffers.empty()) {
        Fail("the library reports success, but " + stOutcome.strHomeDiffers + stOutcome.Hint());
    }
}

void Assemble(const RootLock &stLock, const DEVICE_S &stDevice, const std::vector<NAME_VALUE_S> &vecGiven)
{
    const CHANGE_S stChange = PlanAssembly(stDevice, vecGiven);
    RunTransaction(stLock, {stChange}, {}, [&] { Build(stDevice, vecGiven, stChange); });
}
