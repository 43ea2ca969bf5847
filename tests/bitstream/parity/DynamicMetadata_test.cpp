// HDR10+ and HDR Vivid metadata against the side data of the pictures that libavcodec decodes.
extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/hdr_dynamic_metadata.h>
#include <libavutil/hdr_dynamic_vivid_metadata.h>
}

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <iostream>
#include <memory>
#include <set>
#include <string>

#include "FileUnits.h"
#include "StreamFolder.h"
#include "bitstream/sei/Hdr10Plus.h"
#include "bitstream/sei/HdrVivid.h"
#include "bitstream/sei/SeiMessages.h"
#include "bitstream/units/NalUnits.h"

using qv::Codec;

namespace qv_test {

namespace {

namespace fs = std::filesystem;

using Texts = std::set<std::string>;

// --- Values as text, those of this library as codes and the witness's as numerators ---

class Line {
public:
    explicit Line(const char* kind) : text_(kind) {}

    template <class... Values>
    Line& add(const char* name, Values... values) {
        text_ += std::string("; ") + name;
        ((text_ += " " + textOf(values)), ...);
        return *this;
    }

    const std::string& text() const { return text_; }

private:
    template <class Value>
    static std::string textOf(Value value) {
        if constexpr (std::is_same_v<Value, AVRational>) {
            return std::to_string(value.num);
        } else {
            return std::to_string(static_cast<int64_t>(value));
        }
    }

    std::string text_;
};

// A grid of luminances: without elements when its flag is 0.
template <class Grid>
void addGrid(Line& line, const char* name, bool isPresent, uint32_t rows, uint32_t columns,
             const Grid& grid) {
    line.add(name, isPresent);
    for (uint32_t i = 0; isPresent && i < rows; ++i) {
        for (uint32_t j = 0; j < columns; ++j) {
            line.add("", grid[i][j]);
        }
    }
}

template <class Window>
void addEnd(Line& line, const Window& window) {
    line.add("fraction_bright_pixels", window.fraction_bright_pixels);
    line.add("tone_mapping_flag", window.tone_mapping_flag);
    if (window.tone_mapping_flag) {
        line.add("knee_point", window.knee_point_x, window.knee_point_y);
        for (uint32_t i = 0; i < window.num_bezier_curve_anchors; ++i) {
            line.add("anchor", window.bezier_curve_anchors[i]);
        }
    }
    line.add("color_saturation_mapping_flag", window.color_saturation_mapping_flag);
    if (window.color_saturation_mapping_flag) {
        line.add("color_saturation_weight", window.color_saturation_weight);
    }
}

std::string textOf(const qv::sei::Hdr10Plus& metadata) {
    Line line("HDR10+");
    line.add("application_version", metadata.application_version).add("num_windows", metadata.num_windows);
    line.add("targeted", metadata.targeted_system_display_maximum_luminance);
    addGrid(line, "targeted grid", metadata.targeted_system_display_actual_peak_luminance_flag,
            metadata.num_rows_targeted_system_display_actual_peak_luminance,
            metadata.num_cols_targeted_system_display_actual_peak_luminance,
            metadata.targeted_system_display_actual_peak_luminance);
    addGrid(line, "mastering grid", metadata.mastering_display_actual_peak_luminance_flag,
            metadata.num_rows_mastering_display_actual_peak_luminance,
            metadata.num_cols_mastering_display_actual_peak_luminance,
            metadata.mastering_display_actual_peak_luminance);
    for (uint32_t w = 0; w < metadata.num_windows; ++w) {
        const qv::sei::Hdr10PlusWindow& window = metadata.windows[w];
        line.add("maxscl", window.maxscl[0], window.maxscl[1], window.maxscl[2]);
        line.add("average_maxrgb", window.average_maxrgb);
        for (uint32_t i = 0; i < window.num_distribution_maxrgb_percentiles; ++i) {
            line.add("percentile", window.distribution_maxrgb_percentages[i],
                     window.distribution_maxrgb_percentiles[i]);
        }
        addEnd(line, window);
    }
    return line.text();
}

std::string textOf(const AVDynamicHDRPlus& metadata) {
    Line line("HDR10+");
    line.add("application_version", metadata.application_version).add("num_windows", metadata.num_windows);
    line.add("targeted", metadata.targeted_system_display_maximum_luminance);
    addGrid(line, "targeted grid", metadata.targeted_system_display_actual_peak_luminance_flag != 0,
            metadata.num_rows_targeted_system_display_actual_peak_luminance,
            metadata.num_cols_targeted_system_display_actual_peak_luminance,
            metadata.targeted_system_display_actual_peak_luminance);
    addGrid(line, "mastering grid", metadata.mastering_display_actual_peak_luminance_flag != 0,
            metadata.num_rows_mastering_display_actual_peak_luminance,
            metadata.num_cols_mastering_display_actual_peak_luminance,
            metadata.mastering_display_actual_peak_luminance);
    for (int w = 0; w < metadata.num_windows; ++w) {
        const AVHDRPlusColorTransformParams& window = metadata.params[w];
        line.add("maxscl", window.maxscl[0], window.maxscl[1], window.maxscl[2]);
        line.add("average_maxrgb", window.average_maxrgb);
        for (int i = 0; i < window.num_distribution_maxrgb_percentiles; ++i) {
            line.add("percentile", window.distribution_maxrgb[i].percentage,
                     window.distribution_maxrgb[i].percentile);
        }
        addEnd(line, window);
    }
    return line.text();
}

// Of several splines the record of libavutil 57 keeps the last one.
std::string textOf(const qv::sei::HdrVivid& metadata) {
    Line line("HDR Vivid");
    line.add("system_start_code", metadata.system_start_code);
    line.add("maxrgb", metadata.minimum_maxrgb_pq, metadata.average_maxrgb_pq, metadata.variance_maxrgb_pq,
             metadata.maximum_maxrgb_pq);
    line.add("tone mappings", metadata.toneMappingCount());
    for (uint32_t i = 0; i < metadata.toneMappingCount(); ++i) {
        const qv::sei::HdrVividToneMapping& mapping = metadata.toneMappings[i];
        line.add("targeted", mapping.targeted_system_display_maximum_luminance_pq);
        line.add("base_enable_flag", mapping.base_enable_flag);
        if (mapping.base_enable_flag) {
            line.add("m", mapping.base_param_m_p, mapping.base_param_m_m, mapping.base_param_m_a,
                     mapping.base_param_m_b, mapping.base_param_m_n);
            line.add("K", mapping.base_param_K1, mapping.base_param_K2, mapping.base_param_K3);
            line.add("Delta", mapping.base_param_Delta_enable_mode, mapping.base_param_enable_Delta);
        }
        line.add("splines", mapping.splineCount());
        if (mapping.splineCount() > 0) {
            const qv::sei::HdrVividSpline& last = mapping.splines[mapping.splineCount() - 1];
            line.add("spline", last.TH_enable_mode, last.TH_enable, last.TH_enable_Delta1,
                     last.TH_enable_Delta2, last.enable_Strength);
        }
    }
    line.add("gains", metadata.gainCount());
    for (uint32_t i = 0; i < metadata.gainCount(); ++i) {
        line.add("", metadata.color_saturation_enable_gain[i]);
    }
    return line.text();
}

#if LIBAVUTIL_VERSION_MAJOR < 58
void addSpline(Line& line, const AVHDRVividColorToneMappingParams& mapping) {
    line.add("spline", mapping.three_Spline_TH_mode, mapping.three_Spline_TH_enable,
             mapping.three_Spline_TH_Delta1, mapping.three_Spline_TH_Delta2,
             mapping.three_Spline_enable_Strength);
}
#else
void addSpline(Line& line, const AVHDRVividColorToneMappingParams& mapping) {
    const AVHDRVivid3SplineParams& last = mapping.three_spline[mapping.three_Spline_num - 1];
    line.add("spline", last.th_mode, last.th_enable, last.th_delta1, last.th_delta2, last.enable_strength);
}
#endif

std::string textOf(const AVDynamicHDRVivid& metadata) {
    Line line("HDR Vivid");
    const AVHDRVividColorTransformParams& window = metadata.params[0];
    line.add("system_start_code", metadata.system_start_code);
    line.add("maxrgb", window.minimum_maxrgb, window.average_maxrgb, window.variance_maxrgb,
             window.maximum_maxrgb);
    const int mappings = window.tone_mapping_mode_flag != 0 ? window.tone_mapping_param_num : 0;
    line.add("tone mappings", mappings);
    for (int i = 0; i < mappings; ++i) {
        const AVHDRVividColorToneMappingParams& mapping = window.tm_params[i];
        line.add("targeted", mapping.targeted_system_display_maximum_luminance);
        line.add("base_enable_flag", mapping.base_enable_flag);
        if (mapping.base_enable_flag != 0) {
            line.add("m", mapping.base_param_m_p, mapping.base_param_m_m, mapping.base_param_m_a,
                     mapping.base_param_m_b, mapping.base_param_m_n);
            line.add("K", mapping.base_param_k1, mapping.base_param_k2, mapping.base_param_k3);
            line.add("Delta", mapping.base_param_Delta_enable_mode, mapping.base_param_Delta);
        }
        const int splines = mapping.three_Spline_enable_flag != 0 ? mapping.three_Spline_num : 0;
        line.add("splines", splines);
        if (splines > 0) {
            addSpline(line, mapping);
        }
    }
    const int gains = window.color_saturation_mapping_flag != 0 ? window.color_saturation_num : 0;
    line.add("gains", gains);
    for (int i = 0; i < gains; ++i) {
        line.add("", window.color_saturation_gain[i]);
    }
    return line.text();
}

// --- What a file holds ---

template <class Payload>
bool addPayload(const qv::SeiMessage& message, Texts& texts) {
    const auto read = qv::sei::readPayload<Payload>(message, qv::sei::Context(Codec::Hevc));
    if (read.ok()) {
        texts.insert(textOf(read.record));
    }
    return read.ok();
}

// The number of messages.
size_t addMessages(const fs::path& file, Texts& texts) {
    constexpr uint32_t kPrefixSei = 39;
    size_t messages = 0;
    const FileUnits in = unitsOf(file);
    for (const std::vector<uint8_t>& unit : in.units) {
        const qv::Bytes bytes = {unit.data(), unit.size()};
        if (in.codec != Codec::Hevc || qv::nalUnitOf(bytes, in.codec).nal_unit_type != kPrefixSei) {
            continue;
        }
        for (const qv::SeiMessage& message : qv::SeiMessages(bytes, in.codec)) {
            const bool isRead = addPayload<qv::sei::Hdr10Plus>(message, texts) ||
                                addPayload<qv::sei::HdrVivid>(message, texts);
            messages += isRead ? size_t{1} : size_t{0};
        }
    }
    return messages;
}

struct Closing {
    void operator()(AVFormatContext* context) const { avformat_close_input(&context); }
    void operator()(AVCodecContext* context) const { avcodec_free_context(&context); }
    void operator()(AVPacket* packet) const { av_packet_free(&packet); }
    void operator()(AVFrame* frame) const { av_frame_free(&frame); }
};

template <class Side>
void addSideData(const AVFrame& frame, AVFrameSideDataType type, Texts& texts) {
    const AVFrameSideData* const data = av_frame_get_side_data(&frame, type);
    if (data != nullptr && data->size >= sizeof(Side)) {
        texts.insert(textOf(*reinterpret_cast<const Side*>(data->data)));
    }
}

void addFrames(AVCodecContext& decoder, AVFrame& frame, Texts& texts) {
    while (avcodec_receive_frame(&decoder, &frame) >= 0) {
        addSideData<AVDynamicHDRPlus>(frame, AV_FRAME_DATA_DYNAMIC_HDR_PLUS, texts);
        addSideData<AVDynamicHDRVivid>(frame, AV_FRAME_DATA_DYNAMIC_HDR_VIVID, texts);
        av_frame_unref(&frame);
    }
}

void addDecoded(const fs::path& file, Texts& texts) {
    AVFormatContext* opened = nullptr;
    ASSERT_GE(avformat_open_input(&opened, file.c_str(), nullptr, nullptr), 0);
    const std::unique_ptr<AVFormatContext, Closing> input(opened);
    ASSERT_GE(avformat_find_stream_info(opened, nullptr), 0);
    const AVCodec* codec = nullptr;
    const int stream = av_find_best_stream(opened, AVMEDIA_TYPE_VIDEO, -1, -1, &codec, 0);
    ASSERT_GE(stream, 0);
    const std::unique_ptr<AVCodecContext, Closing> decoder(avcodec_alloc_context3(codec));
    avcodec_parameters_to_context(decoder.get(), opened->streams[stream]->codecpar);
    ASSERT_GE(avcodec_open2(decoder.get(), codec, nullptr), 0);
    const std::unique_ptr<AVPacket, Closing> packet(av_packet_alloc());
    const std::unique_ptr<AVFrame, Closing> frame(av_frame_alloc());
    while (av_read_frame(opened, packet.get()) >= 0) {
        if (packet->stream_index == stream && avcodec_send_packet(decoder.get(), packet.get()) >= 0) {
            addFrames(*decoder, *frame, texts);
        }
        av_packet_unref(packet.get());
    }
    avcodec_send_packet(decoder.get(), nullptr);
    addFrames(*decoder, *frame, texts);
}

// --- Every file that holds dynamic metadata ---

class DynamicMetadataParity : public StreamFolderTest<::testing::Test> {};

TEST_P(DynamicMetadataParity, EveryValueAgreesWithTheSideDataOfDecodedPictures) {
    av_log_set_level(AV_LOG_QUIET);
    size_t files = 0;
    size_t messages = 0;
    size_t different = 0;
    for (const Stream& stream : streamsIn(GetParam().path)) {
        const fs::path file = GetParam().path / stream.name;
        Texts ours;
        const size_t count = addMessages(file, ours);
        if (count == 0) {
            continue;
        }
        Texts theirs;
        addDecoded(file, theirs);
        EXPECT_EQ(ours, theirs) << file;
        ++files;
        messages += count;
        different += ours.size();
    }
    std::cout << messages << " messages in " << files << " files, " << different << " different ones\n";
    EXPECT_GT(messages, 0U);
}

INSTANTIATE_TEST_SUITE_P(Streams, DynamicMetadataParity, everyStreamFolder(),
                         [](const auto& folder) { return nameOf(folder); });

}  // namespace

}  // namespace qv_test
