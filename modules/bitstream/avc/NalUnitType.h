/// \file
/// nal_unit_type of H.264, Table 7-1.
#ifndef QV_BITSTREAM_AVC_NALUNITTYPE_H
#define QV_BITSTREAM_AVC_NALUNITTYPE_H

#include <cstdint>

namespace qv::avc {

constexpr uint32_t kNalSliceNonIdr = 1;          ///< slice_layer_without_partitioning_rbsp(), not IDR
constexpr uint32_t kNalSliceDataPartitionA = 2;  ///< slice_data_partition_a_layer_rbsp()
constexpr uint32_t kNalSliceDataPartitionB = 3;  ///< slice_data_partition_b_layer_rbsp()
constexpr uint32_t kNalSliceDataPartitionC = 4;  ///< slice_data_partition_c_layer_rbsp()
constexpr uint32_t kNalSliceIdr = 5;             ///< slice_layer_without_partitioning_rbsp(), IDR
constexpr uint32_t kNalSei = 6;                  ///< sei_rbsp()
constexpr uint32_t kNalSps = 7;                  ///< seq_parameter_set_rbsp()
constexpr uint32_t kNalPps = 8;                  ///< pic_parameter_set_rbsp()
constexpr uint32_t kNalAccessUnitDelimiter = 9;  ///< access_unit_delimiter_rbsp()
constexpr uint32_t kNalEndOfSequence = 10;       ///< end_of_seq_rbsp()
constexpr uint32_t kNalEndOfStream = 11;         ///< end_of_stream_rbsp()
constexpr uint32_t kNalFillerData = 12;          ///< filler_data_rbsp()
constexpr uint32_t kNalSpsExtension = 13;        ///< seq_parameter_set_extension_rbsp()
constexpr uint32_t kNalPrefix = 14;              ///< prefix_nal_unit_rbsp()
constexpr uint32_t kNalSubsetSps = 15;           ///< subset_seq_parameter_set_rbsp()
constexpr uint32_t kNalDepthParameterSet = 16;   ///< depth_parameter_set_rbsp()
constexpr uint32_t kNalAuxiliarySlice = 19;      ///< a slice of an auxiliary coded picture
constexpr uint32_t kNalSliceExtension = 20;      ///< slice_layer_extension_rbsp()
constexpr uint32_t kNalSliceExtension3d = 21;    ///< slice_layer_extension_rbsp(), depth or 3D-AVC texture

/// True for the types whose header has an extension: 14, 20 and 21 (7.3.1).
constexpr bool hasHeaderExtension(uint32_t nal_unit_type) {
    return nal_unit_type == kNalPrefix || nal_unit_type == kNalSliceExtension ||
           nal_unit_type == kNalSliceExtension3d;
}

}  // namespace qv::avc

#endif
