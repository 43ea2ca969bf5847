#include "Presenters.h"

#include <unistd.h>

#include <algorithm>
#include <ctime>
#include <memory>
#include <string>
#include <utility>

#include "report/CheckLines.h"
#include "report/Csv.h"
#include "report/ElementLines.h"
#include "report/Html.h"
#include "report/Json.h"
#include "report/Listing.h"
#include "report/Ndjson.h"
#include "report/SeiExtractor.h"
#include "report/Stamp.h"
#include "report/StreamWriter.h"

namespace qvinspect {

namespace {

// Only one output can use standard output.
bool isStdoutTaken(const CommandLine& line) {
    const std::vector<std::string> outputs = {line.json, line.ndjson,   line.csv,
                                              line.html, line.toAnnexB, line.toLengths};
    return line.rewrite || line.elements || std::count(outputs.begin(), outputs.end(), "-") > 0;
}

JsonOptions jsonOptions(const CommandLine& line) {
    // The elements have an output of their own.
    const Level level = std::min(line.level.value_or(Level::Fields), Level::Fields);
    return {level, line.stamp ? stampText(std::time(nullptr)) : std::string()};
}

std::unique_ptr<Presenter> makeHtml(const CommandLine& line) {
    HtmlOptions options;
    for (const std::string& file : line.files) {
        options.inputs.push_back(reportedName(file, line));
    }
    if (line.stamp) {
        options.stamp = stampText(std::time(nullptr));
    }
    return std::make_unique<Html>(line.html, std::move(options));
}

}  // namespace

Presenters makePresenters(const CommandLine& line) {
    Presenters presenters;
    if (!isStdoutTaken(line)) {
        presenters.push_back(std::make_unique<Listing>("-", line.level.value_or(levelFor(line.filter)),
                                                       pageFormat(terminalOf(STDOUT_FILENO), line.color)));
    } else if (!line.checks.empty()) {
        presenters.push_back(std::make_unique<CheckLines>());
    }
    if (!line.json.empty()) {
        presenters.push_back(std::make_unique<Json>(line.json, jsonOptions(line)));
    }
    if (!line.ndjson.empty()) {
        presenters.push_back(std::make_unique<Ndjson>(line.ndjson, jsonOptions(line)));
    }
    if (!line.csv.empty()) {
        presenters.push_back(std::make_unique<Csv>(line.csv));
    }
    if (!line.html.empty()) {
        presenters.push_back(makeHtml(line));
    }
    if (!line.toAnnexB.empty()) {
        presenters.push_back(
            std::make_unique<StreamWriter>(line.toAnnexB, Framing::AnnexB, UnitSource::Stream, line.removal));
    }
    if (!line.toLengths.empty()) {
        presenters.push_back(std::make_unique<StreamWriter>(line.toLengths, Framing::Lengths4,
                                                            UnitSource::Stream, line.removal));
    }
    if (line.rewrite) {
        presenters.push_back(
            std::make_unique<StreamWriter>("-", Framing::AnnexB, UnitSource::Records, line.removal));
    }
    if (line.elements) {
        presenters.push_back(std::make_unique<ElementLines>("-", line.files.size() > 1));
    }
    if (!line.extractSei.empty()) {
        presenters.push_back(std::make_unique<SeiExtractor>(line.extractSei));
    }
    return presenters;
}

bool writesWhileReading(const CommandLine& line) {
    return isStdoutTaken(line) || line.level.value_or(Level::Summary) != Level::Summary;
}

}  // namespace qvinspect
