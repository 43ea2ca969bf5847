#include "Peers.h"

#if defined(QV_BENCH_WITH_GSTREAMER)

// GStreamer requires this macro, because it may still change the interface.
#define GST_USE_UNSTABLE_API
#include <gst/codecparsers/gsth264parser.h>
#include <gst/codecparsers/gsth265parser.h>

#include "Measure.h"

namespace qv_bench {

namespace {

void initialise() {
    static const bool once = [] {
        gst_init(nullptr, nullptr);
        gst_debug_set_active(0);
        return true;
    }();
    static_cast<void>(once);
}

using AvcParser = std::shared_ptr<GstH264NalParser>;
using HevcParser = std::shared_ptr<GstH265Parser>;

AvcParser avcParser() {
    initialise();
    return {gst_h264_nal_parser_new(), gst_h264_nal_parser_free};
}

HevcParser hevcParser() {
    initialise();
    return {gst_h265_parser_new(), gst_h265_parser_free};
}

Bytes afterStartCode(const Bytes& unit) {
    Bytes bytes = unit;
    bytes.insert(bytes.begin(), {0, 0, 1});
    return bytes;
}

void scanAvc(GstH264NalParser* parser, const Bytes& bytes, NalIndexList& nalus) {
    GstH264NalUnit nalu;
    for (unsigned offset = 0; offset < bytes.size(); offset = nalu.offset + nalu.size) {
        const GstH264ParserResult result =
            gst_h264_parser_identify_nalu(parser, bytes.data(), offset, bytes.size(), &nalu);
        if (result != GST_H264_PARSER_OK && result != GST_H264_PARSER_NO_NAL_END) {
            return;
        }
        nalus.emplace_back(static_cast<int>(nalu.offset), static_cast<int>(nalu.size));
    }
}

void scanHevc(GstH265Parser* parser, const Bytes& bytes, NalIndexList& nalus) {
    GstH265NalUnit nalu;
    for (unsigned offset = 0; offset < bytes.size(); offset = nalu.offset + nalu.size) {
        const GstH265ParserResult result =
            gst_h265_parser_identify_nalu(parser, bytes.data(), offset, bytes.size(), &nalu);
        if (result != GST_H265_PARSER_OK && result != GST_H265_PARSER_NO_NAL_END) {
            return;
        }
        nalus.emplace_back(static_cast<int>(nalu.offset), static_cast<int>(nalu.size));
    }
}

struct AvcUnit {
    explicit AvcUnit(const Bytes& unit) : bytes(afterStartCode(unit)) {
        const GstH264ParserResult result =
            gst_h264_parser_identify_nalu_unchecked(parser.get(), bytes.data(), 0, bytes.size(), &nalu);
        require(result == GST_H264_PARSER_OK && nalu.size == unit.size(), "a unit for GStreamer");
    }

    AvcParser parser = avcParser();
    Bytes bytes;
    GstH264NalUnit nalu = {};
};

struct HevcUnit {
    explicit HevcUnit(const Bytes& unit) : bytes(afterStartCode(unit)) {
        const GstH265ParserResult result =
            gst_h265_parser_identify_nalu_unchecked(parser.get(), bytes.data(), 0, bytes.size(), &nalu);
        require(result == GST_H265_PARSER_OK && nalu.size == unit.size(), "a unit for GStreamer");
    }

    HevcParser parser = hevcParser();
    Bytes bytes;
    GstH265NalUnit nalu = {};
};

// A unit that refers to a sequence parameter set.
std::shared_ptr<AvcUnit> avcUnitWithSps(const Bytes& unit, const Bytes& sps) {
    AvcUnit spsState(sps);
    auto state = std::make_shared<AvcUnit>(unit);
    state->parser = spsState.parser;
    GstH264SPS parsed;
    require(gst_h264_parser_parse_sps(state->parser.get(), &spsState.nalu, &parsed) == GST_H264_PARSER_OK,
            "an SPS for GStreamer");
    gst_h264_sps_clear(&parsed);
    return state;
}

std::shared_ptr<HevcUnit> hevcUnitWithSps(const Bytes& unit, const Bytes& sps) {
    HevcUnit spsState(sps);
    auto state = std::make_shared<HevcUnit>(unit);
    state->parser = spsState.parser;
    GstH265SPS parsed;
    require(gst_h265_parser_parse_sps(state->parser.get(), &spsState.nalu, &parsed, 1) == GST_H265_PARSER_OK,
            "an SPS for GStreamer");
    return state;
}

int messagesOf(AvcUnit& unit) {
    GArray* messages = nullptr;
    const GstH264ParserResult result = gst_h264_parser_parse_sei(unit.parser.get(), &unit.nalu, &messages);
    const int count = result == GST_H264_PARSER_OK ? static_cast<int>(messages->len) : 0;
    g_array_unref(messages);
    return count;
}

int messagesOf(HevcUnit& unit) {
    GArray* messages = nullptr;
    const GstH265ParserResult result = gst_h265_parser_parse_sei(unit.parser.get(), &unit.nalu, &messages);
    const int count = result == GST_H265_PARSER_OK ? static_cast<int>(messages->len) : 0;
    g_array_unref(messages);
    return count;
}

}  // namespace

std::string gstreamerName() {
    unsigned major = 0;
    unsigned minor = 0;
    unsigned micro = 0;
    unsigned nano = 0;
    gst_version(&major, &minor, &micro, &nano);
    return "GStreamer " + std::to_string(major) + '.' + std::to_string(minor) + '.' + std::to_string(micro);
}

PeerScan gstreamerScan(QVCodecID codec) {
    if (codec == QVCodecIDAvc) {
        return [parser = avcParser()](const Bytes& bytes, NalIndexList& nalus) {
            nalus.clear();
            scanAvc(parser.get(), bytes, nalus);
        };
    }
    return [parser = hevcParser()](const Bytes& bytes, NalIndexList& nalus) {
        nalus.clear();
        scanHevc(parser.get(), bytes, nalus);
    };
}

std::function<int()> gstreamerAvcSps(const Bytes& unit) {
    return [state = std::make_shared<AvcUnit>(unit), sps = std::make_shared<GstH264SPS>()] {
        const bool isParsed =
            gst_h264_parser_parse_sps(state->parser.get(), &state->nalu, sps.get()) == GST_H264_PARSER_OK;
        const int width = isParsed ? sps->width : 0;
        gst_h264_sps_clear(sps.get());
        return width;
    };
}

std::function<int()> gstreamerHevcSps(const Bytes& unit) {
    return [state = std::make_shared<HevcUnit>(unit), sps = std::make_shared<GstH265SPS>()] {
        const bool isParsed =
            gst_h265_parser_parse_sps(state->parser.get(), &state->nalu, sps.get(), 0) == GST_H265_PARSER_OK;
        return isParsed ? sps->width : 0;
    };
}

std::function<int()> gstreamerAvcWholeSps(const Bytes& unit) {
    return [state = std::make_shared<AvcUnit>(unit), sps = std::make_shared<GstH264SPS>()] {
        const bool isParsed =
            gst_h264_parser_parse_sps(state->parser.get(), &state->nalu, sps.get()) == GST_H264_PARSER_OK;
        const int last = isParsed ? static_cast<int>(sps->vui_parameters.max_dec_frame_buffering) : 0;
        gst_h264_sps_clear(sps.get());
        return last;
    };
}

std::function<int()> gstreamerAvcPps(const Bytes& unit, const Bytes& sps) {
    const auto state = avcUnitWithSps(unit, sps);
    return [state, pps = std::make_shared<GstH264PPS>()] {
        const bool isParsed =
            gst_h264_parser_parse_pps(state->parser.get(), &state->nalu, pps.get()) == GST_H264_PARSER_OK;
        // GStreamer keeps the signed element in a guint8.
        const int last = isParsed ? static_cast<int8_t>(pps->second_chroma_qp_index_offset) : 0;
        gst_h264_pps_clear(pps.get());
        return last;
    };
}

std::function<int()> gstreamerHevcVps(const Bytes& unit) {
    return [state = std::make_shared<HevcUnit>(unit), vps = std::make_shared<GstH265VPS>()] {
        const bool isParsed =
            gst_h265_parser_parse_vps(state->parser.get(), &state->nalu, vps.get()) == GST_H265_PARSER_OK;
        return isParsed ? vps->max_dec_pic_buffering_minus1[vps->max_sub_layers_minus1] : 0;
    };
}

std::function<int()> gstreamerHevcWholeSps(const Bytes& unit) {
    return [state = std::make_shared<HevcUnit>(unit), sps = std::make_shared<GstH265SPS>()] {
        const bool isParsed =
            gst_h265_parser_parse_sps(state->parser.get(), &state->nalu, sps.get(), 1) == GST_H265_PARSER_OK;
        return isParsed ? static_cast<int>(sps->vui_params.time_scale) : 0;
    };
}

std::function<int()> gstreamerHevcPps(const Bytes& unit, const Bytes& sps) {
    const auto state = hevcUnitWithSps(unit, sps);
    return [state, pps = std::make_shared<GstH265PPS>()] {
        const bool isParsed =
            gst_h265_parser_parse_pps(state->parser.get(), &state->nalu, pps.get()) == GST_H265_PARSER_OK;
        return isParsed ? pps->diff_cu_qp_delta_depth : 0;
    };
}

std::function<int()> gstreamerAvcSei(const Bytes& unit) {
    return [state = std::make_shared<AvcUnit>(unit)] { return messagesOf(*state); };
}

std::function<int()> gstreamerAvcSei(const Bytes& unit, const Bytes& sps) {
    return [state = avcUnitWithSps(unit, sps)] { return messagesOf(*state); };
}

std::function<int()> gstreamerHevcSei(const Bytes& unit, const Bytes& sps) {
    return [state = hevcUnitWithSps(unit, sps)] { return messagesOf(*state); };
}

}  // namespace qv_bench

#else

namespace qv_bench {

std::string gstreamerName() {
    return "";
}

PeerScan gstreamerScan(QVCodecID /*codec*/) {
    return {};
}

std::function<int()> gstreamerAvcSps(const Bytes& /*unit*/) {
    return {};
}

std::function<int()> gstreamerHevcSps(const Bytes& /*unit*/) {
    return {};
}

std::function<int()> gstreamerAvcWholeSps(const Bytes& /*unit*/) {
    return {};
}

std::function<int()> gstreamerAvcPps(const Bytes& /*unit*/, const Bytes& /*sps*/) {
    return {};
}

std::function<int()> gstreamerHevcVps(const Bytes& /*unit*/) {
    return {};
}

std::function<int()> gstreamerHevcWholeSps(const Bytes& /*unit*/) {
    return {};
}

std::function<int()> gstreamerHevcPps(const Bytes& /*unit*/, const Bytes& /*sps*/) {
    return {};
}

std::function<int()> gstreamerAvcSei(const Bytes& /*unit*/) {
    return {};
}

std::function<int()> gstreamerAvcSei(const Bytes& /*unit*/, const Bytes& /*sps*/) {
    return {};
}

std::function<int()> gstreamerHevcSei(const Bytes& /*unit*/, const Bytes& /*sps*/) {
    return {};
}

}  // namespace qv_bench

#endif
