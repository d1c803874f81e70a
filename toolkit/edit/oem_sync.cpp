// SPDX-License-Identifier: Apache-2.0
#include "toolkit/edit/oem_sync.h"

#include <optional>

#include "lib_fru.h"
#include "toolkit/base/error.h"
#include "toolkit/controller/diagnostics.h"
#include "toolkit/controller/source.h"
#include "toolkit/edit/transaction.h"
#include "toolkit/image/fields.h"
#include "toolkit/image/record.h"

namespace {

// The fields that the file's keys are filled from.
struct SOURCE_ROW_S
{
    const char *pcKey;
    FIELD_ID_S stField;
};

constexpr SOURCE_ROW_S SOURCE_ROWS[] = {
    {"productmanufacturer", {Area::Product, Field::Manufacturer}},
    {"productname", {Area::Product, Field::ProductName}},
    {"productserialnumber", {Area::Product, Field::SerialNumber}},
    {"productassettag", {Area::Product, Field::AssetTag}},
    {"productpartnumber", {Area::Product, Field::PartNumber}},
    {"chassispartnumber", {Area::Chassis, Field::PartNumber}},
    {"boardproductname", {Area::Board, Field::ProductName}},
    {"productversion", {Area::Product, Field::Version}},
    {"productextra1", {Area::Product, Field::Custom, 0U}},
    {"productextra2", {Area::Product, Field::Custom, 1U}},
    {"productextra3", {Area::Product, Field::Custom, 2U}},
    {"productextra4", {Area::Product, Field::Custom, 3U}},
};

// What the FRU has for a key; nothing for keys that are not its business.
std::optional<std::string> FruText(const FRU_DATA_S &stData, const std::string &strKey)
{
    for (const SOURCE_ROW_S &stRow : SOURCE_ROWS) {
        if (strKey == stRow.pcKey) {
            // A text that the FRU lacks altogether leaves the file's as it is.
            return RecordText(stData, stRow.stField);
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
        Fail(ErrorClass::NotFound, "there is no OEM file to update" + DiagnosticHint());
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
void SyncOemConf(const RootLock &stLock, const std::vector<OEM_CHANGE_S> &vecChanges)
{
    RequireSpace(stLock.Controller());
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
