// Help, exit codes, and outputs that fail.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "InspectSupport.h"
#include "RunProgram.h"

namespace qv_test {
namespace {

using ::testing::AllOf;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::StartsWith;

class ProgramExit : public ::testing::Test {
protected:
    ProgramExit() {
        write("good.h265", fileContent(sampleFolder() / "hevc_hdr10.h265"));
        write("broken.h265", fileContent(sampleFolder() / "hevc_hdr10.h265") + hex("00 00 01 82 01 02"));
    }

    Outcome run(std::vector<std::string> words) const {
        words.insert(words.begin(), QVINSPECT_PROGRAM);
        return runProgram(words, files_.path());
    }

    // With standard output on a file descriptor; standard error goes to err.
    int runInto(int out, std::vector<std::string> words, std::string& err) const {
        words.insert(words.begin(), QVINSPECT_PROGRAM);
        const std::string errPath = folder() + "/err";
        const int errFile = openForWriting(errPath);
        const int exitCode = runProgram(words, {kNoInput, out, errFile}, folder());
        close(errFile);
        err = textOf(errPath);
        return exitCode;
    }

    // Under another name, until it is complete.
    bool isBeingWritten() const {
        const std::filesystem::directory_iterator files(folder());
        return std::any_of(begin(files), end(files), [](const auto& file) {
            std::error_code isGone;
            return file.path().filename().string().rfind(".qvinspect-", 0) == 0 &&
                   file.file_size(isGone) > 0 && !isGone;
        });
    }

    void write(const std::string& name, const Bytes& content) const { files_.write(name, content); }
    std::string folder() const { return files_.path(); }

private:
    TemporaryFolder files_;
};

// --- Help ---

// Exactly the golden file, which a person has reviewed. If QVINSPECT_WRITE_GOLDEN is set, it is written
// first.
TEST_F(ProgramExit, help) {
    const Outcome outcome = run({"--help"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.err, "");
    const std::string path = QVINSPECT_GOLDEN_DIR "/help.txt";
    if (std::getenv("QVINSPECT_WRITE_GOLDEN") != nullptr) {
        std::ofstream(path, std::ios::binary) << outcome.out;
    }
    EXPECT_EQ(outcome.out, textOf(path));
    EXPECT_EQ(run({"-h"}).out, outcome.out);
}

TEST_F(ProgramExit, whatIsPrintedFitsATerminal) {
    for (const char* option : {"--help", "--list-checks"}) {
        std::istringstream text(run({option}).out);
        size_t lines = 0;
        for (std::string line; std::getline(text, line); ++lines) {
            EXPECT_LE(line.size(), 80U) << line;
        }
        EXPECT_GT(lines, 5U);
    }
}

TEST_F(ProgramExit, version) {
    const Outcome outcome = run({"--version"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_THAT(outcome.out, ::testing::MatchesRegex("qvinspect [0-9]+\\.[0-9]+\\.[0-9]+\n"));
}

TEST_F(ProgramExit, listOfChecks) {
    const Outcome outcome = run({"--list-checks"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_THAT(outcome.out, StartsWith("max-key-interval=N[s]  "));
    EXPECT_THAT(outcome.out, HasSubstr("\nhdr-vivid  "));
}

// --- Exit codes ---

struct ExitCase {
    std::vector<std::string> words;
    int exitCode;
};

// The first of 5, 2, 4, 3.
TEST_F(ProgramExit, codes) {
    const std::vector<std::string> failing = {"--check", "captions"};
    const std::vector<ExitCase> cases = {
        {{"good.h265"}, 0},
        {{"broken.h265"}, 0},
        {{"--nothing", "good.h265"}, 1},
        {{"missing"}, 2},
        {{"missing", "good.h265"}, 2},
        {{"good.h265", "missing"}, 2},
        {{"--strict", "good.h265"}, 0},
        {{"--strict", "broken.h265"}, 3},
        {{"--strict", "broken.h265", "good.h265"}, 3},
        {{"--check", "hdr10", "good.h265"}, 0},
        {{"--check", "captions", "good.h265"}, 4},
        {{"--check", "captions", "--strict", "broken.h265"}, 4},
        {{"--check", "no-errors", "broken.h265", "good.h265"}, 4},
        {{"--check", "captions", "--strict", "broken.h265", "missing"}, 2},
        {{"--to-annexb", "/dev/full", "good.h265"}, 5},
        {{"--to-annexb", "/dev/full", "--check", "captions", "--strict", "broken.h265"}, 5},
        {{"--to-annexb", "/dev/full", "missing"}, 2},
        {{"--to-annexb", "none/x", "missing"}, 5},
    };
    for (const ExitCase& each : cases) {
        EXPECT_EQ(run(each.words).exitCode, each.exitCode) << ::testing::PrintToString(each.words);
    }
}

// --- Checks ---

TEST_F(ProgramExit, checkLines) {
    const Outcome outcome = run({"--check", "hdr10", "--check", "captions", "good.h265", "broken.h265"});
    EXPECT_EQ(outcome.exitCode, 4);
    EXPECT_EQ(outcome.err, "");
    size_t met = 0;
    size_t failed = 0;
    std::istringstream text(outcome.out);
    for (std::string line; std::getline(text, line);) {
        met += line == "[OK] hdr10: transfer: SMPTE ST 2084 (PQ), mastering display: yes, content light "
                       "level: yes"
                   ? 1U
                   : 0U;
        failed += line == "[FAIL] captions: no messages" ? 1U : 0U;
    }
    EXPECT_EQ(met, 2U);
    EXPECT_EQ(failed, 2U);
}

TEST_F(ProgramExit, checkLinesMakeWayForAnotherOutput) {
    const Outcome outcome = run({"--to-annexb", "-", "--check", "hdr10", "--check", "captions", "good.h265"});
    EXPECT_EQ(outcome.exitCode, 4);
    EXPECT_EQ(outcome.out.compare(0, 4, std::string("\0\0\0\1", 4)), 0);
    EXPECT_EQ(outcome.out.find("[OK]"), std::string::npos);
    EXPECT_EQ(outcome.err,
              "good.h265: [OK] hdr10: transfer: SMPTE ST 2084 (PQ), mastering display: yes, content light "
              "level: yes\n"
              "good.h265: [FAIL] captions: no messages\n");
}

// --- Outputs that fail ---

const char* const kFileOutputs[] = {"--json", "--ndjson", "--csv", "--html", "--to-annexb", "--to-lengths"};

TEST_F(ProgramExit, fullDisk) {
    for (const char* option : kFileOutputs) {
        const Outcome outcome = run({option, "/dev/full", "good.h265"});
        EXPECT_EQ(outcome.exitCode, 5) << option;
        EXPECT_EQ(outcome.err,
                  "qvinspect: /dev/full cannot be written: No space left on device; it is incomplete\n")
            << option;
        EXPECT_THAT(outcome.out, HasSubstr("access units")) << "the listing is made all the same";
    }
}

TEST_F(ProgramExit, fullStandardOutput) {
    std::vector<std::vector<std::string>> lines = {
        {"good.h265"}, {"--help"}, {"--version"}, {"--list-checks"}};
    for (const char* option : kFileOutputs) {
        lines.push_back({option, "-", "good.h265"});
    }
    for (const auto& line : lines) {
        const int full = open("/dev/full", O_WRONLY | O_CLOEXEC);
        std::string err;
        EXPECT_EQ(runInto(full, line, err), 5) << ::testing::PrintToString(line);
        close(full);
        EXPECT_EQ(err,
                  "qvinspect: standard output cannot be written: No space left on device; it is incomplete\n")
            << ::testing::PrintToString(line);
    }
}

TEST_F(ProgramExit, outputsThatCannotBeOpened) {
    for (const char* option : kFileOutputs) {
        for (const auto& [path, reason] :
             std::vector<std::pair<std::string, std::string>>{{"none/x", "No such file or directory"},
                                                              {".", "Is a directory"},
                                                              {"good.h265/x", "Not a directory"},
                                                              {"/proc/x\n", "No such file or directory"}}) {
            const Outcome outcome = run({option, path, "good.h265"});
            EXPECT_EQ(outcome.exitCode, 5);
            EXPECT_EQ(outcome.out, "") << "nothing is read for an output that cannot be made";
            EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << outcome.err;
            EXPECT_THAT(outcome.err, AllOf(StartsWith("qvinspect: " + path.substr(0, 4)),
                                           EndsWith("cannot be opened for writing: " + reason + "\n")));
        }
    }
}

TEST_F(ProgramExit, readOnlyFolder) {
    const std::string closed = folder() + "/closed";
    std::filesystem::create_directory(closed);
    std::filesystem::permissions(closed,
                                 std::filesystem::perms::owner_read | std::filesystem::perms::owner_exec);
    if (access(closed.c_str(), W_OK) == 0) {
        GTEST_SKIP() << "this user may write anywhere";
    }
    const Outcome outcome = run({"--to-annexb", "closed/x", "good.h265"});
    EXPECT_EQ(outcome.exitCode, 5);
    EXPECT_EQ(outcome.err, "qvinspect: closed/x cannot be opened for writing: Permission denied\n");
}

TEST_F(ProgramExit, folderOfItemsThatIsNotEmpty) {
    const Outcome outcome = run({"--extract-sei", ".", "good.h265"});
    EXPECT_EQ(outcome.exitCode, 5);
    EXPECT_EQ(outcome.err, "qvinspect: . is not empty: name a new folder, or empty it\n");
}

TEST_F(ProgramExit, otherOutputsAreFinished) {
    const Outcome outcome =
        run({"--to-annexb", "/dev/full", "--to-lengths", "lengths", "--extract-sei", "sei", "good.h265"});
    EXPECT_EQ(outcome.exitCode, 5);
    EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << outcome.err;
    const Outcome alone = run({"--to-lengths", "alone", "--extract-sei", "sei_alone", "good.h265"});
    EXPECT_EQ(alone.exitCode, 0);
    EXPECT_EQ(textOf(folder() + "/lengths"), textOf(folder() + "/alone"));
    EXPECT_EQ(textOf(folder() + "/sei/index.json"), textOf(folder() + "/sei_alone/index.json"));
    EXPECT_EQ(outcome.out, alone.out);
}

// The other outputs are finished, without a message.
TEST_F(ProgramExit, readerOfStandardOutputThatGoesAway) {
    for (const auto& [words, exitCode] :
         std::vector<std::pair<std::vector<std::string>, int>>{{{"--to-annexb", "-", "good.h265"}, 0},
                                                               {{"--to-lengths", "lengths", "good.h265"}, 0},
                                                               {{"--check", "captions", "good.h265"}, 4},
                                                               {{"--help"}, 0}}) {
        int ends[2];
        ASSERT_EQ(pipe(ends), 0);
        close(ends[0]);
        std::string err;
        EXPECT_EQ(runInto(ends[1], words, err), exitCode) << ::testing::PrintToString(words);
        close(ends[1]);
        EXPECT_EQ(err, "");
    }
    EXPECT_EQ(run({"--to-lengths", "alone", "good.h265"}).exitCode, 0);
    EXPECT_EQ(textOf(folder() + "/lengths"), textOf(folder() + "/alone"));
}

// --- Conversions ---

TEST_F(ProgramExit, onlyThePartThatIsAskedFor) {
    EXPECT_EQ(run({"--to-annexb", "two", "--limit", "2", "--key-only", "good.h265"}).exitCode, 0);
    const Outcome outcome = run({"two"});
    EXPECT_THAT(outcome.out, HasSubstr("access units      2\n"));
}

#if QVINSPECT_HAS_LIBAVFORMAT

// A length field overwritten in the first sample.
TEST_F(ProgramExit, conversionOfABrokenInput) {
    Bytes broken = fileContent(sampleFolder() / "avc_avc1.mp4");
    const Bytes head = hex("00 00 02 AC 06 05");
    const auto at = std::search(broken.begin(), broken.end(), head.begin(), head.end());
    ASSERT_NE(at, broken.end());
    *at = 0x7F;
    write("broken.mp4", broken);
    const Outcome outcome = run({"--to-annexb", "x", "broken.mp4"});
    EXPECT_EQ(outcome.exitCode, 5);
    EXPECT_EQ(outcome.err,
              "qvinspect: x: access unit 1 of broken.mp4: 2958 bytes without a NAL unit are left out\n"
              "qvinspect: x is not the whole stream: one part of it could not be converted; --level nalus "
              "--errors-only shows where it is broken\n");
    EXPECT_THAT(run({"x"}).out, HasSubstr("access units      24\n"));
}

#endif

// --- Interruption ---

// 130 before all others, and what was written is valid.
TEST_F(ProgramExit, interruption) {
    const Bytes once = fileContent(sampleFolder() / "hevc_hdr10.h265");
    Bytes stream;
    for (int i = 0; i < 3000; ++i) {
        stream.insert(stream.end(), once.begin(), once.end());
    }
    write("long.h265", stream);
    const std::string cut = folder() + "/cut";
    const std::string in = folder() + "/long.h265";
    const pid_t child = fork();
    if (child == 0) {
        const int null = open("/dev/null", O_WRONLY);
        dup2(null, STDOUT_FILENO);
        dup2(null, STDERR_FILENO);
        execl(QVINSPECT_PROGRAM, QVINSPECT_PROGRAM, "--to-annexb", cut.c_str(), "--check", "captions",
              in.c_str(), static_cast<char*>(nullptr));
        _exit(127);
    }
    // Once a little of the output is there, nearly all of the input is still to come.
    int status = 0;
    while (!isBeingWritten()) {
        ASSERT_EQ(waitpid(child, &status, WNOHANG), 0) << "it ended by itself";
        usleep(1000);
    }
    kill(child, SIGINT);
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 130);
    const Bytes written = fileContent(cut);
    ASSERT_EQ(run({"--to-annexb", "once", "good.h265"}).exitCode, 0);
    const Bytes period = fileContent(folder() + "/once");
    ASSERT_LT(written.size(), period.size() * 3000);
    size_t same = 0;
    while (same < written.size() && written[same] == period[same % period.size()]) {
        ++same;
    }
    EXPECT_EQ(same, written.size());
}

}  // namespace
}  // namespace qv_test
