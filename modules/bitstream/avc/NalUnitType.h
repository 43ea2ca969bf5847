/// \file
/// nal_unit_type of H.264, Table 7-1.
#ifndef QV_BITSTREAM_AVC_NALUNITTYPE_H
#define QV_BITSTREAM_AVC_NALUNITTYPE_H

#include <cstdint>

namespace qv::avc {

constexpr uint32_t kNalSliceNonIdr = 1;
constexpr uint32_t kNalSliceDataPartitionA = 2;
constexpr uint32_t kNalSliceDataPartitionB = 3;
constexpr uint32_t kNalSliceDataPartitionC = 4;
constexpr uint32_t kNalSliceIdr = 5;
constexpr uint32_t kNalSei = 6;
constexpr uint32_t kNalSps = 7;
constexpr uint32_t kNalPps = 8;
constexpr uint32_t kNalAccessUnitDelimiter = 9;
constexpr uint32_t kNalEndOfSequence = 10;
constexpr uint32_t kNalEndOfStream = 11;
constexpr uint32_t kNalFillerData = 12;
constexpr uint32_t kNalSpsExtension = 13;
constexpr uint32_t kNalPrefix = 14;
constexpr uint32_t kNalSubsetSps = 15;
constexpr uint32_t kNalDepthParameterSet = 16;
constexpr uint32_t kNalAuxiliarySlice = 19;
constexpr uint32_t kNalSliceExtension = 20;
constexpr uint32_t kNalSliceExtension3d = 21;

/// True for the types whose header has an extension: 14, 20 and 21 (7.3.1).
constexpr bool hasHeaderExtension(uint32_t nal_unit_type) {
    return nal_unit_type == kNalPrefix || nal_unit_type == kNalSliceExtension ||
           nal_unit_type == kNalSliceExtension3d;
}

}  // namespace qv::avc

#endif
