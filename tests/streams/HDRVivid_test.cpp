// Compares the stand-alone core's HDR Vivid parser with the side data of libavcodec's decoded frames, and
// with the values the messages were made from.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <set>
#include <string>

#include "HdrVividSyntax.h"
#include "HevcMessages.h"
#include "QVHDRVividDynamicMetadata.h"
#include "QVSeiItem.h"
#include "StreamExpectation.h"

namespace qv_test {
namespace {

using nlohmann::json;

const char* const kSideData = "HDR Dynamic Metadata CUVA 005.1 2021 (Vivid)";
const Bytes kVividHeader = {0x26, 0x00, 0x04, 0x00, 0x05, 0x01};

class StreamHdrVivid : public ::testing::Test {
protected:
    void SetUp() override {
        if (!std::filesystem::is_directory(streamsFolder())) {
            GTEST_SKIP() << "there is no folder " << streamsFolder()
                         << "; -DQVNALU_STREAMS_DIR=... names another";
        }
    }
};

bool isVivid(const Bytes& payload) {
    return payload.size() > kVividHeader.size() &&
           std::equal(kVividHeader.begin(), kVividHeader.end(), payload.begin());
}

int fill(Bytes payload, QVHDRVividDynamicMetadata& metadata) {
    const QVSeiItem item = {QVCodecIDHevc, 4, static_cast<uint32_t>(payload.size()), false, payload.data()};
    return qv_hdr_vivid_parser::fillHDRVividDynamicMetadataFromHevcUserDataRegisteredSei(item, &metadata);
}

QVHDRVividDynamicMetadata metadataOf(const Bytes& payload) {
    QVHDRVividDynamicMetadata metadata{};
    EXPECT_EQ(fill(payload, metadata), QVHDRVividOk);
    return metadata;
}

// Converts "numerator/denominator" to a value.
double fraction(const json& text) {
    const std::string value = text;
    const size_t slash = value.find('/');
    return std::stod(value.substr(0, slash)) / std::stod(value.substr(slash + 1));
}

void expectBase(const QVHDRVividToneMapping& mapping, const json& decoded) {
    EXPECT_EQ(mapping.base_enable_flag, decoded.at("base_enable_flag"));
    EXPECT_DOUBLE_EQ(qvHdrVividM_p(mapping), fraction(decoded.at("base_param_m_p")));
    EXPECT_DOUBLE_EQ(qvHdrVividM_m(mapping), fraction(decoded.at("base_param_m_m")));
    EXPECT_DOUBLE_EQ(qvHdrVividM_a(mapping), fraction(decoded.at("base_param_m_a")));
    EXPECT_DOUBLE_EQ(qvHdrVividM_b(mapping), fraction(decoded.at("base_param_m_b")));
    EXPECT_DOUBLE_EQ(qvHdrVividM_n(mapping), fraction(decoded.at("base_param_m_n")));
    EXPECT_EQ(mapping.base_param_K1, decoded.at("base_param_k1"));
    EXPECT_EQ(mapping.base_param_K2, decoded.at("base_param_k2"));
    EXPECT_EQ(mapping.base_param_K3, decoded.at("base_param_k3"));
    EXPECT_EQ(mapping.base_param_Delta_enable_mode, decoded.at("base_param_Delta_enable_mode"));
    EXPECT_DOUBLE_EQ(qvHdrVividDelta(mapping), fraction(decoded.at("base_param_Delta")));
}

// The decoder stores one spline. It reports the last one, with the last TH_enable_MB that was present. Its
// deltas are codes over 1023, without the factor 0.25.
void expectSplines(const QVHDRVividToneMapping& mapping, const json& decoded) {
    EXPECT_EQ(mapping.three_Spline_enable_flag, decoded.at("3Spline_enable_flag"));
    ASSERT_EQ(mapping.numSplines, decoded.at("3Spline_num"));
    ASSERT_EQ(mapping.numSplines, 2U);
    const QVHDRVividSpline& last = mapping.splines[1];
    EXPECT_EQ(last.TH_enable_mode, decoded.at("3Spline_TH_mode"));
    ASSERT_EQ(last.has_TH_enable_MB, 0U);
    ASSERT_EQ(mapping.splines[0].has_TH_enable_MB, 1U);
    EXPECT_DOUBLE_EQ(qvHdrVividThMb(mapping.splines[0]), fraction(decoded.at("3Spline_TH_enable_MB")));
    EXPECT_DOUBLE_EQ(qvHdrVividTh(last), fraction(decoded.at("3Spline_TH_enable")));
    EXPECT_DOUBLE_EQ(qvHdrVividThDelta1(last), 0.25 * fraction(decoded.at("3Spline_TH_Delta1")));
    EXPECT_DOUBLE_EQ(qvHdrVividThDelta2(last), 0.25 * fraction(decoded.at("3Spline_TH_Delta2")));
    EXPECT_DOUBLE_EQ(qvHdrVividStrength(last), fraction(decoded.at("3Spline_enable_Strength")));
}

void expectDecoded(const QVHDRVividDynamicMetadata& metadata, const json& decoded) {
    EXPECT_EQ(metadata.system_start_code, decoded.at("system_start_code"));
    EXPECT_EQ(decoded.at("num_windows"), 1);
    EXPECT_DOUBLE_EQ(qvHdrVividPq(metadata.minimum_maxrgb_pq), fraction(decoded.at("minimum_maxrgb")));
    EXPECT_DOUBLE_EQ(qvHdrVividPq(metadata.average_maxrgb_pq), fraction(decoded.at("average_maxrgb")));
    EXPECT_DOUBLE_EQ(qvHdrVividPq(metadata.variance_maxrgb_pq), fraction(decoded.at("variance_maxrgb")));
    EXPECT_DOUBLE_EQ(qvHdrVividPq(metadata.maximum_maxrgb_pq), fraction(decoded.at("maximum_maxrgb")));
    EXPECT_EQ(metadata.tone_mapping_enable_mode_flag, decoded.at("tone_mapping_mode_flag"));
    EXPECT_EQ(metadata.numToneMappings, decoded.value("tone_mapping_param_num", 0));
    EXPECT_EQ(metadata.color_saturation_mapping_enable_flag, decoded.at("color_saturation_mapping_flag"));
    EXPECT_EQ(metadata.color_saturation_enable_num, decoded.value("color_saturation_num", 0));
}

// Compares one tone mapping and one gain. If there are several, the decoder prints only the last.
void expectDecodedMappings(const QVHDRVividDynamicMetadata& metadata, const json& decoded) {
    ASSERT_EQ(metadata.numToneMappings, 1U);
    EXPECT_DOUBLE_EQ(qvHdrVividPq(metadata.toneMappings[0].targeted_system_display_maximum_luminance_pq),
                     fraction(decoded.at("targeted_system_display_maximum_luminance")));
    expectBase(metadata.toneMappings[0], decoded);
    expectSplines(metadata.toneMappings[0], decoded);
    ASSERT_EQ(metadata.color_saturation_enable_num, 1U);
    EXPECT_DOUBLE_EQ(qvHdrVividGain(metadata.color_saturation_enable_gain[0]),
                     fraction(decoded.at("color_saturation_gain")));
}

TEST_F(StreamHdrVivid, theFirstFrameAsDecoded) {
    std::set<std::string> withMappings;
    std::set<std::string> withoutMappings;
    for (const HevcStream& stream : hevcStreamsWith(4)) {
        if (!stream.sideData.contains(kSideData)) {
            continue;
        }
        SCOPED_TRACE(stream.name);
        const auto first = std::find_if(stream.messages.begin(), stream.messages.end(),
                                        [](const HevcMessage& message) { return isVivid(message.payload); });
        ASSERT_NE(first, stream.messages.end());
        const QVHDRVividDynamicMetadata metadata = metadataOf(first->payload);
        const json& decoded = stream.sideData.at(kSideData);
        expectDecoded(metadata, decoded);
        if (decoded.at("tone_mapping_mode_flag") == 1) {
            expectDecodedMappings(metadata, decoded);
            withMappings.insert(stream.name);
        } else {
            withoutMappings.insert(stream.name);
        }
    }
    EXPECT_EQ(withMappings, (std::set<std::string>{"hevc_vivid_hand.h265", "hevc_vivid_hand.mkv",
                                                   "hevc_vivid_hdr10plus_a53_hand.h265"}));
    EXPECT_EQ(withoutMappings, (std::set<std::string>{"hevc_emulation.h265"}));
}

// Returns the metadata that was written for a picture of hevc_vivid_hand and hevc_vivid_hdr10plus_a53_hand.
// The range changes with the picture's number. The first pictures have splines, the last ones have no tone
// mapping.
HdrVividSyntax markOf(uint32_t picture, bool hasToneMapping, bool hasSplines) {
    HdrVividSyntax syntax;
    syntax.minimum_maxrgb_pq = 10 + picture;
    syntax.maximum_maxrgb_pq = 3000 + picture;
    syntax.tone_mapping_enable_mode_flag = hasToneMapping ? 1 : 0;
    HdrVividToneMappingSyntax& mapping = syntax.toneMappings[0];
    mapping = {2080, 1, 5915, 24, 1000, 6, 10, 1, 1, 1, 0, 3, hasSplines ? 1U : 0U, 1, {}};
    mapping.splines = {{{0, 20, 600, 200, 300, 128}, {1, 0, 601, 200, 300, 128}}};
    syntax.color_saturation_mapping_enable_flag = 1;
    syntax.color_saturation_enable_num = 1;
    syntax.color_saturation_enable_gain[0] = 64;
    return syntax;
}

void expectMark(const Bytes& payload, const HdrVividSyntax& mark) {
    EXPECT_EQ(payload, hdrVivid(mark).trailingBits().bytes());
    const QVHDRVividDynamicMetadata metadata = metadataOf(payload);
    EXPECT_EQ(metadata.minimum_maxrgb_pq, mark.minimum_maxrgb_pq);
    EXPECT_EQ(metadata.average_maxrgb_pq, 900U);
    EXPECT_EQ(metadata.variance_maxrgb_pq, 300U);
    EXPECT_EQ(metadata.maximum_maxrgb_pq, mark.maximum_maxrgb_pq);
    EXPECT_EQ(metadata.numToneMappings, mark.tone_mapping_enable_mode_flag);
    const bool hasSplines =
        mark.tone_mapping_enable_mode_flag == 1 && mark.toneMappings[0].three_Spline_enable_flag == 1;
    EXPECT_EQ(metadata.toneMappings[0].numSplines, hasSplines ? 2U : 0U);
    EXPECT_EQ(metadata.toneMappings[0].splines[0].TH_enable, hasSplines ? 600U : 0U);
    EXPECT_EQ(metadata.toneMappings[0].splines[1].TH_enable, hasSplines ? 601U : 0U);
    EXPECT_EQ(metadata.color_saturation_enable_num, 1U);
    EXPECT_EQ(metadata.color_saturation_enable_gain[0], 64U);
}

TEST_F(StreamHdrVivid, everyPictureAsMarked) {
    for (const char* const name : {"hevc_vivid_hand.h265", "hevc_vivid_hand.mkv"}) {
        const HevcStream stream = hevcStreamWith(4, name);
        ASSERT_EQ(stream.messages.size(), 12U);
        for (uint32_t picture = 0; picture < 10; ++picture) {
            SCOPED_TRACE(std::string(name) + ", picture " + std::to_string(picture));
            expectMark(stream.messages[picture].payload, markOf(picture, picture < 7, picture < 4));
        }
    }
}

TEST_F(StreamHdrVivid, everyPictureAmongOtherUserDataAsMarked) {
    const HevcStream stream = hevcStreamWith(4, "hevc_vivid_hdr10plus_a53_hand.h265");
    ASSERT_EQ(stream.messages.size(), 36U);
    for (uint32_t picture = 0; picture < 12; ++picture) {
        SCOPED_TRACE(picture);
        expectMark(stream.messages[3 * picture].payload, markOf(picture, true, true));
    }
}

// Messages of other kinds, and HDR Vivid messages that end within their header.
TEST_F(StreamHdrVivid, otherMessagesAreRefused) {
    std::set<int> statuses;
    for (const HevcStream& stream : hevcStreamsWith(4)) {
        for (const HevcMessage& message : stream.messages) {
            if (isVivid(message.payload)) {
                continue;
            }
            SCOPED_TRACE(stream.name + ": " + message.hex);
            QVHDRVividDynamicMetadata metadata{};
            metadata.system_start_code = 99;
            const int status = fill(message.payload, metadata);
            EXPECT_EQ(status, message.payload.at(0) == 0x26 ? QVHDRVividTruncated : QVHDRVividForeignHeader);
            EXPECT_EQ(metadata.system_start_code, 99U) << "the record was written";
            statuses.insert(status);
        }
    }
    EXPECT_EQ(statuses, (std::set<int>{QVHDRVividForeignHeader, QVHDRVividTruncated}));
}

}  // namespace
}  // namespace qv_test
