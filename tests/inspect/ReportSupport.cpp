#include "ReportSupport.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <limits>
#include <memory>
#include <sstream>

#include "InspectSupport.h"
#include "input/InputError.h"
#include "report/Csv.h"
#include "report/Json.h"
#include "report/Ndjson.h"

namespace qv_test {

namespace {

std::string textOf(const std::filesystem::path& path) {
    const Bytes bytes = fileContent(path);
    return {bytes.begin(), bytes.end()};
}

qvinspect::StreamInfo hostileInfo() {
    qvinspect::StreamInfo info;
    info.format = hostileText();
    info.parameters = {QVCodecIDAvc, 0, 2};
    return info;
}

std::string withoutVersion(std::string text) {
    const std::string key = "\"version\":\"";
    for (size_t at = text.find(key); at != std::string::npos; at = text.find(key, at)) {
        at += key.size();
        text.replace(at, text.find('"', at) - at, "...");
    }
    return text;
}

}  // namespace

Reports reportsOf(const std::vector<std::string>& paths, const qvinspect::JsonOptions& options,
                  const qvinspect::CommandLine& line) {
    const TemporaryFolder folder;
    const std::string json = folder.path() / "json";
    const std::string ndjson = folder.path() / "ndjson";
    const std::string csv = folder.path() / "csv";
    qvinspect::Presenters presenters;
    presenters.push_back(std::make_unique<qvinspect::Json>(json, options));
    presenters.push_back(std::make_unique<qvinspect::Ndjson>(ndjson, options));
    presenters.push_back(std::make_unique<qvinspect::Csv>(csv));
    for (const std::string& path : paths) {
        try {
            qvinspect::inspectFile(path, line, presenters);
        } catch (const qvinspect::InputError& error) {
            for (const auto& presenter : presenters) {
                presenter->fail(qvinspect::reportedName(path, line), error.what());
            }
        }
    }
    for (const auto& presenter : presenters) {
        presenter->finish();
    }
    return {textOf(json), textOf(ndjson), textOf(csv)};
}

Bytes smallStream() {
    return hex(
        "AB CD "                             //
        "00 00 00 01 67 42 00 0A F8 41 A2 "  //
        "00 00 01 E8 CE 38 80 "              //
        "00 00 01 68 CE 38 80 "              //
        "00 00 01 06 05 14 00 00 03 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E FF 22 0A 5C "
        "04 03 B5 00 31 80 "           //
        "00 00 01 65 88 84 00 33 "     //
        "00 00 01 06 05 FF 10 41 80 "  //
        "00 00 01 41 9A 24 66 "        //
        "00 00 01 67 42 00 0A F8 41 A2 "
        "00 00 01 65 88 82 00 33");
}

std::string hostileText() {
    static constexpr char kText[] =
        "\xFF\xC0\x80 \"quoted\", \\\r\n\t\x01\x7F\0\xED\xA0\x80 \xE2\x82\xAC \xF4\x90\x80\x80";
    return {kText, sizeof kText - 1};
}

void presentHostileStream(qvinspect::Presenter& presenter, bool isBrokenOff) {
    const double infinity = std::numeric_limits<double>::infinity();
    qvinspect::AccessUnit accessUnit;
    accessUnit.parameters = hostileInfo().parameters;
    accessUnit.size = std::numeric_limits<size_t>::max();
    accessUnit.time = std::numeric_limits<double>::quiet_NaN();
    accessUnit.decodeTime = -infinity;
    accessUnit.duration = 1e-300;
    accessUnit.findings = {{qvinspect::Severity::Error, std::numeric_limits<uint64_t>::max(), hostileText()}};
    qvinspect::AccessUnitReport report;
    report.units = {{qvinspect::UnitState::Empty, 0, 0, 0, false}};
    qvinspect::SeiMessage message{4294967295U, 0, {}, qvinspect::Delivery::Text, {}};
    message.block.add(hostileText(), hostileText(), hostileText())
        .derive({infinity, -infinity}, hostileText());
    message.block.add("number", infinity);
    qvinspect::AccessUnitDetails details;
    details.units.resize(1);
    qvinspect::SeiUnit sei;
    sei.result = -1;
    sei.log = {hostileText()};
    sei.messages = {message};
    details.units[0].sei = std::make_shared<const qvinspect::SeiUnit>(std::move(sei));

    presenter.begin({hostileText(), hostileInfo(), false, {}});
    qvinspect::StreamCounter counter(hostileInfo());
    const qvinspect::AccessUnitView view = qvinspect::viewOf(1, accessUnit, report, details);
    counter.add(view);
    presenter.add(view);
    if (!isBrokenOff) {
        counter.finish(accessUnit.findings);
        presenter.end({counter.totals(), accessUnit.findings, {{hostileText(), false, hostileText()}}, true});
    }
}

std::vector<nlohmann::json> parseLines(const std::string& ndjson) {
    std::vector<nlohmann::json> records;
    std::istringstream lines(ndjson);
    for (std::string line; std::getline(lines, line);) {
        records.push_back(nlohmann::json::parse(line));
    }
    return records;
}

void expectGoldenReport(const std::string& text, const std::string& fileName) {
    const std::string shown = withoutVersion(text);
    const std::filesystem::path path = std::filesystem::path(QVINSPECT_GOLDEN_DIR) / fileName;
    if (std::getenv("QVINSPECT_WRITE_GOLDEN") != nullptr) {
        std::ofstream(path, std::ios::binary) << shown;
    }
    EXPECT_EQ(shown, textOf(path));
}

}  // namespace qv_test
