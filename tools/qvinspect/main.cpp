// qvinspect: shows what H.264 and H.265 files hold.
#include <fmt/format.h>

#include <csignal>
#include <exception>

#include "CommandLine.h"
#include "ExitCode.h"
#include "InspectAll.h"
#include "Interrupt.h"
#include "report/Output.h"

using namespace qvinspect;

int main(int argc, char** argv) {
    // A reader that has seen enough shows as a failed write, wherever the signal is blocked or not.
    std::signal(SIGPIPE, SIG_IGN);
    noteInterrupts();
    try {
        const CommandLine line = parseCommandLine(argc, argv);
        return line.exitCode ? *line.exitCode : inspectAll(line);
    } catch (const OutputError& error) {
        if (error.isBrokenPipe()) {
            return kExitOk;
        }
        complain(error.what());
        return kExitOutput;
    } catch (const std::exception& error) {
        complain(fmt::format("cannot go on: {}", error.what()));
    }
    return kExitInput;
}
