// SPDX-License-Identifier: Apache-2.0
// The contract tests' controller on the desk: a root directory for each test.
#include <climits>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <nlohmann/json.hpp>
#include <sys/stat.h>

#include "bmcfru_host.h"
#include "controller.h"

namespace {

std::string g_strRoot;
std::mutex g_mtxMessages;
std::vector<std::string> g_vecMessages;

void Collect(const BMCHOST_DIAG_S *pstDiag, void *)
{
    const std::lock_guard<std::mutex> lock(g_mtxMessages);
    g_vecMessages.emplace_back(pstDiag->pcText);
}

std::string ChipPath(u8 ucType, const void *pLocation)
{
    char acPath[PATH_MAX];
    EXPECT_EQ(BMCHOST_GetEepromPath(ucType, pLocation, sizeof(acPath), acPath), 0U);
    return acPath;
}

} // namespace

namespace controller {

const u32 g_uiPageSize = BMCHOST_EEPROM_PAGE;

void Start()
{
    std::string strRoot = (std::filesystem::temp_directory_path() / "bmcfru-contract.XXXXXX").string();
    ASSERT_NE(mkdtemp(strRoot.data()), nullptr) << strRoot;
    g_strRoot = strRoot;
    ASSERT_EQ(BMCHOST_SetRoot(strRoot.c_str()), 0U);
    g_vecMessages.clear();
    BMCHOST_SetDiagSink(Collect, nullptr);
    BMCHOST_SetEepromWriteDelayUs(0);
    BMCHOST_SetEepromProgress(nullptr, nullptr);
}

void Stop()
{
    BMCHOST_SetDiagSink(nullptr, nullptr);
    std::filesystem::remove_all(g_strRoot);
}

std::string RealPath(const std::string &strPath)
{
    return g_strRoot + strPath;
}

void SpoilDatabasePlace()
{
    WriteFile("/var", "a file where a directory must be");
}

void LayChip(u8 ucType, const void *pLocation, const BYTES &vecContent)
{
    const std::filesystem::path path = ChipPath(ucType, pLocation);
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary | std::ios::trunc)
        .write(reinterpret_cast<const char *>(vecContent.data()), static_cast<long>(vecContent.size()));
}

BYTES ChipContent(u8 ucType, const void *pLocation)
{
    const std::string strPath = ChipPath(ucType, pLocation);
    BYTES vecContent(static_cast<size_t>(std::filesystem::file_size(strPath)));
    std::ifstream(strPath, std::ios::binary)
        .read(reinterpret_cast<char *>(vecContent.data()), static_cast<std::streamsize>(vecContent.size()));
    return vecContent;
}

void ProtectChip(u8 ucType, const void *pLocation)
{
    ASSERT_EQ(chmod(ChipPath(ucType, pLocation).c_str(), 0444), 0);
}

void SetOemFlag(u32 uiFlag)
{
    WriteFile(BMCHOST_CAPABILITY_FILE, "[OEM]\nOemFlag = " + std::to_string(uiFlag) + "\n");
}

void SetCapability(const std::string &strObject, const std::string &strName, const std::string &strText)
{
    WriteFile(BMCHOST_CAPABILITY_FILE, "[" + strObject + "]\n" + strName + " = \"" + strText + "\"\n");
}

void SetFeatureList(const std::vector<std::string> &vecTexts)
{
    WriteFile(BMCHOST_FEATURE_LIST, nlohmann::json(vecTexts).dump());
}

std::string HwDescription(const std::vector<HW_OBJECT_TEXT_S> &vecObjects)
{
    std::string strXml = "<?xml version=\"1.0\"?>\n<hardware>\n";
    for (const HW_OBJECT_TEXT_S &stObject : vecObjects) {
        strXml += "  <FRU componentType=\"" + stObject.strComponentType + "\" offset=\"" +
                  stObject.strOffset + "\" size=\"" + stObject.strSize + "\" selector=\"" +
                  stObject.strSelector + "\" deviceName=\"" + stObject.strDeviceName + "\"/>\n";
    }
    return strXml + "</hardware>\n";
}

std::vector<std::string> Messages()
{
    const std::lock_guard<std::mutex> lock(g_mtxMessages);
    return g_vecMessages;
}

} // namespace controller
