// The pictures of a stream as libavcodec decodes them, with the user data that it finds for each.
#ifndef QV_TESTS_BITSTREAM_DECODEDFRAMES_H
#define QV_TESTS_BITSTREAM_DECODEDFRAMES_H

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <vector>

#include "bitstream/Codec.h"

namespace qv_test {

struct DecodedFrame {
    size_t packet = 0;                     // the packet that it comes from
    std::vector<uint8_t> captions;         // constructs of cc_data(), three bytes each
    std::optional<uint32_t> activeFormat;  // active_format of the active format description
};

struct DecodedFrames {
    qv::Codec codec = qv::Codec::Avc;
    std::vector<std::vector<std::vector<uint8_t>>> packets;  // the units of each, in decoding order
    std::vector<DecodedFrame> frames;                        // in output order
    uint32_t reorderedFrames = 0;                            // that the decoder holds back
};

// Throws std::runtime_error for a file that holds no H.264 or H.265 video.
DecodedFrames framesOf(const std::filesystem::path& file);

}  // namespace qv_test

#endif
