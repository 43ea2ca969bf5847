/// \file
/// The H.264 NAL unit header.
#ifndef QV_BITSTREAM_AVC_NALUNITHEADER_H
#define QV_BITSTREAM_AVC_NALUNITHEADER_H

#include <cstdint>

#include "bitstream/Bytes.h"
#include "bitstream/Read.h"
#include "bitstream/avc/NalUnitType.h"

namespace qv::avc {

/// nal_unit_header_svc_extension(), H.264 G.7.3.1.1.
struct SvcExtension {
    bool idr_flag;                  ///< u(1)
    uint32_t priority_id;           ///< u(6)
    bool no_inter_layer_pred_flag;  ///< u(1)
    uint32_t dependency_id;         ///< u(3)
    uint32_t quality_id;            ///< u(4)
    uint32_t temporal_id;           ///< u(3)
    bool use_ref_base_pic_flag;     ///< u(1)
    bool discardable_flag;          ///< u(1)
    bool output_flag;               ///< u(1)
    uint32_t reserved_three_2bits;  ///< u(2), 3
};

/// nal_unit_header_mvc_extension(), H.264 H.7.3.1.1.
struct MvcExtension {
    bool non_idr_flag;      ///< u(1)
    uint32_t priority_id;   ///< u(6)
    uint32_t view_id;       ///< u(10)
    uint32_t temporal_id;   ///< u(3)
    bool anchor_pic_flag;   ///< u(1)
    bool inter_view_flag;   ///< u(1)
    bool reserved_one_bit;  ///< 1
};

/// nal_unit_header_3davc_extension(), H.264 J.7.3.1.1.
struct Avc3dExtension {
    uint32_t view_idx;     ///< u(8)
    bool depth_flag;       ///< u(1); 0 when not present
    bool non_idr_flag;     ///< u(1)
    uint32_t temporal_id;  ///< u(3)
    bool anchor_pic_flag;  ///< u(1)
    bool inter_view_flag;  ///< u(1)
};

/// The header of nal_unit(), H.264 7.3.1, with the extension of types 14, 20 and 21.
struct NalUnitHeader {
    uint32_t nal_ref_idc;    ///< u(2)
    uint32_t nal_unit_type;  ///< u(5)

    bool svc_extension_flag;     ///< types 14 and 20
    bool avc_3d_extension_flag;  ///< type 21

    SvcExtension svc;       ///< types 14 and 20 with svc_extension_flag 1
    MvcExtension mvc;       ///< types 14, 20 and 21 without either flag
    Avc3dExtension avc_3d;  ///< type 21 with avc_3d_extension_flag 1
};

/// Bytes of a unit's header: 1, or with the extension 3 (3D-AVC) or 4.
constexpr uint32_t sizeOf(const NalUnitHeader& header) {
    if (!hasHeaderExtension(header.nal_unit_type)) {
        return 1;
    }
    return header.avc_3d_extension_flag ? 3 : 4;
}

/// Reads the header of a unit.
///
/// \param unit  one NAL unit from its header on, without start code or length; its payload is not looked at
/// \return the header. A forbidden_zero_bit of 1 and a header that is cut are faults.
Read<NalUnitHeader> readNalUnitHeader(Bytes unit) noexcept;

}  // namespace qv::avc

#endif
