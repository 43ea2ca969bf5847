#include "report/Terminal.h"

#include <gtest/gtest.h>

namespace qv_test {
namespace {

using qvinspect::ColorUse;
using qvinspect::pageFormat;
using qvinspect::Terminal;

Terminal terminal() {
    Terminal terminal;
    terminal.isTerminal = true;
    terminal.TERM = "xterm";
    return terminal;
}

TEST(Terminal, colour) {
    const Terminal file;
    Terminal noColor = terminal();
    noColor.NO_COLOR = "0";  // whatever it is set to
    Terminal dumb = terminal();
    dumb.TERM = "dumb";
    EXPECT_TRUE(pageFormat(terminal(), ColorUse::Auto).isColored);
    for (const Terminal& plain : {file, noColor, dumb}) {
        EXPECT_FALSE(pageFormat(plain, ColorUse::Auto).isColored);
        EXPECT_TRUE(pageFormat(plain, ColorUse::Always).isColored);
        EXPECT_FALSE(pageFormat(plain, ColorUse::Never).isColored);
    }
    EXPECT_FALSE(pageFormat(terminal(), ColorUse::Never).isColored);
}

std::optional<size_t> widthOf(bool isTerminal, size_t columns, const char* COLUMNS) {
    Terminal terminal;
    terminal.isTerminal = isTerminal;
    terminal.columns = columns;
    terminal.COLUMNS = COLUMNS;
    return pageFormat(terminal, ColorUse::Auto).width;
}

TEST(Terminal, width) {
    EXPECT_EQ(widthOf(true, 120, ""), 120U);
    EXPECT_EQ(widthOf(true, 120, "100"), 100U);
    EXPECT_EQ(widthOf(true, 0, ""), 80U);
    EXPECT_EQ(widthOf(true, 0, "132"), 132U);
    for (const char* none : {"x", "-5", "0", "19", "100x", "99999999999999999999999"}) {
        EXPECT_EQ(widthOf(true, 120, none), 120U) << none;
        EXPECT_EQ(widthOf(true, 5, none), 80U) << none;
    }
}

TEST(Terminal, aFileHasNoWidth) {
    EXPECT_EQ(widthOf(false, 0, ""), std::nullopt);
    EXPECT_EQ(widthOf(false, 0, "100"), std::nullopt);
}

}  // namespace
}  // namespace qv_test
