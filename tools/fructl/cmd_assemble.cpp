// fructl assemble: a whole image from label texts, into the cache.
#include <cstring>

#include "commands.h"
#include "console.h"
#include "error.h"
#include "json_out.h"
#include "name_value.h"
#include "record.h"
#include "text.h"

namespace {

constexpr u32 ASSEMBLE_MAX = 256U; // bytes of the image
constexpr size_t TEXT_MAX = 63U;   // characters of a field in an image
constexpr u32 FIRST_SLOT = FRU_ASSEMBLE_BOARD_MFG_DATE;

// Row i is the slot FIRST_SLOT + i.
const std::vector<SETTABLE_S> &Slots()
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

struct ASSEMBLE_S
{
    std::string strDeviceID;
    std::vector<std::string> vecTexts; // without --id the first one is the device
    bool bForce = false;
    bool bDryRun = false;
};

void CheckText(const NAME_VALUE_S &stGiven)
{
    const char *pcName = Slots()[stGiven.uiIndex].pcName;
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
    const std::optional<IMAGE_S> optImage = ReadCache(stDevice);
    RECORD stRecord;
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
                 Slots()[uiRow].pcTitle);
        }
    }
}

void Assemble(const DEVICE_S &stDevice, const FRU_ASSEMBLE_LABEL_S &stLabels)
{
    ClearDiagnostics();
    const u32 uiRet = FRU_AssembleBin(&stDevice.stInfo, &stLabels);
    if (uiRet != FRU_OK) {
        Fail("no image for " + stDevice.Title() + " could be assembled: " + StatusText(uiRet) +
             DiagnosticHint() + "; the cache is as it was");
    }
    CheckStored(stDevice, stLabels);
}

void Report(const SESSION_S &stSession, const ASSEMBLE_S &stOptions, const DEVICE_S &stDevice,
            const std::vector<NAME_VALUE_S> &vecGiven)
{
    const bool bServed = stDevice.IsDatabaseOnly() || IsCacheTrusted(stDevice);
    if (stSession.bJson) {
        JSON stJson = {{"device", DeviceJson(stDevice)},
                       {"dryRun", stOptions.bDryRun},
                       {"readsComeFromCache", bServed},
                       {"texts", JSON::object()}};
        for (const NAME_VALUE_S &stGiven : vecGiven) {
            stJson["texts"][Slots()[stGiven.uiIndex].pcName] = Latin1ToUtf8(stGiven.strValue);
        }
        PrintJson(stJson);
        return;
    }
    TABLE stTable({"FIELD", "VALUE"});
    for (const NAME_VALUE_S &stGiven : vecGiven) {
        stTable.Row({Slots()[stGiven.uiIndex].pcTitle, EscapeText(stGiven.strValue)});
    }
    Print(stTable.Text());
    Print(stOptions.bDryRun
              ? "nothing was written; without --dry-run: into the cache of " + stDevice.Title() + "\n"
              : Paint(COLOUR::Green, "Done") + ": assembled into the cache of " + stDevice.Title() + "\n");
    if (!bServed) {
        Print(Paint(COLOUR::Yellow, "note") +
              ": its cache is not trusted, so reads still go to the EEPROM\n");
    }
}

void RunAssemble(const SESSION_S &stSession, const ASSEMBLE_S &stOptions)
{
    std::vector<std::string> vecTexts = stOptions.vecTexts;
    TARGET_OPTIONS_S stTarget = {"", stOptions.strDeviceID};
    if (stTarget.strDeviceID.empty() && !vecTexts.empty()) {
        stTarget.strTarget = vecTexts.front();
        vecTexts.erase(vecTexts.begin());
    }
    const DEVICE_S stDevice = ResolveDevice(stSession, stTarget);
    if (vecTexts.empty()) {
        FailUsage("no NAME=VALUE is given; accepted names: " + NamesOf(Slots()));
    }
    const std::vector<NAME_VALUE_S> vecGiven = ParseNameValues(vecTexts, Slots());
    for (const NAME_VALUE_S &stGiven : vecGiven) {
        CheckText(stGiven);
    }
    CheckDevice(stDevice, stOptions.bForce);
    if (!stOptions.bDryRun) {
        const ROOT_LOCK stLock(stSession);
        Assemble(stDevice, LabelsOf(vecGiven));
    }
    Report(stSession, stOptions, stDevice, vecGiven);
}

} // namespace

void AddAssembleCommand(CLI::App &stParent, SESSION_S &stSession)
{
    const auto pstOptions = std::make_shared<ASSEMBLE_S>();
    CLI::App *pstCommand = AddCommand(
        stParent, "assemble",
        "Build an image from texts for a device that has none, into its cache; no EEPROM is written",
        "fructl assemble fan-board board-product-name=FB2 board-serial-number=FB2240001\n"
        "fructl assemble --id 6 mfg-date=2024-05-17 product-name=\"Fan Board\" --dry-run");
    pstCommand->add_option("DEVICE NAME=VALUE", pstOptions->vecTexts,
                           "TYPE:INSTANCE or a device's name (not with --id), then each name once: " +
                               NamesOf(Slots()));
    pstCommand->add_option("--id", pstOptions->strDeviceID, "the device by its FRU device ID instead")
        ->type_name("N");
    pstCommand->add_flag("--force", pstOptions->bForce, "even for a device with an EEPROM of its own");
    pstCommand->add_flag("-n,--dry-run", pstOptions->bDryRun, "check everything, write nothing");
    pstCommand->callback([&stSession, pstOptions] {
        stSession.fnRun = [&stSession, pstOptions] { RunAssemble(stSession, *pstOptions); };
    });
}
