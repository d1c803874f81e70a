// SPDX-License-Identifier: Apache-2.0
#include "chip_root.h"

#include <climits>
#include <cstdlib>
#include <filesystem>
#include <mutex>

#include "bmcfru_host.h"
#include "controller.h"

namespace {

std::string g_strRoot;
nlohmann::json g_stConf;
std::mutex g_mtxMessages;
std::vector<std::string> g_vecMessages;

void Collect(const BMCHOST_DIAG_S *pstDiag, void *)
{
    const std::lock_guard<std::mutex> lock(g_mtxMessages);
    g_vecMessages.emplace_back(pstDiag->pcText);
}

} // namespace

namespace chips {

const std::string &Root()
{
    return g_strRoot;
}

std::string NameOf(u8 ucType, const void *pLocation)
{
    char acPath[PATH_MAX] = "";
    EXPECT_EQ(BMCHOST_GetEepromPath(ucType, pLocation, sizeof(acPath), acPath), 0U);
    return std::filesystem::path(acPath).stem().string();
}

void Configure(const std::string &strChip, const nlohmann::json &stSettings)
{
    g_stConf["chips"][strChip] = stSettings;
    controller::WriteFile(BMCHOST_EEPROM_CONF, g_stConf.dump());
}

std::string LastMessage()
{
    const std::lock_guard<std::mutex> lock(g_mtxMessages);
    return g_vecMessages.empty() ? "" : g_vecMessages.back();
}

} // namespace chips

namespace controller {

void Start()
{
    std::string strRoot = (std::filesystem::temp_directory_path() / "bmcfru-chips.XXXXXX").string();
    ASSERT_NE(mkdtemp(strRoot.data()), nullptr) << strRoot;
    g_strRoot = strRoot;
    g_stConf = {{"chips", nlohmann::json::object()}};
    ASSERT_EQ(BMCHOST_SetRoot(strRoot.c_str()), 0U);
    g_vecMessages.clear();
    BMCHOST_SetDiagSink(Collect, nullptr);
    chips::StartChips();
}

void Stop()
{
    chips::StopChips();
    BMCHOST_SetDiagSink(nullptr, nullptr);
    std::filesystem::remove_all(g_strRoot);
}

std::string RealPath(const std::string &strPath)
{
    return g_strRoot + strPath;
}

std::vector<std::string> Messages()
{
    const std::lock_guard<std::mutex> lock(g_mtxMessages);
    return g_vecMessages;
}

} // namespace controller
