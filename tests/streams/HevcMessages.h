// The SEI messages of the H.265 streams, as read by independent tools.
#ifndef QV_TESTS_HEVCMESSAGES_H
#define QV_TESTS_HEVCMESSAGES_H

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "BitWriter.h"

namespace qv_test {

struct HevcMessage {
    std::string hex;
    Bytes payload;          // without emulation prevention bytes; at most the first 96 bytes
    int payloadSize;        // in bytes, as coded
    nlohmann::json fields;  // the fields that libavcodec reads; null if it does not read the message
};

struct HevcStream {
    std::string name;
    std::vector<HevcMessage> messages;  // the messages of the requested type
    nlohmann::json sps;                 // the syntax elements of the first sequence parameter set
    nlohmann::json sideData;            // the side data of libavcodec's decoded frames, first of each kind
    nlohmann::json sideDataCounts;
};

// Returns the streams of the folder that have messages of payloadType. Throws if there are none.
std::vector<HevcStream> hevcStreamsWith(int payloadType);

// Returns the stream of that name. Throws if it is missing or has no messages of payloadType.
HevcStream hevcStreamWith(int payloadType, const std::string& name);

}  // namespace qv_test

#endif
