// SPDX-License-Identifier: Apache-2.0
#include "controller.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace controller {

void WriteFile(const std::string &strPath, const std::string &strContent, unsigned uiMode)
{
    const std::filesystem::path path = RealPath(strPath);
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary | std::ios::trunc) << strContent;
    ASSERT_EQ(chmod(path.c_str(), uiMode), 0) << path;
}

std::string ReadFile(const std::string &strPath)
{
    std::ifstream file(RealPath(strPath), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::vector<std::string> ReadLines(const std::string &strPath)
{
    std::ifstream file(RealPath(strPath), std::ios::binary);
    std::vector<std::string> vecLines;
    for (std::string strLine; std::getline(file, strLine);) {
        vecLines.push_back(strLine);
    }
    return vecLines;
}

std::vector<std::string> FilesIn(const std::string &strPath)
{
    std::vector<std::string> vecNames;
    for (const auto &entry : std::filesystem::directory_iterator(RealPath(strPath))) {
        vecNames.push_back(entry.path().filename());
    }
    std::sort(vecNames.begin(), vecNames.end());
    return vecNames;
}

pid_t Spawn(const std::function<int()> &fnWork)
{
    const pid_t iPid = fork();
    if (iPid == 0) {
        _exit(fnWork());
    }
    return iPid;
}

int Await(pid_t iPid)
{
    int iStatus = 0;
    return waitpid(iPid, &iStatus, 0) == iPid && WIFEXITED(iStatus) ? WEXITSTATUS(iStatus) : -1;
}

void Kill(pid_t iPid)
{
    (void)kill(iPid, SIGKILL);
    int iStatus = 0;
    ASSERT_EQ(waitpid(iPid, &iStatus, 0), iPid);
    ASSERT_TRUE(WIFSIGNALED(iStatus)) << "the child ended before it was killed: " << iStatus;
}

void Pause(unsigned uiMicroseconds)
{
    std::this_thread::sleep_for(std::chrono::microseconds(uiMicroseconds));
}

} // namespace controller
