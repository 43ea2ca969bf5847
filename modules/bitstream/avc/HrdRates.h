/// \file
/// Rates and sizes of the hypothetical reference decoder of H.264, in bits.
#ifndef QV_BITSTREAM_AVC_HRDRATES_H
#define QV_BITSTREAM_AVC_HRDRATES_H

#include <cstdint>

#include "bitstream/avc/Hrd.h"
#include "bitstream/avc/ProfileLevel.h"
#include "bitstream/avc/Vui.h"

namespace qv::avc {

/// BitRate[ SchedSelIdx ] in bit/s, H.264 E.2.2 (E-37); 0 when SchedSelIdx is greater than cpb_cnt_minus1.
constexpr uint64_t bitRate(const Hrd& hrd, uint32_t SchedSelIdx) {
    if (SchedSelIdx >= Hrd::kMostCpbs || SchedSelIdx > hrd.cpb_cnt_minus1) {
        return 0;
    }
    return (uint64_t{hrd.bit_rate_value_minus1[SchedSelIdx]} + 1) << (6 + (hrd.bit_rate_scale & 15));
}

/// CpbSize[ SchedSelIdx ] in bits, H.264 E.2.2 (E-38); 0 when SchedSelIdx is greater than cpb_cnt_minus1.
constexpr uint64_t cpbSize(const Hrd& hrd, uint32_t SchedSelIdx) {
    if (SchedSelIdx >= Hrd::kMostCpbs || SchedSelIdx > hrd.cpb_cnt_minus1) {
        return 0;
    }
    return (uint64_t{hrd.cpb_size_value_minus1[SchedSelIdx]} + 1) << (4 + (hrd.cpb_size_scale & 15));
}

/// What a bit rate or a buffer size counts.
enum class HrdType : uint32_t {
    Vcl,  ///< slices and filler data
    Nal,  ///< everything
};

/// The greatest bit rate of a profile and a level in bit/s, H.264 A.3.1 and A.3.3: MaxBR times cpbBrVclFactor
/// or cpbBrNalFactor. BitRate[ 0 ] without HRD parameters.
constexpr uint64_t maxBitRate(const ProfileEntry& profile, const LevelEntry& level, HrdType type) {
    return uint64_t{level.MaxBR} * (type == HrdType::Nal ? profile.cpbBrNalFactor : profile.cpbBrVclFactor);
}

/// The greatest size of the coded picture buffer of a profile and a level in bits, H.264 A.3.1 and A.3.3:
/// MaxCPB times cpbBrVclFactor or cpbBrNalFactor. CpbSize[ 0 ] without HRD parameters.
constexpr uint64_t maxCpbSize(const ProfileEntry& profile, const LevelEntry& level, HrdType type) {
    return uint64_t{level.MaxCPB} * (type == HrdType::Nal ? profile.cpbBrNalFactor : profile.cpbBrVclFactor);
}

/// Bits of the elements of buffering period and picture timing SEI messages that HRD parameters set.
struct DelayLengths {
    uint32_t initial_cpb_removal_delay;  ///< also of initial_cpb_removal_delay_offset; 1..32
    uint32_t cpb_removal_delay;          ///< 1..32
    uint32_t dpb_output_delay;           ///< 1..32
    uint32_t time_offset;                ///< 0..31; 0 when there is no time_offset
};

/// The lengths of the NAL HRD parameters or else of the VCL ones, which are equal to them when both are
/// present, or else those that H.264 E.2.2 infers: 24.
constexpr DelayLengths delayLengthsOf(const Vui& vui) {
    if (!vui.nal_hrd_parameters_present_flag && !vui.vcl_hrd_parameters_present_flag) {
        return {24, 24, 24, 24};
    }
    const Hrd& hrd = vui.nal_hrd_parameters_present_flag ? vui.nal_hrd_parameters : vui.vcl_hrd_parameters;
    return {hrd.initial_cpb_removal_delay_length_minus1 + 1, hrd.cpb_removal_delay_length_minus1 + 1,
            hrd.dpb_output_delay_length_minus1 + 1, hrd.time_offset_length};
}

}  // namespace qv::avc

#endif
