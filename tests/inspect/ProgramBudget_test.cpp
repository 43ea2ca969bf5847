// The memory of the program for small files that need much.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "HostileFiles.h"
#include "ProgramSupport.h"

namespace qv_test {
namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kIsSanitized = true;
#else
constexpr bool kIsSanitized = false;
#endif

struct Ended {
    int exitCode;  // -1 if a signal ended the program
    long peakKilobytes;
};

// Runs the program with in as its standard input, and discards its output.
Ended runProgram(const std::vector<std::string>& arguments, int in) {
    std::vector<std::string> words = {QVINSPECT_PROGRAM};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char*> argv;
    for (std::string& word : words) {
        argv.push_back(word.data());
    }
    argv.push_back(nullptr);
    const int null = open("/dev/null", O_RDWR | O_CLOEXEC);
    const pid_t child = fork();
    if (child == 0) {
        if (dup2(in >= 0 ? in : null, STDIN_FILENO) >= 0 && dup2(null, STDOUT_FILENO) >= 0 &&
            dup2(null, STDERR_FILENO) >= 0) {
            execv(argv[0], argv.data());
        }
        _exit(127);
    }
    close(null);
    int status = 0;
    rusage usage{};
    if (child < 0 || wait4(child, &status, 0, &usage) != child) {
        throw std::runtime_error("cannot run the program");
    }
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, usage.ru_maxrss};
}

class ProgramBudget : public Program {
protected:
    void SetUp() override {
        if (kIsSanitized) {
            GTEST_SKIP() << "the memory of a sanitized program says nothing";
        }
    }

    Ended inspectFile(const Bytes& bytes) const { return runProgram({write("x", bytes)}, -1); }

    static Ended inspectPipe(const Bytes& bytes) {
        int ends[2];
        if (pipe2(ends, O_CLOEXEC) != 0) {
            throw std::runtime_error("no pipe");
        }
        std::thread feeder([&] {
            feed(ends[1], bytes);
            close(ends[1]);
        });
        const Ended outcome = runProgram({"-"}, ends[0]);
        close(ends[0]);
        feeder.join();
        return outcome;
    }
};

// The memory of the program for a small file, and the 64 MiB for opening a container.
constexpr long kMostKilobytes = 160 * 1024;

TEST_F(ProgramBudget, containers) {
    const std::pair<const char*, Bytes> files[] = {
        {"a sample table", sampleTableOf(80'000'000)},
        {"a sample table below the bound", sampleTableOf(2'700'000)},
        {"many sample tables below the bound", sampleTableOf(2'000'000, 64)},
        {"fragments", fragmentRunsOf(2'000'000, 20)},
        {"many fragments below the bound", fragmentRunsOf(100'000, 1000)},
    };
    for (const auto& [name, bytes] : files) {
        SCOPED_TRACE(name);
        for (const Ended& outcome : {inspectFile(bytes), inspectPipe(bytes)}) {
            EXPECT_TRUE(outcome.exitCode == 0 || outcome.exitCode == 2) << outcome.exitCode;
            EXPECT_LT(outcome.peakKilobytes, kMostKilobytes);
        }
    }
}

TEST_F(ProgramBudget, streams) {
    constexpr uint8_t kFramePackingArrangement = 45;
    const std::pair<const char*, Bytes> files[] = {
        {"empty units", emptyUnits(1'000'000)},
        {"SEI units", manySeiUnits(250'000)},
        {"SEI messages", manySeiMessages(100'000, kFramePackingArrangement, 0)},
        {"parameter sets", manyDistinctSps(100'000)},
        {"parameter sets of a record", manyParameterSets(60'000, 5000)},
        {"SEI units of a record", manyRecordSeiUnits(64'000, 50'000)},
    };
    for (const auto& [name, bytes] : files) {
        SCOPED_TRACE(name);
        const Ended outcome = inspectFile(bytes);
        EXPECT_EQ(outcome.exitCode, 0);
        EXPECT_LT(outcome.peakKilobytes, kMostKilobytes);
    }
}

}  // namespace
}  // namespace qv_test
