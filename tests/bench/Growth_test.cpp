#include "Growth.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>
#include <stdexcept>

namespace qv_bench {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

TEST(Growth, inProportionIsLinear) {
    EXPECT_TRUE(isLinear(1000, 2000, 4000));
    EXPECT_TRUE(isLinear(5000 + 1000, 5000 + 2000, 5000 + 4000));
}

TEST(Growth, aTenthMoreIsStillLinear) {
    EXPECT_TRUE(isLinear(0, 1000, 3300));
    EXPECT_FALSE(isLinear(0, 1000, 3301));
}

TEST(Growth, theSquareIsNot) {
    EXPECT_FALSE(isLinear(1000, 4000, 16000));
    EXPECT_FALSE(isLinear(1000 * 1000 + 1000, 1000 * 1000 + 4000, 1000 * 1000 + 500000));
}

TEST(Growth, nLogNIsNotFromSmallSizes) {
    EXPECT_FALSE(isLinear(4 * 2, 8 * 3, 16 * 4 + 8));
}

TEST(Growth, constantIsLinear) {
    EXPECT_TRUE(isLinear(0, 0, 0));
    EXPECT_TRUE(isLinear(1000, 1000, 1000));
    EXPECT_TRUE(isLinear(1000, 1000, 1050));
    EXPECT_FALSE(isLinear(1000, 1000, 1051));
    EXPECT_TRUE(isLinear(1000, 900, 800));
}

TEST(Growth, whatBeginsLateIsNotLinear) {
    EXPECT_FALSE(isLinear(1000, 1000, 2000));
}

TEST(Growth, countsAreRead) {
    std::istringstream text("12 a, b @ 64\n0 c @ 128\n");
    EXPECT_EQ(readCounts(text), (Counts{{"a, b @ 64", 12}, {"c @ 128", 0}}));
}

TEST(Growth, anotherLineThrows) {
    std::istringstream text("a @ 64\n");
    EXPECT_THROW(readCounts(text), std::runtime_error);
}

const Counts kLinear = {{"scan @ 64", 164}, {"scan @ 128", 228}, {"scan @ 256", 356}};
const Counts kSquare = {{"scan @ 64", 64}, {"scan @ 128", 256}, {"scan @ 256", 1024}};
const Counts kNone = {{"scan @ 64", 0}, {"scan @ 128", 0}, {"scan @ 256", 0}};

TEST(Growth, reportOfLinearWork) {
    const GrowthReport report = reportGrowth(kLinear, kNone);
    EXPECT_TRUE(report.isLinear);
    EXPECT_THAT(report.text, HasSubstr("scan "));
    EXPECT_THAT(report.text, HasSubstr("256          1.000    3.00        0.000       -\n"));
    EXPECT_THAT(report.text, Not(HasSubstr("MORE")));
}

TEST(Growth, reportOfMore) {
    EXPECT_FALSE(reportGrowth(kSquare, kNone).isLinear);
    EXPECT_THAT(reportGrowth(kSquare, kNone).text, HasSubstr("MORE THAN LINEAR"));
    EXPECT_FALSE(reportGrowth(kLinear, kSquare).isLinear);
}

TEST(Growth, nothingToReportThrows) {
    EXPECT_THROW(reportGrowth({}, {}), std::runtime_error);
}

TEST(Growth, operationWithoutMemoryThrows) {
    EXPECT_THROW(reportGrowth(kLinear, {}), std::runtime_error);
    EXPECT_THROW(reportGrowth(kLinear, {{"read @ 64", 0}, {"read @ 128", 0}, {"read @ 256", 0}}),
                 std::runtime_error);
}

TEST(Growth, missingSizeThrows) {
    EXPECT_THROW(reportGrowth({{"scan @ 64", 1}, {"scan @ 128", 2}}, kNone), std::runtime_error);
    EXPECT_THROW(reportGrowth({{"scan @ 64", 1}, {"scan @ 128", 2}, {"scan @ 200", 3}}, kNone),
                 std::runtime_error);
    EXPECT_THROW(reportGrowth({{"scan", 1}}, kNone), std::runtime_error);
}

}  // namespace
}  // namespace qv_bench
