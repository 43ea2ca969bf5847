#include "analysis/SeiBlocks.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "analysis/ElementMeaning.h"
#include "analysis/SeiTypes.h"
#include "bitstream/sei/SeiPayload.h"
#include "bitstream/sei/T35.h"
#include "bitstream/sei/UserData.h"
#include "bitstream/sei/UserDataText.h"
#include "input/Budgets.h"

namespace qvinspect {

namespace {

// Elements that are the bytes of something without a syntax of its own, shown as bytes elsewhere, and the
// bits that fill up the last byte of a payload.
constexpr std::string_view kLeftOut[] = {"itu_t_t35_payload_byte",
                                         "user_data_payload_byte",
                                         "reserved_sei_message_payload_byte",
                                         "ff_byte",
                                         "bit_equal_to_one",
                                         "bit_equal_to_zero",
                                         "payload_bit_equal_to_one",
                                         "payload_bit_equal_to_zero"};

// Elements that are the bytes of one value.
constexpr std::string_view kBytes[] = {"uuid_iso_iec_11578", "picture_md5"};

// Elements that are written in hexadecimal.
struct Hexadecimal {
    std::string_view name;
    int digits;
};

constexpr Hexadecimal kHexadecimal[] = {
    {"itu_t_t35_country_code", 2},
    {"itu_t_t35_country_code_extension_byte", 2},
    {"itu_t_t35_terminal_provider_code", 4},
    {"user_identifier", 8},
};

int hexDigitsOf(std::string_view name) {
    const auto* const entry = std::find_if(std::begin(kHexadecimal), std::end(kHexadecimal),
                                           [&](const Hexadecimal& row) { return row.name == name; });
    return entry != std::end(kHexadecimal) ? entry->digits : 0;
}

// RFC 4122: a UUID has a hyphen before these bytes.
bool hasHyphen(const qv::Element& element) {
    const uint32_t byte = element.subscripts[0];
    return std::string_view(element.name) == "uuid_iso_iec_11578" && byte % 2 == 0 && byte >= 4 && byte <= 10;
}

template <size_t N>
bool isOneOf(std::string_view name, const std::string_view (&names)[N]) {
    return std::find(std::begin(names), std::end(names), name) != std::end(names);
}

// A code in steps of a unit.
struct Scale {
    std::string_view name;
    double perUnit;
    int decimals;
    const char* unit;
};

constexpr double kChromaticity = 50000;  // H.264 D.2.29, H.265 D.3.28: steps of 0.00002
constexpr double kLuminance = 10000;     // steps of 0.0001 cd/m2
constexpr double kClock = 90000;         // H.264 D.2.2, H.265 D.3.2: 90 kHz
constexpr double kRotation = 65536 / 360.0;

constexpr Scale kScales[] = {
    {"initial_cpb_removal_delay", kClock, 6, "s"},
    {"initial_cpb_removal_offset", kClock, 6, "s"},
    {"initial_cpb_removal_delay_offset", kClock, 6, "s"},
    {"nal_initial_cpb_removal_delay", kClock, 6, "s"},
    {"nal_initial_cpb_removal_offset", kClock, 6, "s"},
    {"vcl_initial_cpb_removal_delay", kClock, 6, "s"},
    {"vcl_initial_cpb_removal_offset", kClock, 6, "s"},
    {"display_primaries_x", kChromaticity, 5, ""},
    {"display_primaries_y", kChromaticity, 5, ""},
    {"white_point_x", kChromaticity, 5, ""},
    {"white_point_y", kChromaticity, 5, ""},
    {"max_display_mastering_luminance", kLuminance, 4, "cd/m2"},
    {"min_display_mastering_luminance", kLuminance, 4, "cd/m2"},
    {"max_content_light_level", 1, 0, "cd/m2"},
    {"max_pic_average_light_level", 1, 0, "cd/m2"},
    {"ambient_illuminance", kLuminance, 4, "lux"},
    {"ambient_light_x", kChromaticity, 5, ""},
    {"ambient_light_y", kChromaticity, 5, ""},
    {"anticlockwise_rotation", kRotation, 3, "degrees"},
};

const Scale* scaleOf(std::string_view name) {
    const auto* const scale = std::find_if(std::begin(kScales), std::end(kScales),
                                           [&](const Scale& entry) { return entry.name == name; });
    return scale != std::end(kScales) ? scale : nullptr;
}

class Fields : public qv::TraceVisitor {
public:
    Fields(QVCodecID codec, size_t& count, Block& block) : codec_(codec), count_(count), block_(block) {}

    void element(const qv::TracedElement& traced) override {
        const std::string_view name = traced.element.name;
        if (isOneOf(name, kLeftOut)) {
            return;
        }
        if (isOneOf(name, kBytes)) {
            addByte(traced);
            return;
        }
        add(traced, name);
    }

private:
    bool isFull() {
        if (count_ == kMostSeiFields) {
            block_.add("further elements", "left out", "see --elements");
        }
        return ++count_ > kMostSeiFields;
    }

    void add(const qv::TracedElement& traced, std::string_view name) {
        if (isFull()) {
            return;
        }
        if (const Scale* const scale = scaleOf(name)) {
            const double value = static_cast<double>(traced.value) / scale->perUnit;
            const std::string unit = *scale->unit == '\0' ? "" : std::string(" ") + scale->unit;
            block_
                .add(qv::textOf(traced.element), traced.value,
                     fmt::format("{:.{}f}{}", value, scale->decimals, unit))
                .derive({value}, scale->unit);
            return;
        }
        block_.add(qv::textOf(traced.element), traced.value, elementMeaning(codec_, traced)).hexDigits =
            hexDigitsOf(name);
    }

    // The subscripts but the last one, which counts the bytes, are in the name.
    void addByte(const qv::TracedElement& traced) {
        qv::Element value = traced.element;
        --value.subscriptCount;
        const std::string digits =
            fmt::format("{}{:02x}", hasHyphen(traced.element) ? "-" : "", traced.value);
        const std::string name = qv::textOf(value);
        if (!block_.fields.empty() && block_.fields.back().name == name) {
            std::get<std::string>(block_.fields.back().value) += digits;
        } else if (!isFull()) {
            block_.add(name, digits);
        }
    }

    QVCodecID codec_;
    size_t& count_;
    Block& block_;
};

// --- User data ---

std::string printable(const std::vector<uint8_t>& bytes) {
    std::string text;
    for (const uint8_t byte : bytes) {
        const bool isPrintable = byte >= 0x20 && byte < 0x7F;
        text += isPrintable ? static_cast<char>(byte) : '.';
    }
    return text;
}

void describeRegistered(const qv::SeiMessage& message, const qv::sei::Context& context, Block& block) {
    const auto read = qv::sei::readPayload<qv::sei::UserDataRegistered>(message, context);
    const qv::sei::T35 sender = qv::sei::t35Of(read.record);
    if (const qv::sei::T35OwnerName* const owner = qv::sei::t35OwnerNameOf(sender.owner)) {
        block.add("kind", owner->name, owner->source);
    } else {
        block.add("kind", "unknown", qv::sei::textOf(sender.code));
    }
}

void describeUnregistered(const qv::SeiMessage& message, const qv::sei::Context& context, Block& block) {
    const auto read = qv::sei::readPayload<qv::sei::UserDataUnregistered>(message, context);
    if (!read.ok()) {
        return;
    }
    const qv::sei::UserDataOwnerName* const owner = qv::sei::userDataOwnerOf(read.record);
    if (owner != nullptr) {
        block.add("kind", owner->name);
    }
    if (const auto stamp = qv::sei::mispTimeStampOf(read.record)) {
        block.add("time stamp", static_cast<int64_t>(stamp->time),
                  stamp->isNanoseconds ? "ns since 1970-01-01 UTC" : "us since 1970-01-01 UTC");
        return;
    }
    const std::string text = printable(qv::sei::bytesOf(read.record.user_data_payload_byte));
    if (!text.empty()) {
        block.add("user_data_payload", text);
    }
}

}  // namespace

qv::Fault describeSei(const qv::SeiMessage& message, const qv::sei::Context& context, size_t& fields,
                      Block& block) {
    const QVCodecID codec = context.codec == qv::Codec::Avc ? QVCodecIDAvc : QVCodecIDHevc;
    Fields visitor(codec, fields, block);
    const qv::Fault fault = qv::sei::traceAnyPayload(message, context, visitor);
    if (message.payloadType == kUserDataRegistered) {
        describeRegistered(message, context, block);
    } else if (message.payloadType == kUserDataUnregistered) {
        describeUnregistered(message, context, block);
    }
    return fault;
}

}  // namespace qvinspect
