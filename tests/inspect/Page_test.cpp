#include "report/Page.h"

#include <gtest/gtest.h>

#include "InspectSupport.h"

namespace qv_test {
namespace {

using qvinspect::Page;
using qvinspect::PageFormat;
using qvinspect::Style;

template <typename Fill>
std::string pageOf(const PageFormat& format, const Fill& fill) {
    const TemporaryFolder folder;
    const std::string path = folder.path() / "page";
    Page page(path, format);
    fill(page);
    page.close();
    const Bytes bytes = fileContent(path);
    return {bytes.begin(), bytes.end()};
}

std::string lineOf(const PageFormat& format, const std::string& text) {
    return pageOf(format, [&](Page& page) { page.add("{}", text).endLine(); });
}

TEST(Page, linesOfPieces) {
    EXPECT_EQ(pageOf({},
                     [](Page& page) {
                         page.add("a{}", 1).add(Style::Bad, "b{:>3}", 2).add("c").endLine();
                         page.endLine();
                         page.add("d   ").add(Style::Good, "  ").endLine();
                     }),
              "a1b  2c\n\nd\n");
}

TEST(Page, isColouredOnlyWhenAskedTo) {
    const auto fill = [](Page& page) {
        page.add("p").add(Style::Heading, "h").add(Style::Good, "g").add(Style::Bad, "b");
        page.add(Style::Faint, "f").add(Style::Good, "").endLine();
    };
    EXPECT_EQ(pageOf({}, fill), "phgbf\n");
    EXPECT_EQ(pageOf({true, {}}, fill),
              "p\x1b[1mh\x1b[0m\x1b[32mg\x1b[0m\x1b[1m\x1b[31mb\x1b[0m\x1b[2m"
              "f\x1b[0m\n");
}

TEST(Page, cutsWhatGoesBeyondTheWidth) {
    EXPECT_EQ(lineOf({false, 20}, "12345678901234567890"), "12345678901234567890\n");
    EXPECT_EQ(lineOf({false, 20}, "123456789012345678901"), "12345678901234567...\n");
    EXPECT_EQ(lineOf({false, 20}, "12345678901234567890   "), "12345678901234567890\n");
    EXPECT_EQ(lineOf({false, {}}, std::string(5000, 'x')), std::string(5000, 'x') + "\n");
}

TEST(Page, widthCountsCharactersNotBytes) {
    const std::string two = "\xC3\xA9";
    std::string text;
    for (int i = 0; i < 20; ++i) {
        text += two;
    }
    EXPECT_EQ(lineOf({false, 20}, text), text + "\n");
    EXPECT_EQ(lineOf({false, 20}, text + two), text.substr(0, 2 * 17) + "...\n");
}

TEST(Page, escapeCodesTakeNoWidth) {
    const auto fill = [](Page& page) { page.add(Style::Good, "1234567890").add("12345678901").endLine(); };
    EXPECT_EQ(pageOf({true, 20}, fill), "\x1b[32m1234567890\x1b[0m1234567...\n");
}

TEST(Page, noControlCharacterGetsThrough) {
    EXPECT_EQ(lineOf({}, std::string("a\x1b[31m\n\t\x7F\xFF\0z", 12)),
              "a\\x1B[31m\\x0A\\x09\\x7F\\xFF\\x00z\n");
    EXPECT_EQ(lineOf({}, "\xC2\x9B"), "\\xC2\\x9B\n");           // CSI in one character
    EXPECT_EQ(lineOf({}, "\xE2\x80\xAE"), "\\xE2\\x80\\xAE\n");  // RIGHT-TO-LEFT OVERRIDE
}

}  // namespace
}  // namespace qv_test
