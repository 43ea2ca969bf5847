#include "report/SeiRemover.h"

#include <fmt/format.h>

#include <algorithm>

#include "analysis/UnitBytes.h"
#include "bitstream/avc/NalUnitType.h"
#include "bitstream/hevc/NalUnitType.h"
#include "bitstream/sei/SeiEdit.h"

namespace qvinspect {

namespace {

bool isSei(qv::Codec codec, qv::Bytes unit) {
    const uint32_t type = qv::nalUnitOf(unit, codec).nal_unit_type;
    return codec == qv::Codec::Avc ? type == qv::avc::kNalSei : qv::hevc::isSei(type);
}

bool has(const std::vector<uint32_t>& types, uint64_t payloadType) {
    return std::find(types.begin(), types.end(), payloadType) != types.end();
}

bool isLeftOut(const SeiRemoval& removal, const qv::SeiMessage& message) {
    if (has(removal.droppedTypes, message.payloadType) ||
        (!removal.keptTypes.empty() && !has(removal.keptTypes, message.payloadType))) {
        return true;
    }
    return std::any_of(removal.droppedT35.begin(), removal.droppedT35.end(),
                       [&](const qv::sei::T35Code& code) { return qv::sei::isOwnedBy(message, code); });
}

std::string counted(uint64_t count, const char* what) {
    return fmt::format("{} SEI {}{}", count, what, count == 1 ? "" : "s");
}

}  // namespace

bool SeiRemover::append(qv::Bytes unit, std::vector<uint8_t>& out) {
    const qv::Codec codec = codecOf(codec_);
    if (!isSei(codec, unit)) {
        out.insert(out.end(), unit.begin(), unit.end());
        return true;
    }
    const qv::sei::Removed removed = qv::sei::removeMessages(
        unit, codec, out, [this](const qv::SeiMessage& message) { return isLeftOut(removal_, message); });
    messages_ += removed.messages;
    units_ += removed.isUnitGone ? 1 : 0;
    return !removed.isUnitGone;
}

std::string SeiRemover::summary() const {
    return fmt::format("{} and {} are dropped", counted(messages_, "message"), counted(units_, "unit"));
}

}  // namespace qvinspect
