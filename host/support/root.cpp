// SPDX-License-Identifier: Apache-2.0
// The root directory, and paths below it.
#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <pwd.h>
#include <system_error>
#include <unistd.h>
#include <vector>

#include "support/host.h"

namespace {

std::optional<std::string> g_optRoot; // guarded by mtxRoot; "/" is kept as the empty text
std::string g_strShown;               // what BMCHOST_GetRoot() gave away
bool g_bNoRoot;
u32 g_uiGeneration;
bool g_bTidied;
std::atomic<bool> g_bForeignAllowed;

// Drops doubled slashes, "." and "..", which above the top counts as an error: false.
bool Normalise(std::string_view svPath, std::string *pstrOut)
{
    std::vector<std::string_view> vecParts;
    size_t uiBegin = 0;
    while (uiBegin <= svPath.size()) {
        const size_t uiEnd = std::min(svPath.find('/', uiBegin), svPath.size());
        const std::string_view svPart = svPath.substr(uiBegin, uiEnd - uiBegin);
        uiBegin = uiEnd + 1U;
        if (svPart.empty() || svPart == ".") {
            continue;
        }
        if (svPart != "..") {
            vecParts.push_back(svPart);
        } else if (vecParts.empty()) {
            return false;
        } else {
            vecParts.pop_back();
        }
    }
    pstrOut->clear();
    for (const std::string_view svPart : vecParts) {
        pstrOut->append("/").append(svPart);
    }
    return true;
}

// An absolute path for a root as the user gave it; no ".." is resolved, for a link may stand before it.
std::optional<std::string> Absolute(std::string strRoot)
{
    if (strRoot.empty() || strRoot.size() > PATH_MAX / 2) {
        return std::nullopt;
    }
    if (strRoot[0] != '/') {
        char acCwd[PATH_MAX];
        if (getcwd(acCwd, sizeof(acCwd)) == nullptr) {
            return std::nullopt;
        }
        strRoot = std::string(acCwd) + "/" + strRoot;
    }
    while (!strRoot.empty() && strRoot.back() == '/') {
        strRoot.pop_back();
    }
    return strRoot;
}

std::string Home()
{
    const char *pcHome = getenv("HOME");
    if (pcHome != nullptr && *pcHome != '\0') {
        return pcHome;
    }
    char acBuf[4096];
    struct passwd stEntry;
    struct passwd *pstFound = nullptr;
    const int iRet = getpwuid_r(getuid(), &stEntry, acBuf, sizeof(acBuf), &pstFound);
    return iRet == 0 && pstFound != nullptr && pstFound->pw_dir != nullptr ? pstFound->pw_dir : "";
}

// With mtxRoot held.
const std::string &RootLocked()
{
    if (!g_optRoot) {
        const char *pcRoot = getenv("FRUCTL_ROOT");
        std::string strRoot = pcRoot == nullptr ? "" : pcRoot;
        if (strRoot.empty()) {
            const std::string strHome = Home();
            strRoot = strHome.empty() ? "" : strHome + "/.local/state/fructl";
        }
        const std::optional<std::string> optRoot = Absolute(strRoot);
        g_bNoRoot = !optRoot;
        g_optRoot = optRoot.value_or("");
        g_strShown = g_bNoRoot ? "" : g_optRoot->empty() ? "/" : *g_optRoot;
    }
    return *g_optRoot;
}

// 0 or an errno value. The root is "/" or has no slash at its end; what lies below begins with one or is empty.
int SplitPath(const char *pcPath, std::string *pstrRoot, std::string *pstrBelow)
{
    if (pcPath == nullptr || *pcPath == '\0') {
        return EINVAL;
    }
    if (!Normalise(pcPath, pstrBelow)) {
        return EACCES;
    }
    const std::lock_guard<std::mutex> lock(host::Locks().mtxRoot);
    const std::string &strRoot = RootLocked();
    if (g_bNoRoot) {
        return EINVAL;
    }
    *pstrRoot = strRoot.empty() ? "/" : strRoot;
    return 0;
}

int ResolvePath(const char *pcPath, std::string *pstrOut)
{
    std::string strRoot;
    std::string strBelow;
    const int iError = SplitPath(pcPath, &strRoot, &strBelow);
    *pstrOut = strRoot == "/" && !strBelow.empty() ? strBelow : strRoot + strBelow;
    return iError;
}

// The user who has called sudo, when this process is root.
std::optional<uid_t> SudoUser()
{
    const char *pcUser = geteuid() == 0U ? getenv("SUDO_UID") : nullptr;
    return pcUser == nullptr ? std::nullopt : host::ToNumber(pcUser, UINT32_MAX - 1U);
}

// The owner of a root that is neither this process's user nor the one who has called sudo.
std::optional<uid_t> ForeignOwner(const std::string &strRoot)
{
    struct stat stStat;
    if (stat(strRoot.c_str(), &stStat) != 0 || stStat.st_uid == geteuid() || stStat.st_uid == SudoUser()) {
        return std::nullopt; // one that is not there yet will be ours
    }
    return stStat.st_uid;
}

// Where the platform and the tools make files.
constexpr const char *g_apcTidied[] = {"conf",
                                       "conf/hw/ProductPath",
                                       "conf/oempack/bmc",
                                       "eeprom",
                                       "mnt/sdmmc0p2",
                                       "mnt/sdmmc0p4/board",
                                       "usr/upgrade/fru",
                                       "var/lib/fru",
                                       "var/lock",
                                       "var/log",
                                       "var/network"};

void TidyOnce(const std::string &strRoot)
{
    {
        const std::lock_guard<std::mutex> lock(host::Locks().mtxRoot);
        if (g_bTidied) {
            return;
        }
        g_bTidied = true;
    }
    for (const char *pcDirectory : g_apcTidied) {
        files::Tidy(files::PLACE_S(strRoot, pcDirectory));
    }
}

} // namespace

namespace host {

u32 RootGeneration()
{
    const std::lock_guard<std::mutex> lock(Locks().mtxRoot);
    return g_uiGeneration;
}

std::string Resolve(const char *pcPath)
{
    std::string strPath;
    const int iError = ResolvePath(pcPath, &strPath);
    if (iError != 0) {
        throw std::system_error(iError, std::generic_category(), pcPath == nullptr ? "null path" : pcPath);
    }
    return strPath;
}

files::PLACE_S PlaceOf(const char *pcPath)
{
    std::string strRoot;
    std::string strBelow;
    const int iError = SplitPath(pcPath, &strRoot, &strBelow);
    if (iError != 0) {
        throw std::system_error(iError, std::generic_category(), pcPath == nullptr ? "null path" : pcPath);
    }
    return {strRoot, strBelow};
}

files::PLACE_S WritePlaceOf(const char *pcPath)
{
    files::PLACE_S stPlace = PlaceOf(pcPath);
    const std::optional<uid_t> optOwner = g_bForeignAllowed ? std::nullopt : ForeignOwner(stPlace.strBase);
    if (optOwner) {
        throw std::runtime_error(stPlace.strBase + " belongs to user " + std::to_string(*optOwner) +
                                 ", not to user " + std::to_string(geteuid()) + ": nothing is written there");
    }
    TidyOnce(stPlace.strBase);
    return stPlace;
}

} // namespace host

extern "C" {

u32 BMCHOST_SetRoot(const char *pcRoot)
{
    return host::Shield(host::g_uiFailed, [&] {
        const std::optional<std::string> optRoot = Absolute(pcRoot == nullptr ? "" : pcRoot);
        if (!optRoot) {
            return host::g_uiFailed;
        }
        const std::lock_guard<std::mutex> lock(host::Locks().mtxRoot);
        g_strShown = optRoot->empty() ? "/" : *optRoot;
        g_optRoot = optRoot;
        g_bNoRoot = false;
        g_bTidied = false;
        ++g_uiGeneration;
        return 0U;
    });
}

const char *BMCHOST_GetRoot(void)
{
    return host::Shield("", [] {
        const std::lock_guard<std::mutex> lock(host::Locks().mtxRoot);
        (void)RootLocked();
        return g_strShown.c_str();
    });
}

void BMCHOST_AllowForeignRoot(u32 uiAllow)
{
    g_bForeignAllowed = uiAllow != 0U;
}

u32 BMCHOST_IsForeignRoot(void)
{
    return host::Shield(1U, [] { return ForeignOwner(host::PlaceOf("/").strBase) ? 1U : 0U; });
}

u32 BMCHOST_ResolvePath(const char *pcPath, size_t uiSize, char *pcOut)
{
    if (pcOut == nullptr || uiSize == 0U) {
        errno = EINVAL;
        return host::g_uiFailed;
    }
    *pcOut = '\0';
    errno = ENOMEM; // what remains when the work throws
    return host::Shield(host::g_uiFailed, [&] {
        std::string strPath;
        const int iError = ResolvePath(pcPath, &strPath);
        if (iError != 0 || strPath.size() >= uiSize) {
            errno = iError != 0 ? iError : ENAMETOOLONG;
            return host::g_uiFailed;
        }
        (void)memcpy(pcOut, strPath.c_str(), strPath.size() + 1U);
        return 0U;
    });
}

} // extern "C"
