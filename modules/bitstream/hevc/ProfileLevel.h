/// \file
/// Profile and level of an H.265 parameter set.
#ifndef QV_BITSTREAM_HEVC_PROFILELEVEL_H
#define QV_BITSTREAM_HEVC_PROFILELEVEL_H

#include "bitstream/hevc/ProfileTierLevel.h"
#include "bitstream/names/HevcLevels.h"
#include "bitstream/names/HevcProfiles.h"

namespace qv::hevc {

/// The profile, H.265 A.3, G.11.1, H.11.1 and I.11.1; null when this edition does not define it.
constexpr const ProfileEntry* profileOf(const ProfileTierLevel& ptl) {
    return findProfile(ptl.general);
}

/// The level with its limits, H.265 A.4; null when this edition does not define it, and for level 8.5, which
/// has no limits.
constexpr const LevelEntry* levelOf(const ProfileTierLevel& ptl) {
    return findLevel(ptl.general_level_idc);
}

}  // namespace qv::hevc

#endif
