// SPDX-License-Identifier: Apache-2.0
// Fuzzes the reader of a controller's description, and of the files that it lays into the controller: INI, XML, JSON. An
// accepted plan has what its makers may count on: devices that are told apart, images as large as their FRUs, chips that
// hold them. Input: the description; behind a zero byte what the file "c" beside it holds.
#include <cstdio>
#include <cstdlib>
#include <set>

#include "bmcfru_host.h"
#include "folder.h"
#include "fuzz.h"
#include "support/host.h"
#include "toolkit/base/error.h"
#include "toolkit/base/json.h"
#include "toolkit/controller/provision_plan.h"

namespace {

constexpr size_t LONGEST_LOCATOR = 64U; // bytes of an SDR

// Where the description lies, and the files beside it.
class Desk
{
  public:
    Desk()
    {
        (void)setenv("TMPDIR", m_stFolder.Path().c_str(),
                     1); // conf files are tried in a controller of their own
        (void)Put("i", std::string("\x01\0\0\0\0\0\0\xFF", FRU_COMMON_HEADER_LEN));
    }
    std::string Put(const char *pcName, const std::string &strText) const
    {
        const std::string strFile = m_stFolder.Path() + "/" + pcName;
        FILE *pstFile = fopen(strFile.c_str(), "wb");
        fuzz::Require(pstFile != nullptr &&
                      fwrite(strText.data(), 1U, strText.size(), pstFile) == strText.size());
        (void)fclose(pstFile);
        return strFile;
    }

  private:
    const fuzz::Folder m_stFolder;
};

bool Holds(const std::vector<u8> &vecChip, const DEVICE_PLAN_S &stDevice)
{
    const size_t uiStart = stDevice.stInfo.usStartOffset;
    return uiStart + stDevice.vecImage.size() <= vecChip.size() &&
           std::equal(stDevice.vecImage.begin(), stDevice.vecImage.end(),
                      vecChip.begin() + static_cast<long>(uiStart));
}

void CheckDevice(const CONTROLLER_PLAN_S &stPlan, const DEVICE_PLAN_S &stDevice, EntityList &stEntities)
{
    const FRU_DEVICE_INFO_S &stInfo = stDevice.stInfo;
    fuzz::Require(stDevice.vecImage.size() == stInfo.usSize &&
                  memchr(stInfo.acFRUName, 0, sizeof(stInfo.acFRUName)) != nullptr);
    fuzz::Require(stDevice.vecRecovery.empty() || stDevice.vecRecovery.size() == stInfo.usSize);
    fuzz::Require(stDevice.stEntry.ucDeviceID == stInfo.ucDeviceID &&
                  (stInfo.ucDatabaseOnly == 0U || stDevice.bCached));
    if (stDevice.bHasEeprom) {
        fuzz::Require(!ChipName(stDevice).empty() && ChipName(stDevice).find('/') == std::string::npos);
        fuzz::Require(Holds(EepromContents(stPlan, stDevice), stDevice));
    }
    const FRU_SDR_S stSdr = LocatorRecord(stDevice, stEntities);
    fuzz::Require(size_t{5U} + stSdr.aucData[4] <= LONGEST_LOCATOR);
}

void CheckPlan(const CONTROLLER_PLAN_S &stPlan)
{
    std::set<u32> setIDs;
    std::set<u32> setRoles;
    std::set<u32> setRecords;
    std::set<std::string> setNames;
    EntityList stEntities;
    for (const DEVICE_PLAN_S &stDevice : stPlan.vecDevices) {
        setIDs.insert(stDevice.stEntry.ucDeviceID);
        setRoles.insert(stDevice.stEntry.ucComponentType * 0x100U + stDevice.stEntry.ucInstance);
        setRecords.insert(stDevice.stEntry.usSDRRecordID);
        setNames.insert(stDevice.stInfo.acFRUName);
        CheckDevice(stPlan, stDevice, stEntities);
    }
    const size_t uiDevices = stPlan.vecDevices.size();
    fuzz::Require(uiDevices >= 1U && uiDevices <= FRU_DEVICE_TBL_MAX && setIDs.size() == uiDevices &&
                  setRoles.size() == uiDevices && setRecords.size() == uiDevices &&
                  setNames.size() == uiDevices);
    for (const CONF_FILE_S &stFile : stPlan.vecConfFiles) {
        fuzz::Require(!stFile.strPath.empty() && stFile.strPath[0] == '/');
    }
    const std::optional<CONF_FILE_S> optConf = EepromConf(stPlan);
    fuzz::Require(
        !optConf.has_value() ||
        !ParseJsonText<Json>(std::string(optConf->vecBytes.begin(), optConf->vecBytes.end())).is_discarded());
}

} // namespace

// There is no database here that a fork would have to leave.
void host::CloseDbForFork() {}

int LLVMFuzzerTestOneInput(const u8 *pucData, size_t uiSize)
{
    static const Desk DESK;
    const std::string strText(pucData, pucData + uiSize);
    const size_t uiEnd = std::min(strText.find('\0'), strText.size());
    (void)DESK.Put("c", uiEnd == strText.size() ? "" : strText.substr(uiEnd + 1U));
    try {
        CheckPlan(ReadPlan(DESK.Put("description.json", strText.substr(0U, uiEnd))));
    } catch (const Error &) {
        return 0;
    }
    return 0;
}
