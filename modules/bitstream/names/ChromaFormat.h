/// \file
/// Chroma formats, Table 6-1 of H.264 and of H.265.
#ifndef QV_BITSTREAM_NAMES_CHROMAFORMAT_H
#define QV_BITSTREAM_NAMES_CHROMAFORMAT_H

#include <cstdint>

namespace qv {

/// A value of chroma_format_idc.
struct ChromaFormat {
    uint32_t chroma_format_idc;  ///< 0..3; another only in a reserved entry
    const char* name;            ///< `4:2:0`
    uint32_t SubWidthC;          ///< luma samples to a chroma sample in a row; 1 for monochrome
    uint32_t SubHeightC;         ///< luma samples to a chroma sample in a column; 1 for monochrome
};

/// Table 6-1; the index is chroma_format_idc.
constexpr ChromaFormat kChromaFormats[] = {
    {0, "4:0:0", 1, 1},
    {1, "4:2:0", 2, 2},
    {2, "4:2:2", 2, 1},
    {3, "4:4:4", 1, 1},
};

/// The chroma format of a chroma_format_idc; one above 3, which no parameter set can hold, is "Reserved" and
/// has the sizes of monochrome.
constexpr ChromaFormat chromaFormatOf(uint32_t chroma_format_idc) {
    return chroma_format_idc <= 3 ? kChromaFormats[chroma_format_idc]
                                  : ChromaFormat{chroma_format_idc, "Reserved", 1, 1};
}

}  // namespace qv

#endif
