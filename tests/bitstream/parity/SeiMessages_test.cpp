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
#include "TraceHeaders.h"

using qv::Codec;

namespace qv_test {

namespace {

struct Message {
    uint64_t firstBit = 0;
    uint64_t payloadBit = 0;
    uint64_t payloadType = 0;
    uint64_t payloadSize = 0;
};

std::string textOf(const Message& message) {
    return "type " + std::to_string(message.payloadType) + ", " + std::to_string(message.payloadSize) +
           " bytes at bit " + std::to_string(message.firstBit) + ", payload at bit " +
           std::to_string(message.payloadBit);
}

std::vector<std::string> textsOf(const std::vector<Message>& messages) {
    std::vector<std::string> texts;
    std::transform(messages.begin(), messages.end(), std::back_inserter(texts),
                   [](const Message& message) { return textOf(message); });
    return texts;
}

// The filter's elements: ff_byte as often as it comes, last_payload_type_byte, ff_byte,
// last_payload_size_byte, and the payload.
std::vector<Message> messagesOf(const WitnessTrace& trace) {
    std::vector<Message> messages;
    Message message;
    uint64_t sum = 0;
    bool isInHeader = false;
    for (const WitnessElement& element : trace.elements) {
        const bool isLastOfType = element.name == "last_payload_type_byte";
        const bool isLastOfSize = element.name == "last_payload_size_byte";
        if (element.name != "ff_byte" && !isLastOfType && !isLastOfSize) {
            continue;
        }
        if (!isInHeader) {
            message.firstBit = element.firstBit;
            isInHeader = true;
        }
        sum += static_cast<uint64_t>(element.value);
        if (isLastOfType) {
            message.payloadType = sum;
            sum = 0;
        } else if (isLastOfSize) {
            message.payloadSize = sum;
            message.payloadBit = element.firstBit + element.width;
            messages.push_back(message);
            sum = 0;
            isInHeader = false;
        }
    }
    return messages;
}

struct Counts {
    size_t units = 0;
    size_t messages = 0;  // that agree
    size_t faults = 0;    // of ours
    size_t stopped = 0;   // units that the filter does not read to their end
};

// Of a unit in which the filter stops, the messages before that place are compared.
void compareUnit(qv::Bytes unit, Codec codec, const WitnessTrace& trace, Counts& counts) {
    std::vector<Message> ours;
    for (const qv::SeiMessage& message : qv::SeiMessages(unit, codec)) {
        counts.faults += message.ok() ? 0U : 1U;
        ours.push_back({8 * uint64_t{message.rbspOffset}, 8 * uint64_t{message.rbspPayloadOffset},
                        message.payloadType, message.payloadSize});
    }
    const std::vector<Message> theirs = messagesOf(trace);
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
