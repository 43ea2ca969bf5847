// The manual, the completion and the guide agree with the program.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include "InspectSupport.h"
#include "RunProgram.h"
#include "analysis/Check.h"

namespace qv_test {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsSupersetOf;
using ::testing::UnorderedElementsAreArray;

std::set<std::string> optionsIn(const std::string& text) {
    const std::string letters = "abcdefghijklmnopqrstuvwxyz0123456789-";
    std::set<std::string> options;
    for (size_t at = text.find(" --"); at != std::string::npos; at = text.find(" --", at + 1)) {
        const size_t begin = at + 1;
        const size_t end = std::min(text.find_first_not_of(letters, begin), text.size());
        if (end > begin + 2 && text[begin + 2] != '-') {
            options.insert(text.substr(begin, end - begin));
        }
    }
    return options;
}

// Removes overstrikes: a letter, a backspace and the letter again are a bold letter.
std::string withoutOverstrikes(const std::string& text) {
    std::string plain;
    for (const char letter : text) {
        if (letter == '\b') {
            plain.pop_back();
        } else {
            plain += letter;
        }
    }
    return plain;
}

// The options of the program itself.
std::set<std::string> allOptions() {
    const TemporaryFolder folder;
    std::string help = runProgram({QVINSPECT_PROGRAM, "--help"}, folder.path()).out;
    std::replace(help.begin(), help.end(), ',', ' ');  // of "-h,--help"
    const auto options = optionsIn(help);
    EXPECT_GT(options.size(), 20U);
    return options;
}

// The output of a program that must exist.
std::string outputOf(const std::vector<std::string>& words) {
    const TemporaryFolder folder;
    const Outcome outcome = runProgram(words, folder.path());
    EXPECT_EQ(outcome.exitCode, 0) << ::testing::PrintToString(words) << outcome.out << outcome.err;
    EXPECT_EQ(outcome.err, "");
    return outcome.out;
}

TEST(Manual, isWellFormed) {
    EXPECT_EQ(outputOf({"mandoc", "-Tlint", QVINSPECT_MANUAL}), "");
    EXPECT_EQ(outputOf({"groff", "-mandoc", "-ww", "-z", QVINSPECT_MANUAL}), "");
}

TEST(Manual, documentsEveryOptionAndCheck) {
    const std::string manual = outputOf({"mandoc", "-Tascii", "-Owidth=1000", QVINSPECT_MANUAL});
    std::string plain = withoutOverstrikes(manual);
    std::replace(plain.begin(), plain.end(), '|', ' ');
    std::replace(plain.begin(), plain.end(), '\n', ' ');
    EXPECT_EQ(optionsIn(plain), allOptions());
    for (const qvinspect::CheckRule& rule : qvinspect::checkRules()) {
        EXPECT_THAT(plain, HasSubstr(std::string("     ") + rule.name));
    }
    for (const char* word : {"NO_COLOR", "COLUMNS", "130"}) {
        EXPECT_THAT(plain, HasSubstr(word));
    }
}

TEST(Manual, guideKnowsOnlyOptionsThatAreThere) {
    std::string guide = textOf(QVINSPECT_GUIDE);
    std::replace(guide.begin(), guide.end(), '`', ' ');
    EXPECT_THAT(allOptions(), IsSupersetOf(optionsIn(guide)));
}

// --- Completion ---

// The completions that bash offers after the words, the last of which is incomplete.
std::vector<std::string> completionsOf(const std::vector<std::string>& words, const std::string& folder) {
    std::vector<std::string> command = {
        "bash", "-c",
        "shopt -s extglob; . \"$0\"; COMP_WORDS=(qvinspect \"$@\"); COMP_CWORD=$#; _qvinspect; "
        "for reply in \"${COMPREPLY[@]}\"; do printf '%s\\n' \"$reply\"; done",
        QVINSPECT_COMPLETION};
    command.insert(command.end(), words.begin(), words.end());
    const Outcome outcome = runProgram(command, folder);
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
    EXPECT_EQ(outcome.err, "");
    std::vector<std::string> lines;
    size_t begin = 0;
    for (size_t end = outcome.out.find('\n'); end != std::string::npos; end = outcome.out.find('\n', begin)) {
        lines.push_back(outcome.out.substr(begin, end - begin));
        begin = end + 1;
    }
    return lines;
}

class Completion : public ::testing::Test {
protected:
    std::vector<std::string> complete(const std::vector<std::string>& words) const {
        return completionsOf(words, folder_.path());
    }
    const TemporaryFolder& folder() const { return folder_; }

private:
    TemporaryFolder folder_;
};

TEST_F(Completion, everyOption) {
    EXPECT_THAT(complete({"--"}), UnorderedElementsAreArray(allOptions()));
    EXPECT_THAT(complete({"x.mp4", "--lev"}), ElementsAre("--level"));
}

TEST_F(Completion, everyCheck) {
    const auto offered = complete({"--check", ""});
    for (const qvinspect::CheckRule& rule : qvinspect::checkRules()) {
        const std::string name = rule.name;
        if (name == "codec") {
            EXPECT_THAT(offered, IsSupersetOf({"codec=h264", "codec=h265"}));
        } else {
            EXPECT_THAT(offered, Contains(*rule.value == '\0' ? name : name + "="));
        }
    }
    EXPECT_EQ(offered.size(), qvinspect::checkRules().size() + 1);
}

// For a wrong value, the program lists the valid ones.
TEST_F(Completion, everyValue) {
    for (const char* option : {"--codec", "--format", "--level", "--color"}) {
        const std::string message = runProgram({QVINSPECT_PROGRAM, option, "?", "x"}, folder().path()).err;
        const std::string list = "is none of ";
        const size_t begin = message.find(list);
        ASSERT_NE(begin, std::string::npos) << message;
        const std::string right =
            message.substr(begin + list.size(), message.find('\n') - begin - list.size());
        std::string offered;
        for (const std::string& value : complete({option, ""})) {
            offered += (offered.empty() ? "" : ", ") + value;
        }
        EXPECT_EQ(offered, right) << option;
    }
    EXPECT_THAT(complete({"--level", "s"}), ElementsAre("summary", "samples", "sei"));
}

// bash treats "=" as a separate word.
TEST_F(Completion, valueAfterAnEqualsSign) {
    EXPECT_THAT(complete({"--check", "codec", "=", "h26"}), ElementsAre("h264", "h265"));
    EXPECT_THAT(complete({"--level", "=", "na"}), ElementsAre("nalus"));
}

TEST_F(Completion, filesAndFolders) {
    folder().write("with blanks.mp4", hex("00"));
    folder().write("-dash", hex("00"));
    std::filesystem::create_directory(folder().path() / "within");
    EXPECT_THAT(complete({"wi"}), UnorderedElementsAreArray({"with blanks.mp4", "within"}));
    EXPECT_THAT(complete({"--json", "wi"}), UnorderedElementsAreArray({"with blanks.mp4", "within"}));
    EXPECT_THAT(complete({"--json", "-d"}), ElementsAre("-dash"));
    EXPECT_THAT(complete({"--extract-sei", "wi"}), ElementsAre("within"));
    EXPECT_THAT(complete({"--limit", ""}), ElementsAre());
}

}  // namespace
}  // namespace qv_test
