// Files that the program writes: completely or not at all, and never over its inputs.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <string>
#include <thread>
#include <vector>

#include "ProgramSupport.h"

namespace qv_test {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using ::testing::StartsWith;

const char* const kFileOutputs[] = {"--json", "--ndjson", "--csv", "--html", "--to-annexb", "--to-lengths"};

class ProgramOutputs : public Program {
protected:
    ProgramOutputs() {
        write("good.h265", rawStream());
        write("former", {'o', 'l', 'd'});
    }

    // By a shell, with "$@" for the program and its arguments.
    Outcome runBy(const std::string& command, const std::vector<std::string>& arguments) const {
        std::vector<std::string> words = {"sh", "-c", command, "sh", QVINSPECT_PROGRAM};
        words.insert(words.end(), arguments.begin(), arguments.end());
        return runProgram(words, folder());
    }

    std::string text(const std::string& name) const { return textOf(folder() + "/" + name); }

    std::vector<std::string> filesThere() const {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(folder())) {
            names.push_back(entry.path().filename());
        }
        std::sort(names.begin(), names.end());
        return names;
    }

    mode_t modeOf(const std::string& name) const {
        struct stat status = {};
        EXPECT_EQ(stat((folder() + "/" + name).c_str(), &status), 0);
        return status.st_mode & 07777;
    }

    // The content of any of the unfinished files.
    std::string unfinished() const {
        for (const std::string& name : filesThere()) {
            if (name.rfind(".qvinspect-", 0) == 0) {
                return text(name);
            }
        }
        return {};
    }
};

// --- Replacing ---

TEST_F(ProgramOutputs, formerContentStaysWhenWritingFails) {
    const std::vector<std::string> before = filesThere();
    for (const char* option : kFileOutputs) {
        const Outcome outcome = runBy("ulimit -f 1; exec \"$@\" >/dev/null", {option, "former", "good.h265"});
        EXPECT_EQ(outcome.exitCode, 5) << option;
        EXPECT_EQ(outcome.err, "qvinspect: former cannot be written: File too large; it is unchanged\n");
        EXPECT_EQ(text("former"), "old");
        EXPECT_EQ(filesThere(), before);
    }
}

TEST_F(ProgramOutputs, formerContentStaysWithoutAStreamToConvert) {
    for (const char* option : {"--to-annexb", "--to-lengths"}) {
        EXPECT_EQ(inspect({option, "former", "missing"}).exitCode, 2);
        EXPECT_EQ(text("former"), "old");
        EXPECT_EQ(inspect({option, "new", "missing"}).exitCode, 2);
        EXPECT_FALSE(fs::exists(folder() + "/new"));
    }
    EXPECT_EQ(inspect({"--json", "former", "missing"}).exitCode, 2);
    EXPECT_THAT(text("former"), HasSubstr("\"error\"")) << "a report says why";
}

TEST_F(ProgramOutputs, permissions) {
    ASSERT_EQ(chmod((folder() + "/former").c_str(), 0640), 0);
    EXPECT_EQ(runBy("umask 077; exec \"$@\"", {"--json", "former", "--csv", "new", "good.h265"}).exitCode, 0);
    EXPECT_EQ(modeOf("former"), 0640U);
    EXPECT_EQ(modeOf("new"), 0600U);
    EXPECT_EQ(runBy("umask 022; exec \"$@\"", {"--json", "newer", "good.h265"}).exitCode, 0);
    EXPECT_EQ(modeOf("newer"), 0644U);
}

TEST_F(ProgramOutputs, linksStay) {
    fs::create_directory(folder() + "/deep");
    fs::create_symlink("../former", folder() + "/deep/second");
    fs::create_symlink("deep/second", folder() + "/first");
    fs::create_symlink("made", folder() + "/dangling");
    fs::create_hard_link(folder() + "/former", folder() + "/other_name");
    EXPECT_EQ(inspect({"--csv", "first", "--json", "dangling", "good.h265"}).exitCode, 0);
    EXPECT_TRUE(fs::is_symlink(folder() + "/first"));
    EXPECT_TRUE(fs::is_symlink(folder() + "/deep/second"));
    EXPECT_TRUE(fs::is_symlink(folder() + "/dangling"));
    EXPECT_THAT(text("former"), StartsWith("file,access_unit"));
    EXPECT_THAT(text("made"), StartsWith("{"));
    EXPECT_EQ(text("other_name"), "old") << "a hard link is another file from then on";
}

TEST_F(ProgramOutputs, circleOfLinks) {
    fs::create_symlink("b", folder() + "/a");
    fs::create_symlink("a", folder() + "/b");
    const Outcome outcome = inspect({"--json", "a", "good.h265"});
    EXPECT_EQ(outcome.exitCode, 5);
    EXPECT_EQ(outcome.err, "qvinspect: a cannot be opened for writing: Too many levels of symbolic links\n");
}

// Existing names, from killed processes or others, are skipped.
TEST_F(ProgramOutputs, temporaryNamesThatAreTaken) {
    const Outcome outcome =
        runBy("for i in 0 1 2; do ln -s ../elsewhere .qvinspect-$$-$i.tmp; done; exec \"$@\"",
              {"--csv", "table", "good.h265"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_THAT(text("table"), StartsWith("file,access_unit"));
    EXPECT_FALSE(fs::exists(folder() + "/../elsewhere"));
}

// --- Outputs that are not regular files ---

TEST_F(ProgramOutputs, inheritedDescriptors) {
    EXPECT_EQ(inspect({"--csv", "table", "good.h265"}).exitCode, 0);
    EXPECT_EQ(runBy("exec \"$@\" 3>>former", {"--csv", "/dev/fd/3", "good.h265"}).exitCode, 0);
    EXPECT_EQ(text("former"), "old" + text("table")) << "appended, as the shell asks for";
    EXPECT_EQ(runBy("exec \"$@\" | cat", {"--csv", "/dev/stdout", "--json", "-", "good.h265"}).exitCode, 0);
    EXPECT_EQ(runBy("exec \"$@\" 2>&1 >/dev/null", {"--csv", "/dev/stderr", "good.h265"}).out, text("table"));
    EXPECT_EQ(runBy("exec \"$@\"", {"--csv", "/dev/null", "good.h265"}).exitCode, 0);
    EXPECT_TRUE(fs::is_character_file("/dev/null"));
}

TEST_F(ProgramOutputs, namedPipe) {
    const std::string path = folder() + "/pipe";
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    std::string received;
    std::thread reader([&] { received = textOf(path); });
    EXPECT_EQ(inspect({"--csv", "pipe", "--json", "json", "good.h265"}).exitCode, 0);
    reader.join();
    EXPECT_TRUE(fs::is_fifo(path));
    EXPECT_EQ(inspect({"--csv", "table", "good.h265"}).exitCode, 0);
    EXPECT_EQ(received, text("table"));
}

// --- Interrupts ---

class InterruptedOutputs : public ProgramOutputs {
protected:
    InterruptedOutputs() {
        Bytes stream;
        for (int i = 0; i < 1000; ++i) {
            stream = stream + rawStream();
        }
        write("long.h265", stream);
    }

    // Runs until its standard output, a pipe that nobody reads, is full; stop is called then. The exit code.
    template <typename Stop>
    int runUntilStuck(const Stop& stop) {
        int ends[2];
        EXPECT_EQ(pipe2(ends, O_CLOEXEC), 0);
        const int err = openForWriting("/dev/null");
        RunningProgram program({"--ndjson", "-", "--to-annexb", "former", "long.h265"},
                               {kNoInput, ends[1], err}, folder());
        const int size = fcntl(ends[1], F_GETPIPE_SZ);
        close(ends[1]);
        for (int held = 0; held < size && program.isRunning(); ioctl(ends[0], FIONREAD, &held)) {
            usleep(1000);
        }
        stop(program);
        const int exitCode = program.wait();
        close(ends[0]);
        close(err);
        return exitCode;
    }
};

// The first signal ends the reading, the second one the program.
TEST_F(InterruptedOutputs, secondSignalLeavesFilesAsTheyWere) {
    for (const auto& [first, second] : std::vector<std::pair<int, int>>{
             {SIGINT, SIGINT}, {SIGTERM, SIGTERM}, {SIGINT, SIGTERM}, {SIGHUP, SIGHUP}}) {
        const std::vector<std::string> before = filesThere();
        const int exitCode =
            runUntilStuck([&, first = first, second = second](const RunningProgram& program) {
                EXPECT_FALSE(unfinished().empty());
                for (int i = 0; i < 2; ++i) {  // at once: as one
                    program.signal(first);
                    while (program.isPending(first)) {
                        usleep(1000);
                    }
                }
                usleep(400000);
                EXPECT_TRUE(program.isRunning());
                program.signal(second);
            });
        EXPECT_EQ(exitCode, -1) << "ended by the signal";
        EXPECT_EQ(text("former"), "old");
        EXPECT_EQ(filesThere(), before);
    }
}

TEST_F(InterruptedOutputs, pipeThatNobodyReads) {
    ASSERT_EQ(mkfifo((folder() + "/pipe").c_str(), 0600), 0);
    const int err = openForWriting(folder() + "/err");
    RunningProgram program({"--csv", "pipe", "--json", "former", "good.h265"}, {kNoInput, err, err},
                           folder());
    // It sleeps when it waits for a reader.
    for (int asleep = 0; asleep < 10;
         asleep = program.catches(SIGINT) && program.isAsleep() ? asleep + 1 : 0) {
        usleep(10000);
    }
    program.signal(SIGINT);
    EXPECT_EQ(program.wait(), 130);
    close(err);
    EXPECT_EQ(text("former"), "old");
}

TEST_F(InterruptedOutputs, killedProgramLeavesTheFormerContent) {
    EXPECT_EQ(runUntilStuck([](const RunningProgram& program) { program.signal(SIGKILL); }), -1);
    EXPECT_EQ(text("former"), "old");
}

TEST_F(InterruptedOutputs, hangupIsIgnoredWhenItWasBefore) {
    const auto before = signal(SIGHUP, SIG_IGN);
    runUntilStuck([](const RunningProgram& program) {
        EXPECT_FALSE(program.catches(SIGHUP));
        EXPECT_TRUE(program.catches(SIGINT));
        program.signal(SIGKILL);
    });
    signal(SIGHUP, before);
}

// --- Its own input ---

struct Clash {
    std::string command;
    std::vector<std::string> arguments;
    std::string reason;
};

TEST_F(ProgramOutputs, inputsAreNotWrittenOver) {
    fs::create_symlink("good.h265", folder() + "/link");
    fs::create_hard_link(folder() + "/good.h265", folder() + "/hard");
    fs::create_directory(folder() + "/sub");
    const std::vector<Clash> clashes = {
        {"exec \"$@\" <good.h265",
         {"--to-annexb", "good.h265", "-"},
         "--to-annexb good.h265 and standard input"},
        {"exec \"$@\" <good.h265", {"--to-annexb", "link", "-"}, "--to-annexb link and standard input"},
        {"exec \"$@\" <good.h265", {"--csv", "sub/../hard", "-"}, "--csv sub/../hard and standard input"},
        {"exec \"$@\" <good.h265",
         {"--csv", "good.h265", "/dev/stdin"},
         "--csv good.h265 and the input /dev/stdin"},
        {"exec \"$@\" >>good.h265",
         {"--to-annexb", "-", "good.h265"},
         "standard output and the input good.h265"},
        {"exec \"$@\" >>good.h265", {"good.h265"}, "standard output and the input good.h265"},
        {"exec \"$@\" >>good.h265", {"--json", "x", "former", "link"}, "standard output and the input link"},
        {"exec \"$@\" <good.h265 >>good.h265", {"-"}, "standard output and standard input"},
        {"exec \"$@\" <>good.h265 >&0", {"--ndjson", "-", "-"}, "standard output and standard input"},
        {"exec \"$@\" 3<>good.h265",
         {"--json", "/dev/fd/3", "good.h265"},
         "--json /dev/fd/3 and the input good.h265"},
        {"exec \"$@\"", {"--html", "hard", "former", "good.h265"}, "--html hard and the input good.h265"},
    };
    const std::vector<std::string> before = filesThere();
    for (const Clash& clash : clashes) {
        const Outcome outcome = runBy(clash.command, clash.arguments);
        EXPECT_EQ(outcome.exitCode, 1) << clash.reason;
        EXPECT_EQ(outcome.err, "qvinspect: " + clash.reason +
                                   " are the same file; name another file\n"
                                   "qvinspect --help shows all options.\n");
        EXPECT_TRUE(fileContent(folder() + "/good.h265") == rawStream()) << clash.reason;
        EXPECT_EQ(filesThere(), before);
    }
}

TEST_F(ProgramOutputs, outputsAreNotWrittenOverEachOther) {
    fs::create_symlink("made", folder() + "/dangling");
    fs::create_symlink("dangling", folder() + "/again");
    fs::create_symlink(".", folder() + "/here");
    const std::vector<Clash> clashes = {
        {"exec \"$@\"",
         {"--json", "made", "--csv", "dangling", "good.h265"},
         "--json made and --csv dangling"},
        {"exec \"$@\"",
         {"--json", "again", "--csv", "dangling", "good.h265"},
         "--json again and --csv dangling"},
        {"exec \"$@\"",
         {"--json", "made", "--csv", "here/made", "good.h265"},
         "--json made and --csv here/made"},
        {"exec \"$@\"",
         {"--json", "former", "--html", "here/former", "good.h265"},
         "--json former and --html here/former"},
        {"exec \"$@\" >>former", {"--json", "former", "good.h265"}, "standard output and --json former"},
        {"exec \"$@\" >>former",
         {"--json", "/dev/stdout", "good.h265"},
         "standard output and --json /dev/stdout"},
        {"exec \"$@\" >>former",
         {"--json", "here/former", "--csv", "-", "good.h265"},
         "standard output and --json here/former"},
    };
    const std::vector<std::string> before = filesThere();
    for (const Clash& clash : clashes) {
        const Outcome outcome = runBy(clash.command, clash.arguments);
        EXPECT_EQ(outcome.exitCode, 1) << clash.reason;
        EXPECT_THAT(outcome.err, StartsWith("qvinspect: " + clash.reason + " are the same file;"));
        EXPECT_EQ(text("former"), "old") << clash.reason;
        EXPECT_EQ(filesThere(), before);
    }
}

// Opening either end would wait for the other for ever.
TEST_F(ProgramOutputs, pipeForBoth) {
    ASSERT_EQ(mkfifo((folder() + "/pipe").c_str(), 0600), 0);
    const Outcome outcome = inspect({"--to-annexb", "pipe", "pipe"});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_THAT(outcome.err, StartsWith("qvinspect: --to-annexb pipe and the input pipe are the same file;"));
}

TEST_F(ProgramOutputs, differentFilesOfTheSameName) {
    fs::create_directory(folder() + "/sub");
    EXPECT_EQ(inspect({"--csv", "sub/good.h265", "--json", "sub/former", "good.h265"}).exitCode, 0);
    EXPECT_EQ(text("former"), "old");
    EXPECT_EQ(inspect({"--csv", "/dev/null", "--json", "/dev/null", "good.h265"}).exitCode, 0);
}

}  // namespace
}  // namespace qv_test
