// Runs a program and waits for its end.
#ifndef QV_TESTS_RUNPROGRAM_H
#define QV_TESTS_RUNPROGRAM_H

#include <sys/types.h>

#include <filesystem>
#include <string>
#include <vector>

namespace qv_test {

struct Outcome {
    int exitCode;  // -1 when a signal ended the program, 127 when it cannot be run
    std::string out;
    std::string err;
};

std::string textOf(const std::filesystem::path& path);

// File descriptors.
int openForWriting(const std::string& path);
int openForReading(const std::string& path);

constexpr int kNoInput = -1;  // an empty file
constexpr int kClosed = -2;   // no file at all

// File descriptors that a program gets as its standard streams.
struct Streams {
    int in;
    int out;
    int err;
};

// Starts a program in a folder. words[0] is the program, looked for in PATH. It is killed when it runs for
// ten minutes.
pid_t startProgram(std::vector<std::string> words, const Streams& streams, const std::string& folder);

// Waits for the end of a program. Its exit code, as in Outcome.
int exitCodeOf(pid_t program);

// Both in one.
int runProgram(const std::vector<std::string>& words, const Streams& streams, const std::string& folder);

// With what it wrote.
Outcome runProgram(const std::vector<std::string>& words, const std::string& folder);

}  // namespace qv_test

#endif
