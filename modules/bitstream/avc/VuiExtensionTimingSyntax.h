// The part that the VUI extensions of scalable and multiview streams have in common, as a syntax function.
#ifndef QV_BITSTREAM_AVC_VUIEXTENSIONTIMINGSYNTAX_H
#define QV_BITSTREAM_AVC_VUIEXTENSIONTIMINGSYNTAX_H

#include "bitstream/avc/HrdSyntax.h"
#include "bitstream/avc/VuiExtensionTiming.h"
#include "bitstream/syntax/Reader.h"

namespace qv::avc {

struct VuiExtensionTimingNames {
    const char* timing_info_present_flag;
    const char* num_units_in_tick;
    const char* time_scale;
    const char* fixed_frame_rate_flag;
    const char* nal_hrd_parameters_present_flag;
    const char* vcl_hrd_parameters_present_flag;
    const char* low_delay_hrd_flag;
    const char* pic_struct_present_flag;
};

// Entry i of a VUI extension from its timing_info_present_flag on: G.14.1, H.14.1, I.14.1
template <class Syntax>
void vui_extension_timing(Syntax& s, VuiExtensionTiming& timing, const VuiExtensionTimingNames& names,
                          uint32_t i) {
    s.flag(at(names.timing_info_present_flag, i), timing.timing_info_present_flag);
    if (timing.timing_info_present_flag) {
        s.u(32, at(names.num_units_in_tick, i), timing.num_units_in_tick, 1, UINT32_MAX);
        s.u(32, at(names.time_scale, i), timing.time_scale, 1, UINT32_MAX);
        s.flag(at(names.fixed_frame_rate_flag, i), timing.fixed_frame_rate_flag);
    }
    s.flag(at(names.nal_hrd_parameters_present_flag, i), timing.nal_hrd_parameters_present_flag);
    if (timing.nal_hrd_parameters_present_flag) {
        hrd_parameters(s, timing.nal_hrd_parameters);
    }
    s.flag(at(names.vcl_hrd_parameters_present_flag, i), timing.vcl_hrd_parameters_present_flag);
    if (timing.vcl_hrd_parameters_present_flag) {
        hrd_parameters(s, timing.vcl_hrd_parameters);
    }
    if (timing.nal_hrd_parameters_present_flag || timing.vcl_hrd_parameters_present_flag) {
        s.flag(at(names.low_delay_hrd_flag, i), timing.low_delay_hrd_flag);
    }
    s.flag(at(names.pic_struct_present_flag, i), timing.pic_struct_present_flag);
}

}  // namespace qv::avc

#endif
