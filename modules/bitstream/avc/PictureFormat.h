/// \file
/// What an H.264 sequence parameter set says of the pictures: sizes, cropping, chroma, bit depths.
#ifndef QV_BITSTREAM_AVC_PICTUREFORMAT_H
#define QV_BITSTREAM_AVC_PICTUREFORMAT_H

#include <cstdint>

#include "bitstream/Ratio.h"
#include "bitstream/avc/Sps.h"
#include "bitstream/names/ChromaFormat.h"
#include "bitstream/names/SampleAspectRatio.h"

namespace qv::avc {

/// PicWidthInMbs, H.264 7.4.2.1.1 (7-13).
constexpr uint64_t picWidthInMbs(const SpsData& sps) {
    return uint64_t{sps.pic_width_in_mbs_minus1} + 1;
}

/// PicHeightInMapUnits, H.264 7.4.2.1.1 (7-16).
constexpr uint64_t picHeightInMapUnits(const SpsData& sps) {
    return uint64_t{sps.pic_height_in_map_units_minus1} + 1;
}

/// PicSizeInMapUnits, H.264 7.4.2.1.1 (7-17).
constexpr uint64_t picSizeInMapUnits(const SpsData& sps) {
    return picWidthInMbs(sps) * picHeightInMapUnits(sps);
}

/// FrameHeightInMbs, H.264 7.4.2.1.1 (7-18).
constexpr uint64_t frameHeightInMbs(const SpsData& sps) {
    return (sps.frame_mbs_only_flag ? 1 : 2) * picHeightInMapUnits(sps);
}

/// ChromaArrayType, H.264 7.4.2.1.1: chroma_format_idc, or 0 when the colour planes are coded separately.
constexpr uint32_t chromaArrayType(const SpsData& sps) {
    return sps.separate_colour_plane_flag ? 0 : sps.chroma_format_idc;
}

/// A part of a frame, in luma samples. A rectangle without samples has width and height 0.
struct Rectangle {
    uint64_t left = 0;    ///< columns left of it
    uint64_t top = 0;     ///< rows above it
    uint64_t width = 0;   ///< columns
    uint64_t height = 0;  ///< rows

    /// True for one without samples.
    constexpr bool isEmpty() const { return width == 0; }
};

/// How the frames of a sequence may be coded.
enum class FieldCoding : uint32_t {
    Frames,              ///< frames of frame macroblocks alone
    FramesAndFields,     ///< each picture a frame or a field
    MacroblockAdaptive,  ///< as above, and each macroblock pair of a frame as frame or field
};

/// The pictures of a coded video sequence.
struct PictureFormat {
    uint64_t codedWidth = 0;   ///< of a frame, in luma samples
    uint64_t codedHeight = 0;  ///< of a frame, in luma samples

    Rectangle crop;  ///< what a decoder outputs, (7-19) to (7-22); empty when the offsets leave nothing

    Ratio sampleAspectRatio;   ///< 0:0 when it is unspecified
    Ratio displayAspectRatio;  ///< of the cropped picture; 0:0 without a sample aspect ratio

    ChromaFormat chroma = kChromaFormats[0];  ///< Table 6-1, from chroma_format_idc
    uint32_t bitDepthLuma = 0;                ///< 8..14

    /// 0 for monochrome, and that of luma for separate colour planes, whose three planes are coded as luma.
    uint32_t bitDepthChroma = 0;

    FieldCoding fieldCoding = FieldCoding::Frames;  ///< of the sequence
};

/// The cropping rectangle of a frame, H.264 7.4.2.1.1 (7-19) to (7-22): empty when the offsets leave nothing
/// of the picture, which the standard does not allow.
constexpr Rectangle cropRectangleOf(const SpsData& sps) {
    const ChromaFormat chroma = chromaFormatOf(chromaArrayType(sps));
    const uint64_t cropUnitX = chroma.SubWidthC;
    const uint64_t cropUnitY = uint64_t{chroma.SubHeightC} * (sps.frame_mbs_only_flag ? 1 : 2);
    const uint64_t width = 16 * picWidthInMbs(sps);
    const uint64_t height = 16 * frameHeightInMbs(sps);
    const uint64_t left = cropUnitX * sps.frame_crop_left_offset;
    const uint64_t top = cropUnitY * sps.frame_crop_top_offset;
    const uint64_t croppedColumns = left + cropUnitX * sps.frame_crop_right_offset;
    const uint64_t croppedRows = top + cropUnitY * sps.frame_crop_bottom_offset;
    if (croppedColumns >= width || croppedRows >= height) {
        return {};
    }
    return {left, top, width - croppedColumns, height - croppedRows};
}

/// The sample aspect ratio, H.264 E.2.1 and Table E-1; 0:0 when it is unspecified.
constexpr Ratio sampleAspectRatioOf(const Vui& vui) {
    return sampleAspectRatio(vui.aspect_ratio_idc, vui.sar_width, vui.sar_height);
}

/// The pictures that a sequence parameter set, or a subset sequence parameter set, describes.
///
/// \param sps  read without a fault
constexpr PictureFormat pictureFormatOf(const SpsData& sps) {
    PictureFormat format;
    format.codedWidth = 16 * picWidthInMbs(sps);
    format.codedHeight = 16 * frameHeightInMbs(sps);
    format.crop = cropRectangleOf(sps);
    format.sampleAspectRatio = sampleAspectRatioOf(sps.vui);
    format.displayAspectRatio = ratioOf(format.crop.width * format.sampleAspectRatio.numerator,
                                        format.crop.height * format.sampleAspectRatio.denominator);
    format.chroma = chromaFormatOf(sps.chroma_format_idc);
    format.bitDepthLuma = 8 + sps.bit_depth_luma_minus8;
    if (chromaArrayType(sps) != 0) {
        format.bitDepthChroma = 8 + sps.bit_depth_chroma_minus8;
    } else if (sps.separate_colour_plane_flag) {
        format.bitDepthChroma = format.bitDepthLuma;
    }
    if (!sps.frame_mbs_only_flag) {
        format.fieldCoding =
            sps.mb_adaptive_frame_field_flag ? FieldCoding::MacroblockAdaptive : FieldCoding::FramesAndFields;
    }
    return format;
}

}  // namespace qv::avc

#endif
