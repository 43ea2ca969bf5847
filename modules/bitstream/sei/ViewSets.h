/// \file
/// Messages of multiview streams that list views or operation points.
#ifndef QV_BITSTREAM_SEI_VIEWSETS_H
#define QV_BITSTREAM_SEI_VIEWSETS_H

#include <cstdint>

#include "bitstream/avc/SpsMvcExtension.h"
#include "bitstream/sei/EntryReader.h"
#include "bitstream/sei/SeiPayload.h"
#include "bitstream/sei/ViewScalability.h"
#include "bitstream/syntax/CodedBits.h"

namespace qv::sei {

/// non_required_view_component(), H.264 H.13.1.6 and H.13.2.6.
struct NonRequiredViewComponent {
    static constexpr PayloadTypes kPayloadTypes = {41, kNoPayloadType};  ///< payloadType

    uint32_t num_info_entries_minus1;  ///< ue(v), 0..7
    CodedBits entries;  ///< view_order_index[ i ] and what follows it, borrowed; see NonRequiredViewList
};

/// The view components that one of a view does not need. Elements beyond the count are not set.
struct NonRequiredViews {
    uint32_t view_order_index;                         ///< ue(v), 0..1023
    uint32_t num_non_required_view_components_minus1;  ///< ue(v), 0..1023
    uint32_t index_delta_minus1[avc::kMostViews];      ///< ue(v)
};

/// Reads the entries.
using NonRequiredViewList = EntryReader<NonRequiredViewComponent, NonRequiredViews>;

/// operation_point_not_present(), H.264 H.13.1.8 and H.13.2.8. Elements beyond the count are not set.
struct OperationPointNotPresent {
    static constexpr PayloadTypes kPayloadTypes = {43, kNoPayloadType};  ///< payloadType
    static constexpr uint32_t kMostOperationPoints =
        ViewScalabilityInfo::kMostOperationPoints;  ///< the greatest num_operation_points

    uint32_t num_operation_points;                                  ///< ue(v), 0..1024
    uint32_t operation_point_not_present_id[kMostOperationPoints];  ///< ue(v)
};

/// multiview_view_position(), H.264 H.13.1.10 and H.13.2.10, H.265 G.14.2.7 and G.14.3.7. Elements beyond the
/// count are not set.
struct MultiviewViewPosition {
    static constexpr PayloadTypes kPayloadTypes = {46, 180};  ///< payloadType

    uint32_t num_views_minus1;                    ///< ue(v), 0..1023
    bool multiview_view_position_extension_flag;  ///< u(1), H.264; 1 is reserved

    /// H.264, with multiview_view_position_extension_flag 1: the rest of the payload, borrowed.
    CodedBits extension;

    uint32_t view_position[avc::kMostViews];  ///< ue(v), from left to right
};

}  // namespace qv::sei

#endif
