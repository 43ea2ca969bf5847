// Parameter sets for the payloads that depend on them.
#ifndef QV_TESTS_BITSTREAM_SEI_SETSOFMESSAGES_H
#define QV_TESTS_BITSTREAM_SEI_SETSOFMESSAGES_H

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <vector>

#include "Hex.h"
#include "bitstream/avc/ParameterSets.h"
#include "bitstream/hevc/ParameterSets.h"

namespace qv_test {

// An SPS of H.264 without VUI.
inline std::unique_ptr<qv::avc::Sps> plainAvcSps(uint32_t seq_parameter_set_id) {
    auto sps = std::make_unique<qv::avc::Sps>();
    sps->header.nal_ref_idc = 3;
    sps->header.nal_unit_type = 7;
    sps->data.profile_idc = 77;
    sps->data.level_idc = 30;
    sps->data.seq_parameter_set_id = seq_parameter_set_id;
    sps->data.chroma_format_idc = 1;
    sps->data.pic_order_cnt_type = 2;
    sps->data.max_num_ref_frames = 1;
    sps->data.frame_mbs_only_flag = true;
    sps->data.direct_8x8_inference_flag = true;
    return sps;
}

// An SPS of H.265 with 4 by 4 CTBs of 16 luma samples, and without VUI.
inline std::unique_ptr<qv::hevc::Sps> plainHevcSps(uint32_t sps_seq_parameter_set_id) {
    auto sps = std::make_unique<qv::hevc::Sps>();
    sps->header.nal_unit_type = 33;
    sps->header.nuh_temporal_id_plus1 = 1;
    sps->sps_temporal_id_nesting_flag = true;
    sps->profile_tier_level.general.profile_idc = 1;
    sps->profile_tier_level.general.profile_compatibility_flag = 6;
    sps->profile_tier_level.general.progressive_source_flag = true;
    sps->profile_tier_level.general_level_idc = 93;
    sps->sps_seq_parameter_set_id = sps_seq_parameter_set_id;
    sps->chroma_format_idc = 1;
    sps->pic_width_in_luma_samples = 64;
    sps->pic_height_in_luma_samples = 64;
    sps->sps_sub_layer_ordering_info_present_flag = true;
    sps->log2_diff_max_min_luma_coding_block_size = 1;
    return sps;
}

inline qv::Written writeSet(const qv::avc::Sps& sps, std::vector<uint8_t>& out) {
    return writeSps(sps, out);
}

inline qv::Written writeSet(const qv::hevc::Sps& sps, std::vector<uint8_t>& out) {
    return writeSps(sps, out);
}

inline qv::Written writeSet(const qv::hevc::Vps& vps, std::vector<uint8_t>& out) {
    return writeVps(vps, out);
}

// Takes the unit of a record, which has no fault.
template <class Sets, class Set>
void takeWritten(Sets& sets, const Set& set) {
    std::vector<uint8_t> unit;
    const qv::Written written = writeSet(set, unit);
    EXPECT_TRUE(written.ok()) << qv::textOf(written.fault);
    const qv::SetTaken taken = sets.take(bytesOf(unit));
    EXPECT_TRUE(!taken.fault) << qv::textOf(taken.fault);
}

}  // namespace qv_test

#endif
