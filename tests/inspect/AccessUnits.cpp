#include "AccessUnits.h"

#include <memory>
#include <utility>

namespace qv_test {

using qvinspect::UnitState;

namespace {

constexpr size_t kStartCode = 3;

}  // namespace

MadeAccessUnit& MadeAccessUnit::key() {
    report.isKey = true;
    return *this;
}

MadeAccessUnit& MadeAccessUnit::at(std::optional<double> time) {
    accessUnit.time = time;
    accessUnit.decodeTime = time;
    return *this;
}

MadeAccessUnit& MadeAccessUnit::lasting(double seconds) {
    accessUnit.duration = seconds;
    return *this;
}

MadeAccessUnit& MadeAccessUnit::bytesInAll(size_t size) {
    accessUnit.size = size;
    return *this;
}

MadeAccessUnit& MadeAccessUnit::finding(qvinspect::Severity severity, std::optional<uint64_t> offset,
                                        const std::string& text) {
    accessUnit.findings.push_back({severity, offset, text});
    return *this;
}

qvinspect::UnitDetails& MadeAccessUnit::add(UnitState state, uint32_t type, uint32_t length) {
    static const Bytes zeros(4096);
    const size_t offset = accessUnit.size + kStartCode;
    report.units.push_back({state, offset, length, type, false});
    accessUnit.data = zeros.data();
    accessUnit.size = offset + length;
    return details.units.emplace_back();
}

MadeAccessUnit& MadeAccessUnit::unit(uint32_t type, uint32_t length) {
    add(UnitState::Typed, type, length);
    return *this;
}

MadeAccessUnit& MadeAccessUnit::brokenUnit(UnitState state) {
    add(state, 0, state == UnitState::Empty ? 0 : 3);
    return *this;
}

MadeAccessUnit& MadeAccessUnit::seiUnit(uint32_t type,
                                        const std::vector<std::pair<uint32_t, Bytes>>& payloads) {
    qvinspect::SeiUnit sei;
    sei.offset = accessUnit.size + kStartCode;
    for (const auto& [payloadType, payload] : payloads) {
        qv::SeiMessage message;
        message.payloadType = payloadType;
        message.payloadSize = message.rbspPayloadSize = payload.size();
        message.unit = message.payload = {payload.data(), payload.size()};
        sei.messages.push_back({payloadType,
                                static_cast<uint32_t>(payload.size()),
                                payload,
                                qvinspect::Delivery::NotKept,
                                {},
                                qvinspect::factsOf(message, qv::sei::Context(qv::Codec::Hevc))});
    }
    add(UnitState::Typed, type, 10).sei = std::make_shared<const qvinspect::SeiUnit>(std::move(sei));
    return *this;
}

qvinspect::AccessUnitView MadeAccessUnit::view(uint64_t number) const {
    return viewOf(number, accessUnit, report, details);
}

}  // namespace qv_test
