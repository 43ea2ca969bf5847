#include "SeedCorpus.h"

#include <algorithm>
#include <map>

#include "AvcSpsSyntax.h"
#include "HdrVividSyntax.h"
#include "HevcSpsSyntax.h"
#include "QVNaluParser.h"
#include "SeiMessages.h"
#include "SeiStreams.h"

namespace qv_test {

namespace {

constexpr size_t kMostSeedBytes = 2048;  // short inputs mutate faster

using Seeds = std::vector<Seed>;

void add(Seeds& seeds, const std::string& target, const Bytes& parameters, const Bytes& data) {
    Bytes seed = parameters + data;
    seed.resize(std::min(seed.size(), kMostSeedBytes));
    seeds.push_back({target, seed});
}

Bytes cut(const Bytes& data, size_t from) {
    return Bytes(data.begin() + static_cast<std::ptrdiff_t>(std::min(from, data.size())), data.end());
}

void addUnit(Seeds& seeds, const Bytes& unit, bool isHevc) {
    const unsigned type = isHevc ? unit[0] >> 1U & 0x3FU : unit[0] & 0x1FU;
    constexpr uint8_t kAvc420 = 2;
    if (isHevc ? type >= 32 && type <= 38 : type >= 7 && type <= 15) {
        add(seeds, "bitstream_rewrite_fuzz", {isHevc ? uint8_t{1} : kAvc420}, unit);
    }
    if (isHevc ? type == 39 || type == 40 : type == 6) {
        add(seeds, "bitstream_edit_fuzz", {isHevc ? uint8_t{1} : uint8_t{0}, 0x55, 0x55, 0x55, 0x55}, unit);
    }
    if (isHevc && type == 33) {
        add(seeds, "hevc_sps_fuzz", {}, unit);
    } else if (isHevc && (type == 39 || type == 40)) {
        add(seeds, "hevc_sei_fuzz", {1, 132, static_cast<uint8_t>(type == 39 ? 0 : 1)}, cut(unit, 2));
        add(seeds, "hevc_sei_fuzz", {0, static_cast<uint8_t>(type == 39 ? 0 : 1)}, unit);
    } else if (!isHevc && type == 7) {
        add(seeds, "avc_sps_fuzz", {}, unit);
    } else if (!isHevc && type == 6) {
        add(seeds, "avc_sei_fuzz", {1, 4, 0}, cut(unit, 1));
    }
}

void addStream(Seeds& seeds, const Bytes& stream, bool isHevc) {
    const uint8_t codec = isHevc ? 1 : 0;
    for (const uint8_t kind : {uint8_t{0}, uint8_t{1}}) {
        add(seeds, "annexb_scan_fuzz", {kind}, stream);
    }
    add(seeds, "key_frame_fuzz", {codec}, stream);
    add(seeds, "reframe_fuzz", {4, 0}, stream);
    add(seeds, "raw_reader_fuzz", {codec, 200, 255, 100}, stream);
    add(seeds, "bitstream_read_fuzz", {codec}, stream);
    add(seeds, "bitstream_rewrite_fuzz", {static_cast<uint8_t>(codec + 8)}, stream);
    std::vector<unsigned char> lengths;
    if (QVNaluParser::converAnnexBToAvcC(stream.data(), static_cast<int>(stream.size()), lengths) ==
        QVResultOk) {
        add(seeds, "length_scan_fuzz", {4}, lengths);
        add(seeds, "bitstream_read_fuzz", {static_cast<uint8_t>(codec + 8)}, lengths);
        add(seeds, "key_frame_fuzz", {codec}, lengths);
        add(seeds, "reframe_fuzz", {4, 64}, lengths);
    }
    std::vector<std::pair<int, int>> nalus;
    QVNaluParser::parserDataToNaluIdx(stream.data(), static_cast<int>(stream.size()), nalus);
    for (const auto& [offset, length] : nalus) {
        if (length > 2) {
            addUnit(seeds, Bytes(stream.begin() + offset, stream.begin() + offset + length), isHevc);
        }
    }
}

void addParameterSets(Seeds& seeds) {
    add(seeds, "avc_sps_fuzz", {}, avcSps().bytes());
    for (const uint32_t chroma_format_idc : {0U, 1U, 2U, 3U}) {
        add(seeds, "avc_sps_fuzz", {}, highAvcSps([&](AvcSpsSyntax& sps) {
                                           sps.chroma_format_idc = chroma_format_idc;
                                           sps.seq_scaling_matrix_present_flag = 1;
                                           sps.scalingLists[0] = {1, std::vector<int32_t>(16, 1)};
                                           sps.frame_cropping_flag = 1;
                                           sps.frame_crop_right_offset = 1;
                                       }).bytes());
    }
    add(seeds, "avc_sps_fuzz", {}, avcSps([](AvcSpsSyntax& sps) {
                                       sps.pic_order_cnt_type = 1;
                                       sps.num_ref_frames_in_pic_order_cnt_cycle = 3;
                                       sps.offset_for_ref_frame = {-1, 0, 5};
                                   }).bytes());
    add(seeds, "hevc_sps_fuzz", {}, withEmulationPrevention(hevcSps().bytes()));
    add(seeds, "hevc_sps_fuzz", {}, withEmulationPrevention(hevcSps([](HevcSpsSyntax& sps) {
                                                                sps.sps_max_sub_layers_minus1 = 6;
                                                                sps.subLayers.fill({1, 1, {}, 30});
                                                                sps.conformance_window_flag = 1;
                                                                sps.chroma_format_idc = 3;
                                                            }).bytes()));
}

Bytes t35(const std::string& identifier, const Bytes& userData) {
    return Bytes{0xB5, 0x00, 0x31} + Bytes(identifier.begin(), identifier.end()) + userData;
}

void addMessages(Seeds& seeds) {
    add(seeds, "hdr_fuzz", {3}, hdrVivid(HdrVividSyntax()).bytes());
    const Bytes largestVivid = hdrVivid(largestHdrVivid()).bytes();
    add(seeds, "hdr_fuzz", {3}, largestVivid);
    add(seeds, "hdr_fuzz", {5}, Bytes(24, 0x11));

    const std::map<unsigned, Bytes> payloads = {
        {0, Bytes(12, 0x80)},
        {1, Bytes(12, 0x21)},
        {4, t35("GA94", {3, 0xC2, 0xFF, 0xFC, 0x80, 0x80, 0xFD, 0x80, 0x80, 0xFF})},
        {5, Bytes(20, 0x55)},
        {6, {0x84, 0x80}},
        {45, Bytes(16, 0xA5)},
        {47, {0x20, 0x00, 0x10}},
        {56, {0x00, 0x02, 0x00, 0x05, 1, 2, 3, 4}},
        {129, {0x10, 0xA8}},
        {132, Bytes(49, 0x00)},
        {137, Bytes(24, 0x33)},
        {144, {0x03, 0xE8, 0x01, 0x90}},
        {147, {0x12}},
        {256, Bytes(17, 0x00)},
    };
    for (const auto& [payloadType, payload] : payloads) {
        const Bytes unit = seiUnit({seiMessage(payloadType, payload)});
        add(seeds, "avc_sei_fuzz", {1, static_cast<uint8_t>(payloadType), 3, 1, 0, 0, 0, 0, 0, 0, 0, 1},
            unit);
        add(seeds, "hevc_sei_fuzz", {1, static_cast<uint8_t>(payloadType), 0}, unit);
        const Bytes twice = seiUnit({seiMessage(payloadType, payload), seiMessage(5, payload)});
        add(seeds, "bitstream_edit_fuzz", {0, 0, 0, 0, 1, 0x06}, twice);
        add(seeds, "bitstream_edit_fuzz", {1, 0, 0, 0, 2, 0x4E, 0x01}, twice);
        for (uint8_t parser = 0; parser < 22; ++parser) {
            add(seeds, "sei_payload_fuzz", {parser, 0, 0, 1, static_cast<uint8_t>(payload.size())}, payload);
        }
    }
    add(seeds, "avc_sei_fuzz", {0, 0}, seiUnit({seiMessage(4, t35("DTG1", {0x41, 0xF8}))}));
    add(seeds, "hevc_sei_fuzz", {0, 0}, seiUnit({seiMessage(4, largestVivid)}));
}

// SEI messages of every type, a few to a unit, with the parameter sets that they refer to.
void addSeiStreams(Seeds& seeds) {
    constexpr unsigned kLastType = 256;
    constexpr unsigned kTypesOfASeed = 16;
    const Bytes payloads[] = {Bytes(12, 0x80), Bytes(20, 0x55), {0x04, 0xA1, 0xFF, 0x00, 0x13, 0xB0}, {}};
    for (const uint8_t codec : {uint8_t{0}, uint8_t{1}}) {
        const Bytes sets = codec == 0 ? avcSetsForSei() : hevcSetsForSei();
        for (unsigned first = 0; first <= kLastType; first += kTypesOfASeed) {
            for (const Bytes& payload : payloads) {
                const Bytes stream = sets + seiOfTypes(codec == 1, first, first + kTypesOfASeed - 1, payload);
                add(seeds, "bitstream_read_fuzz", {codec}, stream);
                add(seeds, "bitstream_rewrite_fuzz", {static_cast<uint8_t>(codec + 8)}, stream);
            }
        }
    }
}

void addReaders(Seeds& seeds) {
    Bytes operations = {63};
    for (unsigned i = 0; i < 63; ++i) {
        operations.push_back(static_cast<uint8_t>(i * 37));
    }
    add(seeds, "byte_stream_fuzz", operations, {0, 0, 3, 1, 0, 0, 3, 0, 0, 3, 0x80, 0xFF, 0x12, 0x00, 0x01});
    add(seeds, "byte_stream_fuzz", operations, Bytes(40, 0));
    add(seeds, "side_data_fuzz", {3, 5}, Bytes(60, 7));
    add(seeds, "side_data_fuzz", {'Q', 'V', 'S', 'D', 0, 1, 0, 0, 0, 0, 0, 20, 0, 0, 0, 0}, {0, 0, 0, 0});
    for (const uint8_t lengthSize : {uint8_t{1}, uint8_t{2}, uint8_t{4}}) {
        Bytes lengths(lengthSize, 0);
        lengths.back() = 3;
        add(seeds, "length_scan_fuzz", {lengthSize},
            lengths + Bytes{0x65, 1, 2} + lengths + Bytes{0x41, 3, 4});
        add(seeds, "reframe_fuzz", {lengthSize, 8},
            lengths + Bytes{0x65, 1, 2} + lengths + Bytes{0x41, 3, 4});
    }
}

}  // namespace

std::vector<Seed> builtSeeds() {
    Seeds seeds;
    addParameterSets(seeds);
    addMessages(seeds);
    addSeiStreams(seeds);
    addReaders(seeds);
    return seeds;
}

std::vector<Seed> seedsOf(const Bytes& stream, bool isHevc) {
    Seeds seeds;
    addStream(seeds, stream, isHevc);
    return seeds;
}

}  // namespace qv_test
