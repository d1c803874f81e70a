#include "toolkit/edit/assemble.h"

#include <cstring>

#include "lib_fru.h"
#include "toolkit/base/error.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/diagnostics.h"
#include "toolkit/controller/source.h"
#include "toolkit/image/image.h"
#include "toolkit/image/record.h"

namespace {

constexpr u32 ASSEMBLE_MAX = 256U; // bytes of the image
constexpr size_t TEXT_MAX = 63U;   // characters of a field in an image
constexpr u32 FIRST_SLOT = FRU_ASSEMBLE_BOARD_MFG_DATE;

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
    if (strValue.empty() || strValue.size() > TEXT_MAX) {
        FailUsage(Format("the value of %s has %zu characters; accepted: 1 to %zu", pcName, strValue.size(),
                         TEXT_MAX));
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
    const FRU_BOARD_INFO_S &stBoard = stRecord.Data()->stBoardInfo;
    const FRU_PRODUCT_INFO_S &stProduct = stRecord.Data()->stProductInfo;
    const u8 *const apucTexts[] = {
        stBoard.pucBoardMfr,         stBoard.pucBoardProductName, stBoard.pucBoardSerialNum,
        stBoard.pucBoardPartNum,     stProduct.pucMfrName,        stProduct.pucProductName,
        stProduct.pucProductPartNum, stProduct.pucProductVersion, stProduct.pucProductSerialNum,
        stProduct.pucAssetTag,
    };
    for (size_t i = 0; i < std::size(apucTexts); i++) {
        const char *pcText = reinterpret_cast<const char *>(apucTexts[i]);
        const size_t uiRow = i + 1U; // the date comes first
        if (strcmp(pcText == nullptr ? "" : pcText, stLabels.acSlot[FIRST_SLOT + uiRow]) != 0) {
            Fail(std::string("the library reports success, but the cached image has another ") +
                 AssemblyTexts()[uiRow].pcTitle);
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
