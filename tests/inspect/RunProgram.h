// Runs a program and waits for its end.
#ifndef QV_TESTS_RUNPROGRAM_H
#define QV_TESTS_RUNPROGRAM_H

#include <sys/types.h>

#include <filesystem>
#include <string>
#include <vector>

namespace qv_test {

struct Outcome {
    int exitCode;  // -1 if a signal ended the program, 127 if it cannot be run
    std::string out;
    std::string err;
};

std::string textOf(const std::filesystem::path& path);

// File descriptors.
int openForWriting(const std::string& path);
int openForReading(const std::string& path);

constexpr int kNoInput = -1;  // an empty file
constexpr int kClosed = -2;   // no file at all

// File descriptors for the standard streams of a program.
struct Streams {
    int in;
    int out;
    int err;
};

// Starts a program in a folder. words[0] is the program, searched in PATH. It is killed after ten minutes.
pid_t startProgram(std::vector<std::string> words, const Streams& streams, const std::string& folder);

// Waits for the end of a program and returns its exit code, as in Outcome.
int exitCodeOf(pid_t program);

// Both in one call.
int runProgram(const std::vector<std::string>& words, const Streams& streams, const std::string& folder);

// Also returns what the program wrote.
Outcome runProgram(const std::vector<std::string>& words, const std::string& folder);

}  // namespace qv_test

#endif
