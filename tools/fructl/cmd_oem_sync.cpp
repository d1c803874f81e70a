// fructl oem sync: the FRU's texts into the OEM configuration file.
#include <cstring>

#include "console.h"
#include "error.h"
#include "json_out.h"
#include "oem.h"
#include "record.h"
#include "text.h"

namespace {

// A key that the library replaces when the file has a value for it.
struct CHANGE_S
{
    const OEM_TEXT_S *pstText;
    std::string strOld;
    std::string strNew;
};

std::string Bytes(const u8 *pucText)
{
    return pucText == nullptr ? "" : reinterpret_cast<const char *>(pucText);
}

// What the FRU has for a key; nothing for keys that are not its business.
std::optional<std::string> FruText(const FRU_DATA_S &stData, const std::string &strKey)
{
    const FRU_PRODUCT_INFO_S &stProduct = stData.stProductInfo;
    const struct
    {
        const char *pcKey;
        const u8 *pucText;
    } astTexts[] = {
        {"productmanufacturer", stProduct.pucMfrName},
        {"productname", stProduct.pucProductName},
        {"productserialnumber", stProduct.pucProductSerialNum},
        {"productassettag", stProduct.pucAssetTag},
        {"productpartnumber", stProduct.pucProductPartNum},
        {"chassispartnumber", stData.stChassisInfo.pucChassisPartNum},
        {"boardproductname", stData.stBoardInfo.pucBoardProductName},
        {"productversion", stProduct.pucProductVersion},
    };
    for (const auto &stText : astTexts) {
        if (strKey == stText.pcKey) {
            // A text that the FRU lacks altogether leaves the file's as it is.
            return stText.pucText == nullptr ? std::nullopt
                                             : std::optional<std::string>(Bytes(stText.pucText));
        }
    }
    for (u32 i = 0; i < 4U && stProduct.ppucCustomFields != nullptr && i < stProduct.ucCustomFieldCount;
         i++) {
        if (strKey == Format("productextra%u", i + 1U) && stProduct.ppucCustomFields[i] != nullptr) {
            return Bytes(stProduct.ppucCustomFields[i]);
        }
    }
    return std::nullopt;
}

std::vector<CHANGE_S> Plan(const FRU_DATA_S &stData, const FRU_OEM_CONF_S &stConf)
{
    std::vector<CHANGE_S> vecChanges;
    for (const OEM_TEXT_S &stText : OemTexts()) {
        const std::string strOld = stText.TextIn(stConf);
        const std::optional<std::string> optNew = FruText(stData, stText.pcKey);
        if (!strOld.empty() && optNew.has_value() && *optNew != strOld) {
            vecChanges.push_back({&stText, strOld, *optNew});
        }
    }
    return vecChanges;
}

// The library tells nothing of a file that could not be written: only what is read back counts.
void Sync(const std::vector<CHANGE_S> &vecChanges)
{
    ClearDiagnostics();
    FRU_SetOEMConf();
    const std::string strHint = DiagnosticHint();
    FRU_OEM_CONF_S stAfter = {};
    FRU_GetOEMConfBeforeDeal(&stAfter);
    for (const CHANGE_S &stChange : vecChanges) {
        if (stChange.strNew != stChange.pstText->TextIn(stAfter)) {
            Fail(std::string("the OEM file does not hold the FRU's ") + stChange.pstText->pcKey +
                 " after the update" + strHint);
        }
    }
}

void Report(const SESSION_S &stSession, bool bDryRun, const std::vector<CHANGE_S> &vecChanges)
{
    TABLE stTable({"KEY", "OLD", "NEW"});
    JSON stChanges = JSON::array();
    for (const CHANGE_S &stChange : vecChanges) {
        stTable.Row(
            {stChange.pstText->pcKey, EscapeText(stChange.strOld),
             stChange.strNew.empty() ? "(empty: from now on it stays so)" : EscapeText(stChange.strNew)});
        stChanges.push_back({{"key", stChange.pstText->pcKey},
                             {"old", Latin1ToUtf8(stChange.strOld)},
                             {"new", Latin1ToUtf8(stChange.strNew)}});
    }
    if (stSession.bJson) {
        PrintJson({{"dryRun", bDryRun}, {"changes", stChanges}});
        return;
    }
    if (vecChanges.empty()) {
        Print("the OEM file's values are the FRU's already (keys without a value are never filled)\n");
        return;
    }
    Print(stTable.Text());
    Print(bDryRun ? "nothing was written\n"
                  : Paint(COLOUR::Green, "Done") + ": " + Count(vecChanges.size(), "key") + " replaced\n");
}

void RunSync(const SESSION_S &stSession, bool bDryRun)
{
    const DEVICE_S stDevice = ResolveDevice(stSession, {"0x00:0", ""});
    std::optional<ROOT_LOCK> optLock;
    if (!bDryRun) {
        optLock.emplace(stSession);
    }
    RECORD stRecord;
    DecodeTarget({stDevice, ""}, stRecord);
    FRU_OEM_CONF_S stConf = {};
    ClearDiagnostics();
    FRU_GetOEMConfBeforeDeal(&stConf);
    if (!DiagnosticHint().empty()) {
        Fail("there is no OEM file to update" + DiagnosticHint());
    }
    const std::vector<CHANGE_S> vecChanges = Plan(*stRecord.Data(), stConf);
    if (!bDryRun) {
        Sync(vecChanges);
    }
    Report(stSession, bDryRun, vecChanges);
}

} // namespace

#define OEM_TEXT_ROW(pcKey, Member)                                                                          \
    {                                                                                                        \
        (pcKey), offsetof(FRU_OEM_CONF_S, Member)                                                            \
    }

const std::vector<OEM_TEXT_S> &OemTexts()
{
    static const std::vector<OEM_TEXT_S> vecTexts = {
        OEM_TEXT_ROW("copyright_cn", acCopyrightCn),
        OEM_TEXT_ROW("copyright_en", acCopyrightEn),
        OEM_TEXT_ROW("boardmanufacturer", acBoardManufacturer),
        OEM_TEXT_ROW("productmanufacturer", acProductManufacturer),
        OEM_TEXT_ROW("productname", acProductName),
        OEM_TEXT_ROW("qbx", acQbx),
        OEM_TEXT_ROW("productserialnumber", acProductSerialNumber),
        OEM_TEXT_ROW("productassettag", acProductAssetTag),
        OEM_TEXT_ROW("productextra1", acProductExtra1),
        OEM_TEXT_ROW("productextra2", acProductExtra2),
        OEM_TEXT_ROW("productextra3", acProductExtra3),
        OEM_TEXT_ROW("productextra4", acProductExtra4),
        OEM_TEXT_ROW("productpartnumber", acProductPartNumber),
        OEM_TEXT_ROW("chassispartnumber", acChassisPartNumber),
        OEM_TEXT_ROW("boardproductname", acBoardProductName),
        OEM_TEXT_ROW("productversion", acProductVersion),
    };
    return vecTexts;
}

void AddOemSyncCommand(CLI::App &stOem, SESSION_S &stSession)
{
    const auto pbDryRun = std::make_shared<bool>(false);
    CLI::App *pstCommand =
        AddCommand(stOem, "sync", "Replace the values in the OEM file by those of the main FRU (0x00:0)",
                   "fructl oem sync --dry-run\nfructl oem sync");
    pstCommand->add_flag("-n,--dry-run", *pbDryRun, "say what would change, write nothing");
    pstCommand->callback([&stSession, pbDryRun] {
        stSession.fnRun = [&stSession, pbDryRun] { RunSync(stSession, *pbDryRun); };
    });
}
