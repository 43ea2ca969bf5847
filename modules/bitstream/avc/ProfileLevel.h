/// \file
/// The profile and the level that an H.264 sequence parameter set indicates.
#ifndef QV_BITSTREAM_AVC_PROFILELEVEL_H
#define QV_BITSTREAM_AVC_PROFILELEVEL_H

#include <cstdint>

#include "bitstream/avc/Sps.h"
#include "bitstream/names/AvcLevels.h"
#include "bitstream/names/AvcProfiles.h"

namespace qv::avc {

/// The byte between profile_idc and level_idc: constraint_set0_flag in the most significant bit,
/// reserved_zero_2bits in the lowest. avcC calls it profile_compatibility.
constexpr uint32_t constraintsOf(const SpsData& sps) {
    return (sps.constraint_set0_flag ? kConstraintSet0 : 0) |
           (sps.constraint_set1_flag ? kConstraintSet1 : 0) |
           (sps.constraint_set2_flag ? kConstraintSet2 : 0) |
           (sps.constraint_set3_flag ? kConstraintSet3 : 0) |
           (sps.constraint_set4_flag ? kConstraintSet4 : 0) |
           (sps.constraint_set5_flag ? kConstraintSet5 : 0) | (sps.reserved_zero_2bits & 3);
}

/// The profile, H.264 A.2, G.10.1, H.10.1, I.10.1 and J.10.1; null when this edition does not define it.
constexpr const ProfileEntry* profileOf(const SpsData& sps) {
    return findProfile(sps.profile_idc, constraintsOf(sps));
}

/// The level with its limits, H.264 A.3; null when this edition does not define it.
constexpr const LevelEntry* levelOf(const SpsData& sps) {
    return findLevel(sps.profile_idc, constraintsOf(sps), sps.level_idc);
}

/// True when the profile allows intra pictures alone, as E.2.1 lists them where it infers
/// max_num_reorder_frames and max_dec_frame_buffering.
constexpr bool isIntraProfile(const SpsData& sps) {
    switch (sps.profile_idc) {
        case 44:
        case 86:
        case 100:
        case 110:
        case 122:
        case 244:
            return sps.constraint_set3_flag;
        default:
            return false;
    }
}

}  // namespace qv::avc

#endif
