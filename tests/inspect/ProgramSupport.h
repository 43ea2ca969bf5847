// Runs the program as a user would.
#ifndef QV_TESTS_PROGRAMSUPPORT_H
#define QV_TESTS_PROGRAMSUPPORT_H

#include <gtest/gtest.h>
#include <sys/types.h>

#include <string>
#include <vector>

#include "InspectSupport.h"
#include "RunProgram.h"

namespace qv_test {

// Writes the bytes to a pipe until they are written or the reader is gone. Blocks SIGPIPE in this thread.
void feed(int pipe, const Bytes& bytes);

// A run of the program in a folder, with --level nalus by default.
class RunningProgram {
public:
    RunningProgram(const std::vector<std::string>& arguments, const Streams& streams,
                   const std::string& folder);
    ~RunningProgram();  // ends the program
    RunningProgram(const RunningProgram&) = delete;
    RunningProgram& operator=(const RunningProgram&) = delete;

    void signal(int number) const;
    bool isRunning() const;

    // Whether it is waiting.
    bool isAsleep() const;

    // Whether it handles the signal.
    bool catches(int signal) const;

    // Whether the signal is pending.
    bool isPending(int signal) const;

    // The exit code, -1 if a signal ended the program.
    int wait();

private:
    bool hasInStatus(const std::string& field, int signal) const;

    pid_t process_;
    bool isWaitedFor_ = false;
};

int run(const std::vector<std::string>& arguments, const Streams& streams, const std::string& folder);

class Program : public ::testing::Test {
protected:
    Outcome inspect(const std::vector<std::string>& arguments) const;

    // With the bytes as standard input, through a pipe or from a file.
    Outcome inspectPiped(const Bytes& input, const std::vector<std::string>& arguments) const;
    Outcome inspectRedirected(const std::string& file, const std::vector<std::string>& arguments) const;

    // One line on stderr that begins with the program's and the file's name and says text; nothing listed.
    static void expectRefused(const Outcome& outcome, const std::string& name, const std::string& text);

    static void expectListed(const Outcome& outcome, const std::string& name, const std::string& summaryLine);

    std::string write(const std::string& name, const Bytes& content) const {
        return files_.write(name, content);
    }
    std::string folder() const { return files_.path(); }

    static std::string sample(const std::string& name) { return sampleFolder() / name; }

    static Bytes rawStream() { return fileContent(sampleFolder() / "hevc_hdr10.h265"); }
    static Bytes mp4() { return fileContent(sampleFolder() / "avc_avc1.mp4"); }

private:
    Outcome inspectFrom(int in, const std::vector<std::string>& arguments) const;

    TemporaryFolder files_;
    TemporaryFolder outputs_;
};

}  // namespace qv_test

#endif
