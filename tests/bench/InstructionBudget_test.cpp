#include "InstructionBudget.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>
#include <stdexcept>

namespace qv_bench {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::Pair;

InstructionCounts read(const std::string& text) {
    std::istringstream budget(text);
    return readBudget(budget);
}

TEST(InstructionBudget, ReadsCountsAndNames) {
    EXPECT_THAT(read("# comment\n\n   120 scan, 40 KB\n7 walk\n"),
                ElementsAre(Pair("scan, 40 KB", 120), Pair("walk", 7)));
}

TEST(InstructionBudget, RefusesOtherLines) {
    EXPECT_THROW(read("scan 120\n"), std::runtime_error);
    EXPECT_THROW(read("120\n"), std::runtime_error);
    EXPECT_THROW(read("0 scan\n"), std::runtime_error);
}

TEST(InstructionBudget, ReadsWhatItWrites) {
    const InstructionCounts counts = {{"scan, 40 KB", 120}, {"walk", 12345678901}};
    EXPECT_EQ(read(budgetText(counts)), counts);
}

TEST(InstructionBudget, TwoInAHundredMoreAreKept) {
    EXPECT_TRUE(compare({{"scan", 10200}}, {{"scan", 10000}}).isKept);
    const BudgetReport report = compare({{"scan", 10201}}, {{"scan", 10000}});
    EXPECT_FALSE(report.isKept);
    EXPECT_THAT(report.text, HasSubstr("+2.01 %  scan"));
    EXPECT_THAT(report.text, HasSubstr("TOO MANY"));
}

TEST(InstructionBudget, OneThatIsExceededIsNotMadeGoodByAnother) {
    EXPECT_FALSE(compare({{"a", 200}, {"b", 1}}, {{"a", 100}, {"b", 100}}).isKept);
    EXPECT_FALSE(compare({{"a", 1}, {"b", 200}}, {{"a", 100}, {"b", 100}}).isKept);
}

TEST(InstructionBudget, FewerArePointedOut) {
    const BudgetReport fewer = compare({{"scan", 9799}}, {{"scan", 10000}});
    EXPECT_TRUE(fewer.isKept);
    EXPECT_THAT(fewer.text, HasSubstr("renew"));
    EXPECT_THAT(compare({{"scan", 9800}}, {{"scan", 10000}}).text, Not(HasSubstr("renew")));
}

TEST(InstructionBudget, CountsAndBudgetNameTheSameOperations) {
    const BudgetReport unknown = compare({{"scan", 1}, {"walk", 1}}, {{"scan", 1}});
    EXPECT_FALSE(unknown.isKept);
    EXPECT_THAT(unknown.text, HasSubstr("HAS NO BUDGET"));
    const BudgetReport missing = compare({{"scan", 1}}, {{"scan", 1}, {"walk", 1}});
    EXPECT_FALSE(missing.isKept);
    EXPECT_THAT(missing.text, HasSubstr("WAS NOT COUNTED"));
}

}  // namespace
}  // namespace qv_bench
