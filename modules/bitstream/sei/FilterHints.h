/// \file
/// Filters for decoded pictures.
#ifndef QV_BITSTREAM_SEI_FILTERHINTS_H
#define QV_BITSTREAM_SEI_FILTERHINTS_H

#include <cstdint>

#include "bitstream/sei/SeiPayload.h"
#include "bitstream/syntax/CodedBits.h"

namespace qv::sei {

/// post_filter_hint(), H.264 D.1.24, H.265 D.2.14. In H.265 its syntax depends on the SPS.
struct PostFilterHint {
    static constexpr PayloadTypes kPayloadTypes = {22, 22};  ///< payloadType
    static constexpr uint32_t kMostSize = 15;                ///< the greatest size of a filter
    static constexpr uint32_t kMostColourComponents = 3;     ///< one for monochrome video of H.265

    uint32_t filter_hint_size_y;  ///< ue(v), 1..15
    uint32_t filter_hint_size_x;  ///< ue(v), 1..15
    uint32_t filter_hint_type;    ///< u(2): a 2D filter, two 1D filters, a cross-correlation; 3 is reserved
    bool additional_extension_flag;  ///< u(1), H.264
    CodedBits extension_data;        ///< what follows that flag when it is 1, borrowed

    /// se(v), filter_hint in H.264. Set for the components that there are, up to the sizes.
    int32_t filter_hint_value[kMostColourComponents][kMostSize][kMostSize];
};

/// chroma_resampling_filter_hint(), H.265 D.2.31.
struct ChromaResamplingFilterHint {
    static constexpr PayloadTypes kPayloadTypes = {kNoPayloadType, 140};  ///< payloadType
    static constexpr uint32_t kExplicit = 1;                              ///< filters that the message holds
    static constexpr uint32_t kMostVerticalFilters = 5;                   ///< greatest num_vertical_filters
    static constexpr uint32_t kMostHorizontalFilters = 3;                 ///< greatest num_horizontal_filters
    static constexpr uint32_t kMostTaps = 32;                             ///< of a filter

    uint32_t ver_chroma_filter_idc;            ///< u(8); values above 2 are reserved
    uint32_t hor_chroma_filter_idc;            ///< u(8); values above 2 are reserved
    bool ver_filtering_field_processing_flag;  ///< u(1)
    uint32_t target_format_idc;                ///< ue(v), 1..3, as chroma_format_idc; with kExplicit
    uint32_t num_vertical_filters;             ///< ue(v), 1..5; with a ver_chroma_filter_idc of kExplicit
    uint32_t num_horizontal_filters;           ///< ue(v), 1..3; with a hor_chroma_filter_idc of kExplicit

    // Set for the filters and taps that there are.

    uint32_t ver_tap_length_minus1[kMostVerticalFilters];         ///< ue(v), 0..31
    uint32_t hor_tap_length_minus1[kMostHorizontalFilters];       ///< ue(v), 0..31
    int32_t ver_filter_coeff[kMostVerticalFilters][kMostTaps];    ///< se(v)
    int32_t hor_filter_coeff[kMostHorizontalFilters][kMostTaps];  ///< se(v)
};

}  // namespace qv::sei

#endif
