#include "report/Json.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
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
using ::testing::HasSubstr;
using ::testing::Not;

json parsed(const Reports& reports) {
    return json::parse(reports.json);
}

json fileOf(const Reports& reports) {
    return parsed(reports).at("files").at(0);
}

std::string bundled(const std::string& name) {
    return bundledStreams() / name;
}

// --- Goldens ---

class JsonLevels : public ::testing::TestWithParam<std::pair<const char*, Level>> {};

TEST_P(JsonLevels, golden) {
    const auto& [name, level] = GetParam();
    const TemporaryFolder folder;
    const std::string path = folder.write("small.h264", smallStream());
    expectGoldenReport(reportsOf({path, folder.path() / "missing"}, {level, ""}).json,
                       std::string("small_") + name + ".json");
}

INSTANTIATE_TEST_SUITE_P(Every, JsonLevels,
                         ::testing::Values(std::pair{"summary", Level::Summary},
                                           std::pair{"samples", Level::Samples},
                                           std::pair{"nalus", Level::Nalus}, std::pair{"sei", Level::Sei},
                                           std::pair{"fields", Level::Fields}));

TEST(Json, goldenOfHdrVivid) {
    expectGoldenReport(reportsOf({bundled("hevc_vivid_hand.h265")}, {Level::Summary, ""}).json,
                       "hdr_vivid_summary.json");
}

// --- The document ---

TEST(Json, documentWithoutInputs) {
    const json document = parsed(reportsOf({}));
    EXPECT_EQ(document.at("files"), json::array());
    EXPECT_EQ(document.at("schema_version"), 1);
    EXPECT_EQ(document.at("generator").at("name"), "qvinspect");
}

TEST(Json, everyInputIsThereInItsOrder) {
    const TemporaryFolder folder;
    const std::string good = folder.write("good", smallStream());
    const json files = parsed(reportsOf({"missing", good, folder.path(), good})).at("files");
    ASSERT_EQ(files.size(), 4U);
    EXPECT_EQ(files[0].at("name"), "missing");
    EXPECT_THAT(files[0].at("error").get<std::string>(), HasSubstr("No such file"));
    EXPECT_EQ(files[1].at("name"), "good");
    EXPECT_THAT(files[2].at("error").get<std::string>(), HasSubstr("directory"));
    EXPECT_EQ(files[1], files[3]);
}

TEST(Json, inputThatFailsAfterItsHead) {
    const TemporaryFolder folder;
    for (const Level level : {Level::Summary, Level::Fields}) {
        const std::string path = folder.path() / "json";
        qvinspect::Json report(path, {level, ""});
        presentHostileStream(report, true);
        report.fail("x", "reading failed");
        presentHostileStream(report);
        report.finish();
        const Bytes text = fileContent(path);
        const json files = json::parse(text).at("files");
        ASSERT_EQ(files.size(), 2U);
        EXPECT_EQ(files[0].at("error"), "reading failed");
        EXPECT_EQ(files[0].at("codec"), "h264");
        EXPECT_EQ(files[0].contains("access_units"), level == Level::Fields);
        EXPECT_FALSE(files[0].contains("summary"));
        EXPECT_TRUE(files[1].at("interrupted").get<bool>());
    }
}

TEST(Json, namesAndDatesOnlyWithAStamp) {
    const TemporaryFolder folder;
    const std::string path = folder.write("x", smallStream());
    qvinspect::CommandLine line;
    EXPECT_THAT(reportsOf({path}).json, Not(HasSubstr(folder.path().string())));
    line.stamp = true;
    const json document = parsed(reportsOf({path}, {Level::Summary, "2024-02-29T23:59:59Z"}, line));
    EXPECT_EQ(document.at("date"), "2024-02-29T23:59:59Z");
    EXPECT_EQ(document.at("files").at(0).at("name"), "x");
    EXPECT_EQ(document.at("files").at(0).at("path"), path);
}

// --- Access units ---

TEST(Json, filtersApply) {
    const TemporaryFolder folder;
    const std::string path = folder.write("x", smallStream());
    qvinspect::CommandLine line;
    line.filter.seiTypes = {4};
    const json file = fileOf(reportsOf({path}, {}, line));
    ASSERT_EQ(file.at("access_units").size(), 1U);
    const json& units = file.at("access_units").at(0).at("units");
    ASSERT_EQ(units.size(), 1U);
    const json& messages = units.at(0).at("sei").at("messages");
    ASSERT_EQ(messages.size(), 1U);
    EXPECT_EQ(messages.at(0).at("type"), 4);
    EXPECT_EQ(messages.at(0).at("payload"), "b50031");
    EXPECT_EQ(file.at("summary").at("access_units"), 3) << "the totals are those of the whole stream";
}

// Every SEI message of a file.
std::vector<json> messagesOf(const json& file) {
    std::vector<json> messages;
    for (const json& accessUnit : file.at("access_units")) {
        for (const json& unit : accessUnit.at("units")) {
            if (unit.contains("sei")) {
                const json& some = unit.at("sei").at("messages");
                messages.insert(messages.end(), some.begin(), some.end());
            }
        }
    }
    return messages;
}

TEST(Json, payloadOffsetsPointAtPayloads) {
    int compared = 0;
    for (const Stream& stream : streamsIn(bundledStreams(), "annexb")) {
        for (const json& message : messagesOf(fileOf(reportsOf({bundled(stream.name)})))) {
            const std::string payload = message.at("payload");
            EXPECT_EQ(payload.size(), 2 * message.at("size").get<size_t>());
            if (!payload.empty()) {
                const size_t offset = message.at("payload_offset");
                EXPECT_EQ(stream.bytes.at(offset), std::stoul(payload.substr(0, 2), nullptr, 16));
                ++compared;
            }
        }
    }
    EXPECT_GT(compared, 50);
}

TEST(Json, numbersAreNumbers) {
    const auto messages = messagesOf(fileOf(reportsOf({sampleFolder() / "hevc_hdr10.h265"})));
    const auto display = std::find_if(messages.begin(), messages.end(),
                                      [](const json& message) { return message.at("type") == 137; });
    ASSERT_NE(display, messages.end());
    EXPECT_EQ(display->at("fields").at(6).dump(),
              R"({"derived":0.3127,"name":"white_point_x","note":"0.31270","value":15635})");
    EXPECT_EQ(display->at("fields").at(8).dump(),
              R"({"derived":1000.0,"name":"max_display_mastering_luminance","note":"1000.0000 cd/m2",)"
              R"("unit":"cd/m2","value":10000000})");
}

// --- Hostile bytes ---

TEST(Json, hostileTextsStayValid) {
    const TemporaryFolder folder;
    const std::string path = folder.path() / "json";
    qvinspect::Json report(path, {});
    presentHostileStream(report);
    report.fail(hostileText(), hostileText());
    report.finish();
    const Bytes text = fileContent(path);
    const json document = json::parse(text);  // refuses what is not UTF-8
    const json& file = document.at("files").at(0);
    const json& accessUnit = file.at("access_units").at(0);
    EXPECT_TRUE(accessUnit.at("time").is_null());
    EXPECT_TRUE(accessUnit.at("decode_time").is_null());
    EXPECT_EQ(accessUnit.at("size"), std::numeric_limits<size_t>::max());
    const json& field = accessUnit.at("units").at(0).at("sei").at("messages").at(0).at("fields").at(0);
    EXPECT_EQ(field.at("derived"), json::array({nullptr, nullptr}));
    EXPECT_EQ(field.at("name"), field.at("value"));
    const std::string shown = file.at("findings").at(0).at("text");
    EXPECT_THAT(shown, HasSubstr(std::string("\"quoted\", \\\r\n\t\x01\x7F\0", 17)));
    EXPECT_THAT(shown, HasSubstr("\xE2\x82\xAC")) << "what is text stays as it is";
    EXPECT_THAT(shown, HasSubstr("\xEF\xBF\xBD")) << "U+FFFD for what is none";
}

TEST(Json, unusualFileNames) {
    const TemporaryFolder folder;
    const std::string path = folder.write("a\n\"b\"\xFF", smallStream());
    EXPECT_EQ(fileOf(reportsOf({path})).at("name"), "a\\x0A\"b\"\\xFF");
}

// --- The same again ---

TEST(Json, sameInputsGiveTheSameBytes) {
    const std::vector<std::string> paths = {bundled("avc_hrd_picstruct.h264"),
                                            bundled("hevc_vivid_hand.h265"), "missing"};
    const Reports first = reportsOf(paths);
    const Reports second = reportsOf(paths);
    EXPECT_EQ(first.json, second.json);
    EXPECT_EQ(first.ndjson, second.ndjson);
    EXPECT_EQ(first.csv, second.csv);
}

}  // namespace
}  // namespace qv_test
