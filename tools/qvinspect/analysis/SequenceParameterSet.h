// A sequence parameter set as the library reads it, and as it is shown.
#ifndef QVINSPECT_SEQUENCEPARAMETERSET_H
#define QVINSPECT_SEQUENCEPARAMETERSET_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "QVNaluParser.h"
#include "analysis/Block.h"

namespace qvinspect {

struct SequenceParameterSet {
    QVCodecID codec;
    bool isAccepted = false;
    QVAvcSps avc{};    // with its VUI, codec H.264
    QVHevcSps hevc{};  // codec H.265

    // What the library logged of it: reasons for a refusal, H.265 profile, tier and level.
    std::vector<std::string> log;

    std::optional<uint32_t> transfer_characteristics;  // of the VUI, where it has a colour description

    bool hasScalingLists = false;  // seq_scaling_matrix_present_flag of H.264
    int profile = 0;
    int level = 0;        // level_idc or general_level_idc
    int tier = 0;         // general_tier_flag
    std::string summary;  // e.g. "High, level 1.2, 320x180 (coded 320x192), 4:2:0, 8 bit"
};

// unit: a whole NAL unit of type 7 (H.264) or 33 (H.265).
SequenceParameterSet readSequenceParameterSet(QVCodecID codec, const unsigned char* unit, size_t size);

// Every parsed field under its element's name, and what is derived.
Block describe(const SequenceParameterSet& sps);

// "4:2:0" for a chroma_format_idc of 1.
const char* chromaName(int chroma_format_idc);

std::string avcProfileName(int profile_idc, int constraint_set_flags);
std::string avcLevelName(int level_idc, int profile_idc, int constraint_set_flags);
std::string hevcProfileName(int general_profile_idc);
std::string hevcLevelName(int general_level_idc);

}  // namespace qvinspect

#endif
