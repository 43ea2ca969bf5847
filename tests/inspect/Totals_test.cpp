// Totals of real streams, compared with the results of other tools.
#include <gtest/gtest.h>

#include <map>
#include <numeric>
#include <set>
#include <string>

#include "InspectSupport.h"
#include "StreamFolder.h"
#include "analysis/Analysis.h"
#include "analysis/StreamDetails.h"
#include "analysis/StreamTotals.h"
#include "input/OpenInput.h"

namespace qv_test {
namespace {

using nlohmann::json;
using qvinspect::StreamTotals;

StreamTotals totalsOf(const std::filesystem::path& path) {
    const auto reader = qvinspect::openInput(path, {});
    qvinspect::StreamDetails details(reader->info().parameters.codecId, {});
    qvinspect::StreamCounter counter(reader->info());
    counter.addConfiguration(details.addConfiguration(reader->info().configuration));
    qvinspect::AccessUnit accessUnit;
    for (uint64_t number = 1; reader->next(accessUnit); ++number) {
        auto report = qvinspect::analyse(accessUnit);
        const auto unitDetails = details.add(accessUnit, report);
        counter.add(viewOf(number, accessUnit, report, unitDetails));
    }
    counter.finish(accessUnit.findings);
    return counter.totals();
}

json byType(const std::map<uint32_t, uint64_t>& counts) {
    json types = json::object();
    for (const auto& [type, count] : counts) {
        types[std::to_string(type)] = count;
    }
    return types;
}

class Totals : public StreamFolderTest<::testing::Test> {
protected:
    // Calls check with each stream and its totals. A build without libavformat has only raw streams.
    template <typename Check>
    static void forEachStream(Check check) {
        size_t checked = 0;
        for (const Stream& stream : streamsIn(GetParam().path)) {
            if (QVINSPECT_HAS_LIBAVFORMAT == 0 && stream.framing() != "annexb") {
                continue;
            }
            SCOPED_TRACE(stream.name);
            check(stream, totalsOf(GetParam().path / stream.name));
            ++checked;
        }
        EXPECT_GT(checked, 0U);
    }
};

// Units with forbidden_zero_bit set have a type in the expectation and none here.
TEST_P(Totals, unitsByType) {
    forEachStream([](const Stream& stream, const StreamTotals& totals) {
        const json& units = stream.expectation.at("nal_units");
        const size_t forbidden = units.at("forbidden_zero_bit_set").size();
        EXPECT_EQ(totals.units, units.at("total").get<uint64_t>());
        EXPECT_EQ(totals.untypedUnits, forbidden);
        if (forbidden == 0) {
            EXPECT_EQ(byType(totals.unitsByType), units.at("type_counts"));
        }
        uint64_t bytes = 0;
        for (const auto& [type, count] : totals.unitBytesByType) {
            bytes += count;
        }
        EXPECT_LE(bytes, totals.bytes);
        EXPECT_GE(bytes + totals.units * 5 + 4096, totals.bytes);
    });
}

TEST_P(Totals, messagesByType) {
    forEachStream([](const Stream& stream, const StreamTotals& totals) {
        if (stream.name.find("noise") != std::string::npos) {
            return;  // damaged: readers differ in the rest of the messages
        }
        EXPECT_EQ(byType(totals.messagesByType), stream.expectation.at("sei").at("payload_type_counts"));
    });
}

// The types that QVNaluParser::isKeyFrame documents, one access unit a packet. Streams that the other tool
// cuts differently are left out; Streams_test.cpp lists them with reasons. One of them has the same number of
// packets.
TEST_P(Totals, keys) {
    static const std::set<int> keyTypes = {5, 16, 17, 18, 19, 20, 21};
    size_t compared = 0;
    forEachStream([&](const Stream& stream, const StreamTotals& totals) {
        const json& packets = stream.expectation.at("packets");
        if (totals.accessUnits != packets.at("total") || stream.name == "avc_unittypes_hand.h264") {
            return;
        }
        ASSERT_EQ(packets.at("first").size(), packets.at("total"));
        uint64_t keys = 0;
        for (const json& row : packets.at("first")) {
            keys += std::any_of(row[3].begin(), row[3].end(),
                                [](const json& type) { return keyTypes.count(type.get<int>()) != 0; })
                        ? 1U
                        : 0U;
        }
        EXPECT_EQ(totals.keyAccessUnits, keys);
        ++compared;
    });
    EXPECT_GT(compared, 2U);
}

// The side data that the other tool's decoder attached to its first frames.
TEST_P(Totals, signals) {
    size_t signalled = 0;
    forEachStream([&](const Stream& stream, const StreamTotals& totals) {
        if (!stream.expectation.contains("decoded_frames")) {
            return;
        }
        const json& counts = stream.expectation.at("decoded_frames").at("side_data_counts");
        const qvinspect::Signals& signals = totals.signals;
        const std::pair<const char*, bool> cases[] = {
            {"Mastering display metadata", signals.masteringDisplay.has_value()},
            {"Content light level metadata", signals.contentLight.has_value()},
            {"ATSC A53 Part 4 Closed Captions", signals.captionMessages > 0},
            {"Active format description", signals.activeFormatMessages > 0},
            {"HDR Dynamic Metadata CUVA 005.1 2021 (Vivid)", signals.hdrVivid.read > 0},
            {"HDR Dynamic Metadata SMPTE2094-40 (HDR10+)", signals.hdr10PlusMessages > 0},
        };
        // The other tool counts constructs without cc_valid, and this stream has no others.
        const bool hasInvalidConstructs = stream.name == "avc_emulation.h264";
        for (const auto& [name, isFound] : cases) {
            if (counts.contains(name) &&
                !(hasInvalidConstructs && std::string(name).find("A53") != std::string::npos)) {
                EXPECT_TRUE(isFound) << name;
                ++signalled;
            }
        }
    });
    EXPECT_GT(signalled, 0U);
}

// Nothing is signalled without a message that can carry it.
TEST_P(Totals, noSignalWithoutItsMessage) {
    forEachStream([](const Stream& stream, const StreamTotals& totals) {
        const json& types = stream.expectation.at("sei").at("payload_type_counts");
        const qvinspect::Signals& signals = totals.signals;
        EXPECT_TRUE(types.contains("137") || !signals.masteringDisplay);
        EXPECT_TRUE(types.contains("144") || !signals.contentLight);
        EXPECT_TRUE(types.contains("147") || !signals.preferredTransfer);
        EXPECT_TRUE(types.contains("4") || signals.captionMessages + signals.activeFormatMessages +
                                                   signals.hdrVivid.messages + signals.hdr10PlusMessages ==
                                               0);
    });
}

INSTANTIATE_TEST_SUITE_P(From, Totals, everyStreamFolder(), nameOf);

}  // namespace
}  // namespace qv_test
