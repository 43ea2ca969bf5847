#include "RatioTable.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace qv_bench {
namespace {

using testing::ElementsAre;

// A stopwatch that reports the time that each side sets for itself.
class RatioTable : public testing::Test {
protected:
    std::function<void()> taking(double nanoseconds) {
        return [this, nanoseconds] { now_ += nanoseconds; };
    }

    Stopwatch stopwatch() {
        return [this](const std::vector<std::function<void()>>& sides) {
            std::vector<double> times;
            for (const auto& side : sides) {
                now_ = 0;
                side();
                times.push_back(now_);
            }
            return times;
        };
    }

    std::vector<double> figures(const Rows& rows) {
        std::vector<double> result;
        for (const TableRow& row : measure(rows, stopwatch())) {
            result.push_back(row.figure);
        }
        return result;
    }

private:
    double now_ = 0;
};

TEST_F(RatioTable, ARatioAboveOneIsFasterThanTheYardstick) {
    EXPECT_THAT(figures({{{"scan", taking(20), {{"slow", taking(100)}, {"fast", taking(10)}}}}}),
                ElementsAre(5.0, 0.5));
}

TEST_F(RatioTable, CostsComeFirstAndAreOfOneThing) {
    EXPECT_THAT(figures({{{"read", taking(3000), {{"other", taking(6000)}}, {{"value", 1000}}}}}),
                ElementsAre(3.0, 2.0));
}

TEST_F(RatioTable, AnAbsentPeerHasNoRowAndShiftsNothing) {
    const auto rows =
        measure({{{"scan", taking(10), {{"absent", {}}, {"there", taking(30), atLeast(2)}}}}}, stopwatch());
    ASSERT_EQ(rows.size(), 1U);
    EXPECT_EQ(rows[0].of, "of there");
    EXPECT_EQ(rows[0].figure, 3.0);
    EXPECT_EQ(rows[0].goal.bound, Bound::AtLeast);
}

TEST_F(RatioTable, CountsStandBehindWhatIsTimed) {
    const auto rows = measure(
        {{{"scan", taking(10), {}, {{"call"}}}}, {{"scan", "allocations", 2, exactly(2)}}}, stopwatch());
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows[0].of, "ns a call");
    EXPECT_EQ(rows[1].of, "allocations");
    EXPECT_EQ(rows[1].figure, 2.0);
}

TEST_F(RatioTable, Line) {
    const std::string measured = "scan" + std::string(60, ' ') + "0.95 of memchr";
    EXPECT_EQ(tableLine({"scan", "of memchr", 0.954, atLeast(1.0, 0.9)}, Vectors::Wide),
              measured + std::string(36, ' ') + ">= 1.00  MISS\n");
    EXPECT_EQ(tableLine({"scan", "of memchr", 0.954, {}}, Vectors::Wide), measured + '\n');
}

TEST_F(RatioTable, SummaryCountsRowsWithAGoal) {
    const std::vector<TableRow> rows = {
        {"a", "", 0.7, atLeast(0.9, 0.6)}, {"b", "", 1.0, atLeast(0.9)}, {"c", "", 0.1, {}}};
    EXPECT_EQ(summaryLine(rows, Vectors::Wide), "1 of 2 goals reached\n");
    EXPECT_EQ(summaryLine(rows, Vectors::Baseline), "2 of 2 goals reached\n");
}

TEST(ReplaceMarked, ReplacesBetweenItsOwnMarkersAlone) {
    const std::string text = "a\n<!-- one -->\nold\n<!-- end -->\nb\n<!-- two -->\nold\n<!-- end -->\n";
    EXPECT_EQ(replaceMarked(text, "two", "new\n"),
              "a\n<!-- one -->\nold\n<!-- end -->\nb\n<!-- two -->\nnew\n<!-- end -->\n");
    EXPECT_EQ(replaceMarked(text, "one", "new\n"),
              "a\n<!-- one -->\nnew\n<!-- end -->\nb\n<!-- two -->\nold\n<!-- end -->\n");
}

TEST(ReplaceMarked, IsEmptyWithoutTheMarkers) {
    EXPECT_EQ(replaceMarked("a\n<!-- one -->\n", "one", "new\n"), "");
    EXPECT_EQ(replaceMarked("a\n<!-- end -->\n", "one", "new\n"), "");
}

}  // namespace
}  // namespace qv_bench
