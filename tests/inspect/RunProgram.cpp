#include "RunProgram.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
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

int runProgram(std::vector<std::string> words, int out, int err, const std::string& folder) {
    std::vector<char*> argv;
    std::transform(words.begin(), words.end(), std::back_inserter(argv),
                   [](std::string& word) { return word.data(); });
    argv.push_back(nullptr);

    const pid_t child = fork();
    if (child == 0) {
        if (dup2(out, STDOUT_FILENO) >= 0 && dup2(err, STDERR_FILENO) >= 0 && chdir(folder.c_str()) == 0) {
            execvp(argv[0], argv.data());
        }
        _exit(127);
    }
    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) != child) {
        throw std::runtime_error("cannot run the program");
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

Outcome runProgram(const std::vector<std::string>& words, const std::string& folder) {
    const TemporaryFolder outputs;
    const std::string outPath = outputs.path() / "out";
    const std::string errPath = outputs.path() / "err";
    const int out = openForWriting(outPath);
    const int err = openForWriting(errPath);
    const int exitCode = runProgram(words, out, err, folder);
    close(out);
    close(err);
    return {exitCode, textOf(outPath), textOf(errPath)};
}

}  // namespace qv_test
