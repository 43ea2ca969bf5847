// The marking of decoded reference pictures of H.264 as syntax functions.
#ifndef QV_BITSTREAM_AVC_DECREFPICMARKINGSYNTAX_H
#define QV_BITSTREAM_AVC_DECREFPICMARKINGSYNTAX_H

#include "bitstream/avc/DecRefPicMarking.h"
#include "bitstream/syntax/Reader.h"

namespace qv::avc {

// The greatest max_num_ref_frames, MaxDpbFrames of A.3.1.
constexpr uint32_t kMostRefFrames = 16;

template <class Syntax>
void memory_management_control_operation(Syntax& s, uint32_t max_num_ref_frames,
                                         MemoryManagementControlOperation& operation) {
    s.ue("memory_management_control_operation", operation.memory_management_control_operation, 0, 6);
    switch (operation.memory_management_control_operation) {
        case 1:
            s.ue("difference_of_pic_nums_minus1", operation.difference_of_pic_nums_minus1);
            break;
        case 2:
            s.ue("long_term_pic_num", operation.long_term_pic_num);
            break;
        case 3:
            s.ue("difference_of_pic_nums_minus1", operation.difference_of_pic_nums_minus1);
            s.ue("long_term_frame_idx", operation.long_term_frame_idx);
            break;
        case 4:
            s.ue("max_long_term_frame_idx_plus1", operation.max_long_term_frame_idx_plus1, 0,
                 max_num_ref_frames);
            break;
        case 6:
            s.ue("long_term_frame_idx", operation.long_term_frame_idx);
            break;
        default:
            break;
    }
}

// dec_ref_pic_marking(), 7.3.3.3
template <class Syntax>
void dec_ref_pic_marking(Syntax& s, bool IdrPicFlag, uint32_t max_num_ref_frames, DecRefPicMarking& marking) {
    static constexpr Structure kStructure = {"dec_ref_pic_marking()", "7.3.3.3"};
    const Within<Syntax> within(s, kStructure);
    if (IdrPicFlag) {
        s.flag("no_output_of_prior_pics_flag", marking.no_output_of_prior_pics_flag);
        s.flag("long_term_reference_flag", marking.long_term_reference_flag);
        return;
    }
    s.flag("adaptive_ref_pic_marking_mode_flag", marking.adaptive_ref_pic_marking_mode_flag);
    if (marking.adaptive_ref_pic_marking_mode_flag) {
        s.keep(marking.memory_management_control_operations, [max_num_ref_frames](auto& in) {
            MemoryManagementControlOperation operation = {};
            do {
                memory_management_control_operation(in, max_num_ref_frames, operation);
            } while (operation.memory_management_control_operation != 0 && !in.failed());
        });
    }
}

}  // namespace qv::avc

#endif
