// State across access units, and the content of configuration records.
#include "analysis/StreamDetails.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include <optional>
#include <string>
#include <vector>

#include "AvcPictures.h"
#include "InspectSupport.h"
#include "Mp4Writer.h"
#include "analysis/StreamTotals.h"
#include "bitstream/hevc/NalUnitType.h"

namespace qv_test {
namespace {

using namespace qvinspect;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;

// Inspects a stream as the program does: byte stream access units after a configuration record.
class Inspected {
public:
    explicit Inspected(QVCodecID codec, const Bytes& record = {})
        : codec_(codec), details_(codec, {}), counter_(infoOf(codec)) {
        configuration_ = details_.addConfiguration(record);
        counter_.addConfiguration(configuration_);
    }

    Inspected& add(const std::vector<Bytes>& units) {
        const Bytes bytes = byteStream(units);
        AccessUnit accessUnit;
        accessUnit.data = bytes.data();
        accessUnit.size = bytes.size();
        accessUnit.parameters = byteStreamOf(codec_);
        AccessUnitReport report = analyse(accessUnit);
        last_ = details_.add(accessUnit, report);
        counter_.add(viewOf(++number_, accessUnit, report, last_));
        findings_ = describe(report.findings);
        return *this;
    }

    const ConfigurationDetails& configuration() const { return configuration_; }
    const AccessUnitDetails& last() const { return last_; }
    const StreamTotals& totals() const { return counter_.totals(); }
    const std::vector<std::string>& findings() const { return findings_; }  // of the last access unit

private:
    static StreamInfo infoOf(QVCodecID codec) {
        StreamInfo info;
        info.parameters = byteStreamOf(codec);
        return info;
    }

    QVCodecID codec_;
    StreamDetails details_;
    StreamCounter counter_;
    ConfigurationDetails configuration_;
    AccessUnitDetails last_;
    std::vector<std::string> findings_;
    uint64_t number_ = 0;
};

// --- Sequence parameter sets ---

Bytes spsOf(uint32_t macroblocksWide, uint32_t id = 0) {
    return avcSpsUnit([=](AvcSpsSyntax& sps) {
        sps.seq_parameter_set_id = id;
        sps.pic_width_in_mbs_minus1 = macroblocksWide - 1;
    });
}

TEST(StreamDetails, parameterSetsThatReturn) {
    Inspected stream(QVCodecIDAvc);
    stream.add({spsOf(2)});
    EXPECT_TRUE(stream.last().units[0].newSps);
    EXPECT_EQ(stream.last().sps->avc.mb_width, 2);
    stream.add({spsOf(3)});
    EXPECT_TRUE(stream.last().units[0].newSps);
    EXPECT_EQ(stream.last().sps->avc.mb_width, 3);

    // The first one returns: it is active again, and not new.
    stream.add({spsOf(2)});
    EXPECT_FALSE(stream.last().units[0].newSps);
    EXPECT_TRUE(stream.last().units[0].isRepeatedSps);
    EXPECT_EQ(stream.last().sps->avc.mb_width, 2);

    stream.add({spsOf(3), spsOf(3), spsOf(2, 1)});
    EXPECT_EQ(stream.totals().distinctSps, 3U);
    EXPECT_EQ(stream.totals().repeatedSps, 3U);
}

TEST(StreamDetails, refusedParameterSetsThatReturn) {
    const Bytes refused = spsOf(2, 40);  // above 31
    const Bytes other = spsOf(2, 41);
    Inspected stream(QVCodecIDAvc);
    stream.add({refused}).add({other}).add({refused});
    EXPECT_EQ(stream.totals().refusedSps, 2U);
    EXPECT_EQ(stream.totals().repeatedSps, 1U);
}

TEST(StreamDetails, parameterSetOfTheRecordThatComesAgain) {
    Inspected stream(QVCodecIDAvc, avcRecord({spsOf(2)}, {avcPpsUnit()}));
    stream.add({spsOf(2)});
    EXPECT_EQ(stream.totals().distinctSps, 1U);
    EXPECT_EQ(stream.totals().repeatedSps, 1U);
}

// --- The VPS of an SPS ---

Bytes vpsAt(uint32_t framesPerSecond) {
    qv::hevc::Vps vps{};
    vps.header.nal_unit_type = qv::hevc::kNalVps;
    vps.header.nuh_temporal_id_plus1 = 1;
    vps.vps_base_layer_internal_flag = true;
    vps.vps_base_layer_available_flag = true;
    vps.profile_tier_level.general.profile_idc = 1;
    vps.profile_tier_level.general_level_idc = 60;
    vps.vps_timing_info_present_flag = true;
    vps.vps_num_units_in_tick = 1;
    vps.vps_time_scale = framesPerSecond;
    Bytes unit;
    EXPECT_TRUE(qv::hevc::writeVps(vps, unit).ok());
    return unit;
}

Bytes spsWithoutTiming() {
    qv::hevc::Sps sps{};
    sps.header.nal_unit_type = qv::hevc::kNalSps;
    sps.header.nuh_temporal_id_plus1 = 1;
    sps.profile_tier_level.general.profile_idc = 1;
    sps.profile_tier_level.general_level_idc = 60;
    sps.chroma_format_idc = 1;
    sps.pic_width_in_luma_samples = 320;
    sps.pic_height_in_luma_samples = 192;
    sps.log2_diff_max_min_luma_coding_block_size = 3;
    sps.log2_diff_max_min_luma_transform_block_size = 3;
    Bytes unit;
    EXPECT_TRUE(qv::hevc::writeSps(sps, unit).ok());
    return unit;
}

qv::Ratio frameRateOf(const Inspected& stream) {
    return stream.totals().sps ? stream.totals().sps->video->frameRate : qv::Ratio();
}

TEST(StreamDetails, timingOfTheVps) {
    Inspected inStream(QVCodecIDHevc);
    inStream.add({vpsAt(50), spsWithoutTiming()});
    EXPECT_EQ(frameRateOf(inStream), qv::ratioOf(50, 1));

    const Inspected inRecord(QVCodecIDHevc, hevcRecord({{vpsAt(25)}, {spsWithoutTiming()}}));
    EXPECT_EQ(frameRateOf(inRecord), qv::ratioOf(25, 1));

    Inspected without(QVCodecIDHevc);
    without.add({spsWithoutTiming()});
    ASSERT_TRUE(without.totals().sps);
    EXPECT_FALSE(frameRateOf(without).isKnown());
}

// --- SEI units of configuration records ---

// mastering_display_colour_volume and content_light_level_info in an H.265 prefix SEI unit each.
Bytes masteringDisplay() {
    return hex("4E 01 89 18 33 C2 86 C4 1D 4C 0B B8 84 D0 3E 80 3D 13 40 42 00 98 96 80 00 00 03 00 32 80");
}

Bytes contentLight() {
    return hex("4E 01 90 04 03 E8 01 90 80");
}

Bytes hdrRecord() {
    return hevcRecord({{hex("40 01")}, {masteringDisplay(), contentLight()}});
}

const std::vector<Bytes> kHevcPicture = {hex("26 01 AF 08")};

TEST(StreamDetails, seiOfARecordCountsWithTheFirstAccessUnit) {
    Inspected stream(QVCodecIDHevc, hdrRecord());
    ASSERT_EQ(stream.configuration().seiUnits.size(), 2U);
    EXPECT_EQ(stream.configuration().seiUnits[0].messages.at(0).payloadType, 137U);
    EXPECT_EQ(stream.totals().messagesByType.size(), 0U);

    stream.add(kHevcPicture);
    EXPECT_EQ(stream.last().recordSei.size(), 2U);
    EXPECT_EQ(stream.last().seiItems, 1U);  // the library keeps mastering displays only
    stream.add(kHevcPicture);
    EXPECT_THAT(stream.last().recordSei, IsEmpty());
    EXPECT_EQ(stream.last().seiItems, 0U);
    EXPECT_THAT(stream.totals().messagesByType, ElementsAre(Pair(137, 1), Pair(144, 1)));
    EXPECT_THAT(stream.totals().signals.hdrClasses(), ElementsAre("unknown"));
    EXPECT_EQ(stream.totals().signals.contentLight->max_content_light_level, 1000);
    EXPECT_EQ(stream.totals().signals.masteringDisplay->max_display_mastering_luminance, 10000000U);
    EXPECT_EQ(stream.totals().errors, 0U);
}

TEST(StreamDetails, seiOfARecordThatTheFirstAccessUnitBringsAsWell) {
    Inspected stream(QVCodecIDHevc, hdrRecord());
    stream.add({masteringDisplay(), kHevcPicture[0]});
    EXPECT_EQ(stream.last().recordSei.size(), 1U);
    EXPECT_THAT(stream.totals().messagesByType, ElementsAre(Pair(137, 1), Pair(144, 1)));
}

TEST(StreamDetails, seiOfAnAvcRecord) {
    const Bytes sei = hex("06 90 04 03 E8 01 90 80");
    Inspected stream(QVCodecIDAvc, avcRecord({spsOf(2), sei}, {avcPpsUnit()}));
    stream.add({avcSliceUnit({})});
    EXPECT_THAT(stream.totals().messagesByType, ElementsAre(Pair(144, 1)));
    EXPECT_THAT(stream.totals().signals.hdrClasses(), ElementsAre("unknown"));
}

TEST(StreamDetails, brokenSeiOfARecord) {
    Inspected stream(QVCodecIDHevc, hevcRecord({{hex("40 01")}, {hex("4E 01 90 04 03")}}));
    EXPECT_THAT(
        describe(stream.configuration().findings),
        ElementsAre("note: SEI unit 1 of the configuration record: the player's library ends its walk "
                    "of the SEI unit with 11000001: parserPayloadParams SEI type 144 size 4 truncated "
                    "at 1 (offset 0 of the unit)",
                    "error: SEI unit 1 of the configuration record: SEI message 1 of the unit is "
                    "truncated: payloadType 144, payloadSize 4, of which 1 bytes are present (offset 2 "
                    "of the unit)"));

    // The library reads the first message only.
    const Bytes second = hex("4E 01 90 04 03 E8 01 90 05 10 AA 80");
    EXPECT_THAT(
        describe(Inspected(QVCodecIDHevc, hevcRecord({{hex("40 01")}, {contentLight(), second}}))
                     .configuration()
                     .findings),
        ElementsAre("error: SEI unit 2 of the configuration record: SEI message 2 of the unit is truncated: "
                    "payloadType 5, payloadSize 16, of which 2 bytes are present (offset 8 of the "
                    "unit)"));
}

// HLG in the VUI, transfer_characteristics 18, as an encoder wrote it.
TEST(StreamDetails, hlgWithAMasteringDisplay) {
    const Bytes sps =
        hex("42 01 01 02 20 00 00 03 00 90 00 00 03 00 00 03 00 3C A0 0A 08 0B 9F 6D 96 56 69 24 CA F0 16 "
            "A1 22 41 20 80 00 00 03 00 80 00 00 19 04");
    Inspected stream(QVCodecIDHevc);
    stream.add({sps, masteringDisplay(), contentLight(), kHevcPicture[0]});
    EXPECT_EQ(stream.totals().signals.transfer_characteristics, 18U);
    EXPECT_THAT(stream.totals().signals.hdrClasses(), ElementsAre("HLG"));
}

// --- Truncated messages ---

struct TruncatedMessage {
    const char* name;
    QVCodecID codec;
    const char* unit;
    std::vector<std::string> findings;
};

// Units begin at 4.
TEST(StreamDetails, truncatedMessages) {
    const std::string walk = "note at 4: the player's library ends its walk of the SEI unit with 11000001: ";
    const TruncatedMessage cases[] = {
        {"whole", QVCodecIDHevc, "4E 01 90 04 03 E8 01 90 C7 01 AA 80", {}},
        // The player's library reads the first message only.
        {"second of H.265",
         QVCodecIDHevc,
         "4E 01 90 04 03 E8 01 90 05 10 AA 80",
         {"error at 12: SEI message 2 of the unit is truncated: payloadType 5, payloadSize 16, of which 2 "
          "bytes are present"}},
        {"third of H.265",
         QVCodecIDHevc,
         "4E 01 90 04 03 E8 01 90 C7 00 05 03 80",
         {"error at 14: SEI message 3 of the unit is truncated: payloadType 5, payloadSize 3, of which 1 "
          "bytes are present"}},
        {"after emulation prevention",
         QVCodecIDHevc,
         "4E 01 C7 03 00 00 03 01 05 10 80",
         {"error at 12: SEI message 2 of the unit is truncated: payloadType 5, payloadSize 16, of which 1 "
          "bytes are present"}},
        // The walk of the player's library does not treat fewer than three bytes as a message.
        {"last of H.264",
         QVCodecIDAvc,
         "06 C7 01 AA 05 10",
         {"error at 8: SEI message 2 of the unit is truncated: payloadType 5, payloadSize 16, of which 0 "
          "bytes are present"}},
        {"first of H.265",
         QVCodecIDHevc,
         "4E 01 90 04 03 80",
         {walk + "parserPayloadParams SEI type 144 size 4 truncated at 2",
          "error at 6: SEI message 1 of the unit is truncated: payloadType 144, payloadSize 4, of which 2 "
          "bytes are present"}},
        {"first of H.264",
         QVCodecIDAvc,
         "06 05 10 AA 80",
         {walk + "parserPayloadParams SEI type 5 size 16 truncated at 2",
          "error at 5: SEI message 1 of the unit is truncated: payloadType 5, payloadSize 16, of which 2 "
          "bytes are present"}},
        {"header alone",
         QVCodecIDHevc,
         "4E 01 90 04 03 E8 01 90 05",
         {"error at 12: SEI message 2 of the unit: the unit ends within payloadType or payloadSize"}},
        {"without trailing bits",
         QVCodecIDHevc,
         "4E 01 90 04 03 E8 01 90",
         {"error at 6: SEI message 1 of the unit: no rbsp_trailing_bits() after the last message"}},
        {"a payload that is shorter than its syntax",
         QVCodecIDHevc,
         "4E 01 90 02 03 E8 C7 00 80",
         {"error at 8: SEI 144 content_light_level_info: max_pic_average_light_level in "
          "content_light_level_info() (D.2.35) at bit 48: the data ends"}},
    };
    for (const TruncatedMessage& row : cases) {
        SCOPED_TRACE(row.name);
        Inspected stream(row.codec);
        stream.add({hex(row.unit)});
        EXPECT_EQ(stream.findings(), row.findings);
        const auto errors = std::count_if(row.findings.begin(), row.findings.end(),
                                          [](const std::string& text) { return text.find("error") == 0; });
        EXPECT_EQ(stream.totals().errors, static_cast<uint64_t>(errors));
    }
}

}  // namespace
}  // namespace qv_test
