// SPDX-License-Identifier: Apache-2.0
#include "toolkit/controller/record_file.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <dirent.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

#include "bmcfru_host.h"
#include "files/files.h"
#include "toolkit/base/error.h"
#include "toolkit/base/text.h"

namespace {

constexpr const char *SUFFIX = ".json";
constexpr size_t NUMBER_DIGITS = 6;
constexpr size_t FILE_MAX = 64U * 1024U * 1024U; // a hundred EEPROMs at their largest, and their images
constexpr mode_t DIRECTORY_MODE = 0755;

files::PLACE_S PlaceOf(const std::string &strDirectory, u32 uiNumber)
{
    return {BMCHOST_GetRoot(), strDirectory + "/" + Format("%06u", uiNumber) + SUFFIX};
}

[[noreturn]] void FailWith(const char *pcWhat, const files::PLACE_S &stPlace, int iError)
{
    Fail(ClassOfErrno(iError),
         std::string("cannot ") + pcWhat + " " + stPlace.Text() + ": " + files::Reason(iError));
}

// Whether a file was changed by anybody but us: FNV-1a, 64 bits.
std::string Sum(const std::string &strText)
{
    uint64_t uiSum = 0xcbf29ce484222325U;
    for (const char cChar : strText) {
        uiSum = (uiSum ^ static_cast<u8>(cChar)) * 0x100000001b3U;
    }
    return Format("%016llx", static_cast<unsigned long long>(uiSum));
}

} // namespace

std::vector<u32> RecordNumbers(const std::string &strDirectory)
{
    std::vector<u32> vecNumbers;
    const std::string strPath = BMCHOST_GetRoot() + strDirectory;
    const std::unique_ptr<DIR, int (*)(DIR *)> upDir(opendir(strPath.c_str()), closedir);
    if (upDir == nullptr) {
        if (errno == ENOENT) {
            return vecNumbers;
        }
        Fail(ClassOfErrno(errno), "cannot look into " + strPath + ": " + strerror(errno));
    }
    for (const dirent *pstEntry = readdir(upDir.get()); pstEntry != nullptr;
         pstEntry = readdir(upDir.get())) {
        const std::string strName = pstEntry->d_name;
        const size_t uiStem = strName.size() - std::min(strName.size(), strlen(SUFFIX));
        if (uiStem >= NUMBER_DIGITS && strName.compare(uiStem, std::string::npos, SUFFIX) == 0 &&
            strName.find_first_not_of("0123456789") == uiStem) {
            vecNumbers.push_back(static_cast<u32>(std::stoul(strName.substr(0, uiStem))));
        }
    }
    std::sort(vecNumbers.begin(), vecNumbers.end());
    return vecNumbers;
}

void RequireTrusted(const std::string &strDirectory)
{
    const std::string strPath = BMCHOST_GetRoot() + strDirectory;
    struct stat stDirectory = {};
    struct stat stRoot = {};
    if (lstat(strPath.c_str(), &stDirectory) != 0 || stat(BMCHOST_GetRoot(), &stRoot) != 0) {
        return; // not there: nobody has laid anything
    }
    const uid_t uiOwner = stDirectory.st_uid;
    if (!S_ISDIR(stDirectory.st_mode) ||
        (uiOwner != 0U && uiOwner != geteuid() && uiOwner != stRoot.st_uid)) {
        Fail(ErrorClass::NotPermitted,
             EscapeText(strPath) + " belongs to another user, so nothing of it is believed");
    }
}

Json ReadRecordFile(const std::string &strDirectory, u32 uiNumber, const char *pcKind)
{
    const files::PLACE_S stPlace = PlaceOf(strDirectory, uiNumber);
    std::string strText;
    const int iError = files::ReadAll(stPlace, FILE_MAX, &strText, nullptr, files::Links::Never);
    if (iError != 0) {
        FailWith("read", stPlace, iError);
    }
    const Json stFile = ParseJsonText<Json>(strText);
    if (!stFile.is_object() || stFile.value("kind", "") != pcKind || !stFile.contains("content") ||
        stFile.value("sum", "") != Sum(stFile["content"].dump())) {
        Fail(ErrorClass::Damaged, "the file " + stPlace.Text() + " is damaged");
    }
    return stFile["content"];
}

void WriteRecordFile(const std::string &strDirectory, u32 uiNumber, const char *pcKind, const Json &stContent)
{
    const files::PLACE_S stPlace = PlaceOf(strDirectory, uiNumber);
    int iError = files::MakeDirectories({BMCHOST_GetRoot(), strDirectory}, DIRECTORY_MODE);
    if (iError == 0) {
        files::Tidy({BMCHOST_GetRoot(), strDirectory}); // these directories only the tools know
        const Json stFile = {{"kind", pcKind}, {"sum", Sum(stContent.dump())}, {"content", stContent}};
        iError = files::Replace(stPlace, stFile.dump(1) + "\n", files::g_uiKeepMode, files::Links::Never);
    }
    if (iError != 0) {
        FailWith("write", stPlace, iError);
    }
}

void RemoveRecordFile(const std::string &strDirectory, u32 uiNumber)
{
    const files::PLACE_S stPlace = PlaceOf(strDirectory, uiNumber);
    int iError = files::Remove(stPlace);
    if (iError == 0) {
        iError = files::FlushDirectoryOf(stPlace);
    }
    if (iError != 0 && iError != ENOENT) {
        FailWith("remove", stPlace, iError);
    }
}

Json OptionalHex(const std::optional<std::vector<u8>> &optBytes)
{
    return optBytes.has_value() ? Json(HexBytes(*optBytes, "")) : Json(nullptr);
}

std::optional<std::vector<u8>> OptionalBytes(const Json &stHex)
{
    if (stHex.is_null()) {
        return std::nullopt;
    }
    const std::optional<std::vector<u8>> optBytes = ParseHexBytes(stHex.get<std::string>());
    if (!optBytes.has_value()) {
        Fail(ErrorClass::Damaged, "bytes in a record file are no hex digits");
    }
    return optBytes;
}

std::string TimeNow()
{
    const time_t iNow = time(nullptr);
    tm stNow = {};
    (void)gmtime_r(&iNow, &stNow);
    char acTime[32] = "";
    (void)strftime(acTime, sizeof(acTime), "%Y-%m-%dT%H:%M:%SZ", &stNow);
    return acTime;
}
