#include "analysis/CoreHooks.h"

#include <gtest/gtest.h>

#include "QVDumpData.h"
#include "QVTraceLog.h"

namespace qv_test {
namespace {

using qvinspect::LogCapture;

void logLine(int level, const char* word, int number) {
    qvTraceLog(level, "file", 1, "function", "tag", "%s %d\n", word, number);
}

TEST(CoreHooks, captureKeepsLines) {
    const LogCapture capture;
    logLine(QVTraceError, "broken", 7);
    logLine(QVTraceDebug, "detail", 8);
    ASSERT_EQ(capture.lines().size(), 2U);
    EXPECT_EQ(capture.lines()[0].level, QVTraceError);
    EXPECT_EQ(capture.lines()[0].text, "broken 7");
    EXPECT_EQ(capture.lines()[1].level, QVTraceDebug);
    EXPECT_EQ(capture.lines()[1].text, "detail 8");
}

TEST(CoreHooks, innermostCaptureGetsTheLines) {
    const LogCapture outer;
    {
        const LogCapture inner;
        logLine(QVTraceError, "inner", 1);
        EXPECT_EQ(inner.lines().size(), 1U);
    }
    logLine(QVTraceError, "outer", 2);
    ASSERT_EQ(outer.lines().size(), 1U);
    EXPECT_EQ(outer.lines()[0].text, "outer 2");
}

TEST(CoreHooks, nothingReachesTheTerminal) {
    ::testing::internal::CaptureStderr();
    logLine(QVTraceError, "dropped", 1);
    const unsigned char data[] = {1, 2, 3};
    QVDumpData::dumpActualData("label", data, 3);
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
}

}  // namespace
}  // namespace qv_test
