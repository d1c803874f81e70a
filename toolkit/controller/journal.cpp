// SPDX-License-Identifier: Apache-2.0
#include "toolkit/controller/journal.h"

#include <algorithm>

#include "bmcfru_host.h"
#include "toolkit/base/error.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/record_file.h"
#include "toolkit/controller/serial_file.h"

namespace {

constexpr const char *DIRECTORY = BMCHOST_JOURNAL_DIR;
constexpr const char *KIND = "bmcfru write journal 1";

Json ToJson(const DEVICE_CHANGE_S &stDevice)
{
    Json stBetween = Json::array();
    for (const Bytes &vecBytes : stDevice.vecBetween) {
        stBetween.push_back(OptionalHex(vecBytes));
    }
    return {{"device", stDevice.ucDeviceID},
            {"title", stDevice.strTitle},
            {"offset", stDevice.uiOffset},
            {"oldEeprom", OptionalHex(stDevice.optOld)},
            {"newEeprom", OptionalHex(stDevice.optNew)},
            {"between", stBetween},
            {"cache", stDevice.bCache},
            {"oldCache", OptionalHex(stDevice.optOldCache)},
            {"newCache", OptionalHex(stDevice.optNewCache)}};
}

DEVICE_CHANGE_S DeviceChange(const Json &stJson)
{
    DEVICE_CHANGE_S stDevice;
    stDevice.ucDeviceID = stJson.at("device").get<u8>();
    stDevice.strTitle = stJson.at("title").get<std::string>();
    stDevice.uiOffset = stJson.at("offset").get<u32>();
    stDevice.optOld = OptionalBytes(stJson.at("oldEeprom"));
    stDevice.optNew = OptionalBytes(stJson.at("newEeprom"));
    for (const Json &stBytes : stJson.at("between")) {
        stDevice.vecBetween.push_back(OptionalBytes(stBytes).value_or(Bytes()));
    }
    stDevice.bCache = stJson.at("cache").get<bool>();
    stDevice.optOldCache = OptionalBytes(stJson.at("oldCache"));
    stDevice.optNewCache = OptionalBytes(stJson.at("newCache"));
    if (stDevice.optOld.has_value() != stDevice.optNew.has_value() ||
        (stDevice.optOld.has_value() && stDevice.optOld->size() != stDevice.optNew->size())) {
        Fail(ErrorClass::Damaged, "a journal entry has old and new bytes of different lengths");
    }
    return stDevice;
}

Json ToJson(const JOURNAL_ENTRY_S &stEntry)
{
    Json stDevices = Json::array();
    for (const DEVICE_CHANGE_S &stDevice : stEntry.vecDevices) {
        stDevices.push_back(ToJson(stDevice));
    }
    Json stFiles = Json::array();
    for (const FILE_CHANGE_S &stFile : stEntry.vecFiles) {
        stFiles.push_back({{"path", stFile.strPath},
                           {"old", OptionalHex(stFile.optOld)},
                           {"new", OptionalHex(stFile.vecNew)}});
    }
    return {{"time", stEntry.strTime},
            {"command", stEntry.strCommand},
            {"devices", stDevices},
            {"files", stFiles}};
}

JOURNAL_ENTRY_S EntryOf(u32 uiNumber)
{
    const Json stJson = ReadRecordFile(DIRECTORY, uiNumber, KIND);
    JOURNAL_ENTRY_S stEntry;
    stEntry.uiNumber = uiNumber;
    stEntry.strTime = stJson.at("time").get<std::string>();
    stEntry.strCommand = stJson.at("command").get<std::string>();
    for (const Json &stDevice : stJson.at("devices")) {
        stEntry.vecDevices.push_back(DeviceChange(stDevice));
    }
    for (const Json &stFile : stJson.at("files")) {
        const std::string strPath = stFile.at("path").get<std::string>();
        if (strPath != SERIAL_FILE &&
            strPath != SERIAL_COPY) { // whoever writes here does not write everywhere
            Fail(ErrorClass::Damaged,
                 "a journal entry names a file that no write renews: " + EscapeText(strPath));
        }
        stEntry.vecFiles.push_back(
            {strPath, OptionalBytes(stFile.at("new")).value_or(Bytes()), OptionalBytes(stFile.at("old"))});
    }
    return stEntry;
}

std::vector<u32> EntryNumbers()
{
    RequireTrusted(DIRECTORY);
    std::vector<u32> vecNumbers = RecordNumbers(DIRECTORY);
    vecNumbers.erase(std::remove(vecNumbers.begin(), vecNumbers.end(), CHANGEOVER_NUMBER), vecNumbers.end());
    return vecNumbers;
}

} // namespace

std::vector<JOURNAL_ENTRY_S> ReadJournal()
{
    std::vector<JOURNAL_ENTRY_S> vecEntries;
    for (const u32 uiNumber : EntryNumbers()) {
        try {
            vecEntries.push_back(EntryOf(uiNumber));
        } catch (const std::exception &stError) { // also JSON that has not what it should have
            JOURNAL_ENTRY_S stUnreadable;
            stUnreadable.uiNumber = uiNumber;
            stUnreadable.strUnreadable = stError.what();
            vecEntries.push_back(stUnreadable);
        }
    }
    return vecEntries;
}

bool HasJournal()
{
    return !RecordNumbers(DIRECTORY).empty();
}

void WriteJournal(JOURNAL_ENTRY_S &stEntry)
{
    const std::vector<u32> vecNumbers = EntryNumbers();
    stEntry.uiNumber = vecNumbers.empty() ? 1U : vecNumbers.back() + 1U;
    stEntry.strTime = TimeNow();
    WriteRecordFile(DIRECTORY, stEntry.uiNumber, KIND, ToJson(stEntry));
}

void RemoveJournal(u32 uiNumber)
{
    RemoveRecordFile(DIRECTORY, uiNumber);
}

void ForgetJournal()
{
    for (const u32 uiNumber : EntryNumbers()) {
        RemoveJournal(uiNumber);
    }
}
