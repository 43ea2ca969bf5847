// The NAL units of a stream file, raw or in a container, found without the library under test.
#ifndef QV_TESTS_BITSTREAM_FILEUNITS_H
#define QV_TESTS_BITSTREAM_FILEUNITS_H

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <vector>

#include "bitstream/Codec.h"

namespace qv_test {

struct FileUnits {
    qv::Codec codec = qv::Codec::Avc;

    // Configuration record first, then in stream order. Trailing zero bytes belong to no unit.
    std::vector<std::vector<uint8_t>> units;
};

// Annex B, byte by byte. Trailing zero bytes belong to no unit.
void addUnitsOfByteStream(const uint8_t* bytes, size_t size, std::vector<std::vector<uint8_t>>& units);

// Units with lengths of lengthSize bytes.
void addUnitsOfLengths(const uint8_t* bytes, size_t size, size_t lengthSize,
                       std::vector<std::vector<uint8_t>>& units);

// Those of avcC or hvcC. Returns the size of length fields; 0 without a configuration record.
size_t addUnitsOfRecord(qv::Codec codec, const uint8_t* bytes, size_t size,
                        std::vector<std::vector<uint8_t>>& units);

// Throws std::runtime_error for a file that holds no H.264 or H.265 video.
FileUnits unitsOf(const std::filesystem::path& file);

}  // namespace qv_test

#endif
