/// \file
/// Sub-sequences: parts of an H.264 stream that are coded in layers.
#ifndef QV_BITSTREAM_SEI_SUBSEQUENCES_H
#define QV_BITSTREAM_SEI_SUBSEQUENCES_H

#include <cstdint>

#include "bitstream/sei/SeiPayload.h"

namespace qv::sei {

/// sub_seq_info(), H.264 D.1.12.
struct SubSeqInfo {
    static constexpr PayloadTypes kPayloadTypes = {10, kNoPayloadType};  ///< payloadType

    uint32_t sub_seq_layer_num;     ///< ue(v), 0..255
    uint32_t sub_seq_id;            ///< ue(v), 0..65535
    bool first_ref_pic_flag;        ///< u(1)
    bool leading_non_ref_pic_flag;  ///< u(1)
    bool last_pic_flag;             ///< u(1)
    bool sub_seq_frame_num_flag;    ///< u(1)
    uint32_t sub_seq_frame_num;     ///< ue(v), 0..MaxFrameNum - 1; with sub_seq_frame_num_flag
};

/// sub_seq_layer_characteristics(), H.264 D.1.13.
struct SubSeqLayerCharacteristics {
    static constexpr PayloadTypes kPayloadTypes = {11, kNoPayloadType};  ///< payloadType
    static constexpr uint32_t kMostLayers = 256;  ///< the greatest num_sub_seq_layers_minus1, plus 1

    uint32_t num_sub_seq_layers_minus1;  ///< ue(v), 0..255

    // Set for the first num_sub_seq_layers_minus1 + 1 layers.

    bool accurate_statistics_flag[kMostLayers];  ///< u(1)
    uint16_t average_bit_rate[kMostLayers];      ///< u(16), in 1000 bit/s; 0 is unspecified
    uint16_t average_frame_rate[kMostLayers];    ///< u(16), in frames per 256 seconds; 0 is unspecified
};

/// sub_seq_characteristics(), H.264 D.1.14.
struct SubSeqCharacteristics {
    static constexpr PayloadTypes kPayloadTypes = {12, kNoPayloadType};  ///< payloadType
    static constexpr uint32_t kMostReferencedSubSeqs = 255;  ///< the greatest num_referenced_subseqs

    uint32_t sub_seq_layer_num;       ///< ue(v), 0..255
    uint32_t sub_seq_id;              ///< ue(v), 0..65535
    bool duration_flag;               ///< u(1)
    uint32_t sub_seq_duration;        ///< u(32), in ticks of 90 kHz; with duration_flag
    bool average_rate_flag;           ///< u(1)
    bool accurate_statistics_flag;    ///< u(1), with average_rate_flag
    uint32_t average_bit_rate;        ///< u(16), in 1000 bit/s, 0 is unspecified; with average_rate_flag
    uint32_t average_frame_rate;      ///< u(16), in frames per 256 seconds, 0 is unspecified
    uint32_t num_referenced_subseqs;  ///< ue(v), 0..255

    // Set for the first num_referenced_subseqs sub-sequences.

    uint8_t ref_sub_seq_layer_num[kMostReferencedSubSeqs];  ///< ue(v), 0..255
    uint16_t ref_sub_seq_id[kMostReferencedSubSeqs];        ///< ue(v), 0..65535
    bool ref_sub_seq_direction[kMostReferencedSubSeqs];     ///< u(1)
};

}  // namespace qv::sei

#endif
