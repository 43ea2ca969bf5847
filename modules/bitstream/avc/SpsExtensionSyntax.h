// seq_parameter_set_extension_rbsp() of H.264 as a syntax function.
#ifndef QV_BITSTREAM_AVC_SPSEXTENSIONSYNTAX_H
#define QV_BITSTREAM_AVC_SPSEXTENSIONSYNTAX_H

#include "bitstream/avc/NalUnitHeaderSyntax.h"
#include "bitstream/avc/SpsExtension.h"
#include "bitstream/syntax/Reader.h"

namespace qv::avc {

// A unit of type 13: seq_parameter_set_extension_rbsp(), 7.3.2.1.2
template <class Syntax>
void seq_parameter_set_extension_unit(Syntax& s, SpsExtension& extension) {
    nal_unit_of(s, extension.header, kNalSpsExtension);
    static constexpr Structure kStructure = {"seq_parameter_set_extension_rbsp()", "7.3.2.1.2"};
    const Within<Syntax> within(s, kStructure);
    s.ue("seq_parameter_set_id", extension.seq_parameter_set_id, 0, 31);
    s.ue("aux_format_idc", extension.aux_format_idc, 0, 3);
    if (extension.aux_format_idc != 0) {
        s.ue("bit_depth_aux_minus8", extension.bit_depth_aux_minus8, 0, 4);
        s.flag("alpha_incr_flag", extension.alpha_incr_flag);
        const uint32_t alphaBits = extension.bit_depth_aux_minus8 + 9;
        s.u(alphaBits, "alpha_opaque_value", extension.alpha_opaque_value);
        s.u(alphaBits, "alpha_transparent_value", extension.alpha_transparent_value);
    }
    s.flag("additional_extension_flag", extension.additional_extension_flag);
    if (extension.additional_extension_flag) {
        // The standard has no element for it: decoders ignore the data after the flag (7.4.2.1.2).
        s.extension_data("additional_extension_data_flag", extension.additional_extension_data);
    }
    s.rbsp_trailing_bits();
}

}  // namespace qv::avc

#endif
