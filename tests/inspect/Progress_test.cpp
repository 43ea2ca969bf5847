#include "report/Progress.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <chrono>

#include "InspectSupport.h"
#include "Terminal.h"

namespace qv_test {
namespace {

using qvinspect::Progress;
using qvinspect::progressText;
using std::chrono::milliseconds;
using ::testing::IsEmpty;

class ReaderAt : public qvinspect::AccessUnitReader {
public:
    const qvinspect::StreamInfo& info() const override { return info_; }
    bool next(qvinspect::AccessUnit& /*accessUnit*/) override { return false; }
    qvinspect::ReadProgress progress() const override { return at; }

    qvinspect::ReadProgress at;

private:
    qvinspect::StreamInfo info_;
};

class ProgressLine : public ::testing::Test {
protected:
    void SetUp() override { reader_.at = {500000, 2000000}; }

    // The output for this number of access units at this time.
    std::string at(int time, int accessUnits = 100) {
        now_ = Progress::TimePoint(milliseconds(time));
        for (int i = 0; i < accessUnits; ++i) {
            progress_.update(reader_);
        }
        return terminal_.written();
    }

    Terminal terminal_;
    ReaderAt reader_;
    int looks_ = 0;
    Progress::TimePoint now_{};
    Progress progress_{terminal_.file(), [this] {
                           ++looks_;
                           return now_;
                       }};
};

TEST_F(ProgressLine, firstShowsAfterASecond) {
    EXPECT_EQ(at(0), "");
    EXPECT_EQ(at(999), "");
    EXPECT_EQ(at(1000), "\r25% at 0.5 MB/s, 0:03 left\r25% at 0.5 MB/s, 0:03 left");
}

TEST_F(ProgressLine, isWrittenFiveTimesASecond) {
    int lines = 0;
    for (int time = 0; time < 3000; time += 10) {
        lines += at(time).empty() ? 0 : 1;
    }
    EXPECT_EQ(lines, 10);
}

TEST_F(ProgressLine, looksAtTheClockNowAndThen) {
    at(500, 1600);
    EXPECT_EQ(looks_, 101);
}

TEST_F(ProgressLine, shorterLineCoversTheOneBefore) {
    at(1000);
    reader_.at = {2000000, 2000000};
    EXPECT_EQ(at(1200), "\r100% at 1.7 MB/s, 0:00 left\r100% at 1.7 MB/s, 0:00 left");
    reader_.at = {2000000, {}};
    EXPECT_EQ(at(2000), "\r2 MB at 1.0 MB/s           \r2 MB at 1.0 MB/s");
}

TEST_F(ProgressLine, isErasedOnce) {
    at(1000);
    progress_.erase();
    EXPECT_EQ(terminal_.written(), "\r" + std::string(26, ' ') + "\r");
    progress_.erase();
    EXPECT_EQ(terminal_.written(), "");
}

TEST_F(ProgressLine, nothingToErase) {
    at(900);
    progress_.erase();
    EXPECT_EQ(terminal_.written(), "");
}

TEST(Progress, erasesAtItsEnd) {
    const Terminal terminal;
    ReaderAt reader;
    Progress::TimePoint now{};
    {
        Progress progress(terminal.file(), [&] { return now; });
        now += milliseconds(1000);
        for (int i = 0; i < 16; ++i) {
            progress.update(reader);
        }
        EXPECT_EQ(terminal.written(), "\r0 MB at 0.0 MB/s\r0 MB at 0.0 MB/s");
    }
    EXPECT_EQ(terminal.written(), "\r" + std::string(16, ' ') + "\r");
}

TEST(Progress, withoutATerminal) {
    ReaderAt reader;
    int looks = 0;
    Progress progress(-1, [&] {
        ++looks;
        return Progress::TimePoint(milliseconds(looks * 1000));
    });
    for (int i = 0; i < 100; ++i) {
        progress.update(reader);
    }
    EXPECT_EQ(looks, 1);
}

struct TextCase {
    const char* name;
    qvinspect::ReadProgress progress;
    double seconds;
    const char* text;
};

class ProgressTexts : public ::testing::TestWithParam<TextCase> {};

TEST_P(ProgressTexts, are) {
    EXPECT_EQ(progressText(GetParam().progress, GetParam().seconds), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ProgressTexts,
    ::testing::Values(TextCase{"half", {1000000000, 2000000000}, 2, "50% at 500.0 MB/s, 0:02 left"},
                      TextCase{"minutes", {1000000, 100000000}, 1, "1% at 1.0 MB/s, 1:39 left"},
                      TextCase{"hours", {1000000, 10000000000}, 1, "0% at 1.0 MB/s, 2:46:39 left"},
                      TextCase{"forEver", {1, UINT64_MAX}, 1, "0% at 0.0 MB/s, 99:59:59 left"},
                      TextCase{"nothingYet", {0, 100}, 1, "0%"},
                      TextCase{"growingFile", {200, 100}, 1, "100% at 0.0 MB/s, 0:00 left"},
                      TextCase{"noTime", {50, 100}, 0, "50%"},
                      TextCase{"pipe", {1530000000, {}}, 3, "1530 MB at 510.0 MB/s"},
                      TextCase{"madeUpFile", {1000000, 0}, 1, "1 MB at 1.0 MB/s"}),
    [](const auto& row) { return row.param.name; });

}  // namespace
}  // namespace qv_test
