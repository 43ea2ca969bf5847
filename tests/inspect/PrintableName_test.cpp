#include "report/PrintableName.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <string>
#include <tuple>

namespace qv_test {
namespace {

using qvinspect::printableName;

TEST(PrintableName, keepsPlainText) {
    EXPECT_EQ(printableName("dir/a b-c_~.h264"), "dir/a b-c_~.h264");
    EXPECT_EQ(printableName(""), "");
}

TEST(PrintableName, escapesControlCharacters) {
    EXPECT_EQ(printableName("a\nb\tc\x1B[2Jd\x7F"), "a\\x0Ab\\x09c\\x1B[2Jd\\x7F");
    EXPECT_EQ(printableName("\xC2\x9B"), "\\xC2\\x9B");  // U+009B
}

TEST(PrintableName, keepsUtf8Characters) {
    for (const char* name : {"\xC2\xA0", "\xC3\xA9", "\xE4\xBD\xA0", "\xEF\xBF\xBD", "\xF0\x9F\x8E\xAC"}) {
        EXPECT_EQ(printableName(name), name);
    }
}

// U+061C, U+200E, U+200F, U+2028 to U+202E, U+2066 to U+2069: "txt.h264" could be shown for "462h.txt".
TEST(PrintableName, escapesControlsOfDirectionAndLines) {
    EXPECT_EQ(printableName("a\xE2\x80\xAE"
                            "b"),
              "a\\xE2\\x80\\xAEb");
    EXPECT_EQ(printableName("\xD8\x9C"), "\\xD8\\x9C");
    for (const auto& [lead, first, last] :
         {std::tuple<int, int, int>{0x80, 0x8E, 0x8F}, {0x80, 0xA8, 0xAE}, {0x81, 0xA6, 0xA9}}) {
        for (int end = first - 1; end <= last + 1; ++end) {
            const std::string name = {'\xE2', static_cast<char>(lead), static_cast<char>(end)};
            const bool isEscaped = end >= first && end <= last;
            EXPECT_EQ(printableName(name),
                      isEscaped ? fmt::format("\\xE2\\x{:02X}\\x{:02X}", lead, end) : name);
        }
    }
    EXPECT_EQ(printableName("\xD8\x9B"), "\xD8\x9B");  // the Arabic semicolon
}

TEST(PrintableName, escapesWhatIsNoUtf8) {
    EXPECT_EQ(printableName("a\xFF"
                            "b"),
              "a\\xFFb");
    EXPECT_EQ(printableName("\x80"), "\\x80");
    EXPECT_EQ(printableName("\xC0\xAF"), "\\xC0\\xAF");                    // overlong
    EXPECT_EQ(printableName("\xE0\x80\xAF"), "\\xE0\\x80\\xAF");           // overlong
    EXPECT_EQ(printableName("\xED\xA0\x80"), "\\xED\\xA0\\x80");           // a surrogate
    EXPECT_EQ(printableName("\xF4\x90\x80\x80"), "\\xF4\\x90\\x80\\x80");  // beyond U+10FFFF
    EXPECT_EQ(printableName("\xF5\x80\x80\x80"), "\\xF5\\x80\\x80\\x80");
    EXPECT_EQ(printableName("\xE4\xBD"), "\\xE4\\xBD");  // cut short
    EXPECT_EQ(printableName("\xE4\xBDx"), "\\xE4\\xBDx");
}

}  // namespace
}  // namespace qv_test
