#include "analysis/SeiBlocks.h"

#include <fmt/format.h>

#include <algorithm>
#include <string>
#include <utility>

#include "QVCoreStandalone.h"
#include "analysis/CoreHooks.h"
#include "analysis/HdrValues.h"
#include "analysis/Hex.h"
#include "analysis/SeiNames.h"
#include "analysis/SeiTypes.h"

namespace qvinspect {

namespace {

using Payload = std::vector<uint8_t>;

int sizeOf(const Payload& payload) {
    return static_cast<int>(payload.size());
}

// The library's reason if a payload parser refuses the payload.
void addRefusal(Block& block, const LogCapture& log) {
    block.add("refused", log.lines().empty() ? std::string("too short") : log.lines().front().text);
}

// H.265 D.3.28: in steps of 0.00002.
void addChromaticity(Block& block, const char* name, uint32_t x, uint32_t y) {
    constexpr double kSteps = 50000;
    block.add(name, FieldList{x, y}, fmt::format("x {:.5f}, y {:.5f}", x / kSteps, y / kSteps))
        .derive({x / kSteps, y / kSteps});
}

// H.265 D.3.28: in steps of 0.0001 cd/m2.
void addLuminance(Block& block, const char* name, uint32_t code) {
    const double luminance = code / 10000.0;
    block.add(name, code, fmt::format("{:.4f} cd/m2", luminance)).derive({luminance}, "cd/m2");
}

// A code and its meaning as a number with the given decimals.
void addCode(Block& block, std::string name, uint32_t code, double value, int decimals) {
    block.add(std::move(name), code, fmt::format("{:.{}f}", value, decimals)).derive({value});
}

// --- User data ---

void describeUnregistered(const Payload& payload, Block& block) {
    constexpr size_t kUuidSize = 16;
    constexpr size_t kMostText = 60;
    if (payload.size() < kUuidSize) {
        block.add("refused", "shorter than a UUID");
        return;
    }
    std::string uuid;
    for (size_t i = 0; i < kUuidSize; ++i) {
        uuid += fmt::format("{}{:02x}", i == 4 || i == 6 || i == 8 || i == 10 ? "-" : "", payload[i]);
    }
    block.add("uuid_iso_iec_11578", uuid);
    std::string text;
    for (size_t i = kUuidSize; i < payload.size() && text.size() < kMostText; ++i) {
        const bool isPrintable = payload[i] >= 0x20 && payload[i] < 0x7F;
        text += isPrintable ? static_cast<char>(payload[i]) : '.';
    }
    if (!text.empty()) {
        block.add("user_data_payload", text, payload.size() - kUuidSize > kMostText ? "cut" : "");
    }
}

// ATSC A/53 Part 4 6.2: the data after "GA94".
void describeCaptions(const Payload& payload, size_t at, Block& block) {
    constexpr uint32_t kCcData = 3;
    QVByteStream in(payload.data() + at, payload.size() - at);
    const uint32_t user_data_type_code = in.readBits(8);
    block.add("user_data_type_code", user_data_type_code, user_data_type_code == kCcData ? "cc_data" : "");
    if (user_data_type_code != kCcData) {
        return;
    }
    in.readBit();  // process_em_data_flag
    block.add("process_cc_data_flag", in.readBit());
    in.readBit();  // additional_data_flag
    block.add("cc_count", in.readBits(5));
}

void describeAfd(const Payload& payload, size_t at, Block& block) {
    QVByteStream in(payload.data() + at, payload.size() - at);
    QVAvcSeiAfd afd{};
    const LogCapture log;
    if (QVNaluParser::parserAvcRegisteredUserDataAfd(in, static_cast<int>(payload.size() - at), &afd) !=
        QVResultOk) {
        addRefusal(block, log);
    } else if (afd.isValid == 0) {
        block.add("active_format_flag", 0);
    } else {
        block.add("active_format", afd.active_format, activeFormatName(afd.active_format));
    }
}

void describePq(Block& block, const char* name, uint32_t code) {
    const double luminance = pqLuminance(code);
    block.add(name, code, fmt::format("{:.4f} cd/m2", luminance)).derive({luminance}, "cd/m2");
}

void describeBaseCurve(const QVHDRVividToneMapping& mapping, Block& block) {
    addCode(block, "base_param_m_p", mapping.base_param_m_p, qvHdrVividM_p(mapping), 5);
    addCode(block, "base_param_m_m", mapping.base_param_m_m, qvHdrVividM_m(mapping), 1);
    addCode(block, "base_param_m_a", mapping.base_param_m_a, qvHdrVividM_a(mapping), 5);
    addCode(block, "base_param_m_b", mapping.base_param_m_b, qvHdrVividM_b(mapping), 5);
    addCode(block, "base_param_m_n", mapping.base_param_m_n, qvHdrVividM_n(mapping), 1);
    block.add("base_param_K1 K2 K3",
              FieldList{mapping.base_param_K1, mapping.base_param_K2, mapping.base_param_K3});
    block.add("base_param_Delta_enable_mode", mapping.base_param_Delta_enable_mode);
    addCode(block, "base_param_enable_Delta", mapping.base_param_enable_Delta, qvHdrVividDelta(mapping), 5);
}

void describeSpline(const QVHDRVividSpline& spline, uint32_t index, Block& block) {
    const std::string name = fmt::format("3Spline[{}]", index);
    block.add(name + " TH_enable_mode", spline.TH_enable_mode);
    if (spline.has_TH_enable_MB != 0) {
        addCode(block, name + " TH_enable_MB", spline.TH_enable_MB, qvHdrVividThMb(spline), 5);
    }
    const std::vector<double> values = {qvHdrVividTh(spline), qvHdrVividThDelta1(spline),
                                        qvHdrVividThDelta2(spline), qvHdrVividStrength(spline)};
    block
        .add(name + " TH_enable, Delta1, Delta2, Strength",
             FieldList{spline.TH_enable, spline.TH_enable_Delta1, spline.TH_enable_Delta2,
                       spline.enable_Strength},
             fmt::format("{:.5f}", fmt::join(values, " ")))
        .derive(values);
}

void describeToneMapping(const QVHDRVividToneMapping& mapping, Block& block) {
    describePq(block, "targeted_system_display_maximum_luminance_pq",
               mapping.targeted_system_display_maximum_luminance_pq);
    block.add("base_enable_flag", mapping.base_enable_flag);
    if (mapping.base_enable_flag != 0) {
        describeBaseCurve(mapping, block);
    }
    block.add("3Spline_enable_flag", mapping.three_Spline_enable_flag);
    for (uint32_t i = 0; i < mapping.numSplines; ++i) {
        describeSpline(mapping.splines[i], i, block);
    }
}

void describeVivid(const Payload& payload, Block& block) {
    const auto [status, vivid] = readHdrVivid(payload);
    if (status != QVHDRVividOk) {
        block.add("refused", fmt::format("status {}", status),
                  status == QVHDRVividTruncated ? "fewer bits than the syntax requires" : "");
        return;
    }
    describePq(block, "minimum_maxrgb_pq", vivid.minimum_maxrgb_pq);
    describePq(block, "average_maxrgb_pq", vivid.average_maxrgb_pq);
    describePq(block, "variance_maxrgb_pq", vivid.variance_maxrgb_pq);
    describePq(block, "maximum_maxrgb_pq", vivid.maximum_maxrgb_pq);
    block.add("tone_mapping_enable_mode_flag", vivid.tone_mapping_enable_mode_flag);
    for (uint32_t i = 0; i < vivid.numToneMappings; ++i) {
        describeToneMapping(vivid.toneMappings[i], block);
    }
    block.add("color_saturation_mapping_enable_flag", vivid.color_saturation_mapping_enable_flag);
    for (uint32_t i = 0; i < vivid.color_saturation_enable_num; ++i) {
        const uint32_t gain = vivid.color_saturation_enable_gain[i];
        addCode(block, fmt::format("color_saturation_enable_gain[{}]", i), gain, qvHdrVividGain(gain), 5);
    }
}

const char* countryName(uint32_t itu_t_t35_country_code) {
    switch (itu_t_t35_country_code) {
        case 0xB5:
            return "United States";
        case 0x26:
            return "China";
        case 0xFF:
            return "extended";
        default:
            return "";
    }
}

void describeRegistered(const Payload& payload, Block& block) {
    if (payload.size() < 3) {
        block.add("refused", "shorter than country and provider code");
        return;
    }
    const size_t provider = payload[0] == 0xFF ? 2 : 1;
    block.addHex("itu_t_t35_country_code", payload[0], 2, countryName(payload[0]));
    if (payload.size() >= provider + 2) {
        block.addHex("itu_t_t35_provider_code", payload[provider] << 8 | payload[provider + 1], 4);
    }
    const T35Kind kind = t35Kind(payload);
    block.add("kind", t35KindName(kind));
    const size_t userData = provider + 2 + 4;
    switch (kind) {
        case T35Kind::A53Captions:
            describeCaptions(payload, userData, block);
            break;
        case T35Kind::Afd:
            describeAfd(payload, userData, block);
            break;
        case T35Kind::HdrVivid:
            describeVivid(payload, block);
            break;
        case T35Kind::Hdr10Plus:
        case T35Kind::Unknown:
            break;
    }
}

// --- Same syntax in both codecs ---

// The block names the primaries in the order of the bitstream: green, blue, red.
void describeMasteringDisplay(const Payload& payload, Block& block) {
    static constexpr const char* kNames[] = {"display_primaries[0] (G)", "display_primaries[1] (B)",
                                             "display_primaries[2] (R)"};
    const std::optional<QVHDR10StaticMetadata> read = readMasteringDisplay(payload);
    if (!read) {
        block.add("refused", "empty payload");
        return;
    }
    const QVHDR10StaticMetadata& hdr10 = *read;
    for (int c = 0; c < 3; ++c) {
        addChromaticity(block, kNames[c], hdr10.display_primaries_x[c], hdr10.display_primaries_y[c]);
    }
    addChromaticity(block, "white_point", hdr10.white_point_x, hdr10.white_point_y);
    addLuminance(block, "max_display_mastering_luminance", hdr10.max_display_mastering_luminance);
    addLuminance(block, "min_display_mastering_luminance", hdr10.min_display_mastering_luminance);
}

void describeContentLight(const Payload& payload, Block& block) {
    const QVHevcSeiContentLight light = readContentLight(payload);
    block.add("max_content_light_level", light.max_content_light_level, "cd/m2");
    block.add("max_pic_average_light_level", light.max_pic_average_light_level, "cd/m2");
}

void describeAlternativeTransfer(const Payload& payload, Block& block) {
    const uint32_t transfer = readAlternativeTransfer(payload).preferred_transfer_characteristics;
    block.add("preferred_transfer_characteristics", transfer, transferName(transfer));
}

// --- H.264 ---

bool hasHrd(const SequenceParameterSet& sps) {
    return sps.avc.nal_hrd_parameters_present_flag != 0 || sps.avc.vcl_hrd_parameters_present_flag != 0;
}

void describeBufferingPeriod(QVByteStream& in, const Payload& payload, const SequenceParameterSet* sps,
                             Block& block) {
    if (sps == nullptr || !hasHrd(*sps)) {
        block.add("not read", "the parameter set in force has no HRD fields");
        return;
    }
    QVAvcSps record = sps->avc;
    QVAvcSeiBufferingPeriod period{};
    const LogCapture log;
    if (QVNaluParser::parserAvcBufferingPeriod(in, sizeOf(payload), &period, &record) != QVResultOk) {
        addRefusal(block, log);
        return;
    }
    for (int i = 0; i < std::min(record.cpb_cnt, 32); ++i) {
        const uint32_t delay = period.initial_cpb_removal_delay[i];
        const double seconds = delay / 90000.0;
        block.add(fmt::format("initial_cpb_removal_delay[{}]", i), delay, fmt::format("{:.6f} s", seconds))
            .derive({seconds}, "s");
    }
}

void describeClockTimestamp(const QVAvcClockTimestamp& timestamp, uint32_t index, Block& block) {
    block.add(
        fmt::format("clock timestamp {}", index),
        fmt::format("{:02}:{:02}:{:02}{}{:02}", timestamp.hours_value, timestamp.minutes_value,
                    timestamp.seconds_value, timestamp.isDropFrame != 0 ? ';' : ':', timestamp.n_frames),
        timestamp.full_timestamp_flag != 0 ? "full" : "partial: parts not sent are 0");
}

void describeAvcPicTiming(QVByteStream& in, const Payload& payload, const SequenceParameterSet* sps,
                          Block& block) {
    if (sps == nullptr || (!hasHrd(*sps) && sps->avc.pic_struct_present_flag == 0)) {
        block.add("not read", "the parameter set in force has neither HRD fields nor pic_struct");
        return;
    }
    QVAvcSps record = sps->avc;
    QVAvcSeiPictureTiming timing{};
    const LogCapture log;
    const int result = QVNaluParser::parserAvcPictureTiming(in, sizeOf(payload), &timing, &record);
    if (hasHrd(*sps)) {
        block.add("cpb_removal_delay", timing.cpb_removal_delay);
        block.add("dpb_output_delay", timing.dpb_output_delay);
    }
    if (result != QVResultOk) {
        addRefusal(block, log);
        return;
    }
    if (record.pic_struct_present_flag != 0) {
        block.add("pic_struct", timing.pic_struct, avcPicStructName(timing.pic_struct));
        for (uint32_t i = 0; i < timing.numClockTimestamps; ++i) {
            describeClockTimestamp(timing.clockTimestamps[i], i, block);
        }
    }
}

void describeAvcRecoveryPoint(QVByteStream& in, const Payload& payload, Block& block) {
    QVAvcSeiRecoveryPoint point{};
    const LogCapture log;
    if (QVNaluParser::parserAvcRecoveryPoint(in, sizeOf(payload), &point) != QVResultOk) {
        addRefusal(block, log);
        return;
    }
    block.add("recovery_frame_cnt", point.recovery_frame_cnt);
}

void describeAvcFramePacking(QVByteStream& in, const Payload& payload, Block& block) {
    QVAvcSeiFramePacking packing{};
    QVNaluParser::parserAvcFramePackingArrangement(in, sizeOf(payload), &packing);
    block.add("frame_packing_arrangement_id", packing.frame_packing_arrangement_id);
    block.add("frame_packing_arrangement_cancel_flag", packing.frame_packing_arrangement_cancel_flag);
    if (packing.isValid == 0) {
        return;
    }
    block.add("frame_packing_arrangement_type", packing.frame_packing_arrangement_type,
              framePackingName(packing.frame_packing_arrangement_type));
    block.add("quincunx_sampling_flag", packing.quincunx_sampling_flag);
    block.add("content_interpretation_type", packing.content_interpretation_type);
    block.add("current_frame_is_frame0_flag", packing.current_frame_is_frame0_flag);
    block.add("frame_packing_arrangement_repetition_period",
              packing.frame_packing_arrangement_repetition_period);
}

template <typename Orientation>
void addOrientation(const Orientation& orientation, Block& block) {
    if (orientation.isValid == 0) {
        block.add("display_orientation_cancel_flag", 1);
        return;
    }
    block.add("hor_flip", orientation.hor_flip);
    block.add("ver_flip", orientation.ver_flip);
    const double degrees = orientation.anticlockwise_rotation * 360.0 / 65536;
    block
        .add("anticlockwise_rotation", orientation.anticlockwise_rotation,
             fmt::format("{:.3f} degrees anticlockwise", degrees))
        .derive({degrees}, "degrees");
}

void describeAvcOrientation(QVByteStream& in, const Payload& payload, Block& block) {
    QVAvcSeiDisplayOrientation orientation{};
    QVNaluParser::parserAvcDisplayOrientation(in, sizeOf(payload), &orientation);
    addOrientation(orientation, block);
}

void describeGreenMetadata(QVByteStream& in, const Payload& payload, Block& block) {
    QVAvcSeiGreenMetaData green{};
    QVNaluParser::parserAvcGreenMetaData(in, sizeOf(payload), &green);
    block.add("green_metadata_type", green.green_metadata_type);
    if (green.green_metadata_type == 1) {
        block.add("xsd_metric_type", green.xsd_metric_type);
        block.add("xsd_metric_value", green.xsd_metric_value);
    }
    if (green.green_metadata_type != 0) {
        return;
    }
    block.add("period_type", green.period_type);
    if (green.period_type == 2) {
        block.add("num_seconds", green.num_seconds);
    } else if (green.period_type == 3) {
        block.add("num_pictures", green.num_pictures);
    }
    block.add("percent_non_zero_macroblocks", green.percent_non_zero_macroblocks);
    block.add("percent_intra_coded_macroblocks", green.percent_intra_coded_macroblocks);
    block.add("percent_six_tap_filtering", green.percent_six_tap_filtering);
    block.add("percent_alpha_point_deblocking_instance", green.percent_alpha_point_deblocking_instance);
}

// --- H.265 ---

void describeHevcFramePacking(QVByteStream& in, const Payload& payload, Block& block) {
    QVHevcSeiFramePacking packing{};
    QVNaluParser::parserHevcFramePacking(in, sizeOf(payload), &packing);
    if (packing.isValid == 0) {
        block.add("frame_packing_arrangement_cancel_flag", 1);
        return;
    }
    block.add("frame_packing_arrangement_type", packing.frame_packing_arrangement_type,
              framePackingName(packing.frame_packing_arrangement_type));
    block.add("quincunx_sampling_flag", packing.quincunx_sampling_flag);
    block.add("content_interpretation_type", packing.content_interpretation_type);
    block.add("current_frame_is_frame0_flag", packing.current_frame_is_frame0_flag);
}

// The parser appends another item. Only the walk's item is listed, so this one is freed.
void describeHevcOrientation(QVByteStream& in, const Payload& payload, Block& block) {
    std::vector<QVSeiItem> items;
    QVHevcSeiDisplayOrientation orientation{};
    QVNaluParser::parserHevcDisplayOrientation(in, sizeOf(payload), items, &orientation);
    for (const QVSeiItem& item : items) {
        qvFree(item.payloadData);
    }
    addOrientation(orientation, block);
}

// H.265 D.2.19: the parser keeps MD5; CRC and checksum are shown as the bytes they are.
void describePictureHash(QVByteStream& in, const Payload& payload, Block& block) {
    static constexpr const char* kNames[] = {"MD5", "CRC", "checksum"};
    static constexpr size_t kSizes[] = {16, 2, 4};
    if (payload.empty()) {
        block.add("refused", "empty payload");
        return;
    }
    const uint8_t hash_type = payload[0];
    block.add("hash_type", hash_type, hash_type < 3 ? kNames[hash_type] : "reserved");
    if (hash_type >= 3) {
        return;
    }
    QVHevcSeiPictureHash hash{};
    QVNaluParser::parserHevcPictureHash(in, sizeOf(payload), &hash);
    const size_t size = kSizes[hash_type];
    const size_t components = std::min<size_t>((payload.size() - 1) / size, 3);
    for (size_t c = 0; c < components; ++c) {
        const uint8_t* const bytes =
            hash.md5Present != 0 ? hash.picture_md5[c] : payload.data() + 1 + c * size;
        block.add(fmt::format("component {}", c), hexText(bytes, size));
    }
}

// H.265 D.2.21. The parser validates the payload and stores nothing.
void describeActiveParameterSets(QVByteStream& in, const Payload& payload, Block& block) {
    const LogCapture log;
    if (QVNaluParser::parserHevcActiveParameterSets(in, sizeOf(payload)) != QVResultOk) {
        addRefusal(block, log);
        return;
    }
    QVByteStream again(payload.data(), payload.size());
    block.add("active_video_parameter_set_id", again.readBits(4));
    block.add("self_contained_cvs_flag", again.readBit());
    block.add("no_parameter_set_update_flag", again.readBit());
    const uint32_t num_sps_ids_minus1 = again.readGolombUe();
    block.add("num_sps_ids_minus1", num_sps_ids_minus1);
    for (uint32_t i = 0; i <= num_sps_ids_minus1; ++i) {
        block.add(fmt::format("active_seq_parameter_set_id[{}]", i), again.readGolombUe());
    }
}

void describeAvc(uint32_t payloadType, QVByteStream& in, const Payload& payload,
                 const SequenceParameterSet* sps, Block& block) {
    switch (payloadType) {
        case kBufferingPeriod:
            return describeBufferingPeriod(in, payload, sps, block);
        case kPicTiming:
            return describeAvcPicTiming(in, payload, sps, block);
        case kRecoveryPoint:
            return describeAvcRecoveryPoint(in, payload, block);
        case kFramePacking:
            return describeAvcFramePacking(in, payload, block);
        case kDisplayOrientation:
            return describeAvcOrientation(in, payload, block);
        case kGreenMetadata:
            return describeGreenMetadata(in, payload, block);
        default:
            return;
    }
}

void describeHevc(uint32_t payloadType, QVByteStream& in, const Payload& payload, Block& block) {
    switch (payloadType) {
        case kPicTiming:
            block.add("not read",
                      "frame_field_info_present_flag is in the part of the SPS that is not parsed");
            return;
        case kFramePacking:
            return describeHevcFramePacking(in, payload, block);
        case kDisplayOrientation:
            return describeHevcOrientation(in, payload, block);
        case kActiveParameterSets:
            return describeActiveParameterSets(in, payload, block);
        case kDecodedPictureHash:
        case kPrefixPictureHash:
            return describePictureHash(in, payload, block);
        default:
            return;
    }
}

}  // namespace

Block describeSei(QVCodecID codec, uint32_t payloadType, const std::vector<uint8_t>& payload,
                  const SequenceParameterSet* sps) {
    Block block;
    QVByteStream in(payload.data(), payload.size());
    switch (payloadType) {
        case kUserDataRegistered:
            describeRegistered(payload, block);
            break;
        case kUserDataUnregistered:
            describeUnregistered(payload, block);
            break;
        case kMasteringDisplay:
            describeMasteringDisplay(payload, block);
            break;
        case kContentLight:
            describeContentLight(payload, block);
            break;
        case kAlternativeTransfer:
            describeAlternativeTransfer(payload, block);
            break;
        default:
            if (codec == QVCodecIDAvc) {
                describeAvc(payloadType, in, payload, sps, block);
            } else {
                describeHevc(payloadType, in, payload, block);
            }
            break;
    }
    return block;
}

}  // namespace qvinspect
