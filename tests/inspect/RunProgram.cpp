#include "RunProgram.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <stdexcept>

#include "InspectSupport.h"

namespace qv_test {

std::string textOf(const std::filesystem::path& path) {
    const Bytes bytes = fileContent(path);
    return {bytes.begin(), bytes.end()};
}

int openForWriting(const std::string& path) {
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    if (file < 0) {
        throw std::runtime_error("cannot write " + path);
    }
    return file;
}

int openForReading(const std::string& path) {
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0) {
        throw std::runtime_error("cannot read " + path);
    }
    return file;
}

namespace {

bool give(int file, int stream) {
    return file == kClosed ? close(stream) == 0 || errno == EBADF : dup2(file, stream) >= 0;
}

}  // namespace

pid_t startProgram(std::vector<std::string> words, const Streams& streams, const std::string& folder) {
    constexpr unsigned kMostSeconds = 600;
    std::vector<char*> argv;
    std::transform(words.begin(), words.end(), std::back_inserter(argv),
                   [](std::string& word) { return word.data(); });
    argv.push_back(nullptr);

    const int in = streams.in == kNoInput ? openForReading("/dev/null") : streams.in;
    const pid_t program = fork();
    if (program == 0) {
        alarm(kMostSeconds);
        if (give(in, STDIN_FILENO) && give(streams.out, STDOUT_FILENO) && give(streams.err, STDERR_FILENO) &&
            chdir(folder.c_str()) == 0) {
            execvp(argv[0], argv.data());
        }
        _exit(127);
    }
    if (in != streams.in) {
        close(in);
    }
    if (program < 0) {
        throw std::runtime_error("cannot run the program");
    }
    return program;
}

int exitCodeOf(pid_t program) {
    int status = 0;
    if (waitpid(program, &status, 0) != program) {
        throw std::runtime_error("cannot wait for the program");
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

int runProgram(const std::vector<std::string>& words, const Streams& streams, const std::string& folder) {
    return exitCodeOf(startProgram(words, streams, folder));
}

Outcome runProgram(const std::vector<std::string>& words, const std::string& folder) {
    const TemporaryFolder outputs;
    const std::string outPath = outputs.path() / "out";
    const std::string errPath = outputs.path() / "err";
    const int out = openForWriting(outPath);
    const int err = openForWriting(errPath);
    const int exitCode = runProgram(words, {kNoInput, out, err}, folder);
    close(out);
    close(err);
    return {exitCode, textOf(outPath), textOf(errPath)};
}

}  // namespace qv_test
