#include "ProgramSupport.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <stdexcept>
#include <thread>

namespace qv_test {

using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::StartsWith;

void feed(int pipe, const Bytes& bytes) {
    sigset_t brokenPipe;
    sigemptyset(&brokenPipe);
    sigaddset(&brokenPipe, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &brokenPipe, nullptr);  // of this thread
    for (size_t written = 0; written < bytes.size();) {
        const ssize_t count = ::write(pipe, bytes.data() + written, bytes.size() - written);
        if (count < 0) {
            break;
        }
        written += static_cast<size_t>(count);
    }
}

RunningProgram::RunningProgram(const std::vector<std::string>& arguments, const Streams& streams,
                               const std::string& folder) {
    std::vector<std::string> words = {QVINSPECT_PROGRAM};
    if (std::count(arguments.begin(), arguments.end(), "--level") == 0) {
        words.insert(words.end(), {"--level", "nalus"});
    }
    words.insert(words.end(), arguments.begin(), arguments.end());
    process_ = startProgram(words, streams, folder);
}

RunningProgram::~RunningProgram() {
    if (!isWaitedFor_) {
        signal(SIGKILL);
        waitpid(process_, nullptr, 0);
    }
}

void RunningProgram::signal(int number) const {
    kill(process_, number);
}

bool RunningProgram::isRunning() const {
    siginfo_t ended = {};
    return waitid(P_PID, static_cast<id_t>(process_), &ended, WEXITED | WNOHANG | WNOWAIT) == 0 &&
           ended.si_pid == 0;
}

bool RunningProgram::isAsleep() const {
    return textOf("/proc/" + std::to_string(process_) + "/status").find("\nState:\tS") != std::string::npos;
}

// One of the sets of signals in /proc/PID/status.
bool RunningProgram::hasInStatus(const std::string& field, int signal) const {
    const std::string status = textOf("/proc/" + std::to_string(process_) + "/status");
    const size_t at = status.find(field);
    return at != std::string::npos &&
           (std::stoull(status.substr(at + field.size()), nullptr, 16) >> (signal - 1) & 1) != 0;
}

bool RunningProgram::catches(int signal) const {
    return hasInStatus("SigCgt:", signal);
}

bool RunningProgram::isPending(int signal) const {
    return hasInStatus("ShdPnd:", signal);
}

int RunningProgram::wait() {
    isWaitedFor_ = true;
    return exitCodeOf(process_);
}

int run(const std::vector<std::string>& arguments, const Streams& streams, const std::string& folder) {
    return RunningProgram(arguments, streams, folder).wait();
}

Outcome Program::inspectFrom(int in, const std::vector<std::string>& arguments) const {
    const std::string outPath = outputs_.path() / "out";
    const std::string errPath = outputs_.path() / "err";
    const int out = openForWriting(outPath);
    const int err = openForWriting(errPath);
    const int exitCode = run(arguments, {in, out, err}, files_.path());
    close(out);
    close(err);
    return {exitCode, textOf(outPath), textOf(errPath)};
}

Outcome Program::inspect(const std::vector<std::string>& arguments) const {
    return inspectFrom(kNoInput, arguments);
}

Outcome Program::inspectPiped(const Bytes& input, const std::vector<std::string>& arguments) const {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) {
        throw std::runtime_error("no pipe");
    }
    std::thread feeder([&] {
        feed(ends[1], input);
        close(ends[1]);
    });
    Outcome outcome = inspectFrom(ends[0], arguments);
    close(ends[0]);
    feeder.join();
    return outcome;
}

Outcome Program::inspectRedirected(const std::string& file, const std::vector<std::string>& arguments) const {
    const int in = openForReading(file);
    Outcome outcome = inspectFrom(in, arguments);
    close(in);
    return outcome;
}

void Program::expectRefused(const Outcome& outcome, const std::string& name, const std::string& text) {
    EXPECT_EQ(outcome.exitCode, 2);
    EXPECT_EQ(outcome.out, "");
    EXPECT_THAT(outcome.err, StartsWith("qvinspect: " + name + ": "));
    EXPECT_THAT(outcome.err, HasSubstr(text));
    EXPECT_THAT(outcome.err, EndsWith("\n"));
    EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << outcome.err;
}

void Program::expectListed(const Outcome& outcome, const std::string& name, const std::string& summaryLine) {
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.err, "");
    EXPECT_THAT(outcome.out, HasSubstr("File     " + name + "\n"));
    EXPECT_THAT(outcome.out, HasSubstr("Summary of " + name + "\n"));
    EXPECT_THAT(outcome.out, HasSubstr(summaryLine));
}

}  // namespace qv_test
