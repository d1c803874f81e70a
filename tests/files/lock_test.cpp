// SPDX-License-Identifier: Apache-2.0
#include "files/files.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include "scratch.h"

namespace {

using files::LockFile;
using files::PLACE_S;

class Locks : public Scratch
{};

TEST_F(Locks, OneHoldsAndTheOtherWaitsNoLongerThanItsPatience)
{
    LockFile stFirst;
    LockFile stSecond;
    ASSERT_EQ(stFirst.Take(At("lock"), 0U), 0);
    ASSERT_EQ(stFirst.SetHolder("pid 1, somebody"), 0);
    const auto stBegin = std::chrono::steady_clock::now();
    EXPECT_EQ(stSecond.Take(At("lock"), 50U), ETIMEDOUT);
    EXPECT_GE(std::chrono::steady_clock::now() - stBegin, std::chrono::milliseconds(50));
    EXPECT_EQ(stSecond.Holder(), "pid 1, somebody");
    EXPECT_EQ(stSecond.Share(At("lock"), 0U), ETIMEDOUT);
    stFirst.Release();
    EXPECT_EQ(Read("lock"), "");
    EXPECT_EQ(stSecond.Take(At("lock"), 0U), 0);
}

TEST_F(Locks, AreForTheirOwnerOnlyOrForTheGroupOfAGroupsDirectory)
{
    const mode_t uiBefore = umask(0);
    LockFile stLock;
    ASSERT_EQ(stLock.Take(PLACE_S(m_strDirectory, "lock"), 0U), 0);
    EXPECT_EQ(Mode("lock"), 0600U);
    ASSERT_EQ(chmod(m_strDirectory.c_str(), 0775), 0);
    ASSERT_EQ(stLock.Take(PLACE_S(m_strDirectory, "group"), 0U), 0);
    EXPECT_EQ(Mode("group"), 0660U);
    Write("open", "", 0666); // as earlier versions made them
    ASSERT_EQ(stLock.Take(At("open"), 0U), 0);
    EXPECT_EQ(Mode("open"), 0600U);
    umask(uiBefore);
}

TEST_F(Locks, ALinkInTheirPlaceIsNotFollowedAndItsTargetNotEmptied)
{
    Write("victim", "kept");
    ASSERT_EQ(symlink("victim", At("lock").c_str()), 0);
    LockFile stLock;
    EXPECT_EQ(stLock.Take(At("lock"), 0U), ELOOP);
    EXPECT_FALSE(stLock.IsHeld());
    EXPECT_EQ(Read("victim"), "kept");
}

TEST_F(Locks, SharingMakesNoFile)
{
    LockFile stFirst;
    LockFile stSecond;
    EXPECT_EQ(stFirst.Share(At("lock"), 0U), ENOENT);
    Write("lock", "", 0600);
    EXPECT_EQ(stFirst.Share(At("lock"), 0U), 0);
    EXPECT_EQ(stSecond.Share(At("lock"), 0U), 0);
    EXPECT_EQ(LockFile().Take(At("lock"), 0U), ETIMEDOUT);
}

TEST_F(Locks, NobodyElseCanHoldThem)
{
    NEEDS_ROOT()
    LockFile stLock;
    ASSERT_EQ(stLock.Take(At("lock"), 0U), 0);
    stLock.Release();
    EXPECT_EQ(InChild([&] { return LockFile().Share(At("lock"), 0U); }, true), EACCES);
}

// Each child takes its turn and sends its number.
pid_t StartWaiting(const std::string &strLock, char cName, int iTurns, bool bShared)
{
    const pid_t iChild = fork();
    if (iChild == 0) {
        LockFile stLock;
        const int iError = bShared ? stLock.Share(strLock, 60000U) : stLock.Take(strLock, 60000U);
        _exit(iError == 0 && write(iTurns, &cName, 1) == 1 ? 0 : 1);
    }
    return iChild;
}

// How many numbers are drawn.
off_t Waiting(const std::string &strLock)
{
    const int iFd = open(strLock.c_str(), O_RDWR | O_CLOEXEC);
    off_t iCount = 0;
    struct flock stRange = {};
    for (off_t iStart = 1;; iStart = stRange.l_start + 1) {
        stRange = {};
        stRange.l_type = F_WRLCK;
        stRange.l_whence = SEEK_SET;
        stRange.l_start = iStart;
        if (fcntl(iFd, F_OFD_GETLK, &stRange) != 0 || stRange.l_type == F_UNLCK) {
            break;
        }
        iCount++;
    }
    close(iFd);
    return iCount;
}

TEST_F(Locks, WhoeverWaitsHasItInTheOrderInWhichTheyCame)
{
    int aiTurns[2];
    ASSERT_EQ(pipe(aiTurns), 0);
    LockFile stFirst;
    ASSERT_EQ(stFirst.Take(At("lock"), 0U), 0);
    std::vector<pid_t> vecChildren;
    const std::string strOrder = "abCdeFg"; // capitals share
    for (const char cName : strOrder) {
        vecChildren.push_back(StartWaiting(At("lock"), cName, aiTurns[1], isupper(cName) != 0));
        while (Waiting(At("lock")) != static_cast<off_t>(vecChildren.size())) {
            usleep(1000);
        }
    }
    // Somebody who has waited and is killed keeps nobody waiting.
    (void)kill(vecChildren[1], SIGKILL);
    EXPECT_EQ(LockFile().Take(At("lock"), 0U), ETIMEDOUT);
    stFirst.Release();
    std::string strTurns;
    char cTurn = 0;
    while (strTurns.size() + 1U < strOrder.size() && read(aiTurns[0], &cTurn, 1) == 1) {
        strTurns += cTurn;
    }
    EXPECT_EQ(strTurns, "aCdeFg");
    for (const pid_t iChild : vecChildren) {
        (void)waitpid(iChild, nullptr, 0);
    }
    EXPECT_EQ(LockFile().Take(At("lock"), 0U), 0);
    close(aiTurns[0]);
    close(aiTurns[1]);
}

// Numbers of processes say nothing: in a container its first process has the number of the machine's.
TEST_F(Locks, TellProcessesOfOneNumberInTwoNamespacesApart)
{
    const int iResult = InNewNamespace([&] {
        LockFile stLock;
        if (getpid() != 1 || stLock.Take(At("lock"), 0U) != 0) {
            return 1;
        }
        const auto fnTry = [&] { return getpid() == 1 ? LockFile().Take(At("lock"), 50U) : 2; };
        if (InNewNamespace(fnTry) != ETIMEDOUT) {
            return 3;
        }
        stLock.Release();
        return InNewNamespace(fnTry);
    });
    if (iResult == NOT_ALLOWED) {
        GTEST_SKIP() << "no new pid namespace may be made here";
    }
    EXPECT_EQ(iResult, 0);
}

TEST_F(Locks, AChildOfForkDoesNotHoldOnToThemWhenItsParentIsKilled)
{
    int aiReady[2];
    ASSERT_EQ(pipe(aiReady), 0);
    const pid_t iParent = fork();
    if (iParent == 0) {
        LockFile stLock;
        if (stLock.Take(At("lock"), 0U) != 0) {
            _exit(1);
        }
        const pid_t iChild = fork();
        if (iChild == 0) {
            (void)!write(aiReady[1], stLock.IsHeld() ? "y" : "n", 1);
            sleep(30);
            _exit(0);
        }
        (void)!write(aiReady[1], &iChild, sizeof(iChild));
        sleep(30);
        _exit(0);
    }
    char acReady[1 + sizeof(pid_t)];
    size_t uiRead = 0;
    while (uiRead < sizeof(acReady)) {
        const ssize_t iRead = read(aiReady[0], acReady + uiRead, sizeof(acReady) - uiRead);
        ASSERT_GT(iRead, 0);
        uiRead += static_cast<size_t>(iRead);
    }
    EXPECT_EQ(LockFile().Take(At("lock"), 0U), ETIMEDOUT);
    (void)kill(iParent, SIGKILL);
    (void)waitpid(iParent, nullptr, 0);
    LockFile stLock;
    EXPECT_EQ(stLock.Take(At("lock"), 1000U), 0);
    // Whichever of the two wrote first, the child's number is in there.
    pid_t iChild = 0;
    const bool bChildFirst = acReady[0] == 'n';
    std::copy_n(acReady + (bChildFirst ? 1 : 0), sizeof(iChild), reinterpret_cast<char *>(&iChild));
    (void)kill(iChild, SIGKILL);
    close(aiReady[0]);
    close(aiReady[1]);
}

} // namespace
