#include "Presenters.h"

#include <algorithm>
#include <string>

#include "report/Listing.h"

namespace qvinspect {

namespace {

// Standard output is for one thing at a time.
bool isStdoutTaken(const CommandLine& line) {
    const std::vector<std::string> outputs = {line.json, line.ndjson,   line.csv,
                                              line.html, line.toAnnexB, line.toLengths};
    return std::count(outputs.begin(), outputs.end(), "-") > 0;
}

}  // namespace

Presenters makePresenters(const CommandLine& line) {
    Presenters presenters;
    if (!isStdoutTaken(line)) {
        presenters.push_back(std::make_unique<Listing>("-", line.level.value_or(Level::Summary)));
    }
    return presenters;
}

}  // namespace qvinspect
