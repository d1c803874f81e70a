// SPDX-License-Identifier: Apache-2.0
#include "toolkit/controller/changeover.h"

#include <cstring>
#include <list>

#include "bmcfru_host.h"
#include "files/files.h"
#include "lib_fru.h"
#include "toolkit/base/error.h"
#include "toolkit/base/file.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/cause.h"
#include "toolkit/controller/diagnostics.h"
#include "toolkit/controller/history.h"
#include "toolkit/controller/record_file.h"
#include "toolkit/controller/serial_file.h"

namespace {

constexpr const char *DIRECTORY = BMCHOST_JOURNAL_DIR; // so that whoever looks for unfinished writes finds it
constexpr const char *KIND = "bmcfru changeover 1";
constexpr u32 NUMBER = CHANGEOVER_NUMBER;

// ---- on the disk ----

template <typename T> Json RecordHex(const T &stRecord)
{
    const u8 *pucRecord = reinterpret_cast<const u8 *>(&stRecord);
    return OptionalHex(Bytes(pucRecord, pucRecord + sizeof(stRecord)));
}

template <typename T> void TakeRecord(const Json &stHex, T &stRecord)
{
    const Bytes vecBytes = OptionalBytes(stHex).value_or(Bytes());
    if (vecBytes.size() != sizeof(stRecord)) {
        Fail(ErrorClass::Damaged, "a record of the changeover has a wrong length");
    }
    memcpy(&stRecord, vecBytes.data(), sizeof(stRecord));
}

Json ToJson(const CHANGEOVER_S &stChangeover)
{
    Json stFiles = Json::array();
    for (const FILE_CHANGE_S &stFile : stChangeover.vecFiles) {
        stFiles.push_back({{"path", stFile.strPath}, {"new", OptionalHex(stFile.vecNew)}});
    }
    Json stDevices = Json::array();
    for (const DEVICE_RECORDS_S &stDevice : stChangeover.vecDevices) {
        stDevices.push_back({{"entry", RecordHex(stDevice.stEntry)},
                             {"information", RecordHex(stDevice.stInfo)},
                             {"sdr", RecordHex(stDevice.stSdr)},
                             {"cache", OptionalHex(stDevice.optCache)}});
    }
    return {{"time", stChangeover.strTime},
            {"command", stChangeover.strCommand},
            {"files", stFiles},
            {"removed", stChangeover.vecRemoved},
            {"forgotten", stChangeover.vecForgotten},
            {"devices", stDevices}};
}

CHANGEOVER_S Read()
{
    RequireTrusted(DIRECTORY);
    const Json stJson = ReadRecordFile(DIRECTORY, NUMBER, KIND);
    CHANGEOVER_S stChangeover;
    stChangeover.strTime = stJson.at("time").get<std::string>();
    stChangeover.strCommand = stJson.at("command").get<std::string>();
    stChangeover.vecRemoved = stJson.at("removed").get<std::vector<std::string>>();
    stChangeover.vecForgotten = stJson.at("forgotten").get<std::vector<u8>>();
    for (const Json &stFile : stJson.at("files")) {
        stChangeover.vecFiles.push_back(
            {stFile.at("path").get<std::string>(), OptionalBytes(stFile.at("new")).value_or(Bytes())});
    }
    for (const Json &stDevice : stJson.at("devices")) {
        DEVICE_RECORDS_S stRecords;
        TakeRecord(stDevice.at("entry"), stRecords.stEntry);
        TakeRecord(stDevice.at("information"), stRecords.stInfo);
        TakeRecord(stDevice.at("sdr"), stRecords.stSdr);
        stRecords.optCache = OptionalBytes(stDevice.at("cache"));
        stChangeover.vecDevices.push_back(stRecords);
    }
    return stChangeover;
}

// ---- files ----

void RequireFile(int iError, const char *pcWhat, const files::PLACE_S &stPlace)
{
    if (iError != 0) {
        Fail(ClassOfErrno(iError), std::string("cannot ") + pcWhat + " " + EscapeText(stPlace.Text()) + ": " +
                                       files::Reason(iError));
    }
}

files::PLACE_S PlaceOf(const std::string &strPath)
{
    return {BMCHOST_GetRoot(), strPath};
}

// The new files beside the old ones, under other names: what cannot be written is told while all is as it was.
class Prepared
{
  public:
    explicit Prepared(const std::vector<FILE_CHANGE_S> &vecFiles)
    {
        for (const FILE_CHANGE_S &stFile : vecFiles) {
            const files::PLACE_S stPlace = PlaceOf(stFile.strPath);
            MakeParentDirectory(stPlace);
            files::NewFile &stNew = m_lstNew.emplace_back();
            RequireFile(stNew.Open(stPlace), "write", stPlace);
            RequireFile(
                stNew.Write({reinterpret_cast<const char *>(stFile.vecNew.data()), stFile.vecNew.size()}),
                "write", stPlace);
            m_vecPlaces.push_back(stPlace);
        }
    }
    void Commit()
    {
        auto itPlace = m_vecPlaces.begin();
        for (files::NewFile &stNew : m_lstNew) {
            RequireFile(stNew.Commit(), "write", *itPlace++);
        }
    }

  private:
    std::list<files::NewFile> m_lstNew; // they do not move
    std::vector<files::PLACE_S> m_vecPlaces;
};

void RemoveOld(const CHANGEOVER_S &stChangeover)
{
    for (const std::string &strPath : stChangeover.vecRemoved) {
        const files::PLACE_S stPlace = PlaceOf(strPath);
        const int iError = files::Remove(stPlace);
        if (iError != ENOENT && iError != ENOTDIR) {
            RequireFile(iError, "remove", stPlace);
            RequireFile(files::FlushDirectoryOf(stPlace), "remove", stPlace);
        }
    }
    for (u32 uiDeviceID = 0; uiDeviceID <= 0xFFU; uiDeviceID++) {
        ForgetHistory(static_cast<u8>(uiDeviceID));
    }
    ForgetJournal();
}

// ---- records ----

void Require(u32 uiRet, const std::string &strWhat)
{
    if (uiRet != FRU_OK) {
        FailLibrary(ErrorClass::Failed, "cannot write " + strWhat + ": " + StatusText(uiRet),
                    DiagnosticHint());
    }
}

// There is no call that deletes a device's records, so they are emptied; a FRU of no bytes cannot be read.
void Forget(u8 ucDeviceID)
{
    FRU_DEVICE_INFO_S stInfo = {};
    stInfo.ucDeviceID = ucDeviceID;
    Require(FRU_DB_PutFRUDeviceInfo(ucDeviceID, &stInfo), Format("the record of FRU device %u", ucDeviceID));
    (void)FRU_DB_DelFRUData(ucDeviceID); // fails when there was none
    Require(FRU_DB_PutFRUDataCacheStatus(ucDeviceID, FRU_CACHE_UNTRUSTED),
            Format("the cache status of FRU device %u", ucDeviceID));
}

void WriteRecords(const CHANGEOVER_S &stChangeover)
{
    FRU_DEVICE_TBL_S stTable = {};
    // No table first: who looks meanwhile without the lock must not see devices of both.
    Require(FRU_DB_PutFRUDeviceTbl(&stTable), "the device table");
    for (const u8 ucDeviceID : stChangeover.vecForgotten) {
        Forget(ucDeviceID);
    }
    for (const DEVICE_RECORDS_S &stDevice : stChangeover.vecDevices) {
        const u8 ucDeviceID = stDevice.stEntry.ucDeviceID;
        const std::string strOf = std::string(" of ") + stDevice.stInfo.acFRUName;
        Require(FRU_DB_PutFRUDeviceInfo(ucDeviceID, &stDevice.stInfo), "the record" + strOf);
        Require(FRU_DB_PutFRUSDR(ucDeviceID, &stDevice.stSdr), "the SDR" + strOf);
        if (stDevice.optCache.has_value()) {
            Require(FRU_DB_PutFRUData(ucDeviceID, stDevice.stInfo.usSize, stDevice.optCache->data()),
                    "the cached image" + strOf);
        } else {
            (void)FRU_DB_DelFRUData(ucDeviceID);
        }
        Require(FRU_DB_PutFRUDataCacheStatus(ucDeviceID, stDevice.optCache.has_value() ? FRU_CACHE_TRUSTED
                                                                                       : FRU_CACHE_UNTRUSTED),
                "the cache status" + strOf);
        stTable.astEntry[stTable.ucCount++] = stDevice.stEntry;
    }
    Require(FRU_DB_PutOperateFlag(0U), "the operate flag");
    Require(FRU_DB_PutFRUDeviceTbl(&stTable), "the device table");
}

void Finish(const CHANGEOVER_S &stChangeover)
{
    RemoveOld(stChangeover);
    // A controller has its network share from the start; the product serial number is copied to it.
    MakeParentDirectory(PlaceOf(SERIAL_COPY));
    WriteRecords(stChangeover);
    RemoveRecordFile(DIRECTORY, NUMBER);
}

} // namespace

bool HasChangeover()
{
    const std::vector<u32> vecNumbers = RecordNumbers(DIRECTORY);
    return !vecNumbers.empty() && vecNumbers.front() == NUMBER;
}

void ChangeOver(CHANGEOVER_S &stChangeover)
{
    stChangeover.strTime = TimeNow();
    Prepared stNew(stChangeover.vecFiles);
    WriteRecordFile(DIRECTORY, NUMBER, KIND, ToJson(stChangeover));
    stNew.Commit();
    Finish(stChangeover);
}

std::string FinishChangeover()
{
    const CHANGEOVER_S stChangeover = Read();
    const std::string strWhat = "the change to another controller that was cut short (" +
                                stChangeover.strCommand + ", " + stChangeover.strTime + ")";
    try {
        Prepared(stChangeover.vecFiles).Commit();
        Finish(stChangeover);
    } catch (const Error &stError) {
        throw Error(stError.Class(),
                    strWhat + " cannot be finished: " + stError.what() + "; see to it and try again");
    }
    return strWhat + " is finished now";
}
