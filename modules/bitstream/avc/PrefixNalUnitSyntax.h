// prefix_nal_unit_rbsp() of H.264 as syntax functions.
#ifndef QV_BITSTREAM_AVC_PREFIXNALUNITSYNTAX_H
#define QV_BITSTREAM_AVC_PREFIXNALUNITSYNTAX_H

#include "bitstream/avc/NalUnitHeaderSyntax.h"
#include "bitstream/avc/PrefixNalUnit.h"
#include "bitstream/syntax/Reader.h"

namespace qv::avc {

// dec_ref_base_pic_marking(), G.7.3.3.5
template <class Syntax>
void dec_ref_base_pic_marking(Syntax& s, DecRefBasePicMarking& marking) {
    static constexpr Structure kStructure = {"dec_ref_base_pic_marking()", "G.7.3.3.5"};
    const Within<Syntax> within(s, kStructure);
    s.flag("adaptive_ref_base_pic_marking_mode_flag", marking.adaptive_ref_base_pic_marking_mode_flag);
    if (!marking.adaptive_ref_base_pic_marking_mode_flag) {
        return;
    }
    for (DecRefBasePicMarking::Operation& operation : marking.operations) {
        s.ue("memory_management_base_control_operation", operation.memory_management_base_control_operation,
             0, 2);
        s.infer(operation.difference_of_base_pic_nums_minus1, 0);
        s.infer(operation.long_term_base_pic_num, 0);
        switch (operation.memory_management_base_control_operation) {
            case 0:
                return;
            case 1:
                s.ue("difference_of_base_pic_nums_minus1", operation.difference_of_base_pic_nums_minus1);
                break;
            default:
                s.ue("long_term_base_pic_num", operation.long_term_base_pic_num);
        }
    }
    s.fail(FaultKind::TooManyEntries, "memory_management_base_control_operation",
           DecRefBasePicMarking::kMostOperations);
}

// prefix_nal_unit_svc(), G.7.3.2.12.1
template <class Syntax>
void prefix_nal_unit_svc(Syntax& s, PrefixNalUnit& prefix) {
    static constexpr Structure kStructure = {"prefix_nal_unit_svc()", "G.7.3.2.12.1"};
    const Within<Syntax> within(s, kStructure);
    const SvcExtension& svc = prefix.header.svc;
    if (prefix.header.nal_ref_idc != 0) {
        s.flag("store_ref_base_pic_flag", prefix.store_ref_base_pic_flag);
        if ((svc.use_ref_base_pic_flag || prefix.store_ref_base_pic_flag) && !svc.idr_flag) {
            dec_ref_base_pic_marking(s, prefix.dec_ref_base_pic_marking);
        }
        s.flag("additional_prefix_nal_unit_extension_flag", prefix.additional_prefix_nal_unit_extension_flag);
        if (prefix.additional_prefix_nal_unit_extension_flag) {
            s.extension_data("additional_prefix_nal_unit_extension_data_flag",
                             prefix.additional_prefix_nal_unit_extension_data);
        }
        s.rbsp_trailing_bits();
    } else if (!s.hasNoRbsp(prefix.hasNoRbsp)) {
        s.extension_data("additional_prefix_nal_unit_extension_data_flag",
                         prefix.additional_prefix_nal_unit_extension_data);
        s.rbsp_trailing_bits();
    }
}

// A unit of type 14: prefix_nal_unit_rbsp(), 7.3.2.12. After an MVC header there is no RBSP; without rbsp(),
// whatever comes there is left over.
template <class Syntax>
void prefix_nal_unit(Syntax& s, PrefixNalUnit& prefix) {
    nal_unit_header_of(s, prefix.header, kNalPrefix);
    static constexpr Structure kStructure = {"prefix_nal_unit_rbsp()", "7.3.2.12"};
    const Within<Syntax> within(s, kStructure);
    if (prefix.header.svc_extension_flag) {
        s.rbsp();
        prefix_nal_unit_svc(s, prefix);
    }
}

}  // namespace qv::avc

#endif
