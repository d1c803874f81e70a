// SPDX-License-Identifier: Apache-2.0
#include "toolkit/controller/mend.h"

#include <algorithm>
#include <cerrno>
#include <numeric>

#include "bmc_eeprom.h"
#include "bmcfru_host.h"
#include "files/files.h"
#include "lib_fru.h"
#include "toolkit/base/error.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/cause.h"
#include "toolkit/controller/changeover.h"
#include "toolkit/controller/diagnostics.h"

namespace {

// A write cycle that is cut leaves anything in its page; no chip has larger ones.
constexpr u32 LARGEST_PAGE = 256U;
constexpr size_t FILE_MAX = 64U * 1024U;

FRU_DEVICE_INFO_S InfoOf(const DEVICE_CHANGE_S &stChange)
{
    FRU_DEVICE_INFO_S stInfo = {};
    if (FRU_DB_GetFRUDeviceInfo(stChange.ucDeviceID, &stInfo) != FRU_OK) {
        FailLibrary(ErrorClass::NotFound, stChange.strTitle + " has no device record any more",
                    DiagnosticHint());
    }
    return stInfo;
}

// ---- EEPROM ----

Bytes ReadRegion(const DEVICE_CHANGE_S &stChange)
{
    FRU_DEVICE_INFO_S stInfo = InfoOf(stChange);
    Bytes vecBytes(stChange.optOld->size());
    ClearDiagnostics();
    const i32 iRead = ReadWriteEEPROM(stInfo.ucEEPROMType, &stInfo.ucBusNumber, vecBytes.data(),
                                      stChange.uiOffset, static_cast<u32>(vecBytes.size()), BMC_EEPROM_READ);
    if (iRead != static_cast<i32>(vecBytes.size())) {
        Fail(ErrorClass::NoAnswer,
             "the EEPROM of " + stChange.strTitle + " does not answer" + DiagnosticHint());
    }
    return vecBytes;
}

void WriteRegion(const DEVICE_CHANGE_S &stChange, Bytes vecBytes)
{
    FRU_DEVICE_INFO_S stInfo = InfoOf(stChange);
    ClearDiagnostics();
    const i32 iWritten =
        ReadWriteEEPROM(stInfo.ucEEPROMType, &stInfo.ucBusNumber, vecBytes.data(), stChange.uiOffset,
                        static_cast<u32>(vecBytes.size()), BMC_EEPROM_WRITE);
    if (iWritten != static_cast<i32>(vecBytes.size())) {
        Fail(ErrorClass::NoAnswer,
             "the EEPROM of " + stChange.strTitle + " cannot be written" + DiagnosticHint());
    }
}

// Whether the write may have left this byte.
bool IsExpected(const DEVICE_CHANGE_S &stChange, u32 uiAt, u8 ucByte)
{
    return ucByte == (*stChange.optOld)[uiAt] || ucByte == (*stChange.optNew)[uiAt] ||
           std::any_of(stChange.vecBetween.begin(), stChange.vecBetween.end(), [&](const Bytes &vecBytes) {
               return uiAt < vecBytes.size() && vecBytes[uiAt] == ucByte;
           });
}

// Whether somebody else has written since: then bytes that it cannot have left stand further apart than
// a page that was cut.
bool IsForeign(const DEVICE_CHANGE_S &stChange, const Bytes &vecNow)
{
    std::optional<u32> optPage;
    for (u32 i = 0; i < vecNow.size(); i++) {
        if (IsExpected(stChange, i, vecNow[i])) {
            continue;
        }
        const u32 uiPage = (stChange.uiOffset + i) / LARGEST_PAGE;
        if (optPage.value_or(uiPage) != uiPage) {
            return true;
        }
        optPage = uiPage;
    }
    return false;
}

// ---- cache ----

std::optional<Bytes> ReadCached(const DEVICE_CHANGE_S &stChange)
{
    const FRU_DEVICE_INFO_S stInfo = InfoOf(stChange);
    Bytes vecBytes(stInfo.usSize);
    if (FRU_DB_GetFRUData(stChange.ucDeviceID, stInfo.usSize, vecBytes.data()) != FRU_OK) {
        return std::nullopt;
    }
    return vecBytes;
}

void PutCached(const DEVICE_CHANGE_S &stChange, const std::optional<Bytes> &optBytes)
{
    ClearDiagnostics();
    if (!optBytes.has_value()) {
        (void)FRU_DB_DelFRUData(stChange.ucDeviceID); // fails when there is none
        return;
    }
    const u32 uiRet =
        FRU_DB_PutFRUData(stChange.ucDeviceID, static_cast<u16>(optBytes->size()), optBytes->data());
    if (uiRet != FRU_OK) {
        FailLibrary(ErrorClass::Failed,
                    "the cached image of " + stChange.strTitle + " cannot be written: " + StatusText(uiRet),
                    DiagnosticHint(), uiRet);
    }
}

// ---- files ----

int PutWhole(const std::string &strPath, const std::optional<Bytes> &optBytes)
{
    const files::PLACE_S stPlace(BMCHOST_GetRoot(), strPath);
    if (!optBytes.has_value()) {
        const int iError = files::Remove(stPlace);
        return iError == ENOENT ? 0 : iError;
    }
    const int iError = files::MakeDirectories({BMCHOST_GetRoot(), strPath.substr(0, strPath.rfind('/'))});
    return iError != 0 ? iError : files::Replace(stPlace, std::string(optBytes->begin(), optBytes->end()));
}

// ---- one entry ----

std::string Plain(const JOURNAL_ENTRY_S &stEntry)
{
    std::vector<std::string> vecTitles;
    for (const DEVICE_CHANGE_S &stChange : stEntry.vecDevices) {
        vecTitles.push_back(stChange.strTitle);
    }
    return Join(vecTitles, ", ") + ": the write that was cut short (" + stEntry.strCommand + ", " +
           stEntry.strTime + ")";
}

std::string HowToGoOn(const JOURNAL_ENTRY_S &stEntry)
{
    return Format("; see to it and try again, or look with 'fructl journal list' and give the entry up with "
                  "'fructl journal discard %u'",
                  stEntry.uiNumber);
}

// A device whose record is gone has no chip that could be half written.
void DropVanished(JOURNAL_ENTRY_S &stEntry)
{
    const auto fnVanished = [](const DEVICE_CHANGE_S &stChange) {
        FRU_DEVICE_INFO_S stInfo = {};
        return FRU_DB_GetFRUDeviceInfo(stChange.ucDeviceID, &stInfo) == FRU_OK && stInfo.usSize == 0U;
    };
    stEntry.vecDevices.erase(std::remove_if(stEntry.vecDevices.begin(), stEntry.vecDevices.end(), fnVanished),
                             stEntry.vecDevices.end());
}

// The files mirror a device that is in order: one that cannot be written does not keep the entry.
std::string FilesLine(const JOURNAL_ENTRY_S &stEntry, Side enSide)
{
    try {
        PutFiles(stEntry, enSide);
        return "";
    } catch (const Error &stError) {
        return std::string(", but ") + stError.what();
    }
}

MENDED_S Mend(JOURNAL_ENTRY_S stEntry)
{
    if (!stEntry.strUnreadable.empty()) {
        return {Mended::Stuck,
                {},
                "a write that was cut short is not mended, for its journal entry cannot be read (" +
                    stEntry.strUnreadable + ")" + HowToGoOn(stEntry)};
    }
    MENDED_S stMended = {Mended::Stuck, {}, Plain(stEntry)};
    for (const DEVICE_CHANGE_S &stChange : stEntry.vecDevices) {
        stMended.vecDeviceIDs.push_back(stChange.ucDeviceID);
    }
    DropVanished(stEntry);
    std::string strWhy;
    try {
        for (const DEVICE_CHANGE_S &stChange : stEntry.vecDevices) {
            if (stChange.optOld.has_value() && IsForeign(stChange, ReadRegion(stChange))) {
                stMended.strLine += " is left alone, for somebody else has written to the EEPROM of " +
                                    stChange.strTitle + " since" + HowToGoOn(stEntry);
                return stMended;
            }
        }
        PutSide(stEntry, Side::New);
        stMended.enMended = Mended::Finished;
        stMended.strLine += " is finished now" + FilesLine(stEntry, Side::New);
        RemoveJournal(stEntry.uiNumber);
        return stMended;
    } catch (const Error &stError) {
        strWhy = stError.what();
    }
    try {
        PutSide(stEntry, Side::Old);
        stMended.enMended = Mended::Undone;
        stMended.strLine +=
            " could not be finished (" + strWhy + ") and is undone" + FilesLine(stEntry, Side::Old);
        RemoveJournal(stEntry.uiNumber);
    } catch (const Error &stError) {
        stMended.strLine += " can be neither finished (" + strWhy + ") nor undone (" + stError.what() + ")" +
                            HowToGoOn(stEntry);
    }
    return stMended;
}

std::vector<u8> AllDeviceIDs()
{
    std::vector<u8> vecIDs(0x100U);
    std::iota(vecIDs.begin(), vecIDs.end(), u8{0});
    return vecIDs;
}

const std::optional<Bytes> &Pick(Side enSide, const std::optional<Bytes> &optOld,
                                 const std::optional<Bytes> &optNew)
{
    return enSide == Side::Old ? optOld : optNew;
}

} // namespace

void RequireSide(const JOURNAL_ENTRY_S &stEntry, Side enSide)
{
    for (const DEVICE_CHANGE_S &stChange : stEntry.vecDevices) {
        const std::optional<Bytes> &optWanted = Pick(enSide, stChange.optOld, stChange.optNew);
        if (optWanted.has_value()) {
            const Bytes vecNow = ReadRegion(stChange);
            const auto itFirst = std::mismatch(vecNow.begin(), vecNow.end(), optWanted->begin());
            if (itFirst.first != vecNow.end()) {
                Fail(
                    ErrorClass::NoAnswer,
                    Format("the EEPROM of %s holds other bytes than were to be written, from byte 0x%04zx on "
                           "(0x%02x, not 0x%02x)",
                           stChange.strTitle.c_str(), static_cast<size_t>(itFirst.first - vecNow.begin()),
                           *itFirst.first, *itFirst.second));
            }
        }
        if (stChange.bCache &&
            ReadCached(stChange) != Pick(enSide, stChange.optOldCache, stChange.optNewCache)) {
            Fail("the cached image of " + stChange.strTitle + " holds other bytes than were to be written");
        }
    }
}

void PutSide(const JOURNAL_ENTRY_S &stEntry, Side enSide)
{
    for (const DEVICE_CHANGE_S &stChange : stEntry.vecDevices) {
        const std::optional<Bytes> &optWanted = Pick(enSide, stChange.optOld, stChange.optNew);
        if (optWanted.has_value() && ReadRegion(stChange) != *optWanted) {
            WriteRegion(stChange, *optWanted);
        }
        const std::optional<Bytes> &optCache = Pick(enSide, stChange.optOldCache, stChange.optNewCache);
        if (stChange.bCache && ReadCached(stChange) != optCache) {
            PutCached(stChange, optCache);
        }
    }
    RequireSide(stEntry, enSide);
}

std::optional<Bytes> ReadControllerFile(const std::string &strPath)
{
    std::string strText;
    if (files::ReadAll({BMCHOST_GetRoot(), strPath}, FILE_MAX, &strText) != 0) {
        return std::nullopt;
    }
    return Bytes(strText.begin(), strText.end());
}

void PutFiles(const JOURNAL_ENTRY_S &stEntry, Side enSide)
{
    for (const FILE_CHANGE_S &stFile : stEntry.vecFiles) {
        const std::optional<Bytes> optWanted = enSide == Side::New ? stFile.vecNew : stFile.optOld;
        const int iError =
            ReadControllerFile(stFile.strPath) == optWanted ? 0 : PutWhole(stFile.strPath, optWanted);
        if (iError != 0) {
            Fail(ClassOfErrno(iError), "the file " + stFile.strPath +
                                           " on the controller cannot be written: " + files::Reason(iError));
        }
    }
}

std::vector<MENDED_S> MendAll()
{
    std::vector<MENDED_S> vecMended;
    if (HasChangeover()) {
        try {
            vecMended.push_back({Mended::Finished, {}, FinishChangeover()});
        } catch (const Error &stError) {
            return {{Mended::Stuck, AllDeviceIDs(), stError.what()}};
        }
    }
    for (const JOURNAL_ENTRY_S &stEntry : ReadJournal()) {
        vecMended.push_back(Mend(stEntry));
    }
    return vecMended;
}
