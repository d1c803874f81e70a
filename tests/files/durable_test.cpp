// SPDX-License-Identifier: Apache-2.0
// What is flushed when, and system calls that do less than they are asked for.
#include "files/files.h"

#include <algorithm>
#include <cerrno>
#include <sys/syscall.h>
#include <unistd.h>

#include "scratch.h"

namespace {

std::vector<std::string> g_vecSteps;
size_t g_uiWriteMost; // 0: as many as are asked for
unsigned g_uiWrites;
bool g_bNothingRandom; // as on a controller that has just started

} // namespace

// Ours come before libc's.
extern "C" int fsync(int iFd)
{
    struct stat stStat = {};
    const bool bDirectory = fstat(iFd, &stStat) == 0 && S_ISDIR(stStat.st_mode);
    g_vecSteps.emplace_back(bDirectory ? "flush directory" : "flush file");
    return static_cast<int>(syscall(SYS_fsync, iFd));
}

extern "C" int renameat(int iOldDirectory, const char *pcOld, int iNewDirectory, const char *pcNew)
{
    g_vecSteps.emplace_back("rename");
    return static_cast<int>(syscall(SYS_renameat2, iOldDirectory, pcOld, iNewDirectory, pcNew, 0U));
}

extern "C" ssize_t write(int iFd, const void *pBytes, size_t uiLength)
{
    if (g_uiWriteMost != 0U) {
        if (++g_uiWrites % 3U == 0U) {
            errno = EINTR;
            return -1;
        }
        uiLength = std::min(uiLength, g_uiWriteMost);
    }
    return static_cast<ssize_t>(syscall(SYS_write, iFd, pBytes, uiLength));
}

extern "C" ssize_t getrandom(void *pBytes, size_t uiLength, unsigned uiFlags)
{
    if (g_bNothingRandom) {
        errno = EAGAIN;
        return -1;
    }
    return static_cast<ssize_t>(syscall(SYS_getrandom, pBytes, uiLength, uiFlags));
}

namespace {

class Durable : public Scratch
{
  protected:
    void SetUp() override
    {
        Scratch::SetUp();
        Write("old", "old");
        g_vecSteps.clear();
        g_uiWriteMost = 0U;
    }
    void TearDown() override
    {
        g_uiWriteMost = 0U;
        g_bNothingRandom = false;
        Scratch::TearDown();
    }
};

TEST_F(Durable, AFileIsOnTheDiskBeforeItsNameAndItsNameBeforeTheCallReturns)
{
    const std::vector<std::string> vecWanted = {"flush file", "rename", "flush directory"};
    EXPECT_EQ(files::Replace(At("old"), "new"), 0);
    EXPECT_EQ(g_vecSteps, vecWanted);
    g_vecSteps.clear();
    EXPECT_EQ(files::Copy(At("old"), At("copy")), 0);
    EXPECT_EQ(g_vecSteps, vecWanted);
    g_vecSteps.clear();
    EXPECT_EQ(files::Rename(At("old"), "former"), 0);
    EXPECT_EQ(g_vecSteps, (std::vector<std::string>{"rename", "flush directory"}));
}

TEST_F(Durable, ShortAndInterruptedWritesAreGoneOnWith)
{
    const std::string strContent(1000, 'c');
    g_uiWriteMost = 7U;
    g_uiWrites = 0U;
    EXPECT_EQ(files::Replace(At("old"), strContent), 0);
    EXPECT_GT(g_uiWrites, 143U);
    EXPECT_EQ(Read("old"), strContent);
    EXPECT_EQ(files::Copy(At("old"), At("copy")), 0);
    EXPECT_EQ(Read("copy"), strContent);
}

TEST_F(Durable, NewFilesHaveNamesOfTheirOwnBeforeTheKernelHasAnythingRandom)
{
    g_bNothingRandom = true;
    files::NewFile stFirst;
    files::NewFile stSecond;
    EXPECT_EQ(stFirst.Open(At("first")), 0);
    EXPECT_EQ(stSecond.Open(At("second")), 0);
    EXPECT_NE(stFirst.TempName(), stSecond.TempName());
    EXPECT_EQ(stSecond.Commit(), 0);
    EXPECT_EQ(stFirst.Commit(), 0);
    EXPECT_EQ(Names(), (std::vector<std::string>{"first", "old", "second"}));
}

} // namespace
