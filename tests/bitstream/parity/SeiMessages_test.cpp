// The messages of every SEI unit against libavcodec's trace_headers filter: where each begins, its
// payloadType and payloadSize, and where its payload begins.
#include "bitstream/sei/SeiMessages.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <iostream>
#include <string>
#include <vector>

#include "FileUnits.h"
#include "SeiUnits.h"
#include "StreamFolder.h"
#include "WitnessMessages.h"

using qv::Codec;

namespace qv_test {

namespace {

struct Counts {
    size_t units = 0;
    size_t messages = 0;  // that agree
    size_t faults = 0;    // of ours
    size_t stopped = 0;   // units that the filter does not read to their end
};

// Of a unit in which the filter stops, the messages before that place are compared.
void compareUnit(qv::Bytes unit, Codec codec, const WitnessTrace& trace, Counts& counts) {
    std::vector<WitnessMessage> ours;
    for (const qv::SeiMessage& message : qv::SeiMessages(unit, codec)) {
        counts.faults += message.ok() ? 0U : 1U;
        ours.push_back({8 * uint64_t{message.rbspOffset}, 8 * uint64_t{message.rbspPayloadOffset},
                        message.payloadType, message.payloadSize});
    }
    const std::vector<WitnessMessage> theirs = messagesOf(trace);
    if (!trace.complaint.empty()) {
        ++counts.stopped;
        EXPECT_LE(theirs.size(), ours.size()) << trace.complaint;
        ours.resize(std::min(ours.size(), theirs.size()));
    }
    EXPECT_EQ(textsOf(ours), textsOf(theirs)) << trace.complaint;
    ++counts.units;
    counts.messages += theirs.size();
}

void compareFile(const std::filesystem::path& file, Counts& counts) {
    SCOPED_TRACE(file.filename().string());
    const FileUnits in = unitsOf(file);
    TraceHeaders witness(in.codec);
    for (size_t i = 0; i < in.units.size(); ++i) {
        SCOPED_TRACE("unit " + std::to_string(i));
        const qv::Bytes unit = {in.units[i].data(), in.units[i].size()};
        const WitnessTrace trace = witness.trace(unit);
        if (isSei(in.codec, unit)) {
            compareUnit(unit, in.codec, trace, counts);
        }
    }
}

class SeiParity : public StreamFolderTest<::testing::Test> {};

TEST_P(SeiParity, EveryMessageAgreesWithTraceHeaders) {
    Counts counts;
    for (const Stream& stream : streamsIn(GetParam().path)) {
        compareFile(GetParam().path / stream.name, counts);
    }
    std::cout << counts.units << " SEI units, " << counts.messages << " messages agree; " << counts.faults
              << " messages with a fault, " << counts.stopped << " units that the filter stops in\n";
    EXPECT_GT(counts.messages, 0U);
}

INSTANTIATE_TEST_SUITE_P(Streams, SeiParity, everyStreamFolder(),
                         [](const auto& folder) { return nameOf(folder); });

}  // namespace

}  // namespace qv_test
