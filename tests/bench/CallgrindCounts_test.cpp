#include "CallgrindCounts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

namespace qv_bench {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

InstructionCounts read(const std::string& text) {
    std::istringstream profile(text);
    return readCallgrind(profile);
}

TEST(CallgrindCounts, ReadsTheTotalOfEachNamedPart) {
    EXPECT_THAT(read("version: 1\npart: 1\n\ndesc: Trigger: Client Request: scan, 40 KB\nfn=(1)\n1 5\n"
                     "totals: 5812\n\npart: 2\n\ndesc: Trigger: Client Request: walk\ntotals: 77\n"),
                ElementsAre(Pair("scan, 40 KB", 5812), Pair("walk", 77)));
}

TEST(CallgrindCounts, LeavesOutWhatIsDumpedAtTheEnd) {
    EXPECT_THAT(read("part: 1\ndesc: Trigger: Client Request: scan\ntotals: 10\n"
                     "part: 2\ndesc: Trigger: Program termination\ntotals: 99\n"),
                ElementsAre(Pair("scan", 10)));
    EXPECT_THAT(read("part: 1\ndesc: Trigger: Program termination\ntotals: 99\n"), IsEmpty());
}

}  // namespace
}  // namespace qv_bench
