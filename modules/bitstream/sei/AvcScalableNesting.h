/// \file
/// H.264 messages that hold messages for layers, views or operation points.
#ifndef QV_BITSTREAM_SEI_AVCSCALABLENESTING_H
#define QV_BITSTREAM_SEI_AVCSCALABLENESTING_H

#include <cstdint>

#include "bitstream/avc/SpsMvcExtension.h"
#include "bitstream/sei/SeiMessages.h"
#include "bitstream/sei/SeiPayload.h"

namespace qv::sei {

/// scalable_nesting(), H.264 G.13.1.7 and G.13.2.7. Elements of arrays beyond the count are not set.
struct AvcScalableNesting {
    static constexpr PayloadTypes kPayloadTypes = {30, kNoPayloadType};  ///< payloadType
    static constexpr uint32_t kMostLayerRepresentations = 128;  ///< the greatest number of representations

    bool all_layer_representations_in_au_flag;  ///< u(1)

    // Without all_layer_representations_in_au_flag.

    uint32_t num_layer_representations_minus1;  ///< ue(v), 0..127
    uint32_t sei_temporal_id;                   ///< u(3)

    NestedMessages messages;  ///< borrowed from the unit; SeiMessages reads them

    // Last, because of their size.

    uint8_t sei_dependency_id[kMostLayerRepresentations];  ///< u(3)
    uint8_t sei_quality_id[kMostLayerRepresentations];     ///< u(4)
};

/// mvc_scalable_nesting(), H.264 H.13.1.2 and H.13.2.2. Elements of the array beyond the count are not set.
struct MvcScalableNesting {
    static constexpr PayloadTypes kPayloadTypes = {37, kNoPayloadType};  ///< payloadType

    bool operation_point_flag;               ///< u(1)
    bool all_view_components_in_au_flag;     ///< u(1), without operation_point_flag
    uint32_t num_view_components_minus1;     ///< ue(v), 0..1023, with neither flag
    uint32_t num_view_components_op_minus1;  ///< ue(v), 0..1023, with operation_point_flag
    uint32_t sei_op_temporal_id;             ///< u(3), with operation_point_flag

    NestedMessages messages;  ///< borrowed from the unit; SeiMessages reads them

    /// u(10): sei_op_view_id with operation_point_flag, otherwise sei_view_id.
    uint16_t view_id[avc::kMostViews];
};

/// A view that mvcd_scalable_nesting() names.
struct MvcdNestingView {
    uint16_t view_id;                  ///< u(10): sei_view_id or sei_op_view_id
    bool sei_view_applicability_flag;  ///< u(1), without operation_point_flag
    bool sei_op_depth_flag;    ///< u(1), with operation_point_flag and without sei_op_texture_only_flag
    bool sei_op_texture_flag;  ///< u(1), as sei_op_depth_flag
};

/// mvcd_scalable_nesting(), H.264 I.13.1.2 and I.13.2.2. Views beyond the count are not set.
struct MvcdScalableNesting {
    static constexpr PayloadTypes kPayloadTypes = {48, kNoPayloadType};  ///< payloadType

    bool operation_point_flag;               ///< u(1)
    bool all_view_components_in_au_flag;     ///< u(1), without operation_point_flag
    uint32_t num_view_components_minus1;     ///< ue(v), 0..1023, with neither flag
    bool sei_op_texture_only_flag;           ///< u(1), with operation_point_flag
    uint32_t num_view_components_op_minus1;  ///< ue(v), 0..1023, with operation_point_flag
    uint32_t sei_op_temporal_id;             ///< u(3), with operation_point_flag

    NestedMessages messages;  ///< borrowed from the unit; SeiMessages reads them

    MvcdNestingView views[avc::kMostViews];  ///< the views that a count is given for
};

}  // namespace qv::sei

#endif
