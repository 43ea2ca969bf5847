#include "StandardComparison.h"

#include <cstring>
#include <iterator>
#include <limits>
#include <memory>
#include <utility>

#include "bitstream/avc/ScalingFactors.h"
#include "bitstream/avc/Sps.h"
#include "bitstream/hevc/Sps.h"
#include "bitstream/syntax/Trace.h"
#include "bitstream/units/Rbsp.h"

namespace qv_test {

namespace {

qv::Bytes viewOf(const Bytes& bytes) {
    return {bytes.data(), bytes.size()};
}

Bytes unescaped(const Bytes& unit, size_t headerBytes) {
    Bytes out(unit.size());
    out.resize(qv::unescape(viewOf(unit), headerBytes, out.data(), out.size()));
    return out;
}

Bytes escaped(const Bytes& unit, size_t headerBytes) {
    Bytes out(qv::mostEscapedSize(unit.size()));
    out.resize(qv::escape(viewOf(unit), headerBytes, out.data(), out.size()));
    return out;
}

// The elements of a parameter set as the standard reads them, up to the last one that the player's library
// reads or to the first fault.
class StandardElements : public qv::TraceVisitor {
public:
    explicit StandardElements(const char* last) : last_(last) {}

    void element(const qv::TracedElement& element) override {
        if (!isComplete()) {
            elements_.emplace(qv::textOf(element.element), element);
        }
    }

    // The last element was read.
    bool isComplete() const { return has(last_); }
    bool has(const std::string& name) const { return elements_.count(name) != 0; }

    int64_t value(const std::string& name) const { return elements_.at(name).value; }
    uint64_t beginOf(const std::string& name) const { return elements_.at(name).firstBit; }
    uint64_t endOf(const std::string& name) const { return beginOf(name) + elements_.at(name).width; }

    // 0 for an element that is not present.
    int64_t valueOrZero(const std::string& name) const { return has(name) ? value(name) : 0; }

private:
    std::string last_;
    std::map<std::string, qv::TracedElement> elements_;
};

// From a bit on, the player's library reads something else.
struct Disturbance {
    std::string tag;
    uint64_t from;
};

// A value that the player's library has on purpose instead of the standard's.
struct Departure {
    std::string tag;
    int64_t value;
};

class Comparer {
public:
    explicit Comparer(const StandardElements& elements) : elements_(elements) {}

    void disturb(const std::string& tag, uint64_t from) { disturbances_.push_back({tag, from}); }

    // A value that depends on elements up to a bit. Where it departs, it has exactly the value of the
    // departure.
    void compare(const std::string& name, uint64_t end, int64_t actual, int64_t expected,
                 const Departure& departure = {}) {
        ++result.fieldsCompared;
        if (actual == expected) {
            return;
        }
        const std::string disturbance = disturbanceBefore(end);
        if (!disturbance.empty()) {
            ++result.tags[disturbance];
        } else if (!departure.tag.empty() && actual == departure.value) {
            ++result.tags[departure.tag];
        } else {
            result.unexplained.push_back(name + " is " + std::to_string(actual) + ", by the standard " +
                                         std::to_string(expected));
        }
    }

    // An element as it is, or with what is added to it.
    void element(const std::string& name, int64_t actual, int64_t added = 0) {
        if (elements_.has(name)) {
            compare(name, elements_.endOf(name), actual, low32(elements_.value(name) + added));
        }
    }

    // An element with a value inferred where it is not present, which the next element shows.
    void elementOr(const std::string& name, const std::string& next, int64_t actual, int64_t inferred,
                   int64_t added = 0) {
        if (elements_.has(name)) {
            element(name, actual, added);
        } else if (elements_.has(next)) {
            compare(name, elements_.endOf(next), actual, inferred);
        }
    }

    // Accepted by one reading and refused by the other. The standard's verdict falls at a bit; tag explains
    // it where no disturbance does.
    void verdict(const std::string& what, uint64_t bit, const std::string& tag) {
        const std::string disturbance = disturbanceBefore(bit + 1);
        if (!disturbance.empty()) {
            ++result.tags[disturbance];
        } else if (!tag.empty()) {
            ++result.tags[tag];
        } else {
            result.unexplained.push_back(what);
        }
    }

    // Records have 32 bits for values of ue(v) up to 2^32 - 2.
    static int64_t low32(int64_t value) { return static_cast<int32_t>(static_cast<uint32_t>(value)); }

    StandardComparison result;

private:
    std::string disturbanceBefore(uint64_t end) const {
        const Disturbance* first = nullptr;
        for (const Disturbance& each : disturbances_) {
            if (each.from < end && (first == nullptr || each.from < first->from)) {
                first = &each;
            }
        }
        return first != nullptr ? first->tag : "";
    }

    const StandardElements& elements_;
    std::vector<Disturbance> disturbances_;
};

// A size by the standard, and the 32 bits of it that the player's library keeps (D10). No value is right for
// a picture without samples.
void compareSize(Comparer& comparer, const std::string& name, uint64_t end, int64_t actual, int64_t size) {
    const bool isLegal = size > 0 && size <= std::numeric_limits<int32_t>::max();
    comparer.compare(name, end, actual, isLegal ? size : std::numeric_limits<int64_t>::min(),
                     {"D10", Comparer::low32(size)});
}

// --- H.264 ---

constexpr const char* kAvcLast = "vui_parameters_present_flag";

// PicWidthInMbs and FrameHeightInMbs are at most Sqrt( 8 * MaxFS ), 1055 at level 6.2 (A.3.1): the player's
// library refuses sizes that are far beyond, the standard's library leaves levels to its user.
bool isSizeOfNoLevel(const StandardElements& elements) {
    return elements.valueOrZero("pic_width_in_mbs_minus1") >= 1055 ||
           elements.valueOrZero("pic_height_in_map_units_minus1") >= 1055;
}

// The header as that of a sequence parameter set, when it is not.
Bytes withAvcHeader(Bytes rbsp) {
    if ((rbsp[0] & 0x80) != 0 || (rbsp[0] & 0x1F) != 7) {
        rbsp[0] = 0x67;
    }
    return rbsp;
}

void disturbAvc(Comparer& comparer, const StandardElements& elements, const Bytes& unit, AvcInput input) {
    const size_t escape = qv::findEmulationPrevention(viewOf(unit), 1, 1);
    if (input == AvcInput::Unit && escape < unit.size()) {
        comparer.disturb("D06", 8 * escape);
    }
    if (elements.has("seq_parameter_set_id")) {
        const int64_t profile_idc = elements.value("profile_idc");
        if (profile_idc == 134 || profile_idc == 135 || profile_idc == 139 || profile_idc == 144) {
            comparer.disturb("D07", elements.endOf("seq_parameter_set_id"));
        }
    }
}

// The tag of a parameter set that the standard refuses.
std::string tagOfAvcFault(const qv::Fault& fault) {
    switch (fault.kind) {
        case qv::FaultKind::EndOfData:
            return "D39";
        case qv::FaultKind::CodeTooLong:
            return "D05";
        case qv::FaultKind::OutOfRange:
            return std::string(fault.element.name) == "delta_scale" ? "D09" : "";
        default:
            return "";
    }
}

// The tag of one that the standard allows and the player's library refuses.
std::string tagOfAvcRefusal(const StandardElements& elements) {
    if (elements.valueOrZero("separate_colour_plane_flag") == 1) {
        return "D11";
    }
    return elements.valueOrZero("bit_depth_luma_minus8") != elements.valueOrZero("bit_depth_chroma_minus8")
               ? "D31"
               : "";
}

void compareAvcHead(Comparer& comparer, const StandardElements& elements, const QVAvcSps& sps) {
    comparer.element("profile_idc", sps.profile_idc);
    int64_t flags = 0;
    for (int i = 0; i < 6; ++i) {
        flags |= elements.valueOrZero("constraint_set" + std::to_string(i) + "_flag") << i;
    }
    if (elements.has("constraint_set5_flag")) {
        comparer.compare("constraint_set_flags", elements.endOf("constraint_set5_flag"),
                         sps.constraint_set_flags, flags);
    }
    comparer.element("level_idc", sps.level_idc);
    comparer.element("seq_parameter_set_id", sps.sps_id);
    const std::string next = "log2_max_frame_num_minus4";
    comparer.elementOr("chroma_format_idc", next, sps.chroma_format_idc, 1);
    comparer.element("separate_colour_plane_flag", sps.residual_color_transform_flag);
    comparer.elementOr("bit_depth_luma_minus8", next, sps.bit_depth_luma, 8, 8);
    comparer.elementOr("bit_depth_chroma_minus8", next, sps.bit_depth_chroma, 8, 8);
    comparer.element("qpprime_y_zero_transform_bypass_flag", sps.transform_bypass);
    if (elements.has("seq_scaling_matrix_present_flag")) {
        comparer.compare("scaling_matrix_present", elements.endOf("seq_scaling_matrix_present_flag"),
                         sps.scaling_matrix_present, elements.value("seq_scaling_matrix_present_flag"),
                         {"D33", 0});
    }
}

// A list, by the first entry that differs.
template <size_t size>
void compareList(Comparer& comparer, const std::string& name, uint64_t end, const uint8_t (&actual)[size],
                 const uint8_t (&expected)[size]) {
    size_t i = 0;
    while (i + 1 < size && actual[i] == expected[i]) {
        ++i;
    }
    comparer.compare(name + "[" + std::to_string(i) + "]", end, actual[i], expected[i]);
}

// The lists that pictures of this chroma format use.
void compareAvcMatrices(Comparer& comparer, const StandardElements& elements, const QVAvcSps& sps,
                        const qv::avc::SpsData& standard) {
    const std::string next = "log2_max_frame_num_minus4";
    if (!elements.has(next)) {
        return;
    }
    const qv::avc::ScalingFactors factors = qv::avc::scalingFactorsOf(standard);
    for (size_t i = 0; i < 6; ++i) {
        compareList(comparer, "scaling_matrix4[" + std::to_string(i) + "]", elements.endOf(next),
                    sps.scaling_matrix4[i], factors.list4x4[i]);
    }
    const size_t indexOf[] = {0, 3, 1, 4, 2, 5};
    const size_t used = standard.chroma_format_idc == 3 ? 6 : 2;
    for (size_t i = 0; i < used; ++i) {
        compareList(comparer, "scaling_matrix8[" + std::to_string(indexOf[i]) + "]", elements.endOf(next),
                    sps.scaling_matrix8[indexOf[i]], factors.list8x8[i]);
    }
}

void compareAvcPoc(Comparer& comparer, const StandardElements& elements, const QVAvcSps& sps) {
    comparer.element("log2_max_frame_num_minus4", sps.log2_max_frame_num, 4);
    comparer.element("pic_order_cnt_type", sps.poc_type);
    comparer.element("log2_max_pic_order_cnt_lsb_minus4", sps.log2_max_poc_lsb, 4);
    comparer.element("delta_pic_order_always_zero_flag", sps.delta_pic_order_always_zero_flag);
    comparer.element("offset_for_non_ref_pic", sps.offset_for_non_ref_pic);
    comparer.element("offset_for_top_to_bottom_field", sps.offset_for_top_to_bottom_field);
    comparer.element("num_ref_frames_in_pic_order_cnt_cycle", sps.poc_cycle_length);
    for (size_t i = 0; i < std::size(sps.offset_for_ref_frame); ++i) {
        const std::string name = "offset_for_ref_frame[" + std::to_string(i) + "]";
        if (!elements.has(name)) {
            break;
        }
        const int64_t offset = elements.value(name);
        comparer.compare(name, elements.endOf(name), sps.offset_for_ref_frame[i], offset,
                         {"D08", static_cast<int8_t>(offset)});
    }
}

void compareAvcPicture(Comparer& comparer, const QVAvcSps& sps) {
    comparer.element("max_num_ref_frames", sps.ref_frame_count);
    comparer.element("gaps_in_frame_num_value_allowed_flag", sps.gaps_in_frame_num_allowed_flag);
    comparer.element("pic_width_in_mbs_minus1", sps.mb_width, 1);
    comparer.element("pic_height_in_map_units_minus1", sps.mb_height, 1);
    comparer.element("frame_mbs_only_flag", sps.frame_mbs_only_flag);
    comparer.elementOr("mb_adaptive_frame_field_flag", "direct_8x8_inference_flag", sps.mb_aff, 0);
    comparer.element("direct_8x8_inference_flag", sps.direct_8x8_inference_flag);
    comparer.element("frame_cropping_flag", sps.crop);
    comparer.elementOr("frame_crop_left_offset", kAvcLast, sps.crop_left, 0);
    comparer.elementOr("frame_crop_right_offset", kAvcLast, sps.crop_right, 0);
    comparer.elementOr("frame_crop_top_offset", kAvcLast, sps.crop_top, 0);
    comparer.elementOr("frame_crop_bottom_offset", kAvcLast, sps.crop_bottom, 0);
    comparer.element(kAvcLast, sps.vui_parameters_present_flag);
}

// (7-13) to (7-22)
void compareAvcSize(Comparer& comparer, const StandardElements& elements, const QVAvcSps& sps) {
    if (!elements.isComplete()) {
        return;
    }
    const int64_t chroma = elements.has("chroma_format_idc") ? elements.value("chroma_format_idc") : 1;
    const int64_t fields = 2 - elements.value("frame_mbs_only_flag");
    const int64_t cropUnitX = chroma == 1 || chroma == 2 ? 2 : 1;
    const int64_t cropUnitY = (chroma == 1 ? 2 : 1) * fields;
    const int64_t columns =
        elements.valueOrZero("frame_crop_left_offset") + elements.valueOrZero("frame_crop_right_offset");
    const int64_t rows =
        elements.valueOrZero("frame_crop_top_offset") + elements.valueOrZero("frame_crop_bottom_offset");
    const uint64_t end = elements.beginOf(kAvcLast);
    compareSize(comparer, "width", end, sps.width,
                16 * (elements.value("pic_width_in_mbs_minus1") + 1) - cropUnitX * columns);
    compareSize(comparer, "height", end, sps.height,
                16 * fields * (elements.value("pic_height_in_map_units_minus1") + 1) - cropUnitY * rows);
}

// --- H.265 ---

constexpr const char* kHevcLast = "sps_sub_layer_ordering_info_present_flag";

Bytes withHevcHeader(Bytes rbsp) {
    rbsp[0] = static_cast<uint8_t>(33 << 1 | (rbsp[0] & 1));
    if ((rbsp[1] & 7) == 0) {
        rbsp[1] = static_cast<uint8_t>(rbsp[1] | 1);
    }
    return rbsp;
}

void disturbHevc(Comparer& comparer, const StandardElements& elements, const Bytes& unit) {
    if (unit.size() > 2 && unit[0] == 0 && unit[1] == 0 && unit[2] == 3) {
        comparer.disturb("D03", 16);
    }
    const std::string name = "sps_ext_or_max_sub_layers_minus1";
    if (elements.has(name) && elements.value(name) == 7) {  // MultiLayerExtSpsFlag
        comparer.disturb("D30", elements.beginOf(name));
    }
}

std::string tagOfHevcFault(const qv::Fault& fault) {
    switch (fault.kind) {
        case qv::FaultKind::EndOfData:
            return "D39";
        case qv::FaultKind::CodeTooLong:
            return "D05";
        case qv::FaultKind::OutOfRange:
            return "D12";
        default:
            return "";
    }
}

void compareHevcHead(Comparer& comparer, const QVHevcSps& sps) {
    comparer.element("sps_video_parameter_set_id", sps.sps_video_parameter_set_id);
    comparer.element("sps_max_sub_layers_minus1", sps.sps_max_sub_layers_minus1);
    comparer.element("sps_ext_or_max_sub_layers_minus1", sps.sps_max_sub_layers_minus1);
    comparer.element("sps_temporal_id_nesting_flag", sps.sps_temporal_id_nesting_flag);
    comparer.element("sps_seq_parameter_set_id", sps.sps_seq_parameter_set_id);
    comparer.element("chroma_format_idc", sps.chroma_format_idc);
    comparer.elementOr("separate_colour_plane_flag", "pic_width_in_luma_samples",
                       sps.separate_colour_plane_flag, 0);
    comparer.element("pic_width_in_luma_samples", sps.pic_width_in_luma_samples);
    comparer.element("pic_height_in_luma_samples", sps.pic_height_in_luma_samples);
    comparer.element("conformance_window_flag", sps.conformance_window_flag);
    comparer.element("conf_win_left_offset", sps.conf_win_left_offset);
    comparer.element("conf_win_right_offset", sps.conf_win_right_offset);
    comparer.element("conf_win_top_offset", sps.conf_win_top_offset);
    comparer.element("conf_win_bottom_offset", sps.conf_win_bottom_offset);
    comparer.element("bit_depth_luma_minus8", sps.bit_depth_luma_minus8);
    comparer.element("bit_depth_chroma_minus8", sps.bit_depth_chroma_minus8);
    comparer.element("log2_max_pic_order_cnt_lsb_minus4", sps.log2_max_pic_order_cnt_lsb_minus4);
    comparer.element(kHevcLast, sps.sps_sub_layer_ordering_info_present_flag);
}

// The conformance window, 7.4.3.2.1 and Table 6-1.
void compareHevcSize(Comparer& comparer, const StandardElements& elements, const QVHevcSps& sps) {
    const std::string next = "bit_depth_luma_minus8";
    if (!elements.has(next)) {
        return;
    }
    const int64_t chroma = elements.value("chroma_format_idc");
    const int64_t SubWidthC = chroma == 1 || chroma == 2 ? 2 : 1;
    const int64_t SubHeightC = chroma == 1 ? 2 : 1;
    const int64_t columns =
        elements.valueOrZero("conf_win_left_offset") + elements.valueOrZero("conf_win_right_offset");
    const int64_t rows =
        elements.valueOrZero("conf_win_top_offset") + elements.valueOrZero("conf_win_bottom_offset");
    compareSize(comparer, "display_width", elements.beginOf(next), sps.display_width,
                elements.value("pic_width_in_luma_samples") - SubWidthC * columns);
    compareSize(comparer, "display_height", elements.beginOf(next), sps.display_height,
                elements.value("pic_height_in_luma_samples") - SubHeightC * rows);
}

}  // namespace

StandardComparison compareAvcSps(const Bytes& unit, AvcInput input) {
    const Bytes parsed = input == AvcInput::Unit ? unit : unescaped(unit, 1);
    QVAvcSps sps = {};
    const bool isAccepted = parseAvcSps(&sps, std::make_shared<QVByteStream>(parsed.data(), parsed.size()));
    return compareAvcSps(unit, input, isAccepted, sps);
}

StandardComparison compareHevcSps(const Bytes& unit) {
    QVHevcSps sps = {};
    const bool isAccepted = parseHevcSps(&sps, std::make_shared<QVByteStream>(unit.data(), unit.size()));
    return compareHevcSps(unit, isAccepted, sps);
}

StandardComparison compareAvcSps(const Bytes& unit, AvcInput input, bool isAccepted, const QVAvcSps& sps) {
    StandardElements elements(kAvcLast);
    const Bytes rbsp = unescaped(unit, 1);
    const qv::Read<qv::avc::Sps> standard =
        qv::avc::traceSps(viewOf(escaped(withAvcHeader(rbsp), 1)), elements);
    const bool hasHeader = withAvcHeader(rbsp) == rbsp;

    Comparer comparer(elements);
    disturbAvc(comparer, elements, unit, input);
    if (isAccepted && !hasHeader) {
        comparer.verdict("another unit is accepted", 0, "D40");
    }
    if (isAccepted && !elements.isComplete()) {
        comparer.verdict("accepted despite " + qv::textOf(standard.fault), standard.fault.firstBit,
                         tagOfAvcFault(standard.fault));
    }
    if (!isAccepted && elements.isComplete() && !isSizeOfNoLevel(elements)) {
        comparer.verdict("refused", elements.beginOf(kAvcLast), tagOfAvcRefusal(elements));
    }
    if (isAccepted) {
        compareAvcHead(comparer, elements, sps);
        compareAvcMatrices(comparer, elements, sps, standard.record.data);
        compareAvcPoc(comparer, elements, sps);
        compareAvcPicture(comparer, sps);
        compareAvcSize(comparer, elements, sps);
    }
    return std::move(comparer.result);
}

StandardComparison compareHevcSps(const Bytes& unit, bool isAccepted, const QVHevcSps& sps) {
    StandardElements elements(kHevcLast);
    const Bytes rbsp = unescaped(unit, 2);
    const Bytes proper = rbsp.size() >= 2 ? withHevcHeader(rbsp) : rbsp;
    const qv::Read<qv::hevc::Sps> standard = qv::hevc::traceSps(viewOf(escaped(proper, 2)), elements);

    Comparer comparer(elements);
    disturbHevc(comparer, elements, unit);
    if (!isAccepted) {
        comparer.verdict("refused", 0, "");
        return std::move(comparer.result);
    }
    if (proper != rbsp) {
        comparer.verdict("another unit is accepted", 0, "D40");
    }
    // With MultiLayerExtSpsFlag the last element of the head is not present.
    if (!elements.isComplete() && standard.fault) {
        comparer.verdict("accepted despite " + qv::textOf(standard.fault), standard.fault.firstBit,
                         tagOfHevcFault(standard.fault));
    }
    compareHevcHead(comparer, sps);
    compareHevcSize(comparer, elements, sps);
    return std::move(comparer.result);
}

}  // namespace qv_test
