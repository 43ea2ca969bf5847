// Slice groups that decode without others, as syntax functions.
#ifndef QV_BITSTREAM_SEI_SLICEGROUPSETSYNTAX_H
#define QV_BITSTREAM_SEI_SLICEGROUPSETSYNTAX_H

#include "bitstream/sei/PayloadSyntax.h"
#include "bitstream/sei/SliceGroupSet.h"
#include "bitstream/syntax/Bits.h"

namespace qv::sei {

// motion_constrained_slice_group_set(), H.264 D.1.20
template <class Syntax>
void motion_constrained_slice_group_set(Syntax& s, const Context& context,
                                        MotionConstrainedSliceGroupSet& payload) {
    static constexpr Structure kStructure = {"motion_constrained_slice_group_set()", "D.1.20"};
    const Within<Syntax> within(s, kStructure);
    if (context.avcPps == nullptr) {
        s.fail(FaultKind::NoSuchSet, "pic_parameter_set_id", 0);
        return;
    }
    const uint32_t num_slice_groups_minus1 = context.avcPps->num_slice_groups_minus1;
    const uint32_t width = detail::ceilLog2(uint64_t{num_slice_groups_minus1} + 1);
    s.ue("num_slice_groups_in_set_minus1", payload.num_slice_groups_in_set_minus1, 0,
         num_slice_groups_minus1);
    if (num_slice_groups_minus1 > 0) {
        for (uint32_t i = 0; i <= payload.num_slice_groups_in_set_minus1; ++i) {
            s.u(width, at("slice_group_id", i), payload.slice_group_id[i], 0, num_slice_groups_minus1);
        }
    }
    s.flag("exact_sample_value_match_flag", payload.exact_sample_value_match_flag);
    s.flag("pan_scan_rect_flag", payload.pan_scan_rect_flag);
    if (payload.pan_scan_rect_flag) {
        s.ue("pan_scan_rect_id", payload.pan_scan_rect_id);
    }
}

}  // namespace qv::sei

#endif
