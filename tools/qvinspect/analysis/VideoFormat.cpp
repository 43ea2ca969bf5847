#include "analysis/VideoFormat.h"

#include <fmt/format.h>

#include "bitstream/avc/FrameRate.h"
#include "bitstream/avc/PictureFormat.h"
#include "bitstream/avc/ProfileLevel.h"
#include "bitstream/hevc/FrameRate.h"
#include "bitstream/hevc/PictureFormat.h"
#include "bitstream/hevc/ProfileLevel.h"

namespace qvinspect {

namespace {

std::string nameOr(const char* name, std::string otherwise) {
    return name != nullptr ? std::string(name) : otherwise;
}

// The parts that both codecs derive in the same way.
template <class PictureFormat>
void takePicture(const PictureFormat& picture, VideoFormat& video) {
    video.width = picture.crop.width;
    video.height = picture.crop.height;
    video.codedWidth = picture.codedWidth;
    video.codedHeight = picture.codedHeight;
    video.cropLeft = picture.crop.left;
    video.cropRight = picture.codedWidth - picture.crop.left - picture.crop.width;
    video.cropTop = picture.crop.top;
    video.cropBottom = picture.codedHeight - picture.crop.top - picture.crop.height;
    video.chroma = picture.chroma;
    video.bitDepthLuma = picture.bitDepthLuma;
    video.sampleAspectRatio = picture.sampleAspectRatio;
}

// A level that the standard does not define, in the way that those of H.264 are coded.
std::string avcLevelNumber(uint32_t level_idc) {
    return level_idc % 10 == 0 ? fmt::format("{}", level_idc / 10)
                               : fmt::format("{}.{}", level_idc / 10, level_idc % 10);
}

std::string hevcLevelNumber(uint32_t general_level_idc) {
    return general_level_idc % 30 == 0 ? fmt::format("{}", general_level_idc / 30)
                                       : fmt::format("{:.1f}", general_level_idc / 30.0);
}

qv::hevc::FrameRate frameRateOf(const qv::hevc::Sps& sps, const qv::hevc::Vps* vps) {
    const qv::hevc::FrameRate ofVui = qv::hevc::frameRateOf(sps);
    return ofVui.framesPerSecond.isKnown() || vps == nullptr
               ? ofVui
               : qv::hevc::frameRateOf(*vps, sps.vui.field_seq_flag);
}

}  // namespace

VideoFormat videoFormatOf(const qv::avc::Sps& sps) {
    const qv::avc::SpsData& data = sps.data;
    VideoFormat video;
    const qv::avc::ProfileEntry* const profile = qv::avc::profileOf(data);
    video.profile_idc = data.profile_idc;
    video.profile =
        nameOr(profile != nullptr ? profile->name : nullptr, fmt::format("profile {}", data.profile_idc));
    const qv::avc::LevelEntry* const level = qv::avc::levelOf(data);
    video.level_idc = data.level_idc;
    video.level = nameOr(level != nullptr ? level->name : nullptr, avcLevelNumber(data.level_idc));
    takePicture(qv::avc::pictureFormatOf(data), video);
    video.bitDepthChroma = 8 + data.bit_depth_chroma_minus8;
    video.frameRate = qv::avc::frameRateOf(data.vui).framesPerSecond;
    video.pictureRate = video.frameRate;
    if (data.vui.colour_description_present_flag) {
        video.colour = {data.vui.colour_primaries, data.vui.transfer_characteristics,
                        data.vui.matrix_coefficients};
    }
    return video;
}

VideoFormat videoFormatOf(const qv::hevc::Sps& sps, const qv::hevc::Vps* vps) {
    const qv::hevc::ProfileTier& general = sps.profile_tier_level.general;
    VideoFormat video;
    video.profile_idc = general.profile_idc;
    video.profile = nameOr(qv::hevc::profileName(general), fmt::format("profile {}", general.profile_idc));
    video.level_idc = sps.profile_tier_level.general_level_idc;
    video.level = nameOr(qv::hevc::levelName(video.level_idc), hevcLevelNumber(video.level_idc));
    video.tier = qv::hevc::tierName(general.tier_flag);
    takePicture(qv::hevc::pictureFormatOf(sps), video);
    video.bitDepthChroma = 8 + sps.bit_depth_chroma_minus8;
    video.frameRate = frameRateOf(sps, vps).framesPerSecond;
    video.pictureRate = sps.vui.field_seq_flag
                            ? qv::ratioOf(2 * video.frameRate.numerator, video.frameRate.denominator)
                            : video.frameRate;
    if (sps.vui.colour_description_present_flag) {
        video.colour = {sps.vui.colour_primaries, sps.vui.transfer_characteristics, sps.vui.matrix_coeffs};
    }
    return video;
}

std::string sizeText(const VideoFormat& video) {
    return video.width == video.codedWidth && video.height == video.codedHeight
               ? fmt::format("{}x{}", video.width, video.height)
               : fmt::format("{}x{} (coded {}x{})", video.width, video.height, video.codedWidth,
                             video.codedHeight);
}

std::string bitDepthText(const VideoFormat& video) {
    const bool isMonochrome = video.chroma.chroma_format_idc == 0;
    return isMonochrome || video.bitDepthLuma == video.bitDepthChroma
               ? fmt::format("{} bit", video.bitDepthLuma)
               : fmt::format("{} bit luma, {} bit chroma", video.bitDepthLuma, video.bitDepthChroma);
}

std::string summaryOf(const VideoFormat& video) {
    const bool isHighTier = video.tier != nullptr && *video.tier == 'H';
    return fmt::format("{}, level {}{}, {}, {}, {} bit", video.profile, video.level,
                       isHighTier ? " high tier" : "", sizeText(video), video.chroma.name,
                       video.bitDepthLuma);
}

std::optional<double> secondsPerPicture(const VideoFormat& video) {
    if (!video.pictureRate.isKnown()) {
        return std::nullopt;
    }
    return static_cast<double>(video.pictureRate.denominator) /
           static_cast<double>(video.pictureRate.numerator);
}

}  // namespace qvinspect
