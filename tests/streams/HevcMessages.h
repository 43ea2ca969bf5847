// The SEI messages of the H.265 streams, as independent tools found them.
#ifndef QV_TESTS_HEVCMESSAGES_H
#define QV_TESTS_HEVCMESSAGES_H

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "BitWriter.h"

namespace qv_test {

struct HevcMessage {
    std::string hex;
    Bytes payload;          // without emulation prevention; its first 96 bytes when it is longer
    int payloadSize;        // in bytes, as coded
    nlohmann::json fields;  // what libavcodec reads of it; null when it reads nothing
};

struct HevcStream {
    std::string name;
    std::vector<HevcMessage> messages;  // those of the type that was asked for
    nlohmann::json sps;                 // the syntax elements of the first parameter set
    nlohmann::json sideData;            // what libavcodec's decoder attached to frames, first of each kind
    nlohmann::json sideDataCounts;
};

// The streams of the folder that have messages of that type. Throws when there are none.
std::vector<HevcStream> hevcStreamsWith(int payloadType);

// One of them. Throws when it is not there.
HevcStream hevcStreamWith(int payloadType, const std::string& name);

}  // namespace qv_test

#endif
