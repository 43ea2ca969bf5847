// qvinspect: lists the access units and NAL units of H.264 and H.265 files.
#include <fmt/format.h>

#include <csignal>
#include <cstdio>
#include <exception>
#include <string>
#include <system_error>

#include "CommandLine.h"
#include "ExitCode.h"
#include "Inspect.h"
#include "input/InputError.h"
#include "report/Output.h"
#include "report/PrintableName.h"

namespace {

using namespace qvinspect;

void complain(const std::string& text) {
    fmt::print(stderr, "qvinspect: {}\n", text);
}

// False when the file cannot be inspected; that is said then.
bool inspect(const std::string& file, const CommandLine& line, Output& output) {
    try {
        inspectFile(file, line, output);
        return true;
    } catch (const InputError& error) {
        output.flush();  // what was listed so far comes first
        complain(fmt::format("{}: {}", printableName(file), error.what()));
        return false;
    }
}

int inspectAll(const CommandLine& line) {
    Output output(stdout);
    int exitCode = kExitOk;
    bool isFirst = true;
    for (const std::string& file : line.files) {
        if (!isFirst) {
            output.print("\n");
        }
        isFirst = false;
        if (!inspect(file, line, output)) {
            exitCode = kExitInput;
        }
    }
    output.flush();
    return exitCode;
}

}  // namespace

int main(int argc, char** argv) {
    // A reader that has seen enough shows as a failed write, wherever the signal is blocked or not.
    std::signal(SIGPIPE, SIG_IGN);
    try {
        const CommandLine line = parseCommandLine(argc, argv);
        return line.exitCode ? *line.exitCode : inspectAll(line);
    } catch (const std::system_error& error) {
        if (error.code() == std::errc::broken_pipe) {
            return kExitOk;
        }
        complain(fmt::format("cannot write the listing: {}", error.code().message()));
    } catch (const std::exception& error) {
        complain(fmt::format("cannot go on: {}", error.what()));
    }
    return kExitInput;
}
