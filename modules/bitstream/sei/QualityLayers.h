/// \file
/// Messages of scalable streams about single layer representations.
#ifndef QV_BITSTREAM_SEI_QUALITYLAYERS_H
#define QV_BITSTREAM_SEI_QUALITYLAYERS_H

#include <cstdint>

#include "bitstream/sei/EntryReader.h"
#include "bitstream/sei/SeiPayload.h"
#include "bitstream/syntax/CodedBits.h"

namespace qv::sei {

/// quality_layer_integrity_check(), H.264 G.13.1.9 and G.13.2.9. Elements beyond the count are 0.
struct QualityLayerIntegrityCheck {
    static constexpr PayloadTypes kPayloadTypes = {32, kNoPayloadType};  ///< payloadType
    static constexpr uint32_t kMostEntries = 8;                          ///< the greatest number of entries

    uint32_t num_info_entries_minus1;            ///< ue(v), 0..7
    uint32_t entry_dependency_id[kMostEntries];  ///< u(3)
    uint32_t quality_layer_crc[kMostEntries];    ///< u(16)
};

/// redundant_pic_property(), H.264 G.13.1.10 and G.13.2.10.
struct RedundantPicProperty {
    static constexpr PayloadTypes kPayloadTypes = {33, kNoPayloadType};  ///< payloadType

    uint32_t num_dIds_minus1;  ///< ue(v), 0..7
    CodedBits layers;          ///< dependency_id[ i ] and what follows it, borrowed; see RedundantLayers
};

/// A redundant layer representation: what of the primary one it matches.
struct RedundantPic {
    uint8_t redundant_pic_cnt_minus1;  ///< ue(v), 0..126
    bool pic_match_flag;               ///< u(1)
    bool mb_type_match_flag;           ///< u(1), without pic_match_flag
    bool motion_match_flag;            ///< u(1), without pic_match_flag
    bool residual_match_flag;          ///< u(1), without pic_match_flag
    bool intra_samples_match_flag;     ///< u(1), without pic_match_flag
};

/// The redundant layer representations of a quality_id. Elements beyond the count are not set.
struct RedundantQuality {
    static constexpr uint32_t kMostPics = 127;  ///< the greatest number of redundant pictures

    uint32_t quality_id;                 ///< u(4)
    uint32_t num_redundant_pics_minus1;  ///< ue(v), 0..126
    RedundantPic pics[kMostPics];        ///< num_redundant_pics_minus1 + 1 of them
};

/// The redundant layer representations of a dependency_id. Elements beyond the count are not set.
struct RedundantLayer {
    static constexpr uint32_t kMostQualities = 16;  ///< the greatest number of quality_id

    uint32_t dependency_id;                      ///< u(3)
    uint32_t num_qIds_minus1;                    ///< ue(v), 0..15
    RedundantQuality qualities[kMostQualities];  ///< num_qIds_minus1 + 1 of them
};

/// Reads what is redundant, one dependency_id at a time.
using RedundantLayers = EntryReader<RedundantPicProperty, RedundantLayer>;

/// tl0_dep_rep_index(), H.264 G.13.1.11 and G.13.2.11.
struct Tl0DepRepIndex {
    static constexpr PayloadTypes kPayloadTypes = {34, kNoPayloadType};  ///< payloadType
    uint32_t tl0_dep_rep_idx;                                            ///< u(8)
    uint32_t effective_idr_pic_id;                                       ///< u(16)
};

/// tl_switching_point(), H.264 G.13.1.12 and G.13.2.12.
struct TlSwitchingPoint {
    static constexpr PayloadTypes kPayloadTypes = {35, kNoPayloadType};  ///< payloadType
    int32_t delta_frame_num;                                             ///< se(v)
};

}  // namespace qv::sei

#endif
