/// \file
/// What an H.265 sequence parameter set says of the pictures: sizes, cropping, chroma, bit depths.
#ifndef QV_BITSTREAM_HEVC_PICTUREFORMAT_H
#define QV_BITSTREAM_HEVC_PICTUREFORMAT_H

#include <cstdint>

#include "bitstream/Ratio.h"
#include "bitstream/hevc/Sps.h"
#include "bitstream/names/ChromaFormat.h"
#include "bitstream/names/SampleAspectRatio.h"

namespace qv::hevc {

/// A part of a picture, in luma samples. A rectangle without samples has width and height 0.
struct Rectangle {
    uint64_t left = 0;    ///< columns left of it
    uint64_t top = 0;     ///< rows above it
    uint64_t width = 0;   ///< columns
    uint64_t height = 0;  ///< rows

    /// True for one without samples.
    constexpr bool isEmpty() const { return width == 0; }
};

/// The pictures of a coded video sequence. With picturesAreFields a picture is a field, and the sizes are
/// those of a field.
struct PictureFormat {
    uint64_t codedWidth = 0;   ///< pic_width_in_luma_samples
    uint64_t codedHeight = 0;  ///< pic_height_in_luma_samples

    Rectangle crop;  ///< what a decoder outputs: the conformance window; empty when the offsets leave nothing

    /// What is to be displayed: the default display window, or crop without it; empty when the offsets leave
    /// nothing.
    Rectangle display;

    Ratio sampleAspectRatio;  ///< 0:0 when it is unspecified

    /// Of the cropped picture, or with picturesAreFields of the frame of two; 0:0 without a sample aspect
    /// ratio.
    Ratio displayAspectRatio;

    ChromaFormat chroma = kChromaFormats[0];  ///< Table 6-1, from chroma_format_idc
    uint32_t bitDepthLuma = 0;                ///< 8..16

    /// 0 for monochrome, and that of luma for separate colour planes, whose three planes are coded as luma.
    uint32_t bitDepthChroma = 0;

    bool picturesAreFields = false;  ///< field_seq_flag
};

/// The part of a rectangle that offsets on its sides leave, H.265 7.4.3.2.1 (conformance window) and E.3.1
/// (default display window): offsets are in units of SubWidthC and SubHeightC luma samples.
constexpr Rectangle cropped(const Rectangle& outer, const ChromaFormat& chroma, uint64_t left, uint64_t right,
                            uint64_t top, uint64_t bottom) {
    const uint64_t columns = chroma.SubWidthC * (left + right);
    const uint64_t rows = chroma.SubHeightC * (top + bottom);
    if (columns >= outer.width || rows >= outer.height) {
        return {};
    }
    return {outer.left + chroma.SubWidthC * left, outer.top + chroma.SubHeightC * top, outer.width - columns,
            outer.height - rows};
}

/// The conformance window of \p sps, H.265 7.4.3.2.1: empty when the offsets leave nothing of the picture,
/// which the standard does not allow.
constexpr Rectangle cropRectangleOf(const Sps& sps) {
    return cropped({0, 0, sps.pic_width_in_luma_samples, sps.pic_height_in_luma_samples},
                   chromaFormatOf(sps.chroma_format_idc), sps.conf_win_left_offset, sps.conf_win_right_offset,
                   sps.conf_win_top_offset, sps.conf_win_bottom_offset);
}

/// The default display window of \p sps in its conformance window, H.265 E.3.1, in luma samples of the coded
/// picture.
constexpr Rectangle displayRectangleOf(const Sps& sps) {
    return cropped(cropRectangleOf(sps), chromaFormatOf(sps.chroma_format_idc),
                   sps.vui.def_disp_win_left_offset, sps.vui.def_disp_win_right_offset,
                   sps.vui.def_disp_win_top_offset, sps.vui.def_disp_win_bottom_offset);
}

/// The sample aspect ratio, H.265 E.3.1 and Table E.1; 0:0 when it is unspecified.
constexpr Ratio sampleAspectRatioOf(const Vui& vui) {
    return sampleAspectRatio(vui.aspect_ratio_idc, vui.sar_width, vui.sar_height);
}

/// The pictures that a sequence parameter set describes.
///
/// \param sps  read without a fault, and with its VPS when multiLayerExtSpsFlag() is true
constexpr PictureFormat pictureFormatOf(const Sps& sps) {
    PictureFormat format;
    format.codedWidth = sps.pic_width_in_luma_samples;
    format.codedHeight = sps.pic_height_in_luma_samples;
    format.crop = cropRectangleOf(sps);
    format.display = displayRectangleOf(sps);
    format.picturesAreFields = sps.vui.field_seq_flag;
    format.sampleAspectRatio = sampleAspectRatioOf(sps.vui);
    const uint64_t frameHeight = format.crop.height * (format.picturesAreFields ? 2 : 1);
    format.displayAspectRatio = ratioOf(format.crop.width * format.sampleAspectRatio.numerator,
                                        frameHeight * format.sampleAspectRatio.denominator);
    format.chroma = chromaFormatOf(sps.chroma_format_idc);
    format.bitDepthLuma = 8 + sps.bit_depth_luma_minus8;
    if (chromaArrayType(sps) != 0) {
        format.bitDepthChroma = 8 + sps.bit_depth_chroma_minus8;
    } else if (sps.separate_colour_plane_flag) {
        format.bitDepthChroma = format.bitDepthLuma;
    }
    return format;
}

}  // namespace qv::hevc

#endif
