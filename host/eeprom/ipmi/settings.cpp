// SPDX-License-Identifier: Apache-2.0
#include "eeprom/ipmi/settings.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <nlohmann/json.hpp>
#include <sys/stat.h>
#include <unistd.h>

namespace ipmi {

namespace {

using JSON = nlohmann::json;

constexpr char g_acDevice[] = "/dev/ipmi";
constexpr char g_acEnvironment[] = "IPMI_PASSWORD";
// What IPMI 2.0 has room for.
constexpr size_t g_uiUserMax = 16;
constexpr size_t g_uiPasswordMax = 20;
constexpr size_t g_uiHostMax = 255;

// What every chip's settings may hold, and what these hold beside it.
constexpr const char *g_apcMembers[] = {
    "backend",      "bus",       "address", "switchLevel",  "size",  "host",           "port",       "user",
    "passwordFile", "privilege", "fru",     "writeProtect", "chunk", "timeoutSeconds", "cipherSuite"};

struct PRIVILEGE_S
{
    const char *pcName;
    u32 uiLevel;
};
constexpr PRIVILEGE_S g_astPrivileges[] = {{"user", 2}, {"operator", 3}, {"administrator", 4}};

constexpr u32 g_auiSuites[] = {2, 3, 7, 8};

// A member at a time; the first that is wrong is told.
class Reader
{
  public:
    explicit Reader(const JSON &json) : m_json(json) {}

    u32 Number(const char *pcName, u32 uiMin, u32 uiMax, u32 uiDefault)
    {
        if (!m_json.contains(pcName)) {
            return uiDefault;
        }
        const JSON &json = m_json.at(pcName);
        if (!json.is_number_unsigned() || json.get<uint64_t>() < uiMin || json.get<uint64_t>() > uiMax) {
            Refuse(pcName, "is refused; accepted: " + std::to_string(uiMin) + " to " + std::to_string(uiMax));
            return uiDefault;
        }
        return json.get<u32>();
    }

    std::string Text(const char *pcName, size_t uiMax, const char *pcDefault)
    {
        if (!m_json.contains(pcName)) {
            return pcDefault;
        }
        const JSON &json = m_json.at(pcName);
        std::string strText = json.is_string() ? json.get<std::string>() : "";
        const bool bControl = std::any_of(strText.begin(), strText.end(),
                                          [](char c) { return static_cast<unsigned char>(c) < 0x20U; });
        if (!json.is_string() || strText.size() > uiMax || bControl) {
            Refuse(pcName, "is refused; accepted: a text of at most " + std::to_string(uiMax) + " bytes");
        }
        return strText;
    }

    void Refuse(const char *pcName, const std::string &strWhat)
    {
        m_strWhy = m_strWhy.empty() ? std::string(pcName) + " " + strWhat : m_strWhy;
    }

    const std::string &Why() const
    {
        return m_strWhy;
    }

  private:
    const JSON &m_json;
    std::string m_strWhy;
};

u32 PrivilegeOf(Reader *pstReader)
{
    const std::string strName = pstReader->Text("privilege", 32U, "administrator");
    for (const PRIVILEGE_S &stPrivilege : g_astPrivileges) {
        if (strName == stPrivilege.pcName) {
            return stPrivilege.uiLevel;
        }
    }
    pstReader->Refuse("privilege", "is refused; accepted: user, operator or administrator");
    return 0;
}

u32 SuiteOf(Reader *pstReader)
{
    const u32 uiSuite = pstReader->Number("cipherSuite", 0U, 255U, 3U);
    if (std::find(std::begin(g_auiSuites), std::end(g_auiSuites), uiSuite) == std::end(g_auiSuites)) {
        pstReader->Refuse("cipherSuite", "is refused; accepted: 2, 3, 7 or 8");
    }
    return uiSuite;
}

void TakeHost(Reader *pstReader, const JSON &json, LOGIN_S *pstLogin)
{
    if (!json.contains("host")) {
        pstReader->Refuse("host", "is missing; accepted: a name, an address or /dev/ipmi0");
    }
    const std::string strHost = pstReader->Text("host", g_uiHostMax, "");
    const bool bDevice = strHost.rfind(g_acDevice, 0U) == 0U;
    const std::string strNumber = bDevice ? strHost.substr(strlen(g_acDevice)) : "";
    if (strHost.empty() || (!bDevice && strHost.find_first_of("/ ") != std::string::npos) ||
        (bDevice && (strNumber.empty() || strNumber.size() > 2U ||
                     strNumber.find_first_not_of("0123456789") != std::string::npos))) {
        pstReader->Refuse("host", "is refused; accepted: a name, an address or /dev/ipmi0");
    }
    pstLogin->strHost = strHost;
    for (const char cDigit : strNumber) {
        pstLogin->uiDevice = pstLogin->uiDevice * 10U + (static_cast<u32>(cDigit) - '0');
    }
}

// The file's first line. Empty, or why there is none.
std::string FirstLine(const std::string &strPath, std::string *pstrLine)
{
    const int iFd = open(strPath.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY);
    char acText[256] = "";
    const ssize_t iRead = iFd < 0 ? -1 : read(iFd, acText, sizeof(acText));
    std::string strWhy = iRead < 0 ? strerror(errno) : "";
    if (iFd >= 0) {
        (void)close(iFd);
    }
    const std::string strText(acText, iRead < 0 ? 0U : static_cast<size_t>(iRead));
    *pstrLine = strText.substr(0U, strText.find_first_of("\r\n"));
    return strWhy;
}

} // namespace

bool LOGIN_S::IsLocal() const
{
    return strHost.rfind(g_acDevice, 0U) == 0U;
}

std::string ReadSettings(const char *pcSettings, SETTINGS_S *pstSettings)
{
    const JSON json = JSON::parse(pcSettings, nullptr, false);
    if (!json.is_object()) {
        return "the settings are no JSON object";
    }
    Reader stReader(json);
    for (const auto &item : json.items()) {
        if (std::none_of(std::begin(g_apcMembers), std::end(g_apcMembers),
                         [&](const char *pcMember) { return item.key() == pcMember; })) {
            stReader.Refuse(item.key().c_str(), "is unknown; accepted: host, port, user, passwordFile, "
                                                "privilege, cipherSuite, fru, chunk, timeoutSeconds");
        }
    }
    LOGIN_S &stLogin = pstSettings->stLogin;
    TakeHost(&stReader, json, &stLogin);
    stLogin.uiPort = stReader.Number("port", 1U, 65535U, 623U);
    stLogin.strUser = stReader.Text("user", g_uiUserMax, "");
    stLogin.uiPrivilege = PrivilegeOf(&stReader);
    stLogin.uiSuite = SuiteOf(&stReader);
    stLogin.uiPatienceMs = stReader.Number("timeoutSeconds", 1U, 60U, 10U) * 1000U;
    pstSettings->strPasswordFile = stReader.Text("passwordFile", 4095U, "");
    if (!pstSettings->strPasswordFile.empty() && pstSettings->strPasswordFile[0] != '/') {
        stReader.Refuse("passwordFile", "is refused; accepted: an absolute path");
    }
    if (!json.contains("fru")) {
        stReader.Refuse("fru", "is missing; accepted: the FRU device ID on that controller, 0 to 254");
    }
    pstSettings->ucFru = static_cast<u8>(stReader.Number("fru", 0U, 254U, 0U));
    pstSettings->uiChunk = stReader.Number("chunk", 1U, 240U, 32U);
    return stReader.Why();
}

std::string TakePassword(SETTINGS_S *pstSettings)
{
    if (pstSettings->stLogin.IsLocal()) {
        return "";
    }
    std::string strPassword;
    if (pstSettings->strPasswordFile.empty()) {
        const char *pcPassword = getenv(g_acEnvironment);
        if (pcPassword == nullptr) {
            return std::string("no password for ") + pstSettings->stLogin.strHost +
                   "; accepted: a file that \"passwordFile\" names, or the environment's IPMI_PASSWORD";
        }
        strPassword = pcPassword;
    } else {
        const std::string strWhy = FirstLine(pstSettings->strPasswordFile, &strPassword);
        if (!strWhy.empty()) {
            return "the password cannot be read from " + pstSettings->strPasswordFile + ": " + strWhy;
        }
    }
    if (strPassword.size() > g_uiPasswordMax) {
        return "the password has more than the 20 bytes that IPMI takes";
    }
    pstSettings->stLogin.strPassword = strPassword;
    return "";
}

} // namespace ipmi
