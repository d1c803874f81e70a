#include "toolkit/edit/oem_sync.h"

#include <optional>

#include "lib_fru.h"
#include "toolkit/base/error.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/diagnostics.h"
#include "toolkit/controller/source.h"
#include "toolkit/image/record.h"

namespace {

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

} // namespace

std::vector<OEM_CHANGE_S> PlanOemSync(const DEVICE_S &stDevice)
{
    Record stRecord;
    DecodeTarget({stDevice, ""}, stRecord);
    FRU_OEM_CONF_S stConf = {};
    ClearDiagnostics();
    FRU_GetOEMConfBeforeDeal(&stConf);
    if (!DiagnosticHint().empty()) {
        Fail("there is no OEM file to update" + DiagnosticHint());
    }
    std::vector<OEM_CHANGE_S> vecChanges;
    for (const OEM_TEXT_S &stText : OemTexts()) {
        const std::string strOld = stText.TextIn(stConf);
        const std::optional<std::string> optNew = FruText(*stRecord.Data(), stText.pcKey);
        if (!strOld.empty() && optNew.has_value() && *optNew != strOld) {
            vecChanges.push_back({&stText, strOld, *optNew});
        }
    }
    return vecChanges;
}

// The library tells nothing of a file that could not be written: only what is read back counts.
void SyncOemConf(const std::vector<OEM_CHANGE_S> &vecChanges)
{
    ClearDiagnostics();
    FRU_SetOEMConf();
    const std::string strHint = DiagnosticHint();
    FRU_OEM_CONF_S stAfter = {};
    FRU_GetOEMConfBeforeDeal(&stAfter);
    for (const OEM_CHANGE_S &stChange : vecChanges) {
        if (stChange.strNew != stChange.pstText->TextIn(stAfter)) {
            Fail(std::string("the OEM file does not hold the FRU's ") + stChange.pstText->pcKey +
                 " after the update" + strHint);
        }
    }
}
