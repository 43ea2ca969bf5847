// What a display does with the decoded pictures, as syntax functions.
#ifndef QV_BITSTREAM_SEI_DISPLAYSYNTAX_H
#define QV_BITSTREAM_SEI_DISPLAYSYNTAX_H

#include "bitstream/sei/Display.h"
#include "bitstream/sei/PayloadSyntax.h"
#include "bitstream/sei/Repetition.h"

namespace qv::sei {

// deblocking_filter_display_preference(), H.264 D.1.22
template <class Syntax>
void deblocking_filter_display_preference(Syntax& s, const Context& context,
                                          DeblockingFilterDisplayPreference& payload) {
    static_cast<void>(context);
    static constexpr Structure kStructure = {"deblocking_filter_display_preference()", "D.1.22"};
    const Within<Syntax> within(s, kStructure);
    s.flag("deblocking_display_preference_cancel_flag", payload.deblocking_display_preference_cancel_flag);
    if (!payload.deblocking_display_preference_cancel_flag) {
        s.flag("display_prior_to_deblocking_preferred_flag",
               payload.display_prior_to_deblocking_preferred_flag);
        s.flag("dec_frame_buffering_constraint_flag", payload.dec_frame_buffering_constraint_flag);
        s.ue("deblocking_display_preference_repetition_period",
             payload.deblocking_display_preference_repetition_period, 0, kMostRepetitionPeriod);
    }
}

// display_orientation(), H.264 D.1.27, H.265 D.2.17
template <class Syntax>
void display_orientation(Syntax& s, const Context& context, DisplayOrientation& payload) {
    static constexpr SharedStructure kStructure =
        sharedStructure("display_orientation()", "D.1.27", "D.2.17");
    const Within<Syntax> within(s, kStructure.of(context));
    s.flag("display_orientation_cancel_flag", payload.display_orientation_cancel_flag);
    if (payload.display_orientation_cancel_flag) {
        return;
    }
    s.flag("hor_flip", payload.hor_flip);
    s.flag("ver_flip", payload.ver_flip);
    s.u(16, "anticlockwise_rotation", payload.anticlockwise_rotation);
    if (context.codec == Codec::Hevc) {
        s.flag("display_orientation_persistence_flag", payload.display_orientation_persistence_flag);
        return;
    }
    s.ue("display_orientation_repetition_period", payload.display_orientation_repetition_period, 0,
         kMostRepetitionPeriod);
    s.flag("display_orientation_extension_flag", payload.display_orientation_extension_flag);
    if (payload.display_orientation_extension_flag) {
        s.payload_bytes("extension_data", payload.extension_data);
    }
}

}  // namespace qv::sei

#endif
