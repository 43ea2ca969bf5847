// qvinspect: shows the contents of H.264 and H.265 files.
#include <csignal>
#include <exception>

#include "CommandLine.h"
#include "ExitCode.h"
#include "InspectAll.h"
#include "Interrupt.h"
#include "StandardStreams.h"
#include "report/Diagnostics.h"
#include "report/Output.h"

using namespace qvinspect;

int main(int argc, char** argv) {
    if (!openStandardStreams()) {
        return kExitOutput;
    }
    // A reader that stops, and a file that may not grow, become failed writes.
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
    noteInterrupts();
    try {
        const CommandLine line = parseCommandLine(argc, argv);
        return line.exitCode ? *line.exitCode : inspectAll(line);
    } catch (const OutputError& error) {
        if (error.isBrokenPipe()) {
            return kExitOk;
        }
        complain(error.what());
        return isInterrupted() ? kExitInterrupted : kExitOutput;
    } catch (const std::exception& error) {
        complain("cannot continue: ", error.what());
    }
    return kExitInput;
}
