#include "report/Ndjson.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "InspectSupport.h"
#include "ReportSupport.h"
#include "StreamExpectation.h"

namespace qv_test {
namespace {

using nlohmann::json;
using qvinspect::Level;

TEST(Ndjson, golden) {
    const TemporaryFolder folder;
    const std::string path = folder.write("small.h264", smallStream());
    const std::vector<std::string> paths = {path, folder.path() / "missing"};
    expectGoldenReport(reportsOf(paths, {Level::Summary, ""}).ndjson, "small_summary.ndjson");
    expectGoldenReport(reportsOf(paths, {Level::Nalus, ""}).ndjson, "small_nalus.ndjson");
    expectGoldenReport(reportsOf(paths, {Level::Fields, ""}).ndjson, "small_fields.ndjson");
}

std::vector<std::string> kindsOf(const std::vector<json>& records) {
    std::vector<std::string> kinds;
    for (const json& record : records) {
        kinds.push_back(record.at("record").get<std::string>() + " " +
                        std::to_string(record.at("file_index").get<int>()));
    }
    return kinds;
}

TEST(Ndjson, everyLineNamesItsInput) {
    const TemporaryFolder folder;
    const std::string path = folder.write("x", smallStream());
    qvinspect::CommandLine line;
    line.stamp = true;
    const auto records = parseLines(reportsOf({"missing", path, path}, {Level::Summary, "D"}, line).ndjson);
    EXPECT_EQ(kindsOf(records),
              (std::vector<std::string>{"error 0", "file 1", "summary 1", "file 2", "summary 2"}));
    for (size_t i = 1; i < records.size(); ++i) {
        EXPECT_EQ(records[i].at("file"), "x");
        EXPECT_EQ(records[i].at("path"), path);
    }
    EXPECT_EQ(records[0].at("date"), "D");
    EXPECT_EQ(records[1].at("date"), "D");
}

TEST(Ndjson, inputThatFailsAfterItsHead) {
    const TemporaryFolder folder;
    const std::string path = folder.path() / "ndjson";
    qvinspect::Ndjson report(path, {});
    presentHostileStream(report, true);
    report.fail("x", "reading failed");
    presentHostileStream(report);
    report.finish();
    const Bytes text = fileContent(path);
    EXPECT_EQ(kindsOf(parseLines({text.begin(), text.end()})),
              (std::vector<std::string>{"file 0", "access_unit 0", "error 0", "file 1", "access_unit 1",
                                        "summary 1"}));
}

// The document that --json would have written.
json documentOf(const std::vector<json>& records) {
    json document = {{"files", json::array()}};
    for (json record : records) {
        const std::string kind = record.at("record");
        for (const char* key : {"schema_version", "generator", "level"}) {
            if (record.contains(key)) {
                document[key] = record.at(key);
                record.erase(key);
            }
        }
        const json name = record.at("file");
        for (const char* key : {"record", "file_index", "file"}) {
            record.erase(key);
        }
        json& files = document["files"];
        if (kind == "access_unit") {
            files.back()["access_units"].push_back(record);
        } else if (kind == "summary") {
            files.back().update(record);
        } else {
            record["name"] = name;
            if (kind == "file" && document.at("level") != "summary") {
                record["access_units"] = json::array();
            }
            files.push_back(record);
        }
    }
    return document;
}

TEST(Ndjson, holdsWhatTheDocumentHolds) {
    const std::vector<std::string> paths = {bundledStreams() / "avc_hrd_picstruct.h264", "missing",
                                            bundledStreams() / "avc_len1.mp4",
                                            bundledStreams() / "hevc_hash_hand.h265"};
    for (const Level level : {Level::Summary, Level::Samples, Level::Nalus, Level::Sei, Level::Fields}) {
        const Reports reports = reportsOf(paths, {level, ""});
        EXPECT_EQ(documentOf(parseLines(reports.ndjson)), json::parse(reports.json));
    }
}

}  // namespace
}  // namespace qv_test
