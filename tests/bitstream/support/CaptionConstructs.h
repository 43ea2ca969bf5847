// Caption constructs made by hand.
#ifndef QV_TESTS_BITSTREAM_CAPTIONCONSTRUCTS_H
#define QV_TESTS_BITSTREAM_CAPTIONCONSTRUCTS_H

#include <string>
#include <vector>

#include "Hex.h"
#include "bitstream/sei/Captions.h"

namespace qv_test {

// Constructs as coded, three bytes each: "fc9425 fd8080".
inline std::vector<qv::sei::CcConstruct> constructsOf(const std::string& text) {
    const std::vector<uint8_t> bytes = hex(text);
    std::vector<qv::sei::CcConstruct> constructs;
    for (size_t i = 0; i + 2 < bytes.size(); i += 3) {
        qv::sei::CcConstruct construct = {};
        construct.marker_bits = static_cast<uint8_t>(bytes[i] >> 3);
        construct.cc_valid = (bytes[i] >> 2 & 1) != 0;
        construct.cc_type = static_cast<uint8_t>(bytes[i] & 3);
        construct.cc_data_1 = bytes[i + 1];
        construct.cc_data_2 = bytes[i + 2];
        constructs.push_back(construct);
    }
    return constructs;
}

// The cc_data() with these constructs, at most 31.
inline qv::sei::CcData ccDataOf(const std::string& text) {
    qv::sei::CcData data = {};
    data.process_cc_data_flag = true;
    for (const qv::sei::CcConstruct& construct : constructsOf(text)) {
        data.constructs[data.cc_count++] = construct;
    }
    return data;
}

inline qv::sei::CaptionedPicture pictureWith(const std::string& text) {
    qv::sei::CaptionedPicture picture;
    picture.add(ccDataOf(text));
    return picture;
}

}  // namespace qv_test

#endif
