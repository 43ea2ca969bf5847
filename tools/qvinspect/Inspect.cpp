#include "Inspect.h"

#include <fmt/format.h>

#include "analysis/Analysis.h"
#include "analysis/StreamDetails.h"
#include "analysis/Summary.h"
#include "input/InputError.h"
#include "input/OpenInput.h"
#include "report/Listing.h"
#include "report/PrintableName.h"

namespace qvinspect {

namespace {

[[noreturn]] void refuseEmpty(const std::vector<Finding>& findings) {
    const std::string reason = findings.empty() ? "its video has no samples" : findings.front().text;
    throw InputError(fmt::format("nothing to list: {}; check that it is the right file and whole", reason));
}

}  // namespace

void inspectFile(const std::string& path, const CommandLine& line, Output& output) {
    const auto reader = openInput(path, line.codec);
    AccessUnit accessUnit;
    if (!reader->next(accessUnit)) {
        refuseEmpty(accessUnit.findings);
    }
    Listing listing(output, printableName(path), reader->info(), accessUnit.fileOffset.has_value());
    Summary summary;
    StreamDetails details(reader->info().parameters.codecId, line.requested);
    listing.begin(details.addConfiguration(reader->info().configuration));
    do {
        const AccessUnitReport report = analyse(accessUnit);
        listing.add(accessUnit, report, details.add(accessUnit, report));
        summary.add(accessUnit, report);
    } while (reader->next(accessUnit));
    summary.add(accessUnit.findings);
    listing.end(accessUnit.findings, summary, details);
}

}  // namespace qvinspect
