// Standard input, output and error that are closed, full or of the wrong kind.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "InspectSupport.h"
#include "RunProgram.h"

namespace qv_test {
namespace {

using ::testing::HasSubstr;
using ::testing::PrintToString;
using ::testing::StartsWith;

constexpr const char* kNotReadable =
    "cannot be opened: it is not open for reading; name a file, or send a stream through a pipe";
constexpr const char* kNotWritable = "cannot be opened for writing: Bad file descriptor";

class ProgramStreams : public ::testing::Test {
protected:
    ProgramStreams() {
        write("good.h265", fileContent(sampleFolder() / "hevc_hdr10.h265"));
        write("broken.h265", fileContent(sampleFolder() / "hevc_hdr10.h265") + hex("00 00 01 82 01 02"));
    }

    // Returns the exit code. Streams that are not closed are set here: input is empty, output is collected.
    int run(std::vector<std::string> words, const std::vector<int>& closed) {
        const int out = openForWriting(folder() + "/out");
        const int err = openForWriting(folder() + "/err");
        const auto unlessClosed = [&](int stream, int file) {
            return std::count(closed.begin(), closed.end(), stream) > 0 ? kClosed : file;
        };
        const Streams streams = {unlessClosed(STDIN_FILENO, kNoInput), unlessClosed(STDOUT_FILENO, out),
                                 unlessClosed(STDERR_FILENO, err)};
        const int exitCode = runOn(std::move(words), streams);
        close(out);
        close(err);
        return exitCode;
    }

    int runOn(std::vector<std::string> words, const Streams& streams) const {
        words.insert(words.begin(), QVINSPECT_PROGRAM);
        return runProgram(words, streams, folder());
    }

    void write(const std::string& name, const Bytes& content) const { files_.write(name, content); }
    std::string folder() const { return files_.path(); }
    std::string text(const std::string& name) const { return textOf(folder() + "/" + name); }

private:
    TemporaryFolder files_;
};

struct Case {
    std::vector<std::string> words;
    int exitCode;
};

// Each of the exit codes 1 to 5, with a message on standard error.
std::vector<Case> failures() {
    return {{{"good.h265"}, 0},
            {{"--nothing", "good.h265"}, 1},
            {{"missing"}, 2},
            {{"missing", "good.h265"}, 2},
            {{"--strict", "broken.h265"}, 3},
            {{"--ndjson", "-", "--check", "captions", "good.h265"}, 4},
            {{"--json", "/dev/full", "good.h265"}, 5},
            {{"--json", "none/x", "good.h265"}, 5}};
}

// --- Standard error ---

TEST_F(ProgramStreams, closedErrorChangesNothing) {
    for (const Case& each : failures()) {
        EXPECT_EQ(run(each.words, {}), each.exitCode) << PrintToString(each.words);
        const std::string out = text("out");
        EXPECT_EQ(run(each.words, {STDERR_FILENO}), each.exitCode) << PrintToString(each.words);
        EXPECT_EQ(text("out"), out);
    }
}

TEST_F(ProgramStreams, errorThatCannotBeWritten) {
    for (const char* path : {"/dev/full", "/dev/null"}) {
        const int err = open(path, (std::string(path) == "/dev/null" ? O_RDONLY : O_WRONLY) | O_CLOEXEC);
        ASSERT_GE(err, 0);
        for (const Case& each : failures()) {
            const int out = openForWriting(folder() + "/out");
            EXPECT_EQ(runOn(each.words, {kNoInput, out, err}), each.exitCode) << PrintToString(each.words);
            close(out);
        }
        close(err);
    }
}

// No output gets the descriptor, and with it the messages.
TEST_F(ProgramStreams, closedErrorIsNoOutput) {
    const std::vector<std::string> words = {"--csv",   "-",        "--ndjson",  "lines",
                                            "--check", "captions", "good.h265", "missing"};
    EXPECT_EQ(run(words, {}), 2);
    EXPECT_THAT(text("err"), HasSubstr("[FAIL] captions"));
    const std::string lines = text("lines");
    EXPECT_EQ(run(words, {STDERR_FILENO}), 2);
    EXPECT_EQ(text("lines"), lines);
    EXPECT_EQ(run(words, {STDIN_FILENO, STDERR_FILENO}), 2);
    EXPECT_EQ(text("lines"), lines);
}

// --- Standard input ---

TEST_F(ProgramStreams, closedInput) {
    for (const auto& [name, shown] : std::vector<std::pair<std::string, std::string>>{
             {"-", "standard input"}, {"/dev/stdin", "/dev/stdin"}}) {
        EXPECT_EQ(run({name}, {STDIN_FILENO}), 2);
        EXPECT_EQ(text("err"), "qvinspect: " + shown + ": " + kNotReadable + "\n");
        EXPECT_EQ(text("out"), "");
        EXPECT_EQ(run({name}, {STDIN_FILENO, STDERR_FILENO}), 2);
        EXPECT_EQ(run({name, "good.h265"}, {STDIN_FILENO}), 2);
        EXPECT_THAT(text("out"), HasSubstr("access units"));
    }
    EXPECT_EQ(run({"good.h265"}, {STDIN_FILENO}), 0);
}

TEST_F(ProgramStreams, inputThatIsOnlyForWriting) {
    const int in = openForWriting(folder() + "/in");
    const int err = openForWriting(folder() + "/err");
    EXPECT_EQ(runOn({"-"}, {in, err, err}), 2);
    close(in);
    close(err);
    EXPECT_EQ(text("err"), std::string("qvinspect: standard input: ") + kNotReadable + "\n");
}

// The program's internal descriptors are not for users: reading from its pipe would take for ever.
TEST_F(ProgramStreams, descriptorsOfTheProgram) {
    const auto runAlone = [&](const std::vector<std::string>& arguments) {
        std::vector<std::string> words = {"sh", "-c", "exec \"$@\" 3>&- 4>&- 5>&- 6>&-", "sh",
                                          QVINSPECT_PROGRAM};
        words.insert(words.end(), arguments.begin(), arguments.end());
        return runProgram(words, folder());
    };
    for (const char* path : {"/dev/fd/3", "/dev/fd/4", "/dev/fd/5", "/proc/self/fd/6"}) {
        const std::string start = std::string("qvinspect: ") + path;
        const Outcome read = runAlone({path});
        EXPECT_EQ(read.exitCode, 2) << path;
        EXPECT_EQ(read.err, start + ": " + kNotReadable + "\n");
        const Outcome written = runAlone({"--json", path, "good.h265"});
        EXPECT_EQ(written.exitCode, 5) << path;
        EXPECT_EQ(written.err, start + " " + kNotWritable + "\n");
    }
}

// --- Standard output ---

const std::vector<std::vector<std::string>> kToStandardOutput = {
    {"good.h265"},
    {"--help"},
    {"--version"},
    {"--list-checks"},
    {"--schema"},
    {"--json", "-", "good.h265"},
    {"--ndjson", "-", "good.h265"},
    {"--csv", "-", "good.h265"},
    {"--html", "-", "good.h265"},
    {"--to-annexb", "-", "good.h265"},
    {"--to-lengths", "-", "good.h265"},
    {"--to-lengths", "/dev/stdout", "good.h265"},
    {"--ndjson", "lines", "good.h265"},  // beside the listing
};

TEST_F(ProgramStreams, closedOutput) {
    for (const auto& words : kToStandardOutput) {
        EXPECT_EQ(run(words, {STDOUT_FILENO}), 5) << PrintToString(words);
        EXPECT_THAT(text("err"), HasSubstr(kNotWritable)) << PrintToString(words);
        EXPECT_EQ(run(words, {STDIN_FILENO, STDOUT_FILENO}), 5) << PrintToString(words);
        EXPECT_EQ(run(words, {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}), 5) << PrintToString(words);
    }
    EXPECT_FALSE(std::filesystem::exists(folder() + "/lines")) << "nothing is read, nothing is made";
}

TEST_F(ProgramStreams, outputThatIsOnlyForReading) {
    const int out = openForReading("/dev/null");
    const int err = openForWriting(folder() + "/err");
    EXPECT_EQ(runOn({"good.h265"}, {kNoInput, out, err}), 5);
    close(out);
    close(err);
    EXPECT_EQ(text("err"), std::string("qvinspect: standard output ") + kNotWritable + "\n");
}

// As a parent process may leave it: a write finds no space and is repeated.
TEST_F(ProgramStreams, outputThatDoesNotBlock) {
    Bytes stream;
    for (int i = 0; i < 300; ++i) {
        stream = stream + fileContent(sampleFolder() / "hevc_hdr10.h265");
    }
    write("long.h265", stream);
    const std::vector<std::string> words = {"--ndjson", "-", "long.h265"};
    ASSERT_EQ(run(words, {}), 0);
    int ends[2];
    ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
    ASSERT_EQ(fcntl(ends[1], F_SETFL, O_NONBLOCK), 0);
    std::string lines;
    std::thread reader([&] {
        std::string piece(5000, '\0');
        for (ssize_t count = 1; count > 0; lines.append(piece, 0, static_cast<size_t>(count))) {
            count = read(ends[0], piece.data(), piece.size());
            usleep(100);
        }
    });
    const int err = openForWriting(folder() + "/err");
    EXPECT_EQ(runOn(words, {kNoInput, ends[1], err}), 0);
    close(ends[1]);
    close(err);
    reader.join();
    close(ends[0]);
    EXPECT_GT(lines.size(), 200000U) << "more than a pipe holds";
    EXPECT_TRUE(lines == text("out"));
    EXPECT_EQ(text("err"), "");
}

// --- The limit on the size of a file ---

TEST_F(ProgramStreams, filesThatMayNotGrow) {
    const std::vector<std::string> shell = {"sh", "-c", "ulimit -f 1; exec \"$@\"", "sh", QVINSPECT_PROGRAM};
    const auto runLimited = [&](std::vector<std::string> words, int out) {
        words.insert(words.begin(), shell.begin(), shell.end());
        const int err = openForWriting(folder() + "/err");
        const int exitCode = runProgram(words, {kNoInput, out, err}, folder());
        close(err);
        return exitCode;
    };
    const int null = open("/dev/null", O_WRONLY | O_CLOEXEC);
    for (const char* option : {"--json", "--ndjson", "--csv", "--html", "--to-annexb", "--to-lengths"}) {
        EXPECT_EQ(runLimited({option, "file", "good.h265"}, null), 5) << option;
        EXPECT_EQ(text("err"), "qvinspect: file cannot be written: File too large; it is unchanged\n");
        EXPECT_FALSE(std::filesystem::exists(folder() + "/file"));
    }
    close(null);
    const int out = openForWriting(folder() + "/out");
    EXPECT_EQ(runLimited({"--ndjson", "-", "good.h265"}, out), 5);
    close(out);
    EXPECT_EQ(text("err"),
              "qvinspect: standard output cannot be written: File too large; it is incomplete\n");
}

}  // namespace
}  // namespace qv_test
