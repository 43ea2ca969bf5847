// hrd_parameters() of H.264 as a syntax function.
#ifndef QV_BITSTREAM_AVC_HRDSYNTAX_H
#define QV_BITSTREAM_AVC_HRDSYNTAX_H

#include "bitstream/avc/Hrd.h"
#include "bitstream/syntax/Reader.h"

namespace qv::avc {

// hrd_parameters(), E.1.2
template <class Syntax>
void hrd_parameters(Syntax& s, Hrd& hrd) {
    static constexpr Structure kStructure = {"hrd_parameters()", "E.1.2"};
    const Within<Syntax> within(s, kStructure);
    s.ue("cpb_cnt_minus1", hrd.cpb_cnt_minus1, 0, Hrd::kMostCpbs - 1);
    s.u(4, "bit_rate_scale", hrd.bit_rate_scale);
    s.u(4, "cpb_size_scale", hrd.cpb_size_scale);
    for (uint32_t i = 0; i <= hrd.cpb_cnt_minus1; ++i) {
        s.ue(at("bit_rate_value_minus1", i), hrd.bit_rate_value_minus1[i]);
        s.ue(at("cpb_size_value_minus1", i), hrd.cpb_size_value_minus1[i]);
        s.flag(at("cbr_flag", i), hrd.cbr_flag[i]);
    }
    s.u(5, "initial_cpb_removal_delay_length_minus1", hrd.initial_cpb_removal_delay_length_minus1);
    s.u(5, "cpb_removal_delay_length_minus1", hrd.cpb_removal_delay_length_minus1);
    s.u(5, "dpb_output_delay_length_minus1", hrd.dpb_output_delay_length_minus1);
    s.u(5, "time_offset_length", hrd.time_offset_length);
}

}  // namespace qv::avc

#endif
