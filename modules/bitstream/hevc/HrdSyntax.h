// hrd_parameters() of H.265 as syntax functions.
#ifndef QV_BITSTREAM_HEVC_HRDSYNTAX_H
#define QV_BITSTREAM_HEVC_HRDSYNTAX_H

#include "bitstream/hevc/Hrd.h"
#include "bitstream/syntax/Reader.h"

namespace qv::hevc {

// sub_layer_hrd_parameters(), E.2.3
template <class Syntax>
void sub_layer_hrd_parameters(Syntax& s, CpbParameters& cpb, uint32_t cpb_cnt_minus1, bool subPicParams) {
    static constexpr Structure kStructure = {"sub_layer_hrd_parameters()", "E.2.3"};
    const Within<Syntax> within(s, kStructure);
    for (uint32_t i = 0; i <= cpb_cnt_minus1; ++i) {
        s.ue(at("bit_rate_value_minus1", i), cpb.bit_rate_value_minus1[i]);
        s.ue(at("cpb_size_value_minus1", i), cpb.cpb_size_value_minus1[i]);
        if (subPicParams) {
            s.ue(at("cpb_size_du_value_minus1", i), cpb.cpb_size_du_value_minus1[i]);
            s.ue(at("bit_rate_du_value_minus1", i), cpb.bit_rate_du_value_minus1[i]);
        }
        s.flag(at("cbr_flag", i), cpb.cbr_flag[i]);
    }
}

template <class Syntax>
void hrd_sub_layer(Syntax& s, const HrdCommon& common, SubLayerHrd& hrd, uint32_t i) {
    s.flag(at("fixed_pic_rate_general_flag", i), hrd.fixed_pic_rate_general_flag);
    if (!hrd.fixed_pic_rate_general_flag) {
        s.flag(at("fixed_pic_rate_within_cvs_flag", i), hrd.fixed_pic_rate_within_cvs_flag);
    } else {
        hrd.fixed_pic_rate_within_cvs_flag = true;
    }
    if (hrd.fixed_pic_rate_within_cvs_flag) {
        s.ue(at("elemental_duration_in_tc_minus1", i), hrd.elemental_duration_in_tc_minus1, 0, 2047);
        hrd.low_delay_hrd_flag = false;
    } else {
        s.infer(hrd.elemental_duration_in_tc_minus1, 0);
        s.flag(at("low_delay_hrd_flag", i), hrd.low_delay_hrd_flag);
    }
    if (!hrd.low_delay_hrd_flag) {
        s.ue(at("cpb_cnt_minus1", i), hrd.cpb_cnt_minus1, 0, CpbParameters::kMostCpbs - 1);
    } else {
        hrd.cpb_cnt_minus1 = 0;
    }
    if (common.nal_hrd_parameters_present_flag) {
        sub_layer_hrd_parameters(s, hrd.nal, hrd.cpb_cnt_minus1, common.sub_pic_hrd_params_present_flag);
    }
    if (common.vcl_hrd_parameters_present_flag) {
        sub_layer_hrd_parameters(s, hrd.vcl, hrd.cpb_cnt_minus1, common.sub_pic_hrd_params_present_flag);
    }
}

template <class Syntax>
void hrd_common(Syntax& s, HrdCommon& hrd) {
    s.flag("nal_hrd_parameters_present_flag", hrd.nal_hrd_parameters_present_flag);
    s.flag("vcl_hrd_parameters_present_flag", hrd.vcl_hrd_parameters_present_flag);
    if (hrd.nal_hrd_parameters_present_flag || hrd.vcl_hrd_parameters_present_flag) {
        s.flag("sub_pic_hrd_params_present_flag", hrd.sub_pic_hrd_params_present_flag);
        if (hrd.sub_pic_hrd_params_present_flag) {
            s.u(8, "tick_divisor_minus2", hrd.tick_divisor_minus2);
            s.u(5, "du_cpb_removal_delay_increment_length_minus1",
                hrd.du_cpb_removal_delay_increment_length_minus1);
            s.flag("sub_pic_cpb_params_in_pic_timing_sei_flag",
                   hrd.sub_pic_cpb_params_in_pic_timing_sei_flag);
            s.u(5, "dpb_output_delay_du_length_minus1", hrd.dpb_output_delay_du_length_minus1);
        }
        s.u(4, "bit_rate_scale", hrd.bit_rate_scale);
        s.u(4, "cpb_size_scale", hrd.cpb_size_scale);
        if (hrd.sub_pic_hrd_params_present_flag) {
            s.u(4, "cpb_size_du_scale", hrd.cpb_size_du_scale);
        }
        s.u(5, "initial_cpb_removal_delay_length_minus1", hrd.initial_cpb_removal_delay_length_minus1);
        s.u(5, "au_cpb_removal_delay_length_minus1", hrd.au_cpb_removal_delay_length_minus1);
        s.u(5, "dpb_output_delay_length_minus1", hrd.dpb_output_delay_length_minus1);
    }
}

// The common part before it is read.
constexpr HrdCommon inferredHrdCommon() {
    HrdCommon common = {};
    common.initial_cpb_removal_delay_length_minus1 = 23;
    common.au_cpb_removal_delay_length_minus1 = 23;
    common.dpb_output_delay_length_minus1 = 23;
    return common;
}

// hrd_parameters(), E.2.2. With commonInfPresentFlag 0 the record holds the common part of the structure
// before.
template <class Syntax>
void hrd_parameters(Syntax& s, Hrd& hrd, bool commonInfPresentFlag, uint32_t maxNumSubLayersMinus1) {
    static constexpr Structure kStructure = {"hrd_parameters()", "E.2.2"};
    const Within<Syntax> within(s, kStructure);
    if (commonInfPresentFlag) {
        s.infer(hrd.common, inferredHrdCommon());
        hrd_common(s, hrd.common);
    }
    for (uint32_t i = 0; i <= maxNumSubLayersMinus1; ++i) {
        hrd_sub_layer(s, hrd.common, hrd.sub_layer[i], i);
    }
}

}  // namespace qv::hevc

#endif
