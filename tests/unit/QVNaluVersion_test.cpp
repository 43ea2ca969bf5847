#include "QVNaluVersion.h"

#include <gtest/gtest.h>

#include <string>

namespace {

TEST(QVNaluVersion, IsThatOfTheHeaders) {
    EXPECT_EQ(qvNaluVersion(), uint32_t{QVNALU_VERSION});
}

TEST(QVNaluVersion, TextNamesMajorMinorAndPatch) {
    EXPECT_EQ(qvNaluVersionString(), std::to_string(QVNALU_VERSION_MAJOR) + "." +
                                         std::to_string(QVNALU_VERSION_MINOR) + "." +
                                         std::to_string(QVNALU_VERSION_PATCH));
}

TEST(QVNaluVersion, IsTheOneOfTheBuild) {
    EXPECT_STREQ(qvNaluVersionString(), QVNALU_PROJECT_VERSION);
}

TEST(QVNaluVersion, GrowsWithMajorBeforeMinorBeforePatch) {
    EXPECT_LT(QVNALU_MAKE_VERSION(1, 2, 3), QVNALU_MAKE_VERSION(1, 2, 4));
    EXPECT_LT(QVNALU_MAKE_VERSION(1, 2, 255), QVNALU_MAKE_VERSION(1, 3, 0));
    EXPECT_LT(QVNALU_MAKE_VERSION(1, 255, 255), QVNALU_MAKE_VERSION(2, 0, 0));
}

}  // namespace
