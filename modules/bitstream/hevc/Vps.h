/// \file
/// The video parameter set of H.265.
#ifndef QV_BITSTREAM_HEVC_VPS_H
#define QV_BITSTREAM_HEVC_VPS_H

#include <cstdint>
#include <vector>

#include "bitstream/Bytes.h"
#include "bitstream/Read.h"
#include "bitstream/hevc/NalUnitHeader.h"
#include "bitstream/hevc/ProfileTierLevel.h"
#include "bitstream/hevc/VpsExtension.h"
#include "bitstream/syntax/CodedBits.h"
#include "bitstream/syntax/Trace.h"

namespace qv::hevc {

/// A NAL unit of type 32: its header and video_parameter_set_rbsp(), H.265 7.3.2.1 and 7.4.3.1, with the
/// extensions of F.7.3.2.1 and I.7.3.2.1. An element that is not present has the value that its semantics
/// infer, otherwise 0. The record is about 50 KB.
struct Vps {
    static constexpr uint32_t kMostLayerSets = 1024;  ///< the greatest vps_num_layer_sets_minus1, plus 1

    NalUnitHeader header;  ///< the NAL unit header

    uint32_t vps_video_parameter_set_id;  ///< u(4)
    bool vps_base_layer_internal_flag;    ///< u(1)
    bool vps_base_layer_available_flag;   ///< u(1)
    uint32_t vps_max_layers_minus1;       ///< u(6)
    uint32_t vps_max_sub_layers_minus1;   ///< u(3), 0..6
    bool vps_temporal_id_nesting_flag;    ///< u(1)
    uint32_t vps_reserved_0xffff_16bits;  ///< u(16), 0xFFFF
    ProfileTierLevel profile_tier_level;  ///< of the base layer

    /// For each sub-layer. Without vps_sub_layer_ordering_info_present_flag all have the values of the
    /// highest.
    bool vps_sub_layer_ordering_info_present_flag;
    uint32_t vps_max_dec_pic_buffering_minus1[kMostSubLayers];  ///< ue(v), 0..15
    uint32_t vps_max_num_reorder_pics[kMostSubLayers];        ///< ue(v), 0..vps_max_dec_pic_buffering_minus1
    uint32_t vps_max_latency_increase_plus1[kMostSubLayers];  ///< ue(v), 0..2^32 - 2

    uint32_t vps_max_layer_id;           ///< u(6), 0..62
    uint32_t vps_num_layer_sets_minus1;  ///< ue(v), 0..1023

    bool vps_timing_info_present_flag;           ///< u(1)
    uint32_t vps_num_units_in_tick;              ///< u(32), above 0
    uint32_t vps_time_scale;                     ///< u(32), above 0
    bool vps_poc_proportional_to_timing_flag;    ///< u(1)
    uint32_t vps_num_ticks_poc_diff_one_minus1;  ///< ue(v), 0..2^32 - 2
    uint32_t vps_num_hrd_parameters;             ///< ue(v), 0..vps_num_layer_sets_minus1 + 1
    CodedBits hrd_parameters;                    ///< hrd_layer_set_idx and what follows; see VpsHrdReader

    bool vps_extension_flag;            ///< u(1)
    bool vps_extension2_flag;           ///< u(1)
    bool vps_3d_extension_flag;         ///< u(1)
    bool vps_extension3_flag;           ///< u(1)
    Vps3dExtension three_d;             ///< with vps_3d_extension_flag
    CodedBits vps_extension_data_flag;  ///< extensions that this edition does not define

    VpsExtension extension;  ///< with vps_extension_flag

    /// layer_id_included_flag[i][j] is bit j of entry i, j being nuh_layer_id. Entry 0 is always { 0 };
    /// entries beyond vps_num_layer_sets_minus1 are not set.
    uint64_t layer_id_included_flag[kMostLayerSets];
};

/// MaxLayersMinus1: vps_max_layers_minus1, at most 62.
constexpr uint32_t maxLayersMinus1(const Vps& vps) {
    return vps.vps_max_layers_minus1 < kMostLayers ? vps.vps_max_layers_minus1 : kMostLayers - 1;
}

/// Reads a video parameter set.
///
/// \param unit  one NAL unit from its header on, without start code or length
/// \return the record. A unit of another type, data that ends early and a value out of its range are faults;
///         after one the record holds what was read before it.
Read<Vps> readVps(Bytes unit) noexcept;

/// As readVps(), and hands each element to \p visitor.
Read<Vps> traceVps(Bytes unit, TraceVisitor& visitor);

/// Writes a video parameter set as a NAL unit, emulation prevention bytes included, to the end of \p out. The
/// parts that the record refers to are copied from the unit that they were read from.
///
/// \return the number of bytes, or the first element that does not fit its descriptor or its range
Written writeVps(const Vps& vps, std::vector<uint8_t>& out);

/// The bits that writeVps() would write, emulation prevention bytes left out.
Sized sizeOf(const Vps& vps) noexcept;

}  // namespace qv::hevc

#endif
