// SPDX-License-Identifier: Apache-2.0
#include "files/files.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <unistd.h>

#include "scratch.h"

namespace {

using files::Links;
using files::PLACE_S;

class Files : public Scratch
{};

// ---- opening ----

TEST_F(Files, NothingButARegularFileIsOpened)
{
    ASSERT_EQ(mkfifo(At("pipe").c_str(), 0644), 0);
    ASSERT_EQ(mkdir(At("directory").c_str(), 0755), 0);
    files::Fd stFile;
    for (const int iFlags : {O_RDONLY, O_WRONLY, O_RDWR | O_CREAT}) {
        EXPECT_EQ(files::OpenRegular(At("pipe"), iFlags, Links::Ours, &stFile), EINVAL) << iFlags;
        EXPECT_EQ(files::OpenRegular(At("directory"), iFlags, Links::Ours, &stFile), EISDIR) << iFlags;
        EXPECT_EQ(files::OpenRegular("/dev/zero", iFlags, Links::Ours, &stFile), EINVAL) << iFlags;
    }
    EXPECT_EQ(files::OpenRegular(At("none"), O_RDONLY, Links::Ours, &stFile), ENOENT);
    EXPECT_FALSE(stFile);
}

TEST_F(Files, NewFilesHaveExactlyTheirModeWhateverTheUmask)
{
    for (const mode_t uiUmask : {mode_t{0}, mode_t{077}}) {
        const mode_t uiBefore = umask(uiUmask);
        files::Fd stFile;
        EXPECT_EQ(files::OpenRegular(At("made"), O_RDWR | O_CREAT, Links::Never, &stFile, nullptr, 0640), 0);
        EXPECT_EQ(files::Replace(At("replaced"), "x"), 0);
        EXPECT_EQ(files::Replace(At("private"), "x", 0600), 0);
        EXPECT_EQ(files::MakeDirectories(PLACE_S(m_strDirectory, "a/b"), 0750), 0);
        EXPECT_EQ(files::MakeDirectories(At("c/d")), 0);
        umask(uiBefore);
        EXPECT_EQ(Mode("made"), 0640U);
        EXPECT_EQ(Mode("replaced"), 0644U);
        EXPECT_EQ(Mode("private"), 0600U);
        EXPECT_EQ(Mode("a"), 0750U);
        EXPECT_EQ(Mode("a/b"), 0750U);
        EXPECT_EQ(Mode("c/d"), 0755U);
        TearDown();
        SetUp();
    }
}

TEST_F(Files, LinksOfOursAreFollowedWhereThatIsAskedForOnly)
{
    Write("target", "old");
    ASSERT_EQ(symlink("target", At("link").c_str()), 0);
    files::Fd stFile;
    EXPECT_EQ(files::OpenRegular(At("link"), O_RDWR, Links::Never, &stFile), ELOOP);
    EXPECT_EQ(files::OpenRegular(At("link"), O_RDWR, Links::Ours, &stFile), 0);
    EXPECT_EQ(files::Replace(At("link"), "no", 0644, Links::Never), ELOOP);
    EXPECT_EQ(Read("target"), "old");
    EXPECT_EQ(files::Replace(At("link"), "new"), 0);
    EXPECT_EQ(Read("target"), "new");
    ASSERT_EQ(symlink("circle", At("circle").c_str()), 0);
    EXPECT_EQ(files::OpenRegular(At("circle"), O_RDWR, Links::Ours, &stFile), ELOOP);
}

TEST_F(Files, LinksOfOthersAreNotFollowedNeitherAsFilesNorAsDirectories)
{
    NEEDS_ROOT()
    Write("victim/file", "kept");
    Write("root/own", "own");
    ASSERT_EQ(symlink((m_strDirectory + "/victim/file").c_str(), At("root/file").c_str()), 0);
    ASSERT_EQ(symlink((m_strDirectory + "/victim").c_str(), At("root/directory").c_str()), 0);
    for (const char *pcLink : {"root/file", "root/directory"}) {
        ASSERT_EQ(lchown(At(pcLink).c_str(), OTHER_USER, OTHER_USER), 0);
    }
    files::Fd stFile;
    std::string strContent;
    const std::string strRoot = At("root");
    EXPECT_EQ(files::OpenRegular(PLACE_S(strRoot, "file"), O_RDWR, Links::Ours, &stFile), ELOOP);
    EXPECT_EQ(files::OpenRegular(PLACE_S(strRoot, "directory/file"), O_RDWR, Links::Ours, &stFile), ELOOP);
    EXPECT_EQ(files::Replace(PLACE_S(strRoot, "file"), "x"), ELOOP);
    EXPECT_EQ(files::Replace(PLACE_S(strRoot, "directory/file"), "x"), ELOOP);
    EXPECT_EQ(files::Replace(PLACE_S(strRoot, "directory/new"), "x"), ELOOP);
    EXPECT_EQ(files::MakeDirectories(PLACE_S(strRoot, "directory/new")), ELOOP);
    EXPECT_EQ(files::ReadAll(PLACE_S(strRoot, "file"), 100U, &strContent), ELOOP);
    EXPECT_EQ(files::Copy(PLACE_S(strRoot, "own"), PLACE_S(strRoot, "directory/own")), ELOOP);
    EXPECT_EQ(Read("victim/file"), "kept");
    EXPECT_EQ(Names("victim"), std::vector<std::string>{"file"});
}

TEST_F(Files, APathThatClimbsIsRefusedBelowABase)
{
    EXPECT_EQ(files::Replace(PLACE_S(At("."), "../x"), "x"), EACCES);
    EXPECT_EQ(files::MakeDirectories(PLACE_S(m_strDirectory, "a/../../b")), EACCES);
}

TEST_F(Files, ASecondNameOfSomebodyElsesFileIsNotWrittenTo)
{
    NEEDS_ROOT()
    Write("secret", "secret", 0600);
    ASSERT_EQ(mkdir(At("root").c_str(), 0755), 0);
    ASSERT_EQ(chown(At("root").c_str(), OTHER_USER, OTHER_USER), 0);
    ASSERT_EQ(link(At("secret").c_str(), At("root/chip").c_str()), 0);
    files::Fd stFile;
    EXPECT_EQ(files::OpenRegular(PLACE_S(At("root"), "chip"), O_RDWR, Links::Ours, &stFile), EMLINK);
    EXPECT_EQ(files::OpenRegular(PLACE_S(At("root"), "chip"), O_RDONLY, Links::Ours, &stFile), 0);
}

TEST_F(Files, WhatRootMakesBelowSomebodysBaseIsHis)
{
    NEEDS_ROOT()
    ASSERT_EQ(mkdir(At("root").c_str(), 0755), 0);
    ASSERT_EQ(chown(At("root").c_str(), OTHER_USER, OTHER_USER), 0);
    ASSERT_EQ(files::MakeDirectories(PLACE_S(At("root"), "var/lock")), 0);
    ASSERT_EQ(files::Replace(PLACE_S(At("root"), "var/file"), "x"), 0);
    files::LockFile stLock;
    ASSERT_EQ(stLock.Take(PLACE_S(At("root"), "var/lock/l"), 0U), 0);
    for (const char *pcName : {"root/var", "root/var/lock", "root/var/file", "root/var/lock/l"}) {
        struct stat stStat = {};
        EXPECT_EQ(stat(At(pcName).c_str(), &stStat), 0);
        EXPECT_EQ(stStat.st_uid, OTHER_USER) << pcName;
    }
}

TEST_F(Files, WhatRootMakesInSomebodysDirectoryIsHisToo)
{
    NEEDS_ROOT()
    ASSERT_EQ(files::MakeDirectories(PLACE_S(At("root"), "var/log")), 0);
    ASSERT_EQ(chown(At("root/var/log").c_str(), OTHER_USER, OTHER_USER), 0);
    files::Fd stFile;
    ASSERT_EQ(files::Replace(PLACE_S(At("root"), "var/log/file"), "x"), 0);
    ASSERT_EQ(
        files::OpenRegular(PLACE_S(At("root"), "var/log/made"), O_RDWR | O_CREAT, Links::Never, &stFile), 0);
    ASSERT_EQ(files::MakeDirectories(PLACE_S(At("root"), "var/log/directory")), 0);
    ASSERT_EQ(files::Replace(PLACE_S(At("root"), "var/own"), "x"), 0);
    for (const char *pcName : {"log/file", "log/made", "log/directory"}) {
        EXPECT_EQ(Owner(std::string("root/var/") + pcName), OTHER_USER) << pcName;
    }
    EXPECT_EQ(Owner("root/var/own"), 0U);
}

TEST_F(Files, ADirectoryIsHandedOverWithRootsOwnFilesOnly)
{
    NEEDS_ROOT()
    const std::string strRoot = At("root");
    Write("root/var/log/a", "x", 0600);
    Write("root/var/log/third", "x");
    Write("root/var/log/twice", "x");
    Write("root/var/log/below/deep", "x");
    Write("victim", "x");
    ASSERT_EQ(chown(At("root/var/log/third").c_str(), 1U, 1U), 0);
    ASSERT_EQ(link(At("root/var/log/twice").c_str(), At("second name").c_str()), 0);
    ASSERT_EQ(symlink("../../../victim", At("root/var/log/link").c_str()), 0);
    EXPECT_EQ(files::HandOver(PLACE_S(strRoot, "/var/log"), OTHER_USER, OTHER_USER), 0);
    EXPECT_EQ(Owner("root/var/log"), OTHER_USER);
    EXPECT_EQ(Owner("root/var/log/a"), OTHER_USER);
    EXPECT_EQ(Mode("root/var/log/a"), 0600U);
    EXPECT_EQ(Owner("root/var/log/third"), 1U);
    for (const char *pcName :
         {"root/var", "root/var/log/twice", "root/var/log/below", "root/var/log/below/deep", "victim"}) {
        EXPECT_EQ(Owner(pcName), 0U) << pcName;
    }
    // What root lays there later is no longer looked at: the user could have laid it.
    Write("root/var/log/later", "x");
    EXPECT_EQ(files::HandOver(PLACE_S(strRoot, "var/log"), OTHER_USER, OTHER_USER), 0);
    EXPECT_EQ(Owner("root/var/log/later"), 0U);
    EXPECT_EQ(files::HandOver(PLACE_S(strRoot, "var/log"), 1U, 1U), EPERM);
    ASSERT_EQ(symlink("log", At("root/var/other").c_str()), 0);
    EXPECT_EQ(files::HandOver(PLACE_S(strRoot, "var/other"), OTHER_USER, OTHER_USER), ELOOP);
    EXPECT_EQ(files::HandOver(PLACE_S(strRoot, "var/none"), OTHER_USER, OTHER_USER), ENOENT);
}

// ---- reading ----

TEST_F(Files, AFileIsReadWholeUpToItsLimit)
{
    Write("file", std::string(100, 'x'));
    std::string strContent;
    struct stat stStat = {};
    EXPECT_EQ(files::ReadAll(At("file"), 100U, &strContent, &stStat), 0);
    EXPECT_EQ(strContent, std::string(100, 'x'));
    EXPECT_EQ(stStat.st_size, 100);
    EXPECT_EQ(files::ReadAll(At("file"), 99U, &strContent), EFBIG);
}

// ---- replacing ----

TEST_F(Files, AReplacedFileKeepsItsModeButNeverSetIdBits)
{
    Write("file", "old", 04751);
    EXPECT_EQ(files::Replace(At("file"), "new"), 0);
    EXPECT_EQ(Mode("file"), 0751U);
    EXPECT_EQ(Read("file"), "new");
    EXPECT_EQ(Names(), std::vector<std::string>{"file"});
}

TEST_F(Files, ACopyNeverKeepsSetIdBits)
{
    for (const mode_t uiMode : {04755U, 02755U, 06711U, 01644U, 0600U}) {
        Write("source", std::string(200000, 's'), uiMode);
        EXPECT_EQ(files::Copy(At("source"), At("copy")), 0);
        EXPECT_EQ(Mode("copy"), uiMode & 0777U);
        EXPECT_EQ(Read("copy"), std::string(200000, 's'));
    }
}

TEST_F(Files, AReplacementThatFailsLeavesTheOldFileAndNothingElse)
{
    Write("file", "old");
    const int iResult = InChild([&] {
        const struct rlimit stLimit = {10, 10};
        (void)signal(SIGXFSZ, SIG_IGN);
        return setrlimit(RLIMIT_FSIZE, &stLimit) == 0 ? files::Replace(At("file"), std::string(100, 'n')) : 0;
    });
    EXPECT_EQ(iResult, EFBIG);
    EXPECT_EQ(Read("file"), "old");
    EXPECT_EQ(Names(), std::vector<std::string>{"file"});
    ASSERT_EQ(mkdir(At("directory").c_str(), 0755), 0);
    EXPECT_EQ(files::Replace(At("directory"), "x"), EISDIR);
    EXPECT_EQ(files::Replace(At("none/file"), "x"), ENOENT);
}

TEST_F(Files, ANameLaidInTheWayIsNeverWrittenThrough)
{
    Write("victim", "kept");
    // The name that earlier versions would have used.
    ASSERT_EQ(symlink("victim", At("file.new").c_str()), 0);
    EXPECT_EQ(files::Replace(At("file"), "content"), 0);
    EXPECT_EQ(Read("victim"), "kept");
    files::NewFile stFirst;
    files::NewFile stSecond;
    ASSERT_EQ(stFirst.Open(At("file")), 0);
    ASSERT_EQ(stSecond.Open(At("file")), 0);
    EXPECT_NE(stFirst.TempName(), stSecond.TempName());
    EXPECT_EQ(Mode(stFirst.TempName()), 0600U);
}

TEST_F(Files, WhatKilledProcessesLeftIsTidiedAndNothingElse)
{
    const auto Age = [&](const std::string &strName) {
        const struct timespec astTimes[2] = {{1000000, 0}, {1000000, 0}};
        ASSERT_EQ(utimensat(AT_FDCWD, At(strName).c_str(), astTimes, AT_SYMLINK_NOFOLLOW), 0);
    };
    Write(".bmcfru-0123", "left");
    Write(".bmchost.abcdef", "left by an earlier version");
    Write(".bmcfru-young", "just made");
    Write("file", "a file");
    Write("file.new", "somebody's");
    ASSERT_EQ(symlink("file", At(".bmcfru-link").c_str()), 0);
    files::NewFile stAlive;
    ASSERT_EQ(stAlive.Open(At("file")), 0);
    for (const std::string &strName : Names()) {
        if (strName != ".bmcfru-young") {
            Age(strName);
        }
    }
    files::Tidy(PLACE_S(m_strDirectory, "."));
    std::vector<std::string> vecWanted = {".bmcfru-link", ".bmcfru-young", stAlive.TempName(), "file",
                                          "file.new"};
    std::sort(vecWanted.begin(), vecWanted.end());
    EXPECT_EQ(Names(), vecWanted);
}

TEST_F(Files, RenamingMovesAndReplacesRegularFilesOnly)
{
    Write("log", "new");
    Write("log.1", "old");
    EXPECT_EQ(files::Rename(At("log"), "log.1"), 0);
    EXPECT_EQ(Read("log.1"), "new");
    ASSERT_EQ(symlink("log.1", At("log").c_str()), 0);
    EXPECT_EQ(files::Rename(At("log"), "log.2"), EINVAL);
    EXPECT_EQ(files::Rename(At("log.1"), "log"), EINVAL);
    EXPECT_EQ(files::Remove(At("log")), 0);
    EXPECT_EQ(Names(), std::vector<std::string>{"log.1"});
}

} // namespace
