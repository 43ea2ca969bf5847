// Runs a program and waits for its end.
#ifndef QV_TESTS_RUNPROGRAM_H
#define QV_TESTS_RUNPROGRAM_H

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

// A file descriptor.
int openForWriting(const std::string& path);

// words[0] is the program, looked for in PATH. Its exit code, as in Outcome.
int runProgram(std::vector<std::string> words, int out, int err, const std::string& folder);

// With what it wrote.
Outcome runProgram(const std::vector<std::string>& words, const std::string& folder);

}  // namespace qv_test

#endif
