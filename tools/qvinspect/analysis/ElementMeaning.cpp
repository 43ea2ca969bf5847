#include "analysis/ElementMeaning.h"

#include <fmt/format.h>

#include <string_view>

#include "bitstream/names/ActiveFormat.h"
#include "bitstream/names/AvcNalUnitTypes.h"
#include "bitstream/names/AvcProfiles.h"
#include "bitstream/names/ChromaFormat.h"
#include "bitstream/names/Colour.h"
#include "bitstream/names/FilmGrain.h"
#include "bitstream/names/FramePacking.h"
#include "bitstream/names/HevcLevels.h"
#include "bitstream/names/HevcNalUnitTypes.h"
#include "bitstream/names/HevcProfiles.h"
#include "bitstream/names/Name.h"
#include "bitstream/names/PictureTiming.h"
#include "bitstream/names/SampleAspectRatio.h"
#include "bitstream/names/SceneTransitions.h"
#include "bitstream/names/ToneMapping.h"

namespace qvinspect {

namespace {

std::string textOf(const char* name) {
    return name != nullptr ? name : "";
}

std::string nalUnitType(QVCodecID codec, uint32_t value) {
    return codec == QVCodecIDAvc ? qv::avc::nalUnitTypeName(value).name
                                 : qv::hevc::nalUnitTypeName(value).name;
}

std::string avcProfile(QVCodecID, uint32_t value) {
    const qv::avc::ProfileEntry* const profile = qv::avc::findProfile(value, 0);
    return textOf(profile != nullptr ? profile->name : nullptr);
}

// A.3: the profile, or the family that general_profile_idc 4 and above share.
constexpr qv::Name kHevcProfiles[] = {
    {1, "Main", "A.3.2"},
    {2, "Main 10", "A.3.3"},
    {3, "Main Still Picture", "A.3.4"},
    {4, "format range extensions", "A.3.5"},
    {5, "high throughput", "A.3.6"},
    {6, "Multiview Main", "G.11.1.1"},
    {7, "scalable", "H.11.1.1"},
    {8, "3D Main", "I.11.1.1"},
    {9, "screen content coding extensions", "A.3.7"},
    {10, "scalable format range extensions", "H.11.1.2"},
    {11, "high throughput screen content coding extensions", "A.3.8"},
};

std::string hevcProfile(QVCodecID, uint32_t value) {
    return qv::nameOf(kHevcProfiles, value, "").name;
}

std::string avcLevel(QVCodecID, uint32_t value) {
    constexpr uint32_t kLevel1b = 9;
    return value == kLevel1b ? "1b" : fmt::format("{}.{}", value / 10, value % 10);
}

std::string hevcLevel(QVCodecID, uint32_t value) {
    return textOf(qv::hevc::levelName(value));
}

std::string hevcTier(QVCodecID, uint32_t value) {
    return qv::hevc::tierName(value != 0);
}

std::string sampleAspectRatio(QVCodecID, uint32_t value) {
    if (value == qv::kExtendedSar) {
        return "Extended_SAR";
    }
    const qv::Ratio ratio = qv::sampleAspectRatio(value, 0, 0);
    return ratio.numerator != 0 ? fmt::format("{}:{}", ratio.numerator, ratio.denominator) : "";
}

std::string picStruct(QVCodecID codec, uint32_t value) {
    return codec == QVCodecIDAvc ? qv::avc::picStructName(value).name : qv::hevc::picStructName(value).name;
}

// ITU-T T.35 Annex A, the countries that send metadata.
std::string country(QVCodecID, uint32_t value) {
    static constexpr qv::Name kCountries[] = {
        {0x26, "China", "ITU-T T.35"},
        {0xB4, "United Kingdom", "ITU-T T.35"},
        {0xB5, "United States", "ITU-T T.35"},
        {0xFF, "extended", "ITU-T T.35"},
    };
    return qv::nameOf(kCountries, value, "").name;
}

// A row of kMeanings for one of the library's tables.
template <qv::Name (*nameOf)(uint32_t)>
std::string named(QVCodecID, uint32_t value) {
    return nameOf(value).name;
}

struct Meaning {
    std::string_view name;
    std::string (*text)(QVCodecID codec, uint32_t value);
};

constexpr Meaning kMeanings[] = {
    {"nal_unit_type", nalUnitType},
    {"profile_idc", avcProfile},
    {"general_profile_idc", hevcProfile},
    {"sub_layer_profile_idc", hevcProfile},
    {"level_idc", avcLevel},
    {"general_level_idc", hevcLevel},
    {"sub_layer_level_idc", hevcLevel},
    {"general_tier_flag", hevcTier},
    {"sub_layer_tier_flag", hevcTier},
    {"aspect_ratio_idc", sampleAspectRatio},
    {"chroma_format_idc", [](QVCodecID, uint32_t v) { return std::string(qv::chromaFormatOf(v).name); }},
    {"video_format", [](QVCodecID, uint32_t v) { return std::string(qv::videoFormatName(v).name); }},
    {"colour_primaries", [](QVCodecID, uint32_t v) { return std::string(qv::colourPrimariesName(v).name); }},
    {"transfer_characteristics",
     [](QVCodecID, uint32_t v) { return std::string(qv::transferCharacteristicsName(v).name); }},
    {"matrix_coefficients",
     [](QVCodecID, uint32_t v) { return std::string(qv::matrixCoefficientsName(v).name); }},
    {"matrix_coeffs", [](QVCodecID, uint32_t v) { return std::string(qv::matrixCoefficientsName(v).name); }},
    {"primary_pic_type",
     [](QVCodecID, uint32_t v) { return std::string(qv::avc::primaryPicTypeName(v).name); }},
    {"pic_type", [](QVCodecID, uint32_t v) { return std::string(qv::hevc::picTypeName(v).name); }},
    {"pic_struct", picStruct},
    {"ffinfo_pic_struct", picStruct},
    {"ct_type", named<qv::avc::ctTypeName>},
    {"counting_type", named<qv::countingTypeName>},
    {"source_scan_type", named<qv::hevc::sourceScanTypeName>},
    {"ffinfo_source_scan_type", named<qv::hevc::sourceScanTypeName>},
    {"hash_type", named<qv::hevc::hashTypeName>},
    {"preferred_transfer_characteristics", named<qv::transferCharacteristicsName>},
    {"active_format", named<qv::nameOfActiveFormat>},
    {"film_grain_model_id", named<qv::filmGrainModelName>},
    {"frame_packing_arrangement_type", named<qv::framePackingArrangementTypeName>},
    {"content_interpretation_type", named<qv::contentInterpretationTypeName>},
    {"scene_transition_type", named<qv::sceneTransitionTypeName>},
    {"tone_map_model_id", named<qv::toneMapModelName>},
    {"itu_t_t35_country_code", country},
};

// "bit_depth_luma_minus8" codes a value that is 8 less.
std::string valueOfMinus(std::string_view name, int64_t value) {
    constexpr std::string_view kMinus = "_minus";
    const size_t at = name.rfind(kMinus);
    if (at == std::string_view::npos || at + kMinus.size() == name.size()) {
        return {};
    }
    int64_t less = 0;
    for (const char digit : name.substr(at + kMinus.size())) {
        if (digit < '0' || digit > '9') {
            return {};
        }
        less = 10 * less + (digit - '0');
    }
    return fmt::format("{}", value + less);
}

}  // namespace

std::string elementMeaning(QVCodecID codec, const qv::TracedElement& element) {
    const std::string_view name = element.element.name;
    for (const Meaning& meaning : kMeanings) {
        if (name == meaning.name) {
            return meaning.text(codec, static_cast<uint32_t>(element.value));
        }
    }
    return valueOfMinus(name, element.value);
}

std::string codedBits(const qv::TracedElement& element) {
    constexpr uint32_t kMostDigits = 18;
    return element.width <= kMostDigits ? fmt::format("{:0{}b}", element.bits, element.width)
                                        : fmt::format("0x{:0{}x}", element.bits, (element.width + 3) / 4);
}

}  // namespace qvinspect
