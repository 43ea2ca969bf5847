/// \file
/// What decoding and displaying a picture costs, ISO/IEC 23001-11.
#ifndef QV_BITSTREAM_SEI_GREENMETADATA_H
#define QV_BITSTREAM_SEI_GREENMETADATA_H

#include <cstdint>

#include "bitstream/sei/SeiPayload.h"
#include "bitstream/syntax/CodedBits.h"

namespace qv::sei {

/// green_metadata(), H.264 D.1.28, H.265 D.2.18, with the syntax of ISO/IEC 23001-11:2015.
struct GreenMetadata {
    static constexpr PayloadTypes kPayloadTypes = {56, 56};  ///< payloadType

    uint32_t green_metadata_type;  ///< u(8); 0: complexity, 1: quality; others are reserved

    // Complexity metrics.

    uint32_t period_type;   ///< u(8); 0: one picture, 1: up to the next I picture, 2: seconds, 3: pictures
    uint32_t num_seconds;   ///< u(16), for a period_type of 2
    uint32_t num_pictures;  ///< u(16), for a period_type of 3
    uint32_t percent_non_zero_macroblocks;             ///< u(8)
    uint32_t percent_intra_coded_macroblocks;          ///< u(8)
    uint32_t percent_six_tap_filtering;                ///< u(8)
    uint32_t percent_alpha_point_deblocking_instance;  ///< u(8)

    // Quality of the last picture of a segment.

    uint32_t xsd_metric_type;   ///< u(8); 0: PSNR
    uint32_t xsd_metric_value;  ///< u(16), of PSNR in 1/100 dB

    CodedBits extension_data;  ///< what follows a reserved green_metadata_type, borrowed from the unit
};

}  // namespace qv::sei

#endif
