// The program as a user sees it: on a terminal.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "InspectSupport.h"

namespace qv_test {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

// The program's output on a terminal with the given columns. environment: "NAME=value".
std::string onTerminal(unsigned short columns, std::vector<std::string> arguments,
                       std::vector<std::string> environment = {"TERM=xterm"}) {
    arguments.insert(arguments.begin(), QVINSPECT_PROGRAM);
    const auto pointers = [](std::vector<std::string>& words) {
        std::vector<char*> all;
        std::transform(words.begin(), words.end(), std::back_inserter(all),
                       [](std::string& word) { return word.data(); });
        all.push_back(nullptr);
        return all;
    };
    const std::vector<char*> argv = pointers(arguments);
    const std::vector<char*> envp = pointers(environment);
    const struct winsize size = {24, columns, 0, 0};
    int terminal = -1;
    const pid_t child = forkpty(&terminal, nullptr, nullptr, &size);
    if (child == 0) {
        execve(argv[0], argv.data(), envp.data());
        _exit(127);
    }
    if (child < 0) {
        throw std::runtime_error("no terminal");
    }
    std::string text;
    char buffer[4096];
    // After the end of the program, reading fails.
    for (ssize_t count = 0; (count = read(terminal, buffer, sizeof buffer)) > 0;) {
        text.append(buffer, static_cast<size_t>(count));
    }
    close(terminal);
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    text.erase(std::remove(text.begin(), text.end(), '\r'), text.end());
    return text;
}

std::string sample() {
    return sampleFolder() / "hevc_hdr10.h265";
}

size_t longestLine(const std::string& text) {
    std::istringstream lines(text);
    size_t longest = 0;
    for (std::string line; std::getline(lines, line);) {
        longest = std::max(longest, line.size());
    }
    return longest;
}

TEST(ProgramTerminal, coloursByDefault) {
    EXPECT_THAT(onTerminal(80, {sample()}), HasSubstr("\x1b["));
    EXPECT_THAT(onTerminal(80, {sample()}, {"TERM=xterm", "NO_COLOR=1"}), Not(HasSubstr("\x1b")));
    EXPECT_THAT(onTerminal(80, {sample()}, {"TERM=xterm", "NO_COLOR="}), HasSubstr("\x1b["));
    EXPECT_THAT(onTerminal(80, {sample()}, {"TERM=dumb"}), Not(HasSubstr("\x1b")));
    EXPECT_THAT(onTerminal(80, {"--color", "never", sample()}), Not(HasSubstr("\x1b")));
    EXPECT_THAT(onTerminal(80, {"--color", "always", sample()}, {"TERM=dumb", "NO_COLOR=1"}),
                HasSubstr("\x1b["));
}

TEST(ProgramTerminal, linesFit) {
    const std::vector<std::string> arguments = {"--color", "never", "--level", "fields", sample()};
    for (const unsigned short columns : std::initializer_list<unsigned short>{80, 120}) {
        EXPECT_LE(longestLine(onTerminal(columns, arguments)), columns);
    }
    EXPECT_EQ(longestLine(onTerminal(120, arguments, {"TERM=xterm", "COLUMNS=50"})), 50U);
}

TEST(ProgramTerminal, aFilterGoesAsDeepAsItNeeds) {
    const auto shown = [](std::vector<std::string> arguments) {
        arguments.insert(arguments.end(), {"--color", "never", sample()});
        return onTerminal(200, arguments);
    };
    EXPECT_THAT(shown({}), Not(HasSubstr("AU 1")));
    EXPECT_THAT(shown({"--key-only"}), HasSubstr("VPS SPS PPS PREFIX_SEI x2 IDR_N_LP\n"));
    EXPECT_THAT(shown({"--type", "20"}), HasSubstr("20  IDR_N_LP\n"));
    EXPECT_THAT(shown({"--sei", "144"}), HasSubstr("SEI 144 content_light_level_info: 00 00 00 00\n"));
    EXPECT_THAT(shown({"--sei", "144"}), Not(HasSubstr("SEI 137 mastering_display_colour_volume,")));
    EXPECT_THAT(shown({"--level", "summary", "--sei", "144"}), Not(HasSubstr("AU 1")));
}

}  // namespace
}  // namespace qv_test
