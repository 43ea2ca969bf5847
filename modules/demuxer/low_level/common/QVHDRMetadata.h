// HDR metadata as the player consumes it.
#ifndef QV_DEMUXER_QVHDRMETADATA_H
#define QV_DEMUXER_QVHDRMETADATA_H

#include <stdint.h>

// HDR10 static metadata in the units of H.265 D.3.28: chromaticities in steps of 0.00002, luminances in steps
// of 0.0001 cd/m2. Nothing is scaled or reordered: primaries stand in bitstream order, which is green, blue,
// red in a conforming stream.
struct QVHDR10StaticMetadata {
    uint16_t display_primaries_x[3];
    uint16_t display_primaries_y[3];
    uint16_t white_point_x;
    uint16_t white_point_y;
    uint32_t max_display_mastering_luminance;
    uint32_t min_display_mastering_luminance;
};

// HDR Vivid dynamic metadata. Its layout belongs to the parser that the host's core brings.
struct QVHDRVividDynamicMetadata;

#endif
