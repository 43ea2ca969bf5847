// Compiled without exceptions, as the library: a list that cannot grow ends the program with abort.
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <vector>

#include "QVNaluParser.h"

namespace {

constexpr int kUnits = 8 * 1024 * 1024;
constexpr int kMegabyte = 1024 * 1024;

std::vector<unsigned char> manyUnits() {
    std::vector<unsigned char> bytes(4 * static_cast<size_t>(kUnits));
    for (size_t i = 0; i < bytes.size(); i += 4) {
        bytes[i + 2] = 1;
        bytes[i + 3] = 9;
    }
    return bytes;
}

bool findsAll(const std::vector<unsigned char>& bytes) {
    std::vector<std::pair<int, int>> units;
    QVNaluParser::parserDataToNaluIdx(bytes.data(), static_cast<int>(bytes.size()), units);
    return units.size() == kUnits;
}

// Enough for the bytes and too little for the list of their units.
void limitMemory() {
    rlimit limit{};
    limit.rlim_cur = limit.rlim_max = 0;
    setrlimit(RLIMIT_CORE, &limit);
    limit.rlim_cur = limit.rlim_max = 80 * kMegabyte;
    setrlimit(RLIMIT_AS, &limit);
}

}  // namespace

int main() {
    const std::vector<unsigned char> bytes = manyUnits();
    if (!findsAll(bytes)) {
        std::fprintf(stderr, "not all units were found\n");
        return 1;
    }
    const pid_t child = fork();
    if (child == 0) {
        limitMemory();
        findsAll(bytes);
        _exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    if (!WIFSIGNALED(status) || WTERMSIG(status) != SIGABRT) {
        std::fprintf(stderr, "without memory it ended with status %d instead of abort\n", status);
        return 1;
    }
    return 0;
}
