// The SEI messages of a unit as libavcodec's trace_headers filter reads them.
#ifndef QV_TESTS_BITSTREAM_WITNESSMESSAGES_H
#define QV_TESTS_BITSTREAM_WITNESSMESSAGES_H

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <string>
#include <vector>

#include "SeiUnits.h"
#include "TraceHeaders.h"
#include "bitstream/avc/NalUnitType.h"
#include "bitstream/hevc/NalUnitType.h"
#include "bitstream/units/NalUnits.h"

namespace qv_test {

struct WitnessMessage {
    uint64_t firstBit = 0;
    uint64_t payloadBit = 0;
    uint64_t payloadType = 0;
    uint64_t payloadSize = 0;
};

inline std::string textOf(const WitnessMessage& message) {
    return "type " + std::to_string(message.payloadType) + ", " + std::to_string(message.payloadSize) +
           " bytes at bit " + std::to_string(message.firstBit) + ", payload at bit " +
           std::to_string(message.payloadBit);
}

inline std::vector<std::string> textsOf(const std::vector<WitnessMessage>& messages) {
    std::vector<std::string> texts;
    std::transform(messages.begin(), messages.end(), std::back_inserter(texts),
                   [](const WitnessMessage& message) { return textOf(message); });
    return texts;
}

// The filter's elements: ff_byte as often as it comes, last_payload_type_byte, ff_byte,
// last_payload_size_byte, and the payload.
inline std::vector<WitnessMessage> messagesOf(const WitnessTrace& trace) {
    std::vector<WitnessMessage> messages;
    WitnessMessage message;
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

}  // namespace qv_test

#endif
