/// \file
/// Slice groups that decode without others.
#ifndef QV_BITSTREAM_SEI_SLICEGROUPSET_H
#define QV_BITSTREAM_SEI_SLICEGROUPSET_H

#include <cstdint>

#include "bitstream/avc/Pps.h"
#include "bitstream/sei/SeiPayload.h"

namespace qv::sei {

/// motion_constrained_slice_group_set(), H.264 D.1.20. Its syntax depends on the PPS.
struct MotionConstrainedSliceGroupSet {
    static constexpr PayloadTypes kPayloadTypes = {18, kNoPayloadType};  ///< payloadType

    uint32_t num_slice_groups_in_set_minus1;  ///< ue(v), 0..num_slice_groups_minus1

    /// u(v), 0..num_slice_groups_minus1; present unless the picture has one slice group.
    uint32_t slice_group_id[avc::Pps::kMostSliceGroups];

    bool exact_sample_value_match_flag;  ///< u(1)
    bool pan_scan_rect_flag;             ///< u(1)
    uint32_t pan_scan_rect_id;           ///< ue(v), with pan_scan_rect_flag
};

}  // namespace qv::sei

#endif
