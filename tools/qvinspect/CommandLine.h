// The command line.
#ifndef QVINSPECT_COMMANDLINE_H
#define QVINSPECT_COMMANDLINE_H

#include <deque>
#include <optional>
#include <string>
#include <vector>

#include "analysis/Check.h"
#include "analysis/Filter.h"
#include "input/InputOptions.h"
#include "report/ColorUse.h"
#include "report/Level.h"
#include "report/SeiRemover.h"

namespace qvinspect {

struct CommandLine {
    InputOptions input;
    std::deque<int> requested;  // SEI payloadTypes to keep as items
    Filter filter;

    std::optional<Level> level;  // of the listing, JSON and NDJSON; each has its own default
    ColorUse color = ColorUse::Auto;
    bool stamp = false;  // the date and whole paths in the outputs

    // Outputs: "-" is standard output, empty is none.
    std::string json;
    std::string ndjson;
    std::string csv;
    std::string html;
    std::string toAnnexB;
    std::string toLengths;
    std::string extractSei;  // a folder

    // To standard output.
    bool rewrite = false;
    bool elements = false;

    SeiRemoval removal;  // from toAnnexB, toLengths and rewrite

    std::vector<Check> checks;
    bool strict = false;

    std::vector<std::string> files;

    // Set if there is nothing to inspect: --help and similar options were handled, or an error was reported.
    std::optional<int> exitCode;
};

CommandLine parseCommandLine(int argc, const char* const* argv);

}  // namespace qvinspect

#endif
