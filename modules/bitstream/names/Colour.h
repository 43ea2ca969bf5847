/// \file
/// Names of the video signal: colour description, video format, chroma sample locations. H.264 and H.265 have
/// the same tables.
#ifndef QV_BITSTREAM_NAMES_COLOUR_H
#define QV_BITSTREAM_NAMES_COLOUR_H

#include <cstdint>

#include "bitstream/names/Name.h"

namespace qv {

/// colour_primaries.
constexpr Name kColourPrimaries[] = {
    {1, "BT.709", "H.264 Table E-3, H.265 Table E.3"},
    {2, "Unspecified", "H.264 Table E-3, H.265 Table E.3"},
    {4, "BT.470 System M", "H.264 Table E-3, H.265 Table E.3"},
    {5, "BT.470 System B, G", "H.264 Table E-3, H.265 Table E.3"},
    {6, "SMPTE ST 170", "H.264 Table E-3, H.265 Table E.3"},
    {7, "SMPTE ST 240", "H.264 Table E-3, H.265 Table E.3"},
    {8, "Generic film", "H.264 Table E-3, H.265 Table E.3"},
    {9, "BT.2020", "H.264 Table E-3, H.265 Table E.3"},
    {10, "SMPTE ST 428-1", "H.264 Table E-3, H.265 Table E.3"},
    {11, "SMPTE RP 431-2", "H.264 Table E-3, H.265 Table E.3"},
    {12, "SMPTE EG 432-1", "H.264 Table E-3, H.265 Table E.3"},
    {22, "EBU Tech. 3213", "H.264 Table E-3, H.265 Table E.3"},
};

/// transfer_characteristics.
constexpr Name kTransferCharacteristics[] = {
    {1, "BT.709", "H.264 Table E-4, H.265 Table E.4"},
    {2, "Unspecified", "H.264 Table E-4, H.265 Table E.4"},
    {4, "BT.470 System M", "H.264 Table E-4, H.265 Table E.4"},
    {5, "BT.470 System B, G", "H.264 Table E-4, H.265 Table E.4"},
    {6, "SMPTE ST 170", "H.264 Table E-4, H.265 Table E.4"},
    {7, "SMPTE ST 240", "H.264 Table E-4, H.265 Table E.4"},
    {8, "Linear", "H.264 Table E-4, H.265 Table E.4"},
    {9, "Logarithmic, 100:1", "H.264 Table E-4, H.265 Table E.4"},
    {10, "Logarithmic, 316.23:1", "H.264 Table E-4, H.265 Table E.4"},
    {11, "IEC 61966-2-4", "H.264 Table E-4, H.265 Table E.4"},
    {12, "BT.1361 extended", "H.264 Table E-4, H.265 Table E.4"},
    {13, "IEC 61966-2-1 (sRGB)", "H.264 Table E-4, H.265 Table E.4"},
    {14, "BT.2020, 10 bit", "H.264 Table E-4, H.265 Table E.4"},
    {15, "BT.2020, 12 bit", "H.264 Table E-4, H.265 Table E.4"},
    {16, "SMPTE ST 2084 (PQ)", "H.264 Table E-4, H.265 Table E.4"},
    {17, "SMPTE ST 428-1", "H.264 Table E-4, H.265 Table E.4"},
    {18, "ARIB STD-B67 (HLG)", "H.264 Table E-4, H.265 Table E.4"},
};

/// matrix_coefficients of H.264, matrix_coeffs of H.265.
constexpr Name kMatrixCoefficients[] = {
    {0, "Identity (GBR)", "H.264 Table E-5, H.265 Table E.5"},
    {1, "BT.709", "H.264 Table E-5, H.265 Table E.5"},
    {2, "Unspecified", "H.264 Table E-5, H.265 Table E.5"},
    {4, "FCC Title 47", "H.264 Table E-5, H.265 Table E.5"},
    {5, "BT.470 System B, G", "H.264 Table E-5, H.265 Table E.5"},
    {6, "SMPTE ST 170", "H.264 Table E-5, H.265 Table E.5"},
    {7, "SMPTE ST 240", "H.264 Table E-5, H.265 Table E.5"},
    {8, "YCgCo", "H.264 Table E-5, H.265 Table E.5"},
    {9, "BT.2020 non-constant luminance", "H.264 Table E-5, H.265 Table E.5"},
    {10, "BT.2020 constant luminance", "H.264 Table E-5, H.265 Table E.5"},
    {11, "SMPTE ST 2085", "H.264 Table E-5, H.265 Table E.5"},
    {12, "Chromaticity-derived non-constant luminance", "H.264 Table E-5, H.265 Table E.5"},
    {13, "Chromaticity-derived constant luminance", "H.264 Table E-5, H.265 Table E.5"},
    {14, "ICtCp", "H.264 Table E-5, H.265 Table E.5"},
};

/// video_format.
constexpr Name kVideoFormats[] = {
    {0, "Component", "H.264 Table E-2, H.265 Table E.2"},
    {1, "PAL", "H.264 Table E-2, H.265 Table E.2"},
    {2, "NTSC", "H.264 Table E-2, H.265 Table E.2"},
    {3, "SECAM", "H.264 Table E-2, H.265 Table E.2"},
    {4, "MAC", "H.264 Table E-2, H.265 Table E.2"},
    {5, "Unspecified", "H.264 Table E-2, H.265 Table E.2"},
};

/// chroma_sample_loc_type_top_field and chroma_sample_loc_type_bottom_field.
constexpr Name kChromaSampleLocations[] = {
    {0, "Left", "H.264 Figure E-1, H.265 Figure E.1"},
    {1, "Centre", "H.264 Figure E-1, H.265 Figure E.1"},
    {2, "Top left", "H.264 Figure E-1, H.265 Figure E.1"},
    {3, "Top", "H.264 Figure E-1, H.265 Figure E.1"},
    {4, "Bottom left", "H.264 Figure E-1, H.265 Figure E.1"},
    {5, "Bottom", "H.264 Figure E-1, H.265 Figure E.1"},
};

/// The name of a value of colour_primaries; "Reserved" for one that the standards reserve.
constexpr Name colourPrimariesName(uint32_t colour_primaries) {
    return nameOf(kColourPrimaries, colour_primaries, "Reserved");
}

/// The name of a value of transfer_characteristics; "Reserved" for one that the standards reserve.
constexpr Name transferCharacteristicsName(uint32_t transfer_characteristics) {
    return nameOf(kTransferCharacteristics, transfer_characteristics, "Reserved");
}

/// The name of a value of matrix_coefficients or matrix_coeffs; "Reserved" for one that the standards
/// reserve.
constexpr Name matrixCoefficientsName(uint32_t matrix_coefficients) {
    return nameOf(kMatrixCoefficients, matrix_coefficients, "Reserved");
}

/// The name of a value of video_format; "Reserved" for one that the standards reserve.
constexpr Name videoFormatName(uint32_t video_format) {
    return nameOf(kVideoFormats, video_format, "Reserved");
}

/// The name of a chroma sample location type, where the chroma samples of 4:2:0 are; "Reserved" above 5.
constexpr Name chromaSampleLocationName(uint32_t chroma_sample_loc_type) {
    return nameOf(kChromaSampleLocations, chroma_sample_loc_type, "Reserved");
}

}  // namespace qv

#endif
