// subset_seq_parameter_set_rbsp() of H.264 as syntax functions.
#ifndef QV_BITSTREAM_AVC_SUBSETSPSSYNTAX_H
#define QV_BITSTREAM_AVC_SUBSETSPSSYNTAX_H

#include "bitstream/avc/SpsMvcExtensionSyntax.h"
#include "bitstream/avc/SpsSvcExtensionSyntax.h"
#include "bitstream/avc/SpsSyntax.h"
#include "bitstream/avc/SubsetSps.h"
#include "bitstream/syntax/Reader.h"

namespace qv::avc {

template <class Syntax>
void svc_part(Syntax& s, SubsetSps& sps) {
    const uint32_t chromaArrayType = sps.data.separate_colour_plane_flag ? 0 : sps.data.chroma_format_idc;
    seq_parameter_set_svc_extension(s, sps.svc, chromaArrayType);
    s.flag("svc_vui_parameters_present_flag", sps.svc_vui_parameters_present_flag);
    if (sps.svc_vui_parameters_present_flag) {
        svc_vui_parameters_extension(s, sps.svc_vui);
    }
}

template <class Syntax>
void mvc_part(Syntax& s, SubsetSps& sps) {
    s.f(1, "bit_equal_to_one", 1);
    seq_parameter_set_mvc_extension(s, sps.mvc, sps.data.profile_idc, sps.data.frame_mbs_only_flag);
    s.flag("mvc_vui_parameters_present_flag", sps.mvc_vui_parameters_present_flag);
    if (sps.mvc_vui_parameters_present_flag) {
        mvc_vui_parameters_extension(s, sps.mvc_vui);
    }
}

template <class Syntax>
void mvcd_part(Syntax& s, SubsetSps& sps) {
    s.f(1, "bit_equal_to_one", 1);
    seq_parameter_set_mvcd_extension(s, sps.mvcd);
}

template <class Syntax>
void additional_extension2(Syntax& s, SubsetSps& sps) {
    s.flag("additional_extension2_flag", sps.additional_extension2_flag);
    if (sps.additional_extension2_flag) {
        s.extension_data("additional_extension2_data_flag", sps.additional_extension2_data);
    }
}

// subset_seq_parameter_set_rbsp(), 7.3.2.1.3
template <class Syntax>
void subset_seq_parameter_set_rbsp(Syntax& s, SubsetSps& sps) {
    static constexpr Structure kStructure = {"subset_seq_parameter_set_rbsp()", "7.3.2.1.3"};
    const Within<Syntax> within(s, kStructure);
    seq_parameter_set_data(s, sps.data);
    switch (sps.data.profile_idc) {
        case 83:
        case 86:
            svc_part(s, sps);
            break;
        case 118:
        case 128:
        case 134:
            mvc_part(s, sps);
            break;
        case 135:
        case 138:
            mvcd_part(s, sps);
            break;
        case 139:
            mvcd_part(s, sps);
            s.extension_data("seq_parameter_set_3davc_extension", sps.avc_3d_extension);
            s.rbsp_trailing_bits();
            return;
        default:
            break;
    }
    additional_extension2(s, sps);
    s.rbsp_trailing_bits();
}

// A unit of type 15: nal_unit(), 7.3.1, with subset_seq_parameter_set_rbsp()
template <class Syntax>
void subset_seq_parameter_set_unit(Syntax& s, SubsetSps& sps) {
    nal_unit_of(s, sps.header, kNalSubsetSps);
    subset_seq_parameter_set_rbsp(s, sps);
}

}  // namespace qv::avc

#endif
