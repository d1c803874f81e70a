// SPDX-License-Identifier: Apache-2.0
// The contract tests' controller on this port: a root folder for each test. What each function is for
// stands in controller.h of the tests.
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <mutex>
#include <sys/stat.h>

#include "controller.h"
extern "C" {
#include "../port.h"
}

namespace {

std::string g_strRoot;
std::mutex g_mtxMessages;
std::vector<std::string> g_vecMessages;

void Collect(u32 /*uiSeverity*/, const char *pcText)
{
    const std::lock_guard<std::mutex> lock(g_mtxMessages);
    g_vecMessages.emplace_back(pcText);
}

std::string ChipPath(u8 ucType, const void *pLocation)
{
    char acPath[PATH_MAX] = "";
    EXPECT_EQ(PORT_ChipPath(ucType, pLocation, acPath, sizeof(acPath)), 0U);
    return acPath;
}

} // namespace

namespace controller {

const u32 g_uiPageSize = PORT_PAGE_SIZE;

void Start()
{
    // In memory where there is such a place; /tmp need not be one.
    const bool bMemory = std::filesystem::is_directory("/dev/shm");
    std::string strRoot =
        (bMemory ? "/dev/shm" : std::filesystem::temp_directory_path().string()) + "/port.XXXXXX";
    ASSERT_NE(mkdtemp(strRoot.data()), nullptr) << strRoot;
    g_strRoot = strRoot;
    ASSERT_EQ(PORT_SetRoot(strRoot.c_str()), 0U);
    g_vecMessages.clear();
    PORT_SetSink(Collect);
}

void Stop()
{
    PORT_SetSink(nullptr);
    std::filesystem::remove_all(g_strRoot);
}

std::string RealPath(const std::string &strPath)
{
    return g_strRoot + strPath;
}

void SpoilDatabasePlace()
{
    WriteFile("/var", "a file where a folder must be");
}

void LayChip(u8 ucType, const void *pLocation, const BYTES &vecContent)
{
    const std::filesystem::path path = ChipPath(ucType, pLocation);
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary | std::ios::trunc)
        .write(reinterpret_cast<const char *>(vecContent.data()),
               static_cast<std::streamsize>(vecContent.size()));
}

BYTES ChipContent(u8 ucType, const void *pLocation)
{
    std::ifstream file(ChipPath(ucType, pLocation), std::ios::binary);
    const std::string strBytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    return {strBytes.begin(), strBytes.end()};
}

void ProtectChip(u8 ucType, const void *pLocation)
{
    ASSERT_EQ(chmod(ChipPath(ucType, pLocation).c_str(), 0444), 0);
}

void SetOemFlag(u32 uiFlag)
{
    WriteFile(PORT_SETTINGS, "[OEM]\nOemFlag = " + std::to_string(uiFlag) + "\n");
}

void SetCapability(const std::string &strObject, const std::string &strName, const std::string &strText)
{
    WriteFile(PORT_SETTINGS, "[" + strObject + "]\n" + strName + " = \"" + strText + "\"\n");
}

void SetFeatureList(const std::vector<std::string> &vecTexts)
{
    std::string strLines;
    for (const std::string &strText : vecTexts) {
        strLines += strText + "\n";
    }
    WriteFile(PORT_FEATURES, strLines);
}

std::string HwDescription(const std::vector<HW_OBJECT_TEXT_S> &vecObjects)
{
    std::string strLines = "hardware\n";
    for (const HW_OBJECT_TEXT_S &stObject : vecObjects) {
        strLines += "FRU|" + stObject.strComponentType + "|" + stObject.strOffset + "|" + stObject.strSize +
                    "|" + stObject.strSelector + "|" + stObject.strDeviceName + "\n";
    }
    return strLines;
}

std::vector<std::string> Messages()
{
    const std::lock_guard<std::mutex> lock(g_mtxMessages);
    return g_vecMessages;
}

} // namespace controller
