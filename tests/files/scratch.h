// SPDX-License-Identifier: Apache-2.0
// A directory for one test, and work done by another user or process.
#ifndef TESTS_FILES_SCRATCH_H
#define TESTS_FILES_SCRATCH_H

#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/types.h>

class Scratch : public testing::Test
{
  protected:
    void SetUp() override;
    void TearDown() override;

    std::string At(const std::string &strName) const
    {
        return m_strDirectory + "/" + strName;
    }
    void Write(const std::string &strName, const std::string &strContent, mode_t uiMode = 0644) const;
    std::string Read(const std::string &strName) const;
    mode_t Mode(const std::string &strName) const;
    uid_t Owner(const std::string &strName) const;
    std::vector<std::string> Names(const std::string &strName = ".") const;

    std::string m_strDirectory;
};

constexpr uid_t OTHER_USER = 65534;

// Runs fnWork in a child process, as OTHER_USER when bOther; its result.
int InChild(const std::function<int()> &fnWork, bool bOther = false);

// Runs fnWork in a child process that is the first, number 1, of a new pid namespace; its result, or NOT_ALLOWED.
constexpr int NOT_ALLOWED = 124;
int InNewNamespace(const std::function<int()> &fnWork);

#define NEEDS_ROOT()                                                                                         \
    if (geteuid() != 0U) {                                                                                   \
        GTEST_SKIP() << "only root can act as two users";                                                    \
    }

#endif
