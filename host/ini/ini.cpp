// SPDX-License-Identifier: Apache-2.0
// INI bridge over libiniparser. A file is parsed once for each change of it, and its handles share what was
// parsed until one of them sets a key. Parsing and looking up are the parser's own; saving is ours, because its
// dump writes values without the quotes that it needs to read them again and drops keys that stand before
// the first section.
#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <iniparser/iniparser.h>
#include <memory>
#include <vector>

#include "bmc_ini.h"
#include "support/host.h"

namespace {

constexpr size_t g_uiMaxLine = 1000; // libiniparser gives up on lines of 1024 characters

// The parser opens a file by the path of a descriptor; its messages are to name the file itself.
struct LOADING_S
{
    const char *pcPath;
    const char *pcOpen;
};
thread_local LOADING_S g_stLoading;

// libiniparser's complaints, which would go to stderr.
int Complain(const char *pcFormat, ...)
{
    char acText[1200];
    va_list vaArgs;
    va_start(vaArgs, pcFormat);
    (void)vsnprintf(acText, sizeof(acText), pcFormat, vaArgs);
    va_end(vaArgs);
    size_t uiLength = strlen(acText);
    while (uiLength != 0U && isspace(static_cast<unsigned char>(acText[uiLength - 1U])) != 0) {
        acText[--uiLength] = '\0';
    }
    std::string strText = acText;
    const size_t uiAt = g_stLoading.pcOpen == nullptr ? std::string::npos : strText.find(g_stLoading.pcOpen);
    if (uiAt != std::string::npos) {
        strText.replace(uiAt, strlen(g_stLoading.pcOpen), g_stLoading.pcPath);
    }
    HOST_LOG(BMC_DIAG_WARNING, "%s", strText.c_str());
    return 0;
}

using DICTIONARY = std::shared_ptr<dictionary>;

// What a handle points to.
struct INI_S
{
    DICTIONARY spDictionary; // shared with the cache and other handles: never changed while it is
    bool bShared;
    DICTIONARY spFormer; // what was shared before the first set: texts that were given away live in there
};

dictionary *Dictionary(void *hpd)
{
    return static_cast<INI_S *>(hpd)->spDictionary.get();
}

// A parsed file, and by what a change of it would show.
struct PARSED_S
{
    std::string strPath;
    struct stat stStat;
    DICTIONARY spDictionary;
};
constexpr size_t g_uiParsedMax = 8;
std::vector<PARSED_S> g_vecParsed; // guarded by mtxIni; the one used last stands last

bool IsSameTime(const struct timespec &stOne, const struct timespec &stOther)
{
    return stOne.tv_sec == stOther.tv_sec && stOne.tv_nsec == stOther.tv_nsec;
}

bool IsSameFile(const struct stat &stOne, const struct stat &stOther)
{
    return stOne.st_dev == stOther.st_dev && stOne.st_ino == stOther.st_ino &&
           stOne.st_size == stOther.st_size && IsSameTime(stOne.st_mtim, stOther.st_mtim) &&
           IsSameTime(stOne.st_ctim, stOther.st_ctim);
}

// A file changed within the clock's last tick may change again without showing it.
bool IsSettled(const struct stat &stStat)
{
    struct timespec stNow = {};
    (void)clock_gettime(CLOCK_REALTIME, &stNow);
    const int64_t iAge = (static_cast<int64_t>(stNow.tv_sec) - stStat.st_ctim.tv_sec) * 1000000000 +
                         (stNow.tv_nsec - stStat.st_ctim.tv_nsec);
    return iAge > 100000000; // ten ticks at least
}

DICTIONARY FindParsed(const std::string &strPath, const struct stat &stStat)
{
    const std::lock_guard<std::mutex> lock(host::Locks().mtxIni);
    for (size_t i = 0; i < g_vecParsed.size(); ++i) {
        if (g_vecParsed[i].strPath == strPath && IsSameFile(g_vecParsed[i].stStat, stStat)) {
            std::rotate(g_vecParsed.begin() + static_cast<std::ptrdiff_t>(i),
                        g_vecParsed.begin() + static_cast<std::ptrdiff_t>(i) + 1, g_vecParsed.end());
            return g_vecParsed.back().spDictionary;
        }
    }
    return nullptr;
}

void KeepParsed(PARSED_S stParsed)
{
    const std::lock_guard<std::mutex> lock(host::Locks().mtxIni);
    g_vecParsed.erase(
        std::remove_if(g_vecParsed.begin(), g_vecParsed.end(),
                       [&](const PARSED_S &stOther) { return stOther.strPath == stParsed.strPath; }),
        g_vecParsed.end());
    if (g_vecParsed.size() == g_uiParsedMax) {
        g_vecParsed.erase(g_vecParsed.begin());
    }
    g_vecParsed.push_back(std::move(stParsed));
}

DICTIONARY Parse(const std::string &strPath, int iFd)
{
    static const bool bCallbackSet = [] {
        iniparser_set_error_callback(Complain);
        return true;
    }();
    (void)bCallbackSet;
    // The very file that was looked at, whatever lies under its name by now.
    const std::string strOpen = "/proc/self/fd/" + std::to_string(iFd);
    g_stLoading = {strPath.c_str(), strOpen.c_str()};
    dictionary *pstDictionary = iniparser_load(strOpen.c_str());
    g_stLoading = {nullptr, nullptr};
    return pstDictionary == nullptr ? nullptr : DICTIONARY(pstDictionary, iniparser_freedict);
}

// A dictionary of one's own, to set keys in.
DICTIONARY Clone(const dictionary *pstFrom)
{
    DICTIONARY spClone(dictionary_new(static_cast<size_t>(pstFrom->size)), iniparser_freedict);
    for (ssize_t i = 0; spClone != nullptr && i < pstFrom->size; ++i) {
        if (pstFrom->key[i] != nullptr &&
            dictionary_set(spClone.get(), pstFrom->key[i], pstFrom->val[i]) != 0) {
            return nullptr;
        }
    }
    return spClone;
}

// Names count without case; the text under which the dictionary keeps them, or nothing when there
// can be none.
std::optional<std::string> EntryName(const char *pcSection, const char *pcKey)
{
    if (pcSection == nullptr || pcKey == nullptr || *pcKey == '\0') {
        return std::nullopt;
    }
    std::string strName = std::string(pcSection) + ":" + pcKey;
    return strName.size() < g_uiMaxLine ? std::optional<std::string>(strName) : std::nullopt;
}

// The value, or null.
const char *Find(void *hpd, const char *pcSection, const char *pcKey)
{
    const std::optional<std::string> optName = EntryName(pcSection, pcKey);
    return hpd == nullptr || !optName ? nullptr
                                      : iniparser_getstring(Dictionary(hpd), optName->c_str(), nullptr);
}

bool IsBlank(char c)
{
    return c == ' ' || c == '\t';
}

bool HasControl(std::string_view svText)
{
    for (const char c : svText) {
        if (static_cast<unsigned char>(c) < 0x20U && c != '\t') {
            return true;
        }
    }
    return false;
}

// The value as libiniparser reads it back, or nothing when no way of writing leads there.
std::optional<std::string> Quoted(const std::string &strValue)
{
    if (HasControl(strValue)) {
        return std::nullopt;
    }
    const bool bPlain = !strValue.empty() && strValue.find_first_of(";#") == std::string::npos &&
                        strValue.find_first_of("\"'") != 0U && !IsBlank(strValue.front()) &&
                        !IsBlank(strValue.back()) && strValue.back() != '\\';
    if (bPlain) {
        return strValue;
    }
    if (strValue.find('"') == std::string::npos) {
        return '"' + strValue + '"';
    }
    return strValue.find('\'') == std::string::npos ? std::optional<std::string>("'" + strValue + "'")
                                                    : std::nullopt;
}

bool IsNameWritable(const std::string &strName, const char *pcForbidden)
{
    return !HasControl(strName) && strName.find_first_of(pcForbidden) == std::string::npos &&
           (strName.empty() || (!IsBlank(strName.front()) && !IsBlank(strName.back())));
}

// True when section, key and value survive a save and a load.
bool IsEntryWritable(const std::string &strSection, const std::string &strKey, const std::string &strValue)
{
    const std::optional<std::string> optValue = Quoted(strValue);
    return optValue && strSection.size() < g_uiMaxLine && strKey.size() + optValue->size() < g_uiMaxLine &&
           IsNameWritable(strSection, ":]") && IsNameWritable(strKey, ":=") && !strKey.empty() &&
           strchr("[#;", strKey.front()) == nullptr;
}

// The keys of one section as lines; section names may hold colons, so the longest that fits owns a key.
void AppendKeys(const dictionary *pstDictionary, const std::string &strSection, std::string *pstrText)
{
    const std::string strPrefix = strSection + ":";
    for (ssize_t i = 0; i < pstDictionary->size; ++i) {
        const char *pcEntry = pstDictionary->key[i];
        if (pcEntry == nullptr || pstDictionary->val[i] == nullptr ||
            strncmp(pcEntry, strPrefix.c_str(), strPrefix.size()) != 0) {
            continue;
        }
        const std::string strKey = pcEntry + strPrefix.size();
        bool bOfAnother = false;
        for (size_t uiColon = strKey.find(':'); uiColon != std::string::npos && !bOfAnother;
             uiColon = strKey.find(':', uiColon + 1U)) {
            const std::string strLonger = strPrefix + strKey.substr(0, uiColon);
            bOfAnother = iniparser_find_entry(pstDictionary, strLonger.c_str()) != 0 &&
                         iniparser_getstring(pstDictionary, strLonger.c_str(), nullptr) == nullptr;
        }
        if (!bOfAnother) {
            const std::string strValue = pstDictionary->val[i];
            pstrText->append(strKey).append(" = ").append(Quoted(strValue).value_or(strValue)).append("\n");
        }
    }
}

std::string FileText(const dictionary *pstDictionary)
{
    std::string strText;
    AppendKeys(pstDictionary, "", &strText);
    for (ssize_t i = 0; i < pstDictionary->size; ++i) {
        if (pstDictionary->key[i] != nullptr && pstDictionary->val[i] == nullptr) {
            strText.append(strText.empty() ? "[" : "\n[").append(pstDictionary->key[i]).append("]\n");
            AppendKeys(pstDictionary, pstDictionary->key[i], &strText);
        }
    }
    return strText;
}

} // namespace

extern "C" {

void *BRIDGE_IniLoadFile(const char *pcPath)
{
    return host::Shield<void *>(nullptr, [&]() -> void * {
        const files::PLACE_S stPlace = host::PlaceOf(pcPath);
        const std::string strPath = stPlace.Text();
        files::Fd stFile;
        struct stat stStat;
        int iError = files::OpenRegular(stPlace, O_RDONLY, files::Links::Ours, &stFile, &stStat);
        if (iError == 0 && stStat.st_size > static_cast<off_t>(host::g_uiTextFileMax)) {
            iError = EFBIG;
        }
        if (iError != 0) {
            HOST_LOG(iError == ENOENT ? BMC_DIAG_INFO : BMC_DIAG_WARNING, "loading %s: %s", strPath.c_str(),
                     files::Reason(iError).c_str());
            return nullptr;
        }
        auto upIni = std::make_unique<INI_S>(INI_S{FindParsed(strPath, stStat), true, nullptr});
        if (upIni->spDictionary == nullptr) {
            const bool bSettled = IsSettled(stStat);
            struct stat stAfter;
            upIni->spDictionary = Parse(strPath, stFile.Get());
            upIni->bShared = bSettled && upIni->spDictionary != nullptr &&
                             fstat(stFile.Get(), &stAfter) == 0 && IsSameFile(stStat, stAfter);
            if (upIni->bShared) {
                KeepParsed({strPath, stStat, upIni->spDictionary});
            }
        }
        return upIni->spDictionary == nullptr ? nullptr : upIni.release();
    });
}

const char *BRIDGE_IniGetStr(void *hpd, const char *pcSection, const char *pcKey, const char *pcDefault)
{
    return host::Shield(pcDefault, [&] {
        const char *pcValue = Find(hpd, pcSection, pcKey);
        return pcValue == nullptr ? pcDefault : pcValue;
    });
}

u32 BRIDGE_IniGetUInt(void *hpd, const char *pcSection, const char *pcKey, u32 uiDefault)
{
    return host::Shield(uiDefault, [&] {
        const char *pcValue = Find(hpd, pcSection, pcKey);
        return pcValue == nullptr ? uiDefault : host::ToNumber(pcValue, UINT32_MAX).value_or(uiDefault);
    });
}

u32 BRIDGE_IniGetBool(void *hpd, const char *pcSection, const char *pcKey, u32 uiDefault)
{
    return host::Shield(uiDefault, [&] {
        const char *pcValue = Find(hpd, pcSection, pcKey);
        const char cFirst = pcValue == nullptr ? '\0' : *pcValue;
        if (cFirst == '\0') {
            return uiDefault;
        }
        return strchr("yYtT1", cFirst) != nullptr ? 1U : strchr("nNfF0", cFirst) != nullptr ? 0U : uiDefault;
    });
}

u32 BRIDGE_IniSetStr(void *hpd, const char *pcSection, const char *pcKey, const char *pcValue)
{
    return host::Shield(host::g_uiFailed, [&] {
        const std::optional<std::string> optName = EntryName(pcSection, pcKey);
        if (hpd == nullptr || pcValue == nullptr || !optName || !IsEntryWritable(pcSection, pcKey, pcValue)) {
            HOST_LOG(BMC_DIAG_WARNING, "INI entry %s refused", optName ? optName->c_str() : "without name");
            return host::g_uiFailed;
        }
        INI_S *pstIni = static_cast<INI_S *>(hpd);
        const std::string strValue = pcValue; // it may be the text that the dictionary is about to release
        if (pstIni->bShared) {
            const DICTIONARY spOwn = Clone(pstIni->spDictionary.get());
            if (spOwn == nullptr) {
                return host::g_uiFailed;
            }
            pstIni->spFormer = pstIni->spDictionary;
            pstIni->spDictionary = spOwn;
            pstIni->bShared = false;
        }
        dictionary *pstDictionary = pstIni->spDictionary.get();
        const bool bSectionMissing =
            *pcSection != '\0' && iniparser_find_entry(pstDictionary, pcSection) == 0;
        if (bSectionMissing && iniparser_set(pstDictionary, pcSection, nullptr) != 0) {
            return host::g_uiFailed;
        }
        return iniparser_set(pstDictionary, optName->c_str(), strValue.c_str()) == 0 ? 0U : host::g_uiFailed;
    });
}

u32 BRIDGE_IniSaveFile(void *hpd, const char *pcPath)
{
    return host::Shield(host::g_uiFailed, [&] {
        if (hpd == nullptr) {
            return host::g_uiFailed;
        }
        const files::PLACE_S stPlace = host::WritePlaceOf(pcPath);
        const int iError = files::Replace(stPlace, FileText(Dictionary(hpd)));
        if (iError != 0) {
            HOST_LOG(BMC_DIAG_ERROR, "saving %s: %s", stPlace.Text().c_str(), files::Reason(iError).c_str());
        }
        return iError == 0 ? 0U : host::g_uiFailed;
    });
}

void BRIDGE_IniCloseFile(void *hpd)
{
    delete static_cast<INI_S *>(hpd);
}

} // extern "C"
