// Runs the inspector on broken copies of files, some cut at random places and some with random bytes changed,
// with each report in turn. Each run must end with the exit code of a stream that was read or refused,
// without an exception. Use a build with sanitizers; the copies of a file are the same in every run.
//
// Usage: torture COPIES FILE...   takes COPIES cut and COPIES changed copies of each file
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "CommandLine.h"
#include "ExitCode.h"
#include "InspectAll.h"

namespace {

namespace fs = std::filesystem;
using Bytes = std::vector<char>;
using Random = std::mt19937;
using Options = std::vector<const char*>;

// Made by each run that extracts items, in the working folder.
constexpr const char* kItems = "items";

struct Report {
    Options options;
    bool isWhole;  // otherwise what cannot be converted is left out, with exit code 5
};

const std::array<Report, 8> kReports = {{
    {{"--level", "fields", "--strict"}, true},
    {{"--level", "nalus", "--errors-only"}, true},
    {{"--json", "/dev/null"}, true},
    {{"--ndjson", "/dev/null"}, true},
    {{"--csv", "/dev/null", "--check", "no-errors"}, true},
    {{"--html", "/dev/null"}, true},
    {{"--to-annexb", "/dev/null"}, false},
    {{"--to-lengths", "/dev/null", "--extract-sei", kItems}, false},
}};

Bytes contentOf(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        throw std::runtime_error(path.string() + " cannot be read");
    }
    return {std::istreambuf_iterator<char>(file), {}};
}

size_t below(Random& random, size_t bound) {
    return random() % std::max<size_t>(bound, 1);
}

Bytes cut(const Bytes& whole, Random& random) {
    return Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(below(random, whole.size() + 1)));
}

// Bytes are changed to random values or to bytes of framing, or have a bit flipped, or are removed.
Bytes changed(Bytes bytes, Random& random) {
    constexpr char kFramingBytes[] = {0, 0, 1, 3, '\xFF', '\x80', 0x67, 0x06, 0x42, 0x4E};
    for (size_t left = 1 + below(random, 16); left > 0 && !bytes.empty(); --left) {
        const auto at = bytes.begin() + static_cast<std::ptrdiff_t>(below(random, bytes.size()));
        switch (below(random, 4)) {
            case 0:
                *at = static_cast<char>(random());
                break;
            case 1:
                *at = kFramingBytes[below(random, sizeof kFramingBytes)];
                break;
            case 2:
                *at = static_cast<char>(*at ^ 1 << below(random, 8));
                break;
            default:
                bytes.erase(at);
                break;
        }
    }
    return bytes;
}

bool isDocumented(int exitCode, const Report& report) {
    switch (exitCode) {
        case qvinspect::kExitOk:
        case qvinspect::kExitInput:
        case qvinspect::kExitErrors:
        case qvinspect::kExitCheck:
            return true;
        case qvinspect::kExitOutput:
            return !report.isWhole;
        default:
            return false;
    }
}

// The count of each exit code.
using ExitCodes = std::map<int, size_t>;

void inspect(const fs::path& path, const Report& report, ExitCodes& codes) {
    Options arguments = {"torture"};
    arguments.insert(arguments.end(), report.options.begin(), report.options.end());
    arguments.push_back(path.c_str());
    const qvinspect::CommandLine line =
        qvinspect::parseCommandLine(static_cast<int>(arguments.size()), arguments.data());
    if (line.exitCode) {
        throw std::logic_error("the command line is refused");
    }
    const int code = qvinspect::inspectAll(line);
    if (!isDocumented(code, report)) {
        throw std::runtime_error("exit code " + std::to_string(code));
    }
    ++codes[code];
    fs::remove_all(kItems);
}

// The copy is kept if an exception is thrown or a sanitizer ends the program.
void torture(const fs::path& original, size_t copies, ExitCodes& codes) {
    const Bytes whole = contentOf(original);
    const fs::path copy = fs::current_path() / original.filename();
    Random random;
    for (size_t i = 0; i < 2 * copies; ++i) {
        const Bytes broken = i % 2 == 0 ? cut(whole, random) : changed(whole, random);
        std::ofstream(copy, std::ios::binary)
            .write(broken.data(), static_cast<std::streamsize>(broken.size()));
        const size_t report = i / 2 % kReports.size();
        try {
            inspect(copy, kReports[report], codes);
        } catch (const std::exception& error) {
            throw std::runtime_error(copy.string() + ", report " + std::to_string(report) + ": " +
                                     error.what());
        }
    }
    fs::remove(copy);
}

// Discards standard output from here on.
FILE* takeStandardOutput() {
    FILE* const taken = fdopen(dup(STDOUT_FILENO), "w");
    if (taken == nullptr || std::freopen("/dev/null", "w", stdout) == nullptr) {
        throw std::runtime_error("standard output cannot be redirected");
    }
    return taken;
}

int run(const std::vector<std::string>& arguments) {
    FILE* const out = takeStandardOutput();
    const size_t copies = std::stoul(arguments.at(0));
    const fs::path folder = fs::temp_directory_path() / ("torture-" + std::to_string(getpid()));
    std::vector<fs::path> files;
    std::transform(arguments.begin() + 1, arguments.end(), std::back_inserter(files),
                   [](const std::string& file) { return fs::absolute(file); });
    fs::create_directories(folder);
    fs::current_path(folder);
    ExitCodes codes;
    for (const fs::path& file : files) {
        torture(file, copies, codes);
    }
    fs::remove_all(folder);
    std::fprintf(out, "%zu files, %zu copies of each:", files.size(), 2 * copies);
    for (const auto& [code, count] : codes) {
        std::fprintf(out, " exit code %d %zu times", code, count);
    }
    std::fprintf(out, "\n");
    return std::fclose(out) == 0 && codes[qvinspect::kExitOk] > 0 ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return run({argv + 1, argv + argc});
    } catch (const std::exception& error) {
        std::fprintf(stderr, "torture: %s\n", error.what());
        return 1;
    }
}
