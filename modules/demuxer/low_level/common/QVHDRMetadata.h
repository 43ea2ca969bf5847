/// \file
/// HDR metadata as the player consumes it.
#ifndef QV_DEMUXER_QVHDRMETADATA_H
#define QV_DEMUXER_QVHDRMETADATA_H

#include <stdint.h>

/// HDR10 static metadata in the units of H.265 D.3.28. Nothing is scaled, checked or reordered: primaries are
/// in bitstream order, which is green, blue, red in a conforming stream. Owned by the caller.
struct QVHDR10StaticMetadata {
    uint16_t display_primaries_x[3];           ///< u(16), CIE 1931 x in steps of 0.00002
    uint16_t display_primaries_y[3];           ///< u(16), CIE 1931 y in steps of 0.00002
    uint16_t white_point_x;                    ///< u(16), CIE 1931 x in steps of 0.00002
    uint16_t white_point_y;                    ///< u(16), CIE 1931 y in steps of 0.00002
    uint32_t max_display_mastering_luminance;  ///< u(32), in steps of 0.0001 cd/m2
    uint32_t min_display_mastering_luminance;  ///< u(32), in steps of 0.0001 cd/m2
};

// Defined by the HDR Vivid parser of the host's core.
struct QVHDRVividDynamicMetadata;

#endif
