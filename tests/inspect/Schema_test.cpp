// Checks the program's output against its schema with an independent validator.
#include <gtest/gtest.h>
#include <stdio.h>

#include <array>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "InspectSupport.h"
#include "ReportSupport.h"
#include "StreamExpectation.h"
#include "report/Json.h"
#include "report/JsonSchema.h"
#include "report/Ndjson.h"

namespace qv_test {
namespace {

using nlohmann::json;
using qvinspect::Level;

constexpr Level kLevels[] = {Level::Summary, Level::Samples, Level::Nalus, Level::Sei, Level::Fields};

Bytes bytesOf(const std::string& text) {
    return {text.begin(), text.end()};
}

class Schema : public ::testing::Test {
protected:
    // Adds a document, or lines, to those that are validated.
    std::string keep(const std::string& name, const std::string& text) {
        paths_.push_back(folder_.write(name, bytesOf(text)));
        return paths_.back();
    }

    void keep(const std::string& name, const Reports& reports) {
        keep(name + ".json", reports.json);
        keep(name + ".ndjson", reports.ndjson);
    }

    // The validator's messages about all that was added; empty if it agrees. mode: "accept" or "refuse".
    std::string validate(const std::string& mode) {
        const std::string schema = folder_.write("schema", bytesOf(qvinspect::kJsonSchema));
        std::string command =
            std::string("'" QVINSPECT_PYTHON "' '" QVINSPECT_VALIDATOR "' ") + mode + " '" + schema + "'";
        for (const std::string& path : paths_) {
            command += " '" + path + "'";
        }
        FILE* const pipe = popen((command + " 2>&1").c_str(), "r");
        if (pipe == nullptr) {
            return "cannot run " + command;
        }
        std::string said;
        std::array<char, 4096> piece{};
        for (size_t size = 0; (size = fread(piece.data(), 1, piece.size(), pipe)) > 0;) {
            said.append(piece.data(), size);
        }
        return pclose(pipe) == 0 && said.empty() ? said : "the validator does not agree: " + said;
    }

    const TemporaryFolder& folder() const { return folder_; }

private:
    TemporaryFolder folder_;
    std::vector<std::string> paths_;
};

std::vector<std::string> mediaFiles() {
    std::vector<std::string> paths;
    for (const char* name : {"avc.ts", "avc_avc1.mp4", "hevc_hdr10.h265"}) {
        paths.push_back(sampleFolder() / name);
    }
    for (const Stream& stream : streamsIn(bundledStreams())) {
        paths.push_back(bundledStreams() / stream.name);
    }
    return paths;
}

TEST_F(Schema, realOutputAtEveryLevel) {
    std::vector<std::string> paths = mediaFiles();
    paths.push_back(folder().write("small", smallStream()));
    paths.push_back("missing");
    for (const Level level : kLevels) {
        keep("level" + std::to_string(static_cast<int>(level)), reportsOf(paths, {level, ""}));
    }
    EXPECT_EQ(validate("accept"), "");
}

// Overwritten and cut, in the same way each time.
Bytes damaged(Bytes bytes, uint32_t seed) {
    uint32_t state = seed;
    const auto next = [&state] { return state = state * 1664525U + 1013904223U; };
    for (size_t i = 0; i < bytes.size() / 200 + 1; ++i) {
        bytes[(next() >> 8) % bytes.size()] = static_cast<uint8_t>(next() >> 24);
    }
    bytes.resize(bytes.size() - bytes.size() * (seed % 4) / 10);
    return bytes;
}

TEST_F(Schema, damagedStreams) {
    std::vector<std::string> paths;
    for (const std::string& path : mediaFiles()) {
        for (uint32_t seed = 0; seed < 3; ++seed) {
            paths.push_back(
                folder().write("damaged" + std::to_string(paths.size()), damaged(fileContent(path), seed)));
        }
    }
    qvinspect::CommandLine line;
    line.requested = {1, 4, 5, 47, 132, 137};
    line.checks = {qvinspect::parseCheck("no-errors"), qvinspect::parseCheck("max-key-interval=2s")};
    line.input.frameRate = 1e300;
    keep("damaged", reportsOf(paths, {}, line));
    EXPECT_EQ(validate("accept"), "");
}

TEST_F(Schema, hostileBrokenOffAndInterruptedStreams) {
    const std::string path = folder().path() / "hostile";
    for (const Level level : kLevels) {
        const std::string name = path + std::to_string(static_cast<int>(level));
        qvinspect::Json document(name + ".json", {level, "2024-02-29T23:59:59Z"});
        qvinspect::Ndjson lines(name + ".ndjson", {level, "2024-02-29T23:59:59Z"});
        for (qvinspect::Presenter* report :
             {static_cast<qvinspect::Presenter*>(&document), static_cast<qvinspect::Presenter*>(&lines)}) {
            presentHostileStream(*report, true);
            report->fail(hostileText(), hostileText());
            report->fail(hostileText(), hostileText());
            presentHostileStream(*report);
            report->finish();
        }
        for (const char* kind : {".json", ".ndjson"}) {
            const Bytes bytes = fileContent(name + kind);
            keep("kept" + std::to_string(static_cast<int>(level)) + kind, {bytes.begin(), bytes.end()});
        }
    }
    EXPECT_EQ(validate("accept"), "");
}

TEST_F(Schema, stampsAndFilters) {
    qvinspect::CommandLine line;
    line.stamp = true;
    line.filter.seiTypes = {137, 4};
    keep("stamped", reportsOf(mediaFiles(), {Level::Fields, "2024-02-29T23:59:59Z"}, line));
    EXPECT_EQ(validate("accept"), "");
}

// --- Documents that are wrong ---

using Change = std::function<void(json&)>;

json& firstUnit(json& document) {
    return document["files"][0]["access_units"][0]["units"][0];
}

TEST_F(Schema, wrongDocumentsAreRefused) {
    const std::string path = folder().write("small", smallStream());
    const json right = json::parse(reportsOf({path}).json);
    const Change changes[] = {
        [](json& document) { document["more"] = 1; },
        [](json& document) { document.erase("level"); },
        [](json& document) { document["schema_version"] = 2; },
        [](json& document) { document["generator"]["more"] = 1; },
        [](json& document) { document["date"] = "yesterday"; },
        [](json& document) { document["files"] = json::object(); },
        [](json& document) { document["files"][0].erase("name"); },
        [](json& document) { document["files"][0].erase("summary"); },
        [](json& document) { document["files"][0]["codec"] = "h266"; },
        [](json& document) { document["files"][0]["error"] = "both"; },
        [](json& document) { document["files"][0]["more"] = 1; },
        [](json& document) { document["files"][0]["access_units"][0]["more"] = 1; },
        [](json& document) { document["files"][0]["access_units"][0]["key"] = 1; },
        [](json& document) { document["files"][0]["access_units"][0].erase("time"); },
        [](json& document) { document["files"][0]["access_units"][0]["number"] = 0; },
        [](json& document) { document["files"][0]["access_units"][0]["size"] = -1; },
        [](json& document) { document["files"][0]["access_units"][0]["findings"][0].erase("text"); },
        [](json& document) { firstUnit(document)["more"] = 1; },
        [](json& document) { firstUnit(document)["header"] = "6"; },
        [](json& document) { firstUnit(document)["type"] = nullptr; },
        [](json& document) { firstUnit(document)["state"] = "forbidden_bit"; },
        [](json& document) { firstUnit(document)["sps"]["fields"][0]["value"] = json::object(); },
        [](json& document) { firstUnit(document)["sps"]["video"].erase("width"); },
        [](json& document) { document["files"][0]["summary"]["hdr"]["classes"] = {"HDR"}; },
        [](json& document) { document["files"][0]["summary"]["more"] = 1; },
    };
    int number = 0;
    for (const Change& change : changes) {
        json wrong = right;
        change(wrong);
        ASSERT_NE(wrong, right) << number;
        keep("wrong" + std::to_string(number++) + ".json", wrong.dump());
    }
    keep("constant.json", R"({"level":NaN})");
    keep("twice.json", reportsOf({path}).json.insert(1, R"("level":"fields",)"));
    keep("cut.json", right.dump().substr(0, 1000));
    EXPECT_EQ(validate("refuse"), "");
}

TEST_F(Schema, wrongLinesAreRefused) {
    const std::string path = folder().write("small", smallStream());
    std::string wrong;
    for (json record : parseLines(reportsOf({path, "missing"}).ndjson)) {
        for (const char* key : {"record", "file", "file_index"}) {
            json without = record;
            without.erase(key);
            wrong += without.dump() + "\n";
        }
        json more = record;
        more["more"] = 1;
        record["record"] = record["record"] == "file" ? "summary" : "file";
        wrong += more.dump() + "\n" + record.dump() + "\n";
    }
    keep("wrong.ndjson", wrong);
    EXPECT_EQ(validate("refuse"), "");
}

}  // namespace
}  // namespace qv_test
