#include "Goal.h"

#include <gtest/gtest.h>

namespace qv_bench {
namespace {

TEST(Goal, AtLeastHasALimitForEachPath) {
    const Goal goal = atLeast(0.9, 0.6);
    EXPECT_TRUE(isReached(goal, 0.9, Vectors::Wide));
    EXPECT_FALSE(isReached(goal, 0.89, Vectors::Wide));
    EXPECT_TRUE(isReached(goal, 0.6, Vectors::Baseline));
    EXPECT_FALSE(isReached(goal, 0.59, Vectors::Baseline));
    EXPECT_TRUE(isReached(goal, 0.6, Vectors::None));
    EXPECT_FALSE(isReached(goal, 0.59, Vectors::None));
}

TEST(Goal, AtMost) {
    EXPECT_TRUE(isReached(atMost(25), 25, Vectors::Wide));
    EXPECT_FALSE(isReached(atMost(25), 25.01, Vectors::Wide));
}

TEST(Goal, Exactly) {
    EXPECT_TRUE(isReached(exactly(2), 2, Vectors::Wide));
    EXPECT_FALSE(isReached(exactly(2), 1, Vectors::Wide));
    EXPECT_FALSE(isReached(exactly(2), 3, Vectors::Wide));
}

TEST(Goal, WhatTheTableShowsDecides) {
    EXPECT_EQ(figureText(0.895), figureText(0.8951));
    EXPECT_TRUE(isReached(atLeast(0.9), 0.8951, Vectors::Wide));
    EXPECT_TRUE(isReached(atLeast(1 / 1.1), 0.9051, Vectors::Wide));
    EXPECT_FALSE(isReached(atLeast(1 / 1.1), 0.9049, Vectors::Wide));
    EXPECT_TRUE(isReached(atMost(1.2), 1.2049, Vectors::Wide));
    EXPECT_FALSE(isReached(atMost(1.2), 1.2051, Vectors::Wide));
}

TEST(Goal, NoGoalHasNoMark) {
    EXPECT_EQ(markText({}, 0.1, Vectors::Wide), "");
    EXPECT_EQ(goalText({}, Vectors::Wide), "");
}

TEST(Goal, Texts) {
    EXPECT_EQ(goalText(atLeast(0.9, 0.6), Vectors::Wide), ">= 0.90");
    EXPECT_EQ(goalText(atLeast(0.9, 0.6), Vectors::Baseline), ">= 0.60");
    EXPECT_EQ(goalText(atMost(25), Vectors::Wide), "<= 25.00");
    EXPECT_EQ(goalText(exactly(0), Vectors::Wide), "== 0.00");
    EXPECT_EQ(markText(atMost(25), 24, Vectors::Wide), "pass");
    EXPECT_EQ(markText(atMost(25), 26, Vectors::Wide), "MISS");
    EXPECT_EQ(figureText(999.5), "999.50");
    EXPECT_EQ(figureText(1234.5), "1234");
}

}  // namespace
}  // namespace qv_bench
