// Frozen frames, snapshots and progressive refinement as syntax functions.
#ifndef QV_BITSTREAM_SEI_FULLFRAMESYNTAX_H
#define QV_BITSTREAM_SEI_FULLFRAMESYNTAX_H

#include "bitstream/sei/FrameNumRange.h"
#include "bitstream/sei/FullFrame.h"
#include "bitstream/sei/PayloadSyntax.h"
#include "bitstream/sei/Repetition.h"

namespace qv::sei {

// full_frame_freeze(), H.264 D.1.15
template <class Syntax>
void full_frame_freeze(Syntax& s, const Context& context, FullFrameFreeze& payload) {
    static_cast<void>(context);
    static constexpr Structure kStructure = {"full_frame_freeze()", "D.1.15"};
    const Within<Syntax> within(s, kStructure);
    s.ue("full_frame_freeze_repetition_period", payload.full_frame_freeze_repetition_period, 0,
         kMostRepetitionPeriod);
}

// full_frame_freeze_release(), H.264 D.1.16
template <class Syntax>
void full_frame_freeze_release(Syntax& s, const Context& context, FullFrameFreezeRelease& payload) {
    static_cast<void>(context);
    static_cast<void>(payload);
    static constexpr Structure kStructure = {"full_frame_freeze_release()", "D.1.16"};
    const Within<Syntax> within(s, kStructure);
}

// full_frame_snapshot(), H.264 D.1.17; picture_snapshot(), H.265 D.2.10
template <class Syntax>
void picture_snapshot(Syntax& s, const Context& context, PictureSnapshot& payload) {
    static constexpr SharedStructure kStructure = {{"full_frame_snapshot()", "D.1.17"},
                                                   {"picture_snapshot()", "D.2.10"}};
    const Within<Syntax> within(s, kStructure.of(context));
    s.ue("snapshot_id", payload.snapshot_id);
}

// progressive_refinement_segment_start(), H.264 D.1.18, H.265 D.2.11
template <class Syntax>
void progressive_refinement_segment_start(Syntax& s, const Context& context,
                                          ProgressiveRefinementSegmentStart& payload) {
    static constexpr SharedStructure kStructure =
        sharedStructure("progressive_refinement_segment_start()", "D.1.18", "D.2.11");
    const Within<Syntax> within(s, kStructure.of(context));
    s.ue("progressive_refinement_id", payload.progressive_refinement_id);
    if (context.codec == Codec::Avc) {
        s.ue("num_refinement_steps_minus1", payload.num_refinement_steps_minus1, 0, mostFrameNum(context));
    } else {
        s.ue("pic_order_cnt_delta", payload.pic_order_cnt_delta, 0, 256);
    }
}

// progressive_refinement_segment_end(), H.264 D.1.19, H.265 D.2.12
template <class Syntax>
void progressive_refinement_segment_end(Syntax& s, const Context& context,
                                        ProgressiveRefinementSegmentEnd& payload) {
    static constexpr SharedStructure kStructure =
        sharedStructure("progressive_refinement_segment_end()", "D.1.19", "D.2.12");
    const Within<Syntax> within(s, kStructure.of(context));
    s.ue("progressive_refinement_id", payload.progressive_refinement_id);
}

}  // namespace qv::sei

#endif
