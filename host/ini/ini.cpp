// INI bridge over libiniparser. Loading and looking up are its own; saving is ours, because its dump
// writes values without the quotes that it needs to read them again and drops keys that stand before
// the first section.
#include <cctype>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <iniparser/iniparser.h>

#include "bmc_ini.h"
#include "support/host.h"

namespace {

constexpr size_t g_uiMaxLine = 1000; // libiniparser gives up on lines of 1024 characters

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
    HOST_LOG(BMC_DIAG_WARNING, "%s", acText);
    return 0;
}

dictionary *Dictionary(void *hpd)
{
    return static_cast<dictionary *>(hpd);
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
        static const bool bCallbackSet = [] {
            iniparser_set_error_callback(Complain);
            return true;
        }();
        (void)bCallbackSet;
        const std::string strPath = host::Resolve(pcPath);
        struct stat stStat;
        if (!host::OpenRegular(strPath, O_RDONLY, &stStat)) { // libiniparser would take a directory for empty
            HOST_LOG(BMC_DIAG_INFO, "loading %s: %s", strPath.c_str(), host::ErrText(errno));
            return nullptr;
        }
        return iniparser_load(strPath.c_str());
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
        dictionary *pstDictionary = Dictionary(hpd);
        const std::string strValue = pcValue; // it may be the text that the dictionary is about to release
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
        const std::string strPath = host::Resolve(pcPath);
        const int iError = host::ReplaceFile(strPath, FileText(Dictionary(hpd)), host::g_uiKeepMode);
        if (iError != 0) {
            HOST_LOG(BMC_DIAG_ERROR, "saving %s: %s", strPath.c_str(), host::ErrText(iError));
        }
        return iError == 0 ? 0U : host::g_uiFailed;
    });
}

void BRIDGE_IniCloseFile(void *hpd)
{
    if (hpd != nullptr) {
        iniparser_freedict(Dictionary(hpd));
    }
}

} // extern "C"
