// What a sequence parameter set says of the video, for both codecs in the same terms.
#ifndef QVINSPECT_VIDEOFORMAT_H
#define QVINSPECT_VIDEOFORMAT_H

#include <cstdint>
#include <optional>
#include <string>

#include "bitstream/Ratio.h"
#include "bitstream/avc/Sps.h"
#include "bitstream/hevc/Sps.h"
#include "bitstream/hevc/Vps.h"
#include "bitstream/names/ChromaFormat.h"

namespace qvinspect {

// colour_primaries and what follows it.
struct ColourDescription {
    uint32_t colour_primaries;
    uint32_t transfer_characteristics;
    uint32_t matrix_coefficients;
};

struct VideoFormat {
    std::string profile;  // by name
    uint32_t profile_idc = 0;
    std::string level;  // by name
    uint32_t level_idc = 0;
    const char* tier = nullptr;  // "Main" or "High"; null for H.264

    // In luma samples: what a decoder outputs, the whole picture, and what is cut off on each side. Of a
    // frame for H.264, of a picture for H.265.
    uint64_t width = 0;
    uint64_t height = 0;
    uint64_t codedWidth = 0;
    uint64_t codedHeight = 0;
    uint64_t cropLeft = 0;
    uint64_t cropRight = 0;
    uint64_t cropTop = 0;
    uint64_t cropBottom = 0;

    qv::ChromaFormat chroma = qv::kChromaFormats[0];
    uint32_t bitDepthLuma = 0;
    uint32_t bitDepthChroma = 0;  // as coded, also for monochrome

    qv::Ratio sampleAspectRatio;  // 0:0 when it is unspecified

    // Frames per second, and pictures per second, which are twice as many with field_seq_flag of H.265. 0:0
    // when they are unknown.
    qv::Ratio frameRate;
    qv::Ratio pictureRate;

    std::optional<ColourDescription> colour;
};

// sps: read without a fault, or as far as a fault in the VUI or after it.
VideoFormat videoFormatOf(const qv::avc::Sps& sps);

// vps: the VPS that sps refers to, whose timing counts when the VUI has none; may be null.
VideoFormat videoFormatOf(const qv::hevc::Sps& sps, const qv::hevc::Vps* vps);

// "1920x1080", or "1920x1080 (coded 1920x1088)".
std::string sizeText(const VideoFormat& video);

// "High, level 1.2, 320x180 (coded 320x192), 4:2:0, 8 bit"
std::string summaryOf(const VideoFormat& video);

// "8 bit", or "8 bit luma, 10 bit chroma".
std::string bitDepthText(const VideoFormat& video);

// Seconds from one picture to the next; empty when the rate is unknown.
std::optional<double> secondsPerPicture(const VideoFormat& video);

}  // namespace qvinspect

#endif
