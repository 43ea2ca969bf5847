#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <sstream>
#include <thread>
#include <vector>

#include "QVCoreStandalone.h"
#include "QVSeiItem.h"

namespace {

using ::testing::HasSubstr;
using ::testing::internal::CaptureStderr;
using ::testing::internal::GetCapturedStderr;

class StandaloneTrace : public ::testing::Test {
protected:
    void SetUp() override { qvSetTraceLevel(QVTraceDebug); }
    void TearDown() override { qvSetTraceLevel(QVTraceWarning); }
};

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        lines.push_back(line);
    }
    return lines;
}

TEST_F(StandaloneTrace, writesOneLineWithItsOrigin) {
    CaptureStderr();
    qvTraceLog(QVTraceError, "file.cpp", 12, "someFunction", "a.tag", "value %d of %s\n", 7, "x");
    EXPECT_EQ(GetCapturedStderr(), "[E] a.tag file.cpp:12 someFunction: value 7 of x\n");
}

TEST_F(StandaloneTrace, endsEachLineOnce) {
    CaptureStderr();
    qvTraceLog(QVTraceWarning, "f", 1, "g", "t", "no line feed");
    qvTraceLog(QVTraceInformation, "f", 1, "g", "t", "two\n\n");
    qvTraceLog(QVTraceDebug, "f", 1, "g", "t", "in\nside\n");
    EXPECT_EQ(GetCapturedStderr(), "[W] t f:1 g: no line feed\n[I] t f:1 g: two\n[D] t f:1 g: in side\n");
}

TEST_F(StandaloneTrace, longLinesAreWhole) {
    const std::string text(100000, 'x');
    CaptureStderr();
    qvTraceLog(QVTraceError, "f", 1, "g", "t", "%s\n", text.c_str());
    EXPECT_EQ(GetCapturedStderr(), "[E] t f:1 g: " + text + "\n");
}

// qvTraceLog without the compiler's format check, which would reject these calls.
constexpr void (*kUncheckedTraceLog)(int, const char*, int, const char*, const char*, const char*,
                                     ...) = &qvTraceLog;

TEST_F(StandaloneTrace, theTextThatComesWithoutItsArgumentStaysAsItStands) {
    CaptureStderr();
    kUncheckedTraceLog(QVTraceError, "f", 1, "g", "t",
                       "parserAvcBufferingPeriod: non-existing SPS %d referenced in buffering period.\n");
    EXPECT_EQ(GetCapturedStderr(),
              "[E] t f:1 g: parserAvcBufferingPeriod: non-existing SPS %d referenced in buffering period.\n");
}

TEST_F(StandaloneTrace, aTextLikeTheOneWithoutItsArgumentIsFormatted) {
    CaptureStderr();
    qvTraceLog(QVTraceError, "f", 1, "g", "t",
               "parserAvcBufferingPeriod: non-existing SPS %d referenced in buffering period", 7);
    EXPECT_EQ(GetCapturedStderr(),
              "[E] t f:1 g: parserAvcBufferingPeriod: non-existing SPS 7 referenced in buffering period\n");
}

TEST_F(StandaloneTrace, filtersByTheLevelThatWasSet) {
    for (int limit = -1; limit <= 3; ++limit) {
        qvSetTraceLevel(limit);
        EXPECT_EQ(qvGetTraceLevel(), limit);
        CaptureStderr();
        for (int level = 0; level <= 3; ++level) {
            qvTraceLog(level, "f", 1, "g", "t", "%d\n", level);
        }
        EXPECT_EQ(linesOf(GetCapturedStderr()).size(), static_cast<size_t>(limit + 1));
    }
}

TEST(StandaloneTraceLevel, startsAtWarnings) {
    EXPECT_EQ(qvGetTraceLevel(), QVTraceWarning);
}

TEST_F(StandaloneTrace, linesOfSeveralThreadsStayWhole) {
    CaptureStderr();
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([t] {
            const std::string text(500, static_cast<char>('a' + t));
            for (int i = 0; i < 200; ++i) {
                qvTraceLog(QVTraceError, "f", 1, "g", "t", "%s\n", text.c_str());
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    const auto lines = linesOf(GetCapturedStderr());
    EXPECT_EQ(lines.size(), 800U);
    for (const std::string& line : lines) {
        const std::string prefix = "[E] t f:1 g: ";
        ASSERT_EQ(line.size(), prefix.size() + 500);
        ASSERT_EQ(line.substr(0, prefix.size()), prefix);
        ASSERT_EQ(static_cast<size_t>(std::count(line.begin(), line.end(), line.back())),
                  size_t{500} + static_cast<size_t>(std::count(prefix.begin(), prefix.end(), line.back())));
    }
}

TEST(StandaloneMemory, allocatesAndReleases) {
    auto* const plain = static_cast<unsigned char*>(qvMalloc(100));
    ASSERT_NE(plain, nullptr);
    std::fill(plain, plain + 100, static_cast<unsigned char>(0xFF));
    qvFree(plain);

    auto* const zeroed = static_cast<unsigned char*>(qvMallocz(100));
    ASSERT_NE(zeroed, nullptr);
    EXPECT_TRUE(std::all_of(zeroed, zeroed + 100, [](unsigned char byte) { return byte == 0; }));
    qvFree(zeroed);
    qvFree(nullptr);
}

TEST_F(StandaloneTrace, dumpShowsTheFraming) {
    const unsigned char data[] = {0x00, 0x00, 0x00, 0x02, 0x65, 0x88, 0x00, 0x00, 0x00,
                                  0x01, 0x41, 0x9A, 0xAA, 0xBB, 0xCC, 0xDD, 0xEE};
    CaptureStderr();
    QVDumpData::dumpActualData("a label", data, sizeof data);
    const auto lines = linesOf(GetCapturedStderr());
    ASSERT_EQ(lines.size(), 3U);
    EXPECT_THAT(lines[0], HasSubstr("a label: 17 bytes"));
    EXPECT_THAT(lines[1], HasSubstr("00000000  00 00 00 02 65 88 00 00 00 01 41 9a aa bb cc dd"));
    EXPECT_THAT(lines[2], HasSubstr("00000010  ee"));
}

TEST_F(StandaloneTrace, dumpIsBounded) {
    const std::vector<unsigned char> data(1000, 0x41);
    CaptureStderr();
    QVDumpData::dumpActualData("big", data.data(), 1000);
    const auto lines = linesOf(GetCapturedStderr());
    ASSERT_EQ(lines.size(), 1U + 16U + 1U);
    EXPECT_THAT(lines.back(), HasSubstr("... 744 more bytes"));
}

TEST_F(StandaloneTrace, dumpOfNothing) {
    CaptureStderr();
    QVDumpData::dumpActualData("empty", nullptr, 5);
    QVDumpData::dumpActualData(nullptr, reinterpret_cast<const unsigned char*>("x"), 0);
    const auto lines = linesOf(GetCapturedStderr());
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_THAT(lines[0], HasSubstr("empty: no data"));
    EXPECT_THAT(lines[1], HasSubstr("(no label): no data"));
}

TEST(StandaloneSeiInfo, entriesStartZeroed) {
    QVSeiInfo* info = createQVSeiInfo(3);
    ASSERT_NE(info, nullptr);
    EXPECT_EQ(info->itemCount, 3U);
    for (uint32_t i = 0; i < 3; ++i) {
        EXPECT_EQ(info->items[i].codecId, 0U);
        EXPECT_EQ(info->items[i].payloadSize, 0U);
        EXPECT_EQ(info->items[i].payloadData, nullptr);
    }
    freepQVSeiInfo(&info);
    EXPECT_EQ(info, nullptr);
    freepQVSeiInfo(&info);
    freepQVSeiInfo(nullptr);
}

TEST(StandaloneSeiInfo, anEmptyDescriptionIsADescription) {
    QVSeiInfo* info = createQVSeiInfo(0);
    ASSERT_NE(info, nullptr);
    EXPECT_EQ(info->itemCount, 0U);
    freepQVSeiInfo(&info);
}

}  // namespace
