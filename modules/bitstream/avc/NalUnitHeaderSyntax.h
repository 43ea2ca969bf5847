// The H.264 NAL unit header as syntax functions.
#ifndef QV_BITSTREAM_AVC_NALUNITHEADERSYNTAX_H
#define QV_BITSTREAM_AVC_NALUNITHEADERSYNTAX_H

#include "bitstream/avc/NalUnitHeader.h"
#include "bitstream/syntax/Reader.h"

namespace qv::avc {

// nal_unit_header_svc_extension(), G.7.3.1.1
template <class Syntax>
void nal_unit_header_svc_extension(Syntax& s, SvcExtension& svc) {
    static constexpr Structure kStructure = {"nal_unit_header_svc_extension()", "G.7.3.1.1"};
    const Within<Syntax> within(s, kStructure);
    s.flag("idr_flag", svc.idr_flag);
    s.u(6, "priority_id", svc.priority_id);
    s.flag("no_inter_layer_pred_flag", svc.no_inter_layer_pred_flag);
    s.u(3, "dependency_id", svc.dependency_id);
    s.u(4, "quality_id", svc.quality_id);
    s.u(3, "temporal_id", svc.temporal_id);
    s.flag("use_ref_base_pic_flag", svc.use_ref_base_pic_flag);
    s.flag("discardable_flag", svc.discardable_flag);
    s.flag("output_flag", svc.output_flag);
    s.u(2, "reserved_three_2bits", svc.reserved_three_2bits);
}

// nal_unit_header_mvc_extension(), H.7.3.1.1
template <class Syntax>
void nal_unit_header_mvc_extension(Syntax& s, MvcExtension& mvc) {
    static constexpr Structure kStructure = {"nal_unit_header_mvc_extension()", "H.7.3.1.1"};
    const Within<Syntax> within(s, kStructure);
    s.flag("non_idr_flag", mvc.non_idr_flag);
    s.u(6, "priority_id", mvc.priority_id);
    s.u(10, "view_id", mvc.view_id);
    s.u(3, "temporal_id", mvc.temporal_id);
    s.flag("anchor_pic_flag", mvc.anchor_pic_flag);
    s.flag("inter_view_flag", mvc.inter_view_flag);
    s.flag("reserved_one_bit", mvc.reserved_one_bit);
}

// nal_unit_header_3davc_extension(), J.7.3.1.1
template <class Syntax>
void nal_unit_header_3davc_extension(Syntax& s, Avc3dExtension& avc_3d) {
    static constexpr Structure kStructure = {"nal_unit_header_3davc_extension()", "J.7.3.1.1"};
    const Within<Syntax> within(s, kStructure);
    s.u(8, "view_idx", avc_3d.view_idx);
    s.flag("depth_flag", avc_3d.depth_flag);
    s.flag("non_idr_flag", avc_3d.non_idr_flag);
    s.u(3, "temporal_id", avc_3d.temporal_id);
    s.flag("anchor_pic_flag", avc_3d.anchor_pic_flag);
    s.flag("inter_view_flag", avc_3d.inter_view_flag);
}

// The extension's first bit decides its form and, with it, the number of bytes.
template <class Syntax>
void nal_unit_header_extension(Syntax& s, NalUnitHeader& header) {
    s.header(2);
    if (header.nal_unit_type != kNalSliceExtension3d) {
        s.flag("svc_extension_flag", header.svc_extension_flag);
    } else {
        s.flag("avc_3d_extension_flag", header.avc_3d_extension_flag);
    }
    if (header.avc_3d_extension_flag) {
        nal_unit_header_3davc_extension(s, header.avc_3d);
        return;
    }
    s.header(1);
    if (header.svc_extension_flag) {
        nal_unit_header_svc_extension(s, header.svc);
    } else {
        nal_unit_header_mvc_extension(s, header.mvc);
    }
}

// The part of nal_unit() before its payload, 7.3.1
template <class Syntax>
void nal_unit_header(Syntax& s, NalUnitHeader& header) {
    static constexpr Structure kStructure = {"nal_unit()", "7.3.1"};
    const Within<Syntax> within(s, kStructure);
    s.header(1);
    s.f(1, "forbidden_zero_bit", 0);
    s.u(2, "nal_ref_idc", header.nal_ref_idc);
    s.u(5, "nal_unit_type", header.nal_unit_type);
    if (hasHeaderExtension(header.nal_unit_type)) {
        nal_unit_header_extension(s, header);
    }
}

// The header of a unit of one type.
template <class Syntax>
void nal_unit_header_of(Syntax& s, NalUnitHeader& header, uint32_t nal_unit_type) {
    nal_unit_header(s, header);
    if (header.nal_unit_type != nal_unit_type) {
        s.fail(FaultKind::OtherUnit, "nal_unit_type", header.nal_unit_type);
    }
}

// The header of a unit of one type, and the begin of its RBSP.
template <class Syntax>
void nal_unit_of(Syntax& s, NalUnitHeader& header, uint32_t nal_unit_type) {
    nal_unit_header_of(s, header, nal_unit_type);
    s.rbsp();
}

}  // namespace qv::avc

#endif
