// SPDX-License-Identifier: Apache-2.0
#include "scratch.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <grp.h>
#include <iterator>
#include <sched.h>
#include <sys/wait.h>
#include <unistd.h>

void Scratch::SetUp()
{
    m_strDirectory = (std::filesystem::temp_directory_path() / "bmcfru-files.XXXXXX").string();
    ASSERT_NE(mkdtemp(m_strDirectory.data()), nullptr);
    ASSERT_EQ(chmod(m_strDirectory.c_str(), 0755), 0);
}

void Scratch::TearDown()
{
    std::filesystem::remove_all(m_strDirectory);
}

void Scratch::Write(const std::string &strName, const std::string &strContent, mode_t uiMode) const
{
    std::filesystem::create_directories(std::filesystem::path(At(strName)).parent_path());
    std::ofstream(At(strName), std::ios::binary | std::ios::trunc) << strContent;
    ASSERT_EQ(chmod(At(strName).c_str(), uiMode), 0) << strName;
}

std::string Scratch::Read(const std::string &strName) const
{
    std::ifstream stFile(At(strName), std::ios::binary);
    return {std::istreambuf_iterator<char>(stFile), std::istreambuf_iterator<char>()};
}

mode_t Scratch::Mode(const std::string &strName) const
{
    struct stat stStat = {};
    EXPECT_EQ(lstat(At(strName).c_str(), &stStat), 0) << strName;
    return stStat.st_mode & 07777U;
}

uid_t Scratch::Owner(const std::string &strName) const
{
    struct stat stStat = {};
    EXPECT_EQ(lstat(At(strName).c_str(), &stStat), 0) << strName;
    return stStat.st_uid;
}

std::vector<std::string> Scratch::Names(const std::string &strName) const
{
    std::vector<std::string> vecNames;
    for (const auto &stEntry : std::filesystem::directory_iterator(At(strName))) {
        vecNames.push_back(stEntry.path().filename());
    }
    std::sort(vecNames.begin(), vecNames.end());
    return vecNames;
}

int InChild(const std::function<int()> &fnWork, bool bOther)
{
    const pid_t iPid = fork();
    if (iPid == 0) {
        if (bOther && (setgroups(0, nullptr) != 0 || setresgid(OTHER_USER, OTHER_USER, OTHER_USER) != 0 ||
                       setresuid(OTHER_USER, OTHER_USER, OTHER_USER) != 0)) {
            _exit(125);
        }
        _exit(fnWork());
    }
    int iStatus = 0;
    return waitpid(iPid, &iStatus, 0) == iPid && WIFEXITED(iStatus) ? WEXITSTATUS(iStatus) : -1;
}

int InNewNamespace(const std::function<int()> &fnWork)
{
    return InChild([&] { return unshare(CLONE_NEWPID) == 0 ? InChild(fnWork) : NOT_ALLOWED; });
}
