// Captions and the active format description of every picture against libavcodec, which attaches them to
// decoded frames.
#include "bitstream/sei/Captions.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <iostream>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "DecodedFrames.h"
#include "SeiUnits.h"
#include "StreamFolder.h"
#include "bitstream/sei/CaptionOrder.h"
#include "bitstream/sei/CaptionServices.h"

using qv::Codec;

namespace qv_test {

namespace {

using namespace qv::sei;

constexpr const char* kCaptionsOfWitness = "ATSC A53 Part 4 Closed Captions";
constexpr const char* kActiveFormatOfWitness = "Active format description";

// What we find in the units of a packet.
struct Found {
    CaptionedPicture captions;
    std::optional<uint32_t> activeFormat;
};

void takeMessage(const qv::SeiMessage& message, const Context& context, Found& found) {
    found.captions.add(message, context);
    if (a53KindOf(message) == A53Kind::ActiveFormat) {
        const auto read = readPayload<ActiveFormatDescription>(message, context);
        if (read.ok() && read.record.active_format_flag) {
            found.activeFormat = read.record.active_format;
        }
    }
}

Found findIn(const std::vector<std::vector<uint8_t>>& units, Codec codec) {
    Found found;
    for (const std::vector<uint8_t>& bytes : units) {
        const qv::Bytes unit = {bytes.data(), bytes.size()};
        if (!isSei(codec, unit)) {
            continue;
        }
        for (const qv::SeiMessage& message : qv::SeiMessages(unit, codec)) {
            takeMessage(message, Context(codec), found);
        }
    }
    return found;
}

// The bytes of the constructs as coded.
std::vector<uint8_t> bytesOf(const CaptionedPicture& picture) {
    std::vector<uint8_t> bytes;
    for (const CcConstruct& construct : picture) {
        bytes.push_back(static_cast<uint8_t>(uint32_t{construct.marker_bits} << 3 |
                                             static_cast<uint32_t>(construct.cc_valid) << 2 |
                                             construct.cc_type));
        bytes.push_back(construct.cc_data_1);
        bytes.push_back(construct.cc_data_2);
    }
    return bytes;
}

class Output : public CaptionSink {
public:
    void picture(const CaptionedPicture& picture) override {
        packets.push_back(picture.number);
        finder.take(picture);
    }

    std::vector<uint64_t> packets;
    CaptionServiceFinder finder;
};

std::string namesOf(const CaptionServices& services) {
    std::string names;
    for (uint8_t channel = 0; channel < 8; ++channel) {
        if (services.has(static_cast<CaptionChannel>(channel))) {
            names += names.empty() ? "" : " ";
            names += nameOf(static_cast<CaptionChannel>(channel));
        }
    }
    for (uint32_t service = 1; service < 64; ++service) {
        if (services.hasService(service)) {
            names += names.empty() ? "" : " ";
            names += std::to_string(service);
        }
    }
    return names;
}

// The pictures in decoding order, with their place in output order as picture order count: the order of the
// decoder, and the services of the stream.
CaptionServices orderedServices(const DecodedFrames& stream) {
    std::map<size_t, int32_t> places;
    std::vector<uint64_t> expected;
    for (const DecodedFrame& frame : stream.frames) {
        places.emplace(frame.packet, static_cast<int32_t>(places.size()));
        expected.push_back(frame.packet);
    }
    CaptionOrder order(stream.reorderedFrames);
    Output output;
    for (const auto& [packet, place] : places) {
        CaptionedPicture picture = findIn(stream.packets.at(packet), stream.codec).captions;
        picture.number = packet;
        picture.picOrderCnt = place;
        order.push(picture, output);
    }
    order.flush(output);
    EXPECT_EQ(output.packets, expected);
    EXPECT_EQ(order.late(), 0U);
    return output.finder.services();
}

// libavcodec 59 does not read afd_data() in H.265.
bool readsActiveFormat(Codec codec) {
    return codec == Codec::Avc;
}

struct Counts {
    size_t streams = 0;
    size_t frames = 0;
    size_t withCaptions = 0;
    size_t constructs = 0;
    size_t withActiveFormat = 0;
};

void compareFrames(const DecodedFrames& stream, Counts& counts) {
    for (size_t i = 0; i < stream.frames.size(); ++i) {
        SCOPED_TRACE("frame " + std::to_string(i));
        const DecodedFrame& frame = stream.frames[i];
        const Found found = findIn(stream.packets.at(frame.packet), stream.codec);
        EXPECT_EQ(bytesOf(found.captions), frame.captions);
        if (readsActiveFormat(stream.codec) || frame.activeFormat) {
            EXPECT_EQ(found.activeFormat, frame.activeFormat);
        }
        ++counts.frames;
        counts.withCaptions += found.captions.count > 0 ? 1U : 0U;
        counts.constructs += found.captions.count;
        counts.withActiveFormat += found.activeFormat ? 1U : 0U;
    }
}

size_t countOf(const nlohmann::json& section, const char* key) {
    return section.contains(key) ? section.at(key).get<size_t>() : 0;
}

// What the expectation says of the first frames.
void compareExpectation(const DecodedFrames& stream, const nlohmann::json& expectation) {
    const nlohmann::json& decoded = expectation.at("decoded_frames");
    const size_t checked = std::min(decoded.at("checked").get<size_t>(), stream.frames.size());
    size_t captions = 0;
    size_t activeFormats = 0;
    for (size_t i = 0; i < checked; ++i) {
        const Found found = findIn(stream.packets.at(stream.frames[i].packet), stream.codec);
        captions += found.captions.count > 0 ? 1U : 0U;
        activeFormats += found.activeFormat ? 1U : 0U;
    }
    EXPECT_EQ(captions, countOf(decoded.at("side_data_counts"), kCaptionsOfWitness));
    const bool isRead = readsActiveFormat(stream.codec);
    EXPECT_EQ(isRead ? activeFormats : 0, countOf(decoded.at("side_data_counts"), kActiveFormatOfWitness));
}

// The services of streams, as mediainfo 23.04 names them where it reads the stream: not in Matroska and not
// in H.265.
const std::map<std::string, std::string> kServices = {
    {"avc_a53_hand.h264", "CC1"},
    {"avc_a53_variants.h264", "CC1"},
    {"avc_a53_x264.h264", "CC1"},
    {"avc_a53_x264_hrd.h264", "CC1"},
    {"avc_afd.h264", ""},
    {"avc_cc.mkv", "CC1"},
    {"avc_cc.mp4", "CC1"},
    {"avc_cc.ts", "CC1"},
    {"avc_cc.ts.es.h264", "CC1"},
    {"avc_emulation.h264", ""},
    {"avc_multi_message.h264", "CC1"},
    {"hevc_a53_hand.h265", "CC1"},
    {"hevc_a53_variants.h265", "CC1"},
    {"hevc_multi_message.h265", "CC1"},
    {"hevc_vivid_hdr10plus_a53_hand.h265", "CC1"},
};

void compareStream(const std::filesystem::path& file, const Stream& stream, Counts& counts) {
    const DecodedFrames decoded = framesOf(file);
    compareFrames(decoded, counts);
    compareExpectation(decoded, stream.expectation);
    const CaptionServices services = orderedServices(decoded);
    const auto expected = kServices.find(stream.name);
    EXPECT_EQ(namesOf(services), expected == kServices.end() ? "" : expected->second);
    ++counts.streams;
}

bool hasUserData(const Stream& stream) {
    return countOf(stream.expectation.at("sei").at("payload_type_counts"), "4") > 0;
}

class CaptionParity : public StreamFolderTest<::testing::Test> {};

TEST_P(CaptionParity, EveryFrameAgreesWithTheDecoder) {
    Counts counts;
    for (const Stream& stream : streamsIn(GetParam().path)) {
        SCOPED_TRACE(stream.name);
        if (hasUserData(stream)) {
            compareStream(GetParam().path / stream.name, stream, counts);
        } else {
            const nlohmann::json& decoded = stream.expectation.at("decoded_frames").at("side_data_counts");
            EXPECT_EQ(countOf(decoded, kCaptionsOfWitness) + countOf(decoded, kActiveFormatOfWitness), 0U);
        }
    }
    std::cout << counts.streams << " streams, " << counts.frames << " frames; " << counts.withCaptions
              << " with captions (" << counts.constructs << " constructs), " << counts.withActiveFormat
              << " with an active format\n";
    EXPECT_EQ(counts.withCaptions > 0, std::string(GetParam().name) == "folder");
}

INSTANTIATE_TEST_SUITE_P(Streams, CaptionParity, everyStreamFolder(),
                         [](const auto& folder) { return nameOf(folder); });

}  // namespace

}  // namespace qv_test
