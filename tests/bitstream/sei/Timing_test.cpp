// Buffering periods and picture timing.
#include "bitstream/sei/Timing.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "PayloadBits.h"
#include "PayloadChecks.h"
#include "SetsOfMessages.h"
#include "bitstream/hevc/Vps.h"
#include "bitstream/sei/HrdInForce.h"
#include "bitstream/sei/TimingSyntax.h"

namespace {

using namespace qv_test;
using namespace qv::sei;
using qv::Codec;
using testing::IsSupersetOf;
using testing::StartsWith;

// --- H.264 ---

qv::avc::Hrd avcHrd(uint32_t cpbs, uint32_t initial, uint32_t cpb, uint32_t dpb,
                    uint32_t time_offset_length) {
    qv::avc::Hrd hrd = {};
    hrd.cpb_cnt_minus1 = cpbs - 1;
    hrd.initial_cpb_removal_delay_length_minus1 = initial - 1;
    hrd.cpb_removal_delay_length_minus1 = cpb - 1;
    hrd.dpb_output_delay_length_minus1 = dpb - 1;
    hrd.time_offset_length = time_offset_length;
    return hrd;
}

qv::avc::Vui avcVui(const qv::avc::Hrd* nal, const qv::avc::Hrd* vcl, bool pic_struct_present_flag) {
    qv::avc::Vui vui = {};
    vui.nal_hrd_parameters_present_flag = nal != nullptr;
    vui.nal_hrd_parameters = nal != nullptr ? *nal : qv::avc::Hrd();
    vui.vcl_hrd_parameters_present_flag = vcl != nullptr;
    vui.vcl_hrd_parameters = vcl != nullptr ? *vcl : qv::avc::Hrd();
    vui.pic_struct_present_flag = pic_struct_present_flag;
    return vui;
}

// 0: both HRD, of short elements. 1: NAL, of long ones, no time_offset. 2: VCL, no pic_struct. 3: pic_struct
// alone. 31: no VUI.
const qv::avc::ParameterSets& avcSets() {
    static const std::unique_ptr<qv::avc::ParameterSets> kSets = [] {
        auto sets = std::make_unique<qv::avc::ParameterSets>();
        const qv::avc::Hrd twoCpbs = avcHrd(2, 8, 5, 4, 6);
        const qv::avc::Hrd oneCpb = avcHrd(1, 8, 5, 4, 6);
        const qv::avc::Hrd longest = avcHrd(32, 32, 32, 32, 0);
        const qv::avc::Vui vuis[] = {avcVui(&twoCpbs, &oneCpb, true), avcVui(&longest, nullptr, true),
                                     avcVui(nullptr, &twoCpbs, false), avcVui(nullptr, nullptr, true)};
        for (uint32_t id = 0; id < 4; ++id) {
            const auto sps = plainAvcSps(id);
            sps->data.vui_parameters_present_flag = true;
            sps->data.vui = vuis[id];
            takeWritten(*sets, *sps);
        }
        takeWritten(*sets, *plainAvcSps(31));
        return sets;
    }();
    return *kSets;
}

// Messages of a picture with an SPS of avcSets().
Context avcContext(uint32_t seq_parameter_set_id) {
    Context context(avcSets());
    context.avcSps = &avcSets().sps(seq_parameter_set_id)->data;
    return context;
}

PayloadUnderTest<AvcBufferingPeriod> avcBufferingPeriod() {
    auto structure = payloadUnderTest<AvcBufferingPeriod>(
        avcContext(0), [](auto& s, const auto& c, auto& payload) { buffering_period(s, c, payload); });
    structure.violable = 4;
    structure.steer = [](RandomUnit& unit, Random&) {
        unit.choose("seq_parameter_set_id", {0, 0, 1, 2, 31});
    };
    return structure;
}

PayloadUnderTest<AvcPicTiming> avcPicTiming(uint32_t spsId) {
    auto structure = payloadUnderTest<AvcPicTiming>(
        avcContext(spsId), [](auto& s, const auto& c, auto& payload) { pic_timing(s, c, payload); });
    structure.violable = 4;
    return structure;
}

// --- H.265 ---

struct HevcLengths {
    uint32_t initial, au, dpb;
};

qv::hevc::Hrd hevcHrd(uint32_t cpbs, bool nal, bool vcl, const HevcLengths& lengths) {
    qv::hevc::Hrd hrd = {};
    hrd.common.nal_hrd_parameters_present_flag = nal;
    hrd.common.vcl_hrd_parameters_present_flag = vcl;
    hrd.common.initial_cpb_removal_delay_length_minus1 = lengths.initial - 1;
    hrd.common.au_cpb_removal_delay_length_minus1 = lengths.au - 1;
    hrd.common.dpb_output_delay_length_minus1 = lengths.dpb - 1;
    hrd.sub_layer[0].fixed_pic_rate_general_flag = true;
    hrd.sub_layer[0].fixed_pic_rate_within_cvs_flag = true;
    hrd.sub_layer[0].cpb_cnt_minus1 = cpbs - 1;
    return hrd;
}

void setSubPicParams(qv::hevc::Hrd& hrd, bool in_pic_timing_sei) {
    hrd.common.sub_pic_hrd_params_present_flag = true;
    hrd.common.du_cpb_removal_delay_increment_length_minus1 = 3;
    hrd.common.sub_pic_cpb_params_in_pic_timing_sei_flag = in_pic_timing_sei;
    hrd.common.dpb_output_delay_du_length_minus1 = 2;
}

void takeHevcSps(qv::hevc::ParameterSets& sets, uint32_t id, const qv::hevc::Hrd* hrd, bool frame_field_info,
                 uint32_t vpsId = 5) {
    const auto sps = plainHevcSps(id);
    sps->sps_video_parameter_set_id = vpsId;
    sps->vui_parameters_present_flag = true;
    sps->vui.frame_field_info_present_flag = frame_field_info;
    if (hrd != nullptr) {
        sps->vui.vui_timing_info_present_flag = true;
        sps->vui.vui_num_units_in_tick = 1;
        sps->vui.vui_time_scale = 25;
        sps->vui.vui_hrd_parameters_present_flag = true;
        sps->vui.hrd_parameters = *hrd;
    }
    takeWritten(sets, *sps);
}

// VPS 3 with hrd_parameters() for the VCL: two CPBs; lengths 10, 8 and 6. VPS 4 without.
void takeVpsWithHrd(qv::hevc::ParameterSets& sets) {
    BitWriter bits;
    bits.ue("hrd_layer_set_idx[0]", 0).bits("nal, vcl, sub-picture", "010").bits("scales", "0000 0000");
    bits.u(5, "initial_cpb_removal_delay_length_minus1", 9).u(5, "au_cpb_removal_delay_length_minus1", 7);
    bits.u(5, "dpb_output_delay_length_minus1", 5).u(1, "fixed_pic_rate_general_flag", 1);
    bits.ue("elemental_duration_in_tc_minus1", 0).ue("cpb_cnt_minus1", 1);
    for (uint32_t i = 0; i < 2; ++i) {
        bits.ue("bit_rate_value_minus1", 9).ue("cpb_size_value_minus1", 9).u(1, "cbr_flag", 1);
    }
    const std::vector<uint8_t> hrd = bits.bytes();
    const auto vps = std::make_unique<qv::hevc::Vps>();
    vps->header.nal_unit_type = 32;
    vps->header.nuh_temporal_id_plus1 = 1;
    vps->vps_video_parameter_set_id = 4;
    vps->vps_base_layer_internal_flag = vps->vps_base_layer_available_flag = true;
    vps->vps_temporal_id_nesting_flag = true;
    vps->vps_reserved_0xffff_16bits = 0xFFFF;
    vps->profile_tier_level.general.profile_idc = 1;
    vps->vps_sub_layer_ordering_info_present_flag = true;
    vps->layer_id_included_flag[0] = 1;
    vps->vps_timing_info_present_flag = true;
    vps->vps_num_units_in_tick = 1;
    vps->vps_time_scale = 25;
    takeWritten(sets, *vps);
    vps->vps_video_parameter_set_id = 3;
    vps->vps_num_hrd_parameters = 1;
    vps->hrd_parameters.unit = bytesOf(hrd);
    vps->hrd_parameters.count = bits.bitCount();
    takeWritten(sets, *vps);
}

// 0: both HRD, decoding units in pic_timing(), of short elements. 1: NAL HRD, of long ones. 2: the HRD of the
// VPS. 3: decoding units in decoding_unit_info(), no frame_field_info. 4: no HRD at all.
const qv::hevc::ParameterSets& hevcSets() {
    static const std::unique_ptr<qv::hevc::ParameterSets> kSets = [] {
        auto sets = std::make_unique<qv::hevc::ParameterSets>();
        takeVpsWithHrd(*sets);
        qv::hevc::Hrd both = hevcHrd(2, true, true, {8, 6, 5});
        setSubPicParams(both, true);
        takeHevcSps(*sets, 0, &both, true);
        const qv::hevc::Hrd longest = hevcHrd(32, true, false, {32, 32, 32});
        takeHevcSps(*sets, 1, &longest, true);
        takeHevcSps(*sets, 2, nullptr, true, 3);
        qv::hevc::Hrd ofUnits = hevcHrd(1, false, true, {8, 6, 5});
        setSubPicParams(ofUnits, false);
        takeHevcSps(*sets, 3, &ofUnits, false);
        takeHevcSps(*sets, 4, nullptr, false);
        return sets;
    }();
    return *kSets;
}

Context hevcContext(uint32_t sps_seq_parameter_set_id) {
    Context context(hevcSets());
    context.hevcSps = hevcSets().sps(sps_seq_parameter_set_id);
    return context;
}

PayloadUnderTest<HevcBufferingPeriod> hevcBufferingPeriod() {
    auto structure = payloadUnderTest<HevcBufferingPeriod>(
        hevcContext(0), [](auto& s, const auto& c, auto& payload) { buffering_period(s, c, payload); });
    structure.optional = {"use_alt_cpb_params_flag"};
    structure.violable = 5;
    structure.steer = [](RandomUnit& unit, Random&) {
        unit.choose("bp_seq_parameter_set_id", {0, 0, 1, 2, 3, 4});
    };
    return structure;
}

PayloadUnderTest<HevcPicTiming> hevcPicTiming(uint32_t spsId) {
    auto structure = payloadUnderTest<HevcPicTiming>(
        hevcContext(spsId), [](auto& s, const auto& c, auto& payload) { pic_timing(s, c, payload); });
    structure.violable = 1;
    return structure;
}

PayloadUnderTest<DecodingUnitInfo> decodingUnitInfo(uint32_t spsId) {
    auto structure = payloadUnderTest<DecodingUnitInfo>(
        hevcContext(spsId), [](auto& s, const auto& c, auto& payload) { decoding_unit_info(s, c, payload); });
    structure.violable = 1;
    return structure;
}

// --- What holds for all of them ---

TEST(SeiTiming, roundTrips) {
    checkRoundTrips(avcBufferingPeriod(), unitRounds());
    checkRoundTrips(hevcBufferingPeriod(), unitRounds());
    for (uint32_t id = 0; id < 4; ++id) {
        SCOPED_TRACE(id);
        checkRoundTrips(avcPicTiming(id), unitRounds());
        checkRoundTrips(hevcPicTiming(id), unitRounds());
        checkRoundTrips(decodingUnitInfo(id), unitRounds());
    }
}

TEST(SeiTiming, everyRange) {
    EXPECT_THAT(checkRanges(avcBufferingPeriod(), unitRounds()),
                IsSupersetOf({"seq_parameter_set_id", "initial_cpb_removal_delay"}));
    EXPECT_THAT(checkRanges(avcPicTiming(0), unitRounds()),
                IsSupersetOf({"pic_struct", "seconds_value", "minutes_value", "hours_value"}));
    EXPECT_THAT(checkRanges(hevcBufferingPeriod(), unitRounds()),
                IsSupersetOf({"bp_seq_parameter_set_id", "nal_initial_cpb_removal_delay",
                              "vcl_initial_cpb_removal_delay", "nal_initial_alt_cpb_removal_delay",
                              "vcl_initial_alt_cpb_removal_delay"}));
    EXPECT_THAT(checkRanges(hevcPicTiming(0), unitRounds()), IsSupersetOf({"num_decoding_units_minus1"}));
    EXPECT_THAT(checkRanges(decodingUnitInfo(3), unitRounds()), IsSupersetOf({"decoding_unit_idx"}));
}

TEST(SeiTiming, cutAtEveryByte) {
    checkCuts(avcBufferingPeriod(), unitRounds(50));
    checkCuts(hevcBufferingPeriod(), unitRounds(50));
    for (uint32_t id = 0; id < 4; ++id) {
        SCOPED_TRACE(id);
        checkCuts(avcPicTiming(id), unitRounds(50));
        checkCuts(hevcPicTiming(id), unitRounds(50));
        checkCuts(decodingUnitInfo(id), unitRounds(50));
    }
}

uint64_t sumOfDecodingUnits(const HevcPicTiming& timing) {
    DecodingUnitReader units(timing);
    uint64_t sum = 0;
    for (DecodingUnit unit = {}; units.next(unit);) {
        sum += 1 + unit.num_nalus_in_du_minus1 + unit.du_cpb_removal_delay_increment_minus1;
    }
    return sum;
}

TEST(SeiTiming, noAllocationAndNoByteOutside) {
    checkMemory(avcBufferingPeriod(), unitRounds(25));
    checkMemory(hevcBufferingPeriod(), unitRounds(25));
    checkMemory(avcPicTiming(0), unitRounds(25));
    checkMemory(hevcPicTiming(0), unitRounds(25), {{"DecodingUnitReader", sumOfDecodingUnits}});
    checkMemory(hevcPicTiming(2), unitRounds(25));
    checkMemory(decodingUnitInfo(0), unitRounds(25));
    checkMemory(decodingUnitInfo(3), unitRounds(25));
}

TEST(SeiTiming, withoutTheSps) {
    const Context avc(Codec::Avc);
    const Context hevc(Codec::Hevc);
    EXPECT_THAT(faultOf<AvcBufferingPeriod>(avc, "1"),
                StartsWith("seq_parameter_set_id in buffering_period"));
    EXPECT_THAT(faultOf<AvcBufferingPeriod>(avcContext(0), "00101"),  // 4, which no SPS has
                StartsWith("seq_parameter_set_id in buffering_period"));
    EXPECT_THAT(faultOf<AvcPicTiming>(avc, "1"), StartsWith("seq_parameter_set_id in pic_timing"));
    EXPECT_THAT(faultOf<HevcBufferingPeriod>(hevc, "1"),
                StartsWith("sps_seq_parameter_set_id in buffering_period"));
    EXPECT_THAT(faultOf<HevcBufferingPeriod>(hevcContext(0), "00110"),  // 5, which no SPS has
                StartsWith("sps_seq_parameter_set_id in buffering_period"));
    EXPECT_THAT(faultOf<HevcPicTiming>(hevc, "1"), StartsWith("sps_seq_parameter_set_id in pic_timing"));
    EXPECT_THAT(faultOf<DecodingUnitInfo>(hevc, "1"),
                StartsWith("sps_seq_parameter_set_id in decoding_unit_info"));
    EXPECT_EQ((PayloadOfBits<AvcPicTiming>(avc, "1").read.fault.kind), qv::FaultKind::NoSuchSet);
}

TEST(SeiTiming, notWrittenWithoutTheSps) {
    expectNotWritten<AvcBufferingPeriod>(Codec::Avc);
    expectNotWritten<AvcPicTiming>(Codec::Avc);
    expectNotWritten<HevcBufferingPeriod>(Codec::Hevc);
    expectNotWritten<HevcPicTiming>(Codec::Hevc);
    expectNotWritten<DecodingUnitInfo>(Codec::Hevc);
}

// --- Values ---

TEST(SeiTiming, avcBufferingPeriodOfBothHrd) {
    // seq_parameter_set_id 0; delay and offset of 8 bits: of two NAL CPBs, then of one VCL CPB.
    const auto payload = payloadOf<AvcBufferingPeriod>(
        avcContext(31), "1 01111000 00000010 11111111 00000000 00000001 00001001");
    EXPECT_EQ(payload->nal.count, 2U);
    EXPECT_EQ(payload->nal.initial_cpb_removal_delay[0], 120U);
    EXPECT_EQ(payload->nal.initial_cpb_removal_delay_offset[0], 2U);
    EXPECT_EQ(payload->nal.initial_cpb_removal_delay[1], 255U);
    EXPECT_EQ(payload->nal.initial_cpb_removal_delay_offset[1], 0U);
    EXPECT_EQ(payload->vcl.count, 1U);
    EXPECT_EQ(payload->vcl.initial_cpb_removal_delay[0], 1U);
    EXPECT_EQ(payload->vcl.initial_cpb_removal_delay_offset[0], 9U);
}

TEST(SeiTiming, avcPicTimingWithThreeTimestamps) {
    const auto payload = payloadOf<AvcPicTiming>(
        avcContext(0),
        // cpb_removal_delay 22, dpb_output_delay 3, pic_struct 5: top, bottom, top
        "10110 0011 0101"
        // full_timestamp_flag: ct_type 1, field based, counting_type 4, dropped, 23:58:59 and 29 frames, -2
        "1 01 1 00100 1 0 1 00011101 111011 111010 10111 111110"
        // no clock_timestamp_flag
        "0"
        // ct_type 0, counting_type 0, discontinuity, 5 frames, 7 seconds, 8 minutes, no hours, 1
        "1 00 0 00000 0 1 0 00000101 1 000111 1 001000 0 000001");
    EXPECT_EQ(payload->cpb_removal_delay, 22U);
    EXPECT_EQ(payload->dpb_output_delay, 3U);
    EXPECT_EQ(payload->pic_struct, 5U);
    EXPECT_EQ(payload->NumClockTS, 3U);
    const ClockTimestamp& first = payload->clock_timestamp[0];
    EXPECT_TRUE(first.clock_timestamp_flag);
    EXPECT_EQ(first.ct_type, 1U);
    EXPECT_TRUE(first.nuit_field_based_flag);
    EXPECT_EQ(first.counting_type, 4U);
    EXPECT_TRUE(first.cnt_dropped_flag);
    EXPECT_EQ(first.n_frames, 29U);
    EXPECT_EQ(first.time_offset, -2);
    EXPECT_FALSE(payload->clock_timestamp[1].clock_timestamp_flag);
    const ClockTimestamp& last = payload->clock_timestamp[2];
    EXPECT_TRUE(last.discontinuity_flag);
    EXPECT_TRUE(last.minutes_flag);
    EXPECT_FALSE(last.hours_flag);

    const ClockTime time = clockTimeOf(first, {});
    EXPECT_TRUE(time.hasHours && time.hasMinutes && time.hasSeconds && time.isDropFrame);
    EXPECT_EQ(time.hours, 23U);
    EXPECT_EQ(time.minutes, 58U);
    EXPECT_EQ(time.seconds, 59U);
    EXPECT_EQ(time.frames, 29U);
    // ((23 * 60 + 58) * 60 + 59) * 60000 + 29 * 1001 * 2 - 2
    EXPECT_EQ(clockTimestampOf(time, 1001, 60000), 5180398056);
    // The hours of the timestamp before.
    const ClockTime next = clockTimeOf(last, time);
    EXPECT_FALSE(next.isDropFrame);
    EXPECT_EQ(next.hours, 23U);
    EXPECT_EQ(next.minutes, 8U);
    EXPECT_EQ(next.seconds, 7U);
    EXPECT_EQ(next.ticksPerFrame, 1U);
    EXPECT_EQ(next.offset, 1);
}

// Without an HRD time_offset has 24 bits (E.2.2); with neither an HRD nor pic_struct nothing is left.
TEST(SeiTiming, avcPicTimingWithoutHrd) {
    const auto payload =
        payloadOf<AvcPicTiming>(avcContext(3), "0000 1 00 0 00000 0 0 0 00000001 0 100000000000000000000000");
    EXPECT_EQ(payload->clock_timestamp[0].time_offset, -8388608);
    EXPECT_FALSE(clockTimeOf(payload->clock_timestamp[0], {}).hasSeconds);
    const auto empty = payloadOf<AvcPicTiming>(avcContext(31), "");
    EXPECT_EQ(empty->NumClockTS, 0U);
}

TEST(SeiTiming, numClockTs) {
    const uint32_t expected[] = {1, 1, 1, 2, 2, 3, 3, 2, 3, 0, 0, 0, 0, 0, 0, 0};
    for (uint32_t pic_struct = 0; pic_struct < 16; ++pic_struct) {
        EXPECT_EQ(numClockTsOf(pic_struct), expected[pic_struct]) << pic_struct;
    }
    EXPECT_THAT(faultOf<AvcPicTiming>(avcContext(3), "1001"), StartsWith("pic_struct in pic_timing()"));
}

TEST(SeiTiming, hevcBufferingPeriodWithIrapParameters) {
    const auto payload = payloadOf<HevcBufferingPeriod>(
        hevcContext(0),
        // SPS 2, irap_cpb_params_present_flag, cpb_delay_offset 3, dpb_delay_offset 2, concatenation_flag
        "011 1 00000011 000010 1"
        // au_cpb_removal_delay_delta_minus1 7; two VCL CPBs: delay, offset, alternative delay and offset
        "00000111 0000000100 0000000001 0000001000 0000000010 0000000101 0000000011 0000001001 0000000111"
        // use_alt_cpb_params_flag
        "1");
    EXPECT_EQ(payload->bp_seq_parameter_set_id, 2U);
    EXPECT_TRUE(payload->irap_cpb_params_present_flag);
    EXPECT_EQ(payload->cpb_delay_offset, 3U);
    EXPECT_EQ(payload->dpb_delay_offset, 2U);
    EXPECT_TRUE(payload->concatenation_flag);
    EXPECT_EQ(payload->au_cpb_removal_delay_delta_minus1, 7U);
    EXPECT_EQ(payload->nal.count, 0U);
    EXPECT_EQ(payload->vcl.count, 2U);
    EXPECT_EQ(payload->vcl.initial_cpb_removal_delay[0], 4U);
    EXPECT_EQ(payload->vcl.initial_cpb_removal_offset[0], 1U);
    EXPECT_EQ(payload->vcl.initial_alt_cpb_removal_delay[0], 8U);
    EXPECT_EQ(payload->vcl.initial_alt_cpb_removal_offset[0], 2U);
    EXPECT_EQ(payload->vcl.initial_cpb_removal_delay[1], 5U);
    EXPECT_EQ(payload->vcl.initial_alt_cpb_removal_offset[1], 7U);
    EXPECT_TRUE(payload->payload_extension_present);
    EXPECT_TRUE(payload->use_alt_cpb_params_flag);
}

// The last bit of a payload is payload_bit_equal_to_one: with use_alt_cpb_params_flag as the last bit of a
// byte another byte follows.
TEST(SeiTiming, useAltCpbParamsFlagIsNeverTheLastBit) {
    HevcBufferingPeriod payload = {};
    payload.bp_seq_parameter_set_id = 4;  // 5 bits; 3 more and 24 of au_cpb_removal_delay_delta_minus1
    payload.irap_cpb_params_present_flag = true;  // 48 more
    payload.payload_extension_present = true;
    payload.use_alt_cpb_params_flag = true;
    const Context context = hevcContext(0);
    ASSERT_EQ(sizeOfPayload(payload, context).bits, 88U);  // 80, and payload_bit_equal_to_one in another byte
    std::vector<uint8_t> unit;
    ASSERT_TRUE(writePayload(payload, context, unit).ok());
    EXPECT_EQ(unit.back(), 0x80);
    unit.push_back(0x80);
    const auto message = messageOf<HevcBufferingPeriod>(bytesOf(unit), Codec::Hevc);
    const auto read = readPayload<HevcBufferingPeriod>(message, context);
    EXPECT_TRUE(read.ok()) << qv::textOf(read.fault);
    EXPECT_TRUE(read.record.use_alt_cpb_params_flag);
}

TEST(SeiTiming, decodingUnitsOfAPicture) {
    const auto payload = payloadOf<HevcPicTiming>(
        hevcContext(0),
        // pic_struct 3, source_scan_type 0, duplicate_flag, delays 5, 2 and 3
        "0011 00 1 000101 00010 011"
        // two decoding units: 3 NAL units and an increment of 8 sub-ticks; 1 NAL unit
        "010 0 011 0111 1");
    EXPECT_EQ(payload->pic_struct, 3U);
    EXPECT_EQ(payload->source_scan_type, 0U);
    EXPECT_TRUE(payload->duplicate_flag);
    EXPECT_EQ(payload->au_cpb_removal_delay_minus1, 5U);
    EXPECT_EQ(payload->pic_dpb_output_delay, 2U);
    EXPECT_EQ(payload->pic_dpb_output_du_delay, 3U);
    EXPECT_TRUE(payload->hasDecodingUnits);
    DecodingUnitReader units(*payload);
    EXPECT_EQ(units.count(), 2U);
    DecodingUnit unit = {};
    ASSERT_TRUE(units.next(unit));
    EXPECT_EQ(unit.num_nalus_in_du_minus1, 2U);
    EXPECT_EQ(unit.du_cpb_removal_delay_increment_minus1, 7U);
    ASSERT_TRUE(units.next(unit));
    EXPECT_EQ(unit.num_nalus_in_du_minus1, 0U);
    EXPECT_EQ(unit.du_cpb_removal_delay_increment_minus1, 0U);
    EXPECT_FALSE(units.next(unit));

    HevcPicTiming cut = *payload;
    cut.num_decoding_units_minus1 = 100;  // more than there are bits for
    DecodingUnitReader ofCut(cut);
    EXPECT_TRUE(ofCut.next(unit));
    EXPECT_FALSE(ofCut.next(unit));
}

TEST(SeiTiming, oneIncrementForAllDecodingUnits) {
    // As above with du_common_cpb_removal_delay_flag and an increment of 6 sub-ticks.
    const auto payload =
        payloadOf<HevcPicTiming>(hevcContext(0), "0000 01 0 000001 00000 000 010 1 0101 011 1");
    EXPECT_EQ(payload->du_common_cpb_removal_delay_increment_minus1, 5U);
    DecodingUnitReader units(*payload);
    DecodingUnit unit = {};
    ASSERT_TRUE(units.next(unit));
    EXPECT_EQ(unit.num_nalus_in_du_minus1, 2U);
    EXPECT_EQ(unit.du_cpb_removal_delay_increment_minus1, 5U);
    ASSERT_TRUE(units.next(unit));
    EXPECT_EQ(unit.du_cpb_removal_delay_increment_minus1, 5U);
}

// Without frame_field_info_present_flag the profile says how the source was scanned; without an HRD nothing
// is coded.
TEST(SeiTiming, sourceScanTypeOfTheProfile) {
    struct Case {
        bool progressive, interlaced;
        uint32_t source_scan_type;
    };
    for (const Case& c : {Case{true, false, 1}, Case{false, true, 0}, Case{false, false, 2}}) {
        qv::hevc::Sps sps = *hevcSets().sps(4);
        sps.profile_tier_level.general.progressive_source_flag = c.progressive;
        sps.profile_tier_level.general.interlaced_source_flag = c.interlaced;
        Context context = hevcContext(4);
        context.hevcSps = &sps;
        const auto payload = payloadOf<HevcPicTiming>(context, "");
        EXPECT_EQ(payload->source_scan_type, c.source_scan_type);
        EXPECT_FALSE(payload->hasDecodingUnits);
        EXPECT_EQ(DecodingUnitReader(*payload).count(), 0U);
    }
}

TEST(SeiTiming, decodingUnitInfoInEitherForm) {
    // decoding_unit_idx 1, no increment, dpb_output_du_delay_present_flag, 5
    const auto without = payloadOf<DecodingUnitInfo>(hevcContext(0), "010 1 101");
    EXPECT_EQ(without->decoding_unit_idx, 1U);
    EXPECT_EQ(without->du_spt_cpb_removal_delay_increment, 0U);
    EXPECT_TRUE(without->dpb_output_du_delay_present_flag);
    EXPECT_EQ(without->pic_spt_dpb_output_du_delay, 5U);
    // decoding_unit_idx 15, the last of 16 CTBs, increment 9, no delay
    const auto with = payloadOf<DecodingUnitInfo>(hevcContext(3), "000010000 1001 0");
    EXPECT_EQ(with->decoding_unit_idx, 15U);
    EXPECT_EQ(with->du_spt_cpb_removal_delay_increment, 9U);
    EXPECT_FALSE(with->dpb_output_du_delay_present_flag);
    EXPECT_THAT(faultOf<DecodingUnitInfo>(hevcContext(3), "000010001 1001 0"),
                testing::EndsWith("16 is not in 0..15"));
}

// An SPS with a fault may have no size: every index is in the range.
TEST(SeiTiming, decodingUnitOfAPictureWithoutSize) {
    qv::hevc::Sps sps = *hevcSets().sps(3);
    sps.pic_width_in_luma_samples = 0;
    Context context = hevcContext(3);
    context.hevcSps = &sps;
    EXPECT_EQ(payloadOf<DecodingUnitInfo>(context, "000010001 1001 0")->decoding_unit_idx, 16U);
}

TEST(SeiTiming, hrdInForce) {
    // Of the VUI.
    EXPECT_EQ(hrdInForce(hevcContext(0), *hevcSets().sps(0)).CpbCnt, 2U);
    // Of the VPS, and without its sets.
    const HrdInForce ofVps = hrdInForce(hevcContext(2), *hevcSets().sps(2));
    EXPECT_EQ(ofVps.CpbCnt, 2U);
    EXPECT_TRUE(ofVps.CpbDpbDelaysPresentFlag());
    EXPECT_EQ(ofVps.common.au_cpb_removal_delay_length_minus1, 7U);
    const HrdInForce none = hrdInForce(Context(Codec::Hevc), *hevcSets().sps(2));
    EXPECT_FALSE(none.CpbDpbDelaysPresentFlag());
    EXPECT_EQ(none.CpbCnt, 1U);
    EXPECT_EQ(none.common.au_cpb_removal_delay_length_minus1, 23U);
    // A VPS that has no HRD parameters, and one that has none for the sub-layers of the SPS.
    qv::hevc::Sps sps = *hevcSets().sps(2);
    sps.sps_video_parameter_set_id = 4;
    EXPECT_EQ(hrdInForce(hevcContext(2), sps).CpbCnt, 1U);
    sps.sps_video_parameter_set_id = 3;
    sps.sps_max_sub_layers_minus1 = 1;
    EXPECT_EQ(hrdInForce(hevcContext(2), sps).CpbCnt, 1U);
    // Values that no read gives.
    sps = *hevcSets().sps(0);
    sps.sps_max_sub_layers_minus1 = 9;
    sps.vui.hrd_parameters.sub_layer[6].cpb_cnt_minus1 = 40;
    EXPECT_EQ(hrdInForce(hevcContext(0), sps).CpbCnt, 32U);
}

}  // namespace
