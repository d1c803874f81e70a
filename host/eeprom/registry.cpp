// SPDX-License-Identifier: Apache-2.0
// The table of back ends; those that need further libraries are loaded when a chip asks for them.
#include "eeprom/registry.h"

#include <algorithm>
#include <cstring>
#include <dlfcn.h>
#include <unistd.h>

namespace host {

namespace {

constexpr const BMCHOST_BACKEND_S *g_apstBuiltIn[] = {&g_stI2cBackend, &g_stKernelBackend};
// In libraries of their own, libbmcfruhost-<name>.so.
constexpr const char *g_apcLoaded[] = {"ipmi"};

struct LOADED_S
{
    const BMCHOST_BACKEND_S *pstBackend;
    std::string strWhy;
};

// Beside this library in the build directory, in a folder beside it when installed.
void *Open(const std::string &strLibrary)
{
    Dl_info stSelf = {};
    if (dladdr(reinterpret_cast<const void *>(&BMCHOST_CheckEepromSettings), &stSelf) != 0 &&
        stSelf.dli_fname != nullptr && strchr(stSelf.dli_fname, '/') != nullptr) {
        const std::string strSelf = stSelf.dli_fname;
        const std::string strInstalled = strSelf.substr(0U, strSelf.rfind('/')) + "/bmcfru/" + strLibrary;
        if (access(strInstalled.c_str(), R_OK) == 0) {
            return dlopen(strInstalled.c_str(), RTLD_NOW | RTLD_LOCAL);
        }
    }
    return dlopen(strLibrary.c_str(), RTLD_NOW | RTLD_LOCAL);
}

LOADED_S Load(const std::string &strName)
{
    const std::string strLibrary = "libbmcfruhost-" + strName + ".so";
    void *pLibrary = Open(strLibrary);
    if (pLibrary == nullptr) {
        const char *pcError = dlerror();
        return {nullptr, "the library of the back end '" + strName +
                             "' cannot be loaded, which Debian has in "
                             "the package libbmcfruhost-" +
                             strName + ": " + (pcError == nullptr ? strLibrary : std::string(pcError))};
    }
    const auto pfnEntry = reinterpret_cast<BMCHOST_BACKEND_ENTRY_F>(dlsym(pLibrary, BMCHOST_BACKEND_ENTRY));
    const BMCHOST_BACKEND_S *pstBackend = pfnEntry == nullptr ? nullptr : pfnEntry();
    if (pstBackend == nullptr || pstBackend->uiVersion != BMCHOST_BACKEND_VERSION) {
        (void)dlclose(pLibrary);
        return {nullptr, strLibrary + " is not of this release"};
    }
    return {pstBackend, ""}; // it stays loaded: it may have threads and sessions
}

} // namespace

const BMCHOST_BACKEND_S *FindBackend(const std::string &strName, std::string *pstrWhy)
{
    for (const char *pcLoaded : g_apcLoaded) {
        if (strName == pcLoaded) {
            // dlopen() keeps count itself, and gives the same library again.
            const LOADED_S stLoaded = Load(strName);
            *pstrWhy = stLoaded.strWhy;
            return stLoaded.pstBackend;
        }
    }
    for (const BMCHOST_BACKEND_S *pstBuiltIn : g_apstBuiltIn) {
        if (strName == pstBuiltIn->pcName) {
            return pstBuiltIn;
        }
    }
    *pstrWhy = "there is no back end '" + strName + "'; accepted: " + BackendNames();
    return nullptr;
}

std::string BackendNames()
{
    std::string strNames = "file";
    for (const BMCHOST_BACKEND_S *pstBuiltIn : g_apstBuiltIn) {
        strNames += std::string(", ") + pstBuiltIn->pcName;
    }
    for (const char *pcLoaded : g_apcLoaded) {
        strNames += std::string(", ") + pcLoaded;
    }
    return strNames;
}

} // namespace host
