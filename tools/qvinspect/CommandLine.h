// The command line.
#ifndef QVINSPECT_COMMANDLINE_H
#define QVINSPECT_COMMANDLINE_H

#include <deque>
#include <optional>
#include <string>
#include <vector>

#include "QVCodecParameters.h"

namespace qvinspect {

struct CommandLine {
    std::optional<QVCodecID> codec;  // what the caller says the files hold
    std::deque<int> requested;       // SEI payloadTypes to keep as items
    std::vector<std::string> files;

    // Set when there is nothing to inspect: the help was asked for and printed, or the line was wrong and
    // that was said.
    std::optional<int> exitCode;
};

CommandLine parseCommandLine(int argc, const char* const* argv);

}  // namespace qvinspect

#endif
