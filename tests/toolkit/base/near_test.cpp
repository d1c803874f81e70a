// SPDX-License-Identifier: Apache-2.0
#include "toolkit/base/near.h"

#include <gtest/gtest.h>

namespace {

using Texts = std::vector<std::string>;

const Texts NAMES = {"baseboard", "psu1", "psu2", "riser", "Board Serial Number", "Board Part Number"};

TEST(ToolkitNear, TheNearestNameStandsFirst)
{
    EXPECT_EQ(NearNames("psu", NAMES), (Texts{"psu1", "psu2"}));
    EXPECT_EQ(NearNames("pus2", NAMES), (Texts{"psu2"}));
    EXPECT_EQ(NearNames("board serial numbr", NAMES), (Texts{"Board Serial Number"}));
}

TEST(ToolkitNear, CaseIsNoDifferenceAndAPartIsEnough)
{
    EXPECT_EQ(NearNames("RISER", NAMES), (Texts{"riser"}));
    EXPECT_EQ(NearNames("serial", NAMES), (Texts{"Board Serial Number"}));
}

TEST(ToolkitNear, NothingIsGuessedFromAfar)
{
    EXPECT_EQ(NearNames("nonsense", NAMES), Texts());
    EXPECT_EQ(DidYouMean("nonsense", NAMES), "");
    EXPECT_EQ(DidYouMean("", NAMES), "");
}

TEST(ToolkitNear, TheGuessIsOneClause)
{
    EXPECT_EQ(DidYouMean("psu3", NAMES), "; did you mean 'psu1' or 'psu2'?");
    EXPECT_EQ(DidYouMean("ab", {"a\x1b"}), "; did you mean 'a\\x1b'?");
}

} // namespace
