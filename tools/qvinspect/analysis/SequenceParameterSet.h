// A sequence parameter set: as the standard reads it, and as the player's library does.
#ifndef QVINSPECT_SEQUENCEPARAMETERSET_H
#define QVINSPECT_SEQUENCEPARAMETERSET_H

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "QVNaluParser.h"
#include "analysis/Block.h"
#include "analysis/VideoFormat.h"
#include "bitstream/Read.h"

namespace qvinspect {

struct SequenceParameterSet {
    QVCodecID codec;

    // What the player's library makes of it. Its record is what that library reads SEI messages with, the
    // H.264 one with the fields of the VUI.
    bool isAccepted = false;
    QVAvcSps avc{};
    QVHevcSps hevc{};
    std::vector<std::string> log;  // what it logged: reasons for a refusal

    // The whole set by the standard, as far as it was read without a fault: that of the codec, when the
    // player's library accepts the set.
    std::shared_ptr<const qv::avc::Sps> avcRecord;
    std::shared_ptr<const qv::hevc::Sps> hevcRecord;
    std::string fault;  // empty without one

    // Empty when the set is refused, or when the fault comes before the end of what is here but the VUI.
    std::optional<VideoFormat> video;

    std::string summary;  // e.g. "High, level 1.2, 320x180 (coded 320x192), 4:2:0, 8 bit", or the fault
};

// unit: a whole NAL unit of type 7 (H.264) or 33 (H.265). vps: as for videoFormatOf().
SequenceParameterSet readSequenceParameterSet(QVCodecID codec, const unsigned char* unit, size_t size,
                                              const qv::hevc::Vps* vps = nullptr);

// Every element under its name, and derived values.
Block describe(const SequenceParameterSet& sps);

}  // namespace qvinspect

#endif
