// SPDX-License-Identifier: Apache-2.0
#include "toolkit/base/error.h"

#include <cerrno>
#include <gtest/gtest.h>

#include "toolkit/base/json.h"

namespace {

using Texts = std::vector<std::string>;

TEST(ToolkitError, WhatIsAcceptedIsTheListOrTheClauseOfTheLine)
{
    EXPECT_EQ(Error(ErrorClass::Refused, "x is refused; accepted: a, b", {"a", "b"}).Accepted(),
              (Texts{"a", "b"}));
    EXPECT_EQ(Error(ErrorClass::Refused, "x is refused; accepted: 1 to 3, or NONE").Accepted(),
              (Texts{"1 to 3, or NONE"}));
    EXPECT_EQ(Error(ErrorClass::Refused, "accepted: one; 'fructl --help' tells more").Accepted(),
              (Texts{"one"}));
    EXPECT_EQ(Error(ErrorClass::Failed, "nothing of that kind").Accepted(), Texts());
}

TEST(ToolkitError, ErrnoValuesHaveTheirClasses)
{
    EXPECT_EQ(ClassOfErrno(EACCES), ErrorClass::NotPermitted);
    EXPECT_EQ(ClassOfErrno(EPERM), ErrorClass::NotPermitted);
    EXPECT_EQ(ClassOfErrno(EROFS), ErrorClass::NotPermitted);
    EXPECT_EQ(ClassOfErrno(ENOSPC), ErrorClass::DiskFull);
    EXPECT_EQ(ClassOfErrno(EDQUOT), ErrorClass::DiskFull);
    EXPECT_EQ(ClassOfErrno(ENOENT), ErrorClass::NotFound);
    EXPECT_EQ(ClassOfErrno(ETIMEDOUT), ErrorClass::Busy);
    EXPECT_EQ(ClassOfErrno(EINVAL), ErrorClass::Refused);
    EXPECT_EQ(ClassOfErrno(EIO), ErrorClass::Failed);
}

TEST(ToolkitError, EveryClassHasItsWord)
{
    EXPECT_STREQ(ErrorWord(ErrorClass::Failed), "failed");
    EXPECT_STREQ(ErrorWord(ErrorClass::NoAnswer), "no-answer");
    EXPECT_STREQ(ErrorWord(ErrorClass::HalfWritten), "half-written");
}

TEST(ToolkitJson, TextThatNestsTooDeepIsDiscarded)
{
    const auto fnNested = [](size_t uiDepth) {
        return ParseJsonText<Json>(std::string(uiDepth, '[') + std::string(uiDepth, ']'));
    };
    EXPECT_TRUE(fnNested(JSON_DEPTH_MAX).is_array());
    EXPECT_TRUE(fnNested(100000U).is_discarded());
    EXPECT_TRUE(ParseJsonText<Json>("{").is_discarded());
    EXPECT_EQ(ParseJsonText<Json>("[1]"), Json::array({1}));
}

} // namespace
