#include "toolkit/edit/assemble.h"

#include <cstring>

#include "lib_fru.h"
#include "toolkit/base/error.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/diagnostics.h"
#include "toolkit/controller/source.h"
#include "toolkit/image/fields.h"
#include "toolkit/image/image.h"
#include "toolkit/image/record.h"

namespace {

constexpr u32 ASSEMBLE_MAX = 256U; // bytes of the image
constexpr u32 FIRST_SLOT = FRU_ASSEMBLE_BOARD_MFG_DATE;

// The field that each slot from FIRST_SLOT on goes to; nothing for the date, which is no text there.
constexpr std::optional<FIELD_ID_S> SLOT_FIELDS[] = {
    std::nullopt,
    FIELD_ID_S{Area::Board, Field::Manufacturer},
    FIELD_ID_S{Area::Board, Field::ProductName},
    FIELD_ID_S{Area::Board, Field::SerialNumber},
    FIELD_ID_S{Area::Board, Field::PartNumber},
    FIELD_ID_S{Area::Product, Field::Manufacturer},
    FIELD_ID_S{Area::Product, Field::ProductName},
    FIELD_ID_S{Area::Product, Field::PartNumber},
    FIELD_ID_S{Area::Product, Field::Version},
    FIELD_ID_S{Area::Product, Field::SerialNumber},
    FIELD_ID_S{Area::Product, Field::AssetTag},
};

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

void CheckText(const NAME_VALUE_S &stGiven)
{
    const char *pcName = AssemblyTexts()[stGiven.uiIndex].pcName;
    const std::string &strValue = stGiven.strValue;
    if (FIRST_SLOT + stGiven.uiIndex == FRU_ASSEMBLE_BOARD_MFG_DATE) {
        // The library would note a bad date in its log and go on with 1996-01-01.
        if (isLabelValueMfgDateNormal(strValue.c_str()) != 1) {
            FailUsage(std::string(pcName) + "=" + EscapeText(strValue) +
                      " is refused; accepted: YYYY-MM-DD, with or without HH:MM:SS, as the label Mfg.Date "
                      "takes it ('fructl date' tells more)");
        }
        return;
    }
    if (strValue.empty() || strValue.size() > size_t{FRU_FIELD_MAX_TEXT}) {
        FailUsage(Format("the value of %s has %zu characters; accepted: 1 to %zu", pcName, strValue.size(),
                         size_t{FRU_FIELD_MAX_TEXT}));
    }
}

// An image in the cache alone is right for a device that has no other. For one with an EEPROM it would hide
// what is in there, and the next label write would carry it into the EEPROM.
void CheckDevice(const DEVICE_S &stDevice, bool bForce)
{
    const u32 uiSize = stDevice.stInfo.usSize;
    if (uiSize > ASSEMBLE_MAX || uiSize < FRU_COMMON_HEADER_LEN) {
        Fail(stDevice.Title() + Format(" has %u bytes; an image can be assembled for %u to %u", uiSize,
                                       FRU_COMMON_HEADER_LEN, ASSEMBLE_MAX));
    }
    if (!bForce && !stDevice.IsDatabaseOnly()) {
        Fail(stDevice.Title() +
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

// What the cache holds now, decoded; every text given has to be in it.
void CheckStored(const DEVICE_S &stDevice, const FRU_ASSEMBLE_LABEL_S &stLabels)
{
    const std::optional<IMAGE_S> optImage = FindSource(stDevice, Source::Cache);
    Record stRecord;
    if (!optImage.has_value() || DecodeImage(*optImage, false, stRecord) != FRU_OK) {
        Fail("the library reports success, but the cached image of " + stDevice.Title() +
             " cannot be decoded" + DiagnosticHint());
    }
    for (size_t i = 0; i < std::size(SLOT_FIELDS); i++) {
        if (!SLOT_FIELDS[i].has_value()) {
            continue;
        }
        const std::string strText = RecordText(*stRecord.Data(), *SLOT_FIELDS[i]).value_or("");
        if (strText != stLabels.acSlot[FIRST_SLOT + i]) {
            Fail(std::string("the library reports success, but the cached image has another ") +
                 AssemblyTexts()[i].pcTitle);
        }
    }
}

} // namespace

void CheckAssembly(const DEVICE_S &stDevice, const std::vector<NAME_VALUE_S> &vecGiven, bool bForce)
{
    for (const NAME_VALUE_S &stGiven : vecGiven) {
        CheckText(stGiven);
    }
    CheckDevice(stDevice, bForce);
}

void Assemble(const DEVICE_S &stDevice, const std::vector<NAME_VALUE_S> &vecGiven)
{
    const FRU_ASSEMBLE_LABEL_S stLabels = LabelsOf(vecGiven);
    ClearDiagnostics();
    const u32 uiRet = FRU_AssembleBin(&stDevice.stInfo, &stLabels);
    if (uiRet != FRU_OK) {
        Fail("no image for " + stDevice.Title() + " could be assembled: " + StatusText(uiRet) +
             DiagnosticHint() + "; the cache is as it was");
    }
    CheckStored(stDevice, stLabels);
}
