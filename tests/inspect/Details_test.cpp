// Parameter sets and SEI messages of real streams in the inspector, compared with the results of independent
// tools.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "InspectSupport.h"
#include "StreamExpectation.h"
#include "analysis/StreamDetails.h"
#include "input/OpenInput.h"

namespace qv_test {
namespace {

using nlohmann::json;
using qvinspect::Block;
using qvinspect::Field;
using qvinspect::SeiMessage;

struct Found {
    std::vector<std::vector<SeiMessage>> seiUnits;
    std::vector<qvinspect::SequenceParameterSet> parameterSets;
};

Found detailsOf(const std::filesystem::path& path) {
    Found found;
    const auto reader = qvinspect::openInput(path, {});
    qvinspect::StreamDetails details(reader->info().parameters.codecId, {});
    found.parameterSets = details.addConfiguration(reader->info().configuration).parameterSets;
    qvinspect::AccessUnit accessUnit;
    while (reader->next(accessUnit)) {
        auto report = qvinspect::analyse(accessUnit);
        for (const auto& unit : details.add(accessUnit, report).units) {
            if (unit.newSps) {
                found.parameterSets.push_back(*unit.newSps);
            }
            if (unit.sei) {
                found.seiUnits.push_back(unit.sei->messages);
            }
        }
    }
    return found;
}

std::map<std::string, std::string> valuesOf(const Block& block) {
    std::map<std::string, std::string> values;
    for (const Field& field : block.fields) {
        values[field.name] = valueText(field);
    }
    return values;
}

std::string hexOf(const Bytes& bytes, size_t most) {
    static const char digits[] = "0123456789abcdef";
    std::string text;
    for (size_t i = 0; i < bytes.size() && i < most; ++i) {
        text += digits[bytes[i] / 16];
        text += digits[bytes[i] % 16];
    }
    return text;
}

// How many elements of a payload type were compared.
using Compared = std::map<uint32_t, int>;

void checkMessage(const SeiMessage& message, const json& expected, Compared& compared) {
    EXPECT_EQ(message.payloadType, expected.at("type").get<uint32_t>());
    EXPECT_EQ(message.payloadSize, expected.at("size").get<uint32_t>());
    std::string hex = expected.at("hex");
    hex.resize(std::min(hex.find('.'), hex.size()));  // long payloads are cut
    EXPECT_EQ(hexOf(message.payload, hex.size() / 2), hex);
    if (!expected.contains("fields")) {
        return;
    }
    const auto values = valuesOf(message.block);
    for (const auto& [name, value] : expected.at("fields").items()) {
        const auto shown = values.find(name);
        if (shown != values.end() && value.is_number()) {
            EXPECT_EQ(std::stoll(shown->second, nullptr, 0), value.get<int64_t>()) << name;
            ++compared[message.payloadType];
        }
    }
}

// Units whose messages end properly, all of them in the listed part of the expectation.
bool isComparable(const json& unit) {
    return !unit.contains("state") && unit.contains("messages");
}

void checkSei(const Found& found, const json& sei, Compared& compared) {
    const json& list = sei.at("list");
    if (list.size() == sei.at("units").get<size_t>()) {
        EXPECT_EQ(found.seiUnits.size(), list.size());
    }
    for (size_t i = 0; i < list.size() && i < found.seiUnits.size(); ++i) {
        if (!isComparable(list[i])) {
            continue;
        }
        SCOPED_TRACE("SEI unit " + std::to_string(i));
        const json& messages = list[i].at("messages");
        ASSERT_EQ(found.seiUnits[i].size(), messages.size());
        for (size_t m = 0; m < messages.size(); ++m) {
            checkMessage(found.seiUnits[i][m], messages[m], compared);
        }
    }
}

// Compares the fields of a parameter set with the syntax elements that were traced.
int checkSps(const qvinspect::SequenceParameterSet& sps, const json& syntax) {
    int compared = 0;
    const auto values = valuesOf(describe(sps));
    for (const auto& [name, value] : syntax.items()) {
        const auto shown = values.find(name);
        if (shown != values.end() && value.is_number()) {
            EXPECT_EQ(std::stoll(shown->second, nullptr, 0), value.get<int64_t>()) << name;
            ++compared;
        }
    }
    const auto transfer = syntax.find("transfer_characteristics");
    const bool hasColour = sps.video && sps.video->colour;
    EXPECT_EQ(hasColour, transfer != syntax.end());
    if (hasColour && transfer != syntax.end()) {
        EXPECT_EQ(sps.video->colour->transfer_characteristics, transfer->get<uint32_t>());
    }
    return compared;
}

// Refused on purpose, read without the base layer's syntax, or not read to its end by the other tool either.
const std::set<std::string> kOtherParameterSets = {"avc_jm_444_sep.h264", "avc_jm_mvc_stereo.h264",
                                                   "hevc_alpha.h265", "hevc_mvhevc.h265"};

void checkParameterSets(const Found& found, const Stream& stream) {
    if (kOtherParameterSets.count(stream.name) != 0) {
        return;
    }
    std::vector<json> expected;
    for (const json& sps : stream.expectation.at("sps")) {
        if (sps.contains("syntax") && !sps.contains("trace_error")) {
            expected.push_back(sps);
        }
    }
    ASSERT_GE(found.parameterSets.size(), expected.empty() ? 0U : 1U);
    // The first one of the stream, or of its configuration record; all are compared if there are equally
    // many.
    for (size_t i = 0; i < expected.size() && found.parameterSets.size() == expected.size(); ++i) {
        SCOPED_TRACE("parameter set " + std::to_string(i));
        EXPECT_GE(checkSps(found.parameterSets[i], expected[i].at("syntax")), 10);
    }
}

class Details : public ::testing::TestWithParam<bool> {
protected:
    std::filesystem::path folder() const { return GetParam() ? streamsFolder() : bundledStreams(); }

    bool isAbsent() const { return !std::filesystem::exists(folder()); }

    // Containers need libavformat.
    static bool isReadable(const Stream& stream) {
        return QVINSPECT_HAS_LIBAVFORMAT == 1 || stream.framing() == "annexb";
    }
};

TEST_P(Details, seiMessagesAndTheirFields) {
    if (isAbsent()) {
        GTEST_SKIP() << "no folder " << folder();
    }
    Compared compared;
    int streams = 0;
    for (const Stream& stream : streamsIn(folder())) {
        // Bytes were damaged there: readers differ in the rest of the messages.
        if (!isReadable(stream) || stream.name.find("noise") != std::string::npos) {
            continue;
        }
        SCOPED_TRACE(stream.name);
        checkSei(detailsOf(folder() / stream.name), stream.expectation.at("sei"), compared);
        ++streams;
    }
    EXPECT_GT(streams, 0);
    const std::set<uint32_t> types =
        GetParam() ? std::set<uint32_t>{0, 1, 6, 47, 129, 137, 144, 147} : std::set<uint32_t>{0, 1, 137, 144};
    for (const uint32_t type : types) {
        EXPECT_GT(compared[type], 0) << "no element of payloadType " << type << " was compared";
    }
}

TEST_P(Details, parameterSets) {
    if (isAbsent()) {
        GTEST_SKIP() << "no folder " << folder();
    }
    for (const Stream& stream : streamsIn(folder())) {
        if (isReadable(stream)) {
            SCOPED_TRACE(stream.name);
            checkParameterSets(detailsOf(folder() / stream.name), stream);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Of, Details, ::testing::Values(false, true),
                         [](const auto& parameter) { return parameter.param ? "folder" : "bundled"; });

}  // namespace
}  // namespace qv_test
