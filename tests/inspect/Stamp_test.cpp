#include "report/Stamp.h"

#include <gtest/gtest.h>

namespace qv_test {
namespace {

TEST(Stamp, isIso8601InUtc) {
    EXPECT_EQ(qvinspect::stampText(0), "1970-01-01T00:00:00Z");
    EXPECT_EQ(qvinspect::stampText(1709251199), "2024-02-29T23:59:59Z");
}

}  // namespace
}  // namespace qv_test
