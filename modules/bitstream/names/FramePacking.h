/// \file
/// Names of frame packing arrangements.
#ifndef QV_BITSTREAM_NAMES_FRAMEPACKING_H
#define QV_BITSTREAM_NAMES_FRAMEPACKING_H

#include <cstdint>

#include "bitstream/names/Name.h"

namespace qv {

/// frame_packing_arrangement_type. H.265 reserves the values that have a clause of H.264 alone.
constexpr Name kFramePackingArrangementTypes[] = {
    {0, "Checkerboard", "H.264 D.2.26"},
    {1, "Column interleaving", "H.264 D.2.26"},
    {2, "Row interleaving", "H.264 D.2.26"},
    {3, "Side by side", "H.264 D.2.26, H.265 D.3.16"},
    {4, "Top and bottom", "H.264 D.2.26, H.265 D.3.16"},
    {5, "Temporal interleaving", "H.264 D.2.26, H.265 D.3.16"},
    {6, "2D", "H.264 D.2.26"},
    {7, "Tiles", "H.264 D.2.26"},
};

/// content_interpretation_type, and segmented_rect_content_interpretation_type of H.265.
constexpr Name kContentInterpretationTypes[] = {
    {0, "Unspecified", "H.264 D.2.26, H.265 D.3.16"},
    {1, "Frame 0 is the left view", "H.264 D.2.26, H.265 D.3.16"},
    {2, "Frame 0 is the right view", "H.264 D.2.26, H.265 D.3.16"},
};

/// The name of a value of frame_packing_arrangement_type; "Reserved" for one that the standards reserve.
constexpr Name framePackingArrangementTypeName(uint32_t frame_packing_arrangement_type) {
    return nameOf(kFramePackingArrangementTypes, frame_packing_arrangement_type, "Reserved");
}

/// The name of a value of content_interpretation_type; "Reserved" for one that the standards reserve.
constexpr Name contentInterpretationTypeName(uint32_t content_interpretation_type) {
    return nameOf(kContentInterpretationTypes, content_interpretation_type, "Reserved");
}

}  // namespace qv

#endif
