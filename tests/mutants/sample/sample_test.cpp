// SPDX-License-Identifier: Apache-2.0
#include "sample.h"

#include <gtest/gtest.h>

TEST(AtMostTen, CutsWhatIsLarger)
{
    EXPECT_EQ(SAMPLE_AtMostTen(11), 10);
    EXPECT_EQ(SAMPLE_AtMostTen(100), 10);
}

TEST(AtMostTen, KeepsWhatIsNot)
{
    EXPECT_EQ(SAMPLE_AtMostTen(10), 10);
    EXPECT_EQ(SAMPLE_AtMostTen(-1), -1);
}

TEST(CountDown, EndsAtZero)
{
    EXPECT_EQ(SAMPLE_CountDown(0U), 0U);
    EXPECT_EQ(SAMPLE_CountDown(3U), 3U);
}
