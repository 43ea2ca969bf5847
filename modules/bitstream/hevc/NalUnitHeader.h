/// \file
/// The H.265 NAL unit header.
#ifndef QV_BITSTREAM_HEVC_NALUNITHEADER_H
#define QV_BITSTREAM_HEVC_NALUNITHEADER_H

#include <cstdint>

namespace qv::hevc {

/// nal_unit_header(), H.265 7.3.1.2 and 7.4.2.2. forbidden_zero_bit is not kept; a read checks it.
struct NalUnitHeader {
    static constexpr uint32_t kBytes = 2;  ///< the size of the header

    uint32_t nal_unit_type;          ///< u(6), Table 7-1; see NalUnitType.h
    uint32_t nuh_layer_id;           ///< u(6), 0..62; 63 is reserved
    uint32_t nuh_temporal_id_plus1;  ///< u(3), 1..7
};

}  // namespace qv::hevc

#endif
