// SPDX-License-Identifier: Apache-2.0
#include "toolkit/edit/transaction.h"

#include <cerrno>
#include <fcntl.h>

#include "files/files.h"
#include "toolkit/base/error.h"
#include "toolkit/controller/history.h"
#include "toolkit/controller/mend.h"
#include "toolkit/controller/serial_file.h"
#include "toolkit/controller/source.h"
#include "toolkit/edit/uninterrupted.h"

namespace {

constexpr off_t SPACE_NEEDED = 512 * 1024;

bool ChangesNothing(const std::optional<PART_S> &optPart)
{
    return !optPart.has_value() || optPart->optBefore == optPart->vecAfter;
}

DEVICE_CHANGE_S Entry(const CHANGE_S &stChange)
{
    const DEVICE_S &stDevice = stChange.stDevice;
    DEVICE_CHANGE_S stEntry;
    stEntry.ucDeviceID = stDevice.stEntry.ucDeviceID;
    stEntry.strTitle = stDevice.Title();
    if (stChange.optEeprom.has_value()) {
        stEntry.uiOffset = stDevice.stInfo.usStartOffset;
        stEntry.optOld = stChange.optEeprom->optBefore;
        stEntry.optNew = stChange.optEeprom->vecAfter;
    }
    if (stChange.optCache.has_value()) {
        stEntry.bCache = true;
        stEntry.optOldCache = stChange.optCache->optBefore;
        stEntry.optNewCache = stChange.optCache->vecAfter;
    }
    return stEntry;
}

void Keep(const CONTROLLER_S &stController, const DEVICE_S &stDevice)
{
    PAST_IMAGE_S stPast;
    stPast.strCommand = stController.strCommandLine;
    if (!stDevice.IsDatabaseOnly()) {
        stPast.optEeprom = ReadSource(stDevice, Source::Eeprom).vecBytes;
    }
    const std::optional<IMAGE_S> optCached = FindSource(stDevice, Source::Cache);
    if (optCached.has_value()) {
        stPast.optCache = optCached->vecBytes;
    }
    KeepImage(stController, stDevice, stPast);
}

// From before the first step to after the last.
CHANGE_S Merge(const std::vector<CHANGE_S> &vecSteps)
{
    CHANGE_S stMerged = vecSteps.front();
    for (const CHANGE_S &stStep : vecSteps) {
        if (stMerged.optEeprom.has_value() && stStep.optEeprom.has_value()) {
            stMerged.optEeprom->vecAfter = stStep.optEeprom->vecAfter;
        }
        if (stMerged.optCache.has_value() && stStep.optCache.has_value()) {
            stMerged.optCache->vecAfter = stStep.optCache->vecAfter;
        }
    }
    return stMerged;
}

// Fails with what became of it.
[[noreturn]] void FailUndone(const JOURNAL_ENTRY_S &stEntry, const Error &stWhy)
{
    try {
        PutSide(stEntry, Side::Old);
        PutFiles(stEntry, Side::Old);
        RemoveJournal(stEntry.uiNumber);
    } catch (const Error &stError) {
        Fail(ErrorClass::HalfWritten, std::string(stWhy.what()) +
                                          "; what was there before could not be put back (" + stError.what() +
                                          "): the next command tries again");
    }
    Fail(stWhy.Class(), std::string(stWhy.what()) + "; what was there before is put back");
}

} // namespace

void RequireSpace(const CONTROLLER_S &stController)
{
    const std::string strDirectory = stController.strRoot + "/var/lib/fru";
    const files::Fd stFd(open(strDirectory.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600));
    const int iError =
        stFd ? posix_fallocate(stFd.Get(), 0, SPACE_NEEDED) : 0; // not every file system can tell
    if (iError == ENOSPC || iError == EDQUOT || iError == EFBIG) {
        Fail(ErrorClass::DiskFull, "the disk of " + stController.strRoot + " is too full for a write: " +
                                       files::Reason(iError) + "; nothing was written");
    }
}

std::vector<FILE_CHANGE_S> SerialFiles(const Bytes &vecSerialNumber)
{
    return {{SERIAL_FILE, vecSerialNumber}, {SERIAL_COPY, vecSerialNumber}};
}

std::vector<FILE_CHANGE_S> MirrorOf(const CHANGE_S &stChange)
{
    const DEVICE_S &stDevice = stChange.stDevice;
    const std::vector<u8> &vecAfter = stChange.Home().vecAfter;
    Record stRecord;
    if (stDevice.stEntry.ucComponentType != FRU_COMPONENT_BASEBOARD ||
        DecodeImage({HomeOf(stDevice), vecAfter, vecAfter.size()}, stDevice.HasFixedSlots(), stRecord) !=
            FRU_OK ||
        stRecord.Data()->stProductInfo.pucProductSerialNum == nullptr) {
        return {};
    }
    const std::string strSerial =
        reinterpret_cast<const char *>(stRecord.Data()->stProductInfo.pucProductSerialNum);
    return SerialFiles(Bytes(strSerial.begin(), strSerial.end()));
}

void PutStep(const CHANGE_S &stChange)
{
    JOURNAL_ENTRY_S stEntry;
    stEntry.vecDevices.push_back(Entry(stChange));
    PutSide(stEntry, Side::New);
}

void RunTransaction(const RootLock &stLock, const std::vector<CHANGE_S> &vecSteps,
                    std::vector<FILE_CHANGE_S> vecFiles, const std::function<void()> &fnWork)
{
    const CHANGE_S stChange = Merge(vecSteps);
    stLock.RequireMended(stChange.stDevice.stEntry.ucDeviceID);
    const bool bBlind = stChange.optEeprom.has_value() && !stChange.optEeprom->optBefore.has_value();
    if (bBlind && (!fnWork || FindSource(stChange.stDevice, Source::Eeprom).has_value())) {
        // What cannot be read cannot be put back, and is not written over.
        (void)ReadSource(stChange.stDevice, Source::Eeprom); // mostly fails again, and says why
        Fail(ErrorClass::NoAnswer, "the EEPROM of " + stChange.stDevice.Title() +
                                       " did not answer a moment ago; nothing was written");
    }
    // A chip that stays away is the work's own to tell of, and to record in the operation log.
    if (bBlind || (ChangesNothing(stChange.optEeprom) && ChangesNothing(stChange.optCache))) {
        if (fnWork) {
            fnWork();
        }
        return;
    }
    RequireSpace(stLock.Controller());
    Keep(stLock.Controller(), stChange.stDevice);
    JOURNAL_ENTRY_S stEntry;
    stEntry.strCommand = stLock.Controller().strCommandLine;
    stEntry.vecDevices.push_back(Entry(stChange));
    for (size_t i = 0; i + 1U < vecSteps.size(); i++) {
        if (vecSteps[i].optEeprom.has_value()) {
            stEntry.vecDevices.back().vecBetween.push_back(vecSteps[i].optEeprom->vecAfter);
        }
    }
    stEntry.vecFiles = std::move(vecFiles);
    for (FILE_CHANGE_S &stFile : stEntry.vecFiles) {
        stFile.optOld = ReadControllerFile(stFile.strPath);
    }
    const Uninterrupted stUninterrupted; // an interrupt is put off until all of it is there
    WriteJournal(stEntry);
    try {
        if (fnWork) {
            fnWork();
        } else {
            PutSide(stEntry, Side::New);
            PutFiles(stEntry, Side::New);
        }
        RequireSide(stEntry, Side::New);
    } catch (const Error &stError) {
        FailUndone(stEntry, stError);
    }
    RemoveJournal(stEntry.uiNumber);
}
