// SPDX-License-Identifier: Apache-2.0
#include "write_lock.h"

#include <fcntl.h>
#include <fstream>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <unistd.h>

#include "test_root.h"

namespace {

std::string HolderOf(const std::string &strRoot)
{
    std::ifstream stFile(strRoot + "/var/lock/fructl.lock");
    std::string strLine;
    std::getline(stFile, strLine);
    return strLine;
}

TEST(WriteLock, IsHeldByOneAndNamesTheHolder)
{
    const std::string strRoot = MakeTestRoot();
    {
        const WRITE_LOCK stFirst;
        EXPECT_TRUE(stFirst.Held());
        EXPECT_EQ(HolderOf(strRoot), "pid " + std::to_string(getpid()) + ", an IPMI client's write");
        const WRITE_LOCK stSecond;
        EXPECT_FALSE(stSecond.Held());
        EXPECT_NE(HolderOf(strRoot), ""); // the one that waited in vain took nothing away
    }
    EXPECT_EQ(HolderOf(strRoot), "");
    EXPECT_TRUE(WRITE_LOCK().Held());
}

TEST(WriteLock, IsNotHeldWithoutARoot)
{
    SetTestRoot("");
    EXPECT_FALSE(WRITE_LOCK().Held());
    SetTestRoot("/dev/null");
    EXPECT_FALSE(WRITE_LOCK().Held());
}

} // namespace
