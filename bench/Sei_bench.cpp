// The standards' library: every message of the SEI units of an access unit, and payloads that are located.
#include <benchmark/benchmark.h>

#include <cstring>
#include <memory>
#include <utility>

#include "Groups.h"
#include "Measure.h"
#include "Peers.h"
#include "Units.h"
#include "bitstream/avc/ParameterSets.h"
#include "bitstream/hevc/ParameterSets.h"
#include "bitstream/sei/ActiveParameterSets.h"
#include "bitstream/sei/ColourVolume.h"
#include "bitstream/sei/RandomAccess.h"
#include "bitstream/sei/SeiMessages.h"
#include "bitstream/sei/SeiPayload.h"
#include "bitstream/sei/Timing.h"
#include "bitstream/sei/UserData.h"
#include "bitstream/units/Rbsp.h"

namespace qv_bench {

namespace {

using qv::SeiMessage;
using qv::SeiMessages;
using qv::sei::Context;

qv::Bytes borrowed(const Bytes& bytes) {
    return {bytes.data(), bytes.size()};
}

// An SEI unit that is put together message by message.
class UnitOfMessages {
public:
    UnitOfMessages(Bytes header, const Context& context)
        : unit_(std::move(header)), headerBytes_(unit_.size()), context_(context) {}

    template <class Payload>
    UnitOfMessages& add(const Payload& payload) {
        std::vector<uint8_t> bytes;
        require(qv::sei::writePayload(payload, context_, bytes).ok(), "a payload");
        return add(Payload::kPayloadTypes.of(context_.codec), bytes);
    }

    UnitOfMessages& add(uint32_t payloadType, const std::vector<uint8_t>& payload) {
        unit_.push_back(static_cast<uint8_t>(payloadType));
        size_t size = payload.size();
        for (; size >= 0xFF; size -= 0xFF) {
            unit_.push_back(0xFF);
        }
        unit_.push_back(static_cast<uint8_t>(size));
        unit_.insert(unit_.end(), payload.begin(), payload.end());
        return *this;
    }

    Bytes coded() const {
        Bytes rbsp = unit_;
        rbsp.push_back(0x80);
        Bytes unit(qv::mostEscapedSize(rbsp.size()));
        unit.resize(qv::escape(borrowed(rbsp), headerBytes_, unit.data(), unit.size()));
        return unit;
    }

private:
    Bytes unit_;
    size_t headerBytes_;
    Context context_;
};

// user_data_registered_itu_t_t35() with captions of a picture of 60 Hz: 10 constructs.
std::vector<uint8_t> captions() {
    std::vector<uint8_t> bytes = {0xB5, 0x00, 0x31, 'G', 'A', '9', '4', 0x03, 0xCA, 0xFF};
    for (int i = 0; i < 10; ++i) {
        bytes.insert(bytes.end(), {0xFE, 0x20, 0x41});
    }
    bytes.push_back(0xFF);
    return bytes;
}

template <class Payload>
uint64_t read(const SeiMessage& message, const Context& context) {
    const auto payload = qv::sei::readPayload<Payload>(message, context);
    benchmark::DoNotOptimize(payload.record);
    return payload.ok() ? 1 : 0;
}

uint64_t readAvc(const SeiMessage& message, const Context& context) {
    using namespace qv::sei;
    switch (message.payloadType) {
        case AvcBufferingPeriod::kPayloadTypes.avc:
            return read<AvcBufferingPeriod>(message, context);
        case AvcPicTiming::kPayloadTypes.avc:
            return read<AvcPicTiming>(message, context);
        case UserDataRegistered::kPayloadTypes.avc:
            return read<UserDataRegistered>(message, context);
        case UserDataUnregistered::kPayloadTypes.avc:
            return read<UserDataUnregistered>(message, context);
        case AvcRecoveryPoint::kPayloadTypes.avc:
            return read<AvcRecoveryPoint>(message, context);
        case MasteringDisplayColourVolume::kPayloadTypes.avc:
            return read<MasteringDisplayColourVolume>(message, context);
        default:
            return 0;
    }
}

uint64_t readHevc(const SeiMessage& message, const Context& context) {
    using namespace qv::sei;
    switch (message.payloadType) {
        case HevcBufferingPeriod::kPayloadTypes.hevc:
            return read<HevcBufferingPeriod>(message, context);
        case HevcPicTiming::kPayloadTypes.hevc:
            return read<HevcPicTiming>(message, context);
        case UserDataRegistered::kPayloadTypes.hevc:
            return read<UserDataRegistered>(message, context);
        case ActiveParameterSets::kPayloadTypes.hevc:
            return read<ActiveParameterSets>(message, context);
        case MasteringDisplayColourVolume::kPayloadTypes.hevc:
            return read<MasteringDisplayColourVolume>(message, context);
        case ContentLightLevelInfo::kPayloadTypes.hevc:
            return read<ContentLightLevelInfo>(message, context);
        default:
            return 0;
    }
}

// Every message of a unit, read into its record; how many of them have no fault.
template <class ReadMessage>
uint64_t readAll(const Bytes& unit, Context context, const ReadMessage& readMessage) {
    uint64_t count = 0;
    for (const SeiMessage& message : SeiMessages(borrowed(unit), context.codec)) {
        context.take(message);
        count += readMessage(message, context);
    }
    return count;
}

template <class ReadMessage>
Rows messages(const std::string& name, uint64_t count, const Bytes& unit, const Context& context,
              const ReadMessage& readMessage, const std::function<int()>& peer) {
    require(readAll(unit, context, readMessage) == count, name.c_str());
    Operation operation = {name, [=] { benchmark::DoNotOptimize(readAll(unit, context, readMessage)); }};
    operation.costs = {{"unit"}};
    if (peer) {
        require(peer() == static_cast<int>(count), "GStreamer's parser");
        operation.yardsticks = {
            {"GStreamer's parser", [peer] { benchmark::DoNotOptimize(peer()); }, atLeast(10)}};
    }
    return {{operation}};
}

qv::sei::AvcBufferingPeriod avcBufferingPeriod() {
    qv::sei::AvcBufferingPeriod period = {};
    period.nal.count = 1;
    period.nal.initial_cpb_removal_delay[0] = 45000;
    period.nal.initial_cpb_removal_delay_offset[0] = 45000;
    return period;
}

qv::sei::HevcBufferingPeriod hevcBufferingPeriod() {
    qv::sei::HevcBufferingPeriod period = {};
    period.nal.count = 1;
    period.nal.initial_cpb_removal_delay[0] = 45000;
    period.nal.initial_cpb_removal_offset[0] = 45000;
    return period;
}

qv::sei::MasteringDisplayColourVolume masteringDisplay() {
    qv::sei::MasteringDisplayColourVolume display = {};
    constexpr uint16_t kX[] = {13250, 7500, 34000};
    constexpr uint16_t kY[] = {34500, 3000, 16000};
    for (int c = 0; c < 3; ++c) {
        display.display_primaries_x[c] = kX[c];
        display.display_primaries_y[c] = kY[c];
    }
    display.white_point_x = 15635;
    display.white_point_y = 16450;
    display.max_display_mastering_luminance = 10000000;
    display.min_display_mastering_luminance = 50;
    return display;
}

Rows avcMessages(int count) {
    static const auto sets = [] {
        auto made = std::make_shared<qv::avc::ParameterSets>();
        made->take(borrowed(avcWholeSpsUnit()));
        return made;
    }();
    const Context context(*sets);
    UnitOfMessages unit({0x06}, context);
    qv::sei::AvcPicTiming timing = {};
    timing.cpb_removal_delay = 3;
    timing.dpb_output_delay = 4;
    timing.NumClockTS = 1;
    if (count == 1) {
        unit.add(timing);
    } else {
        unit.add(avcBufferingPeriod()).add(timing).add(4, captions());
    }
    if (count == 6) {
        unit.add(5, std::vector<uint8_t>(100, 0x2A)).add(qv::sei::AvcRecoveryPoint{}).add(masteringDisplay());
    }
    const Bytes coded = unit.coded();
    const std::string name =
        "H.264, SEI unit of " + std::to_string(count) + (count == 1 ? " message" : " messages");
    return messages(name, static_cast<uint64_t>(count), coded, context, readAvc,
                    gstreamerAvcSei(coded, avcWholeSpsUnit()));
}

Rows hevcMessages(int count) {
    static const auto sets = [] {
        auto made = std::make_shared<qv::hevc::ParameterSets>();
        made->take(borrowed(hevcVpsUnit()));
        made->take(borrowed(hevcHrdSpsUnit()));
        return made;
    }();
    const Context context(*sets);
    UnitOfMessages unit({0x4E, 0x01}, context);
    qv::sei::HevcPicTiming timing = {};
    timing.source_scan_type = 1;
    timing.au_cpb_removal_delay_minus1 = 3;
    timing.pic_dpb_output_delay = 4;
    if (count == 1) {
        unit.add(timing);
    } else {
        unit.add(hevcBufferingPeriod()).add(timing).add(4, captions());
    }
    if (count == 6) {
        qv::sei::ContentLightLevelInfo light = {};
        light.max_content_light_level = 1000;
        unit.add(masteringDisplay()).add(light).add(129, {0x03});
    }
    const Bytes coded = unit.coded();
    const std::string name =
        "H.265, SEI unit of " + std::to_string(count) + (count == 1 ? " message" : " messages");
    return messages(name, static_cast<uint64_t>(count), coded, context, readHevc,
                    gstreamerHevcSei(coded, hevcHrdSpsUnit()));
}

// user_data_unregistered() of 64 KB, which is located and not copied.
Rows locatedPayload() {
    constexpr size_t kPayload = size_t{64} << 10;
    const Context context(qv::Codec::Avc);
    std::vector<uint8_t> payload(kPayload);
    uint32_t state = 1;
    for (uint8_t& byte : payload) {
        state = 1664525 * state + 1013904223;
        byte = static_cast<uint8_t>(state >> 24);
    }
    const Bytes unit = UnitOfMessages({0x06}, context).add(5, payload).coded();
    const auto locate = [=] {
        uint64_t bytes = 0;
        for (const SeiMessage& message : SeiMessages(borrowed(unit), qv::Codec::Avc)) {
            bytes += message.rbspPayloadSize;
        }
        return bytes;
    };
    require(locate() == kPayload, "the payload of 64 KB");
    const auto copy = std::make_shared<Bytes>(unit.size());
    Operation operation = {"user_data_unregistered of 64 KB, located",
                           [=] { benchmark::DoNotOptimize(locate()); }};
    operation.costs = {{"call"}};
    operation.yardsticks = {{"memcpy",
                             [=] {
                                 std::memcpy(copy->data(), unit.data(), unit.size());
                                 benchmark::ClobberMemory();
                             },
                             atLeast(0.5)}};
    return {{operation}};
}

}  // namespace

std::vector<Group> messageGroups() {
    std::vector<Group> groups;
    for (const int count : {1, 3, 6}) {
        groups.push_back({"messages", [=] { return avcMessages(count); }});
        groups.push_back({"messages", [=] { return hevcMessages(count); }});
    }
    groups.push_back({"messages", locatedPayload});
    return groups;
}

}  // namespace qv_bench
