// The fields of SEI payloads that the streams in the repository do not have, or have in one form only.
#include "analysis/SeiBlocks.h"

#include <gtest/gtest.h>

#include "InspectSupport.h"

namespace qv_test {
namespace {

using qvinspect::describeSei;
using qvinspect::Field;

std::string lines(const qvinspect::Block& block) {
    std::string text;
    for (const Field& field : block.fields) {
        text += field.name + " = " + valueText(field) + (field.note.empty() ? "" : " (" + field.note + ")") +
                "\n";
    }
    return text;
}

qvinspect::SequenceParameterSet spsWithoutHrd() {
    qvinspect::SequenceParameterSet sps{};
    sps.codec = QVCodecIDAvc;
    sps.isAccepted = true;
    return sps;
}

TEST(SeiBlocks, timingWithoutHrdFieldsIsNotShownAsZeros) {
    const auto sps = spsWithoutHrd();
    EXPECT_EQ(lines(describeSei(QVCodecIDAvc, 0, hex("80"), &sps)),
              "not read = the parameter set in force has no HRD fields\n");
    EXPECT_EQ(lines(describeSei(QVCodecIDAvc, 1, hex("80"), &sps)),
              "not read = the parameter set in force has neither HRD fields nor pic_struct\n");
    EXPECT_EQ(lines(describeSei(QVCodecIDAvc, 1, hex("80"), nullptr)),
              "not read = the parameter set in force has neither HRD fields nor pic_struct\n");
}

TEST(SeiBlocks, aClockTimestamp) {
    auto sps = spsWithoutHrd();
    sps.avc.pic_struct_present_flag = 1;
    BitWriter out;
    out.u(4, "pic_struct", 0).u(1, "clock_timestamp_flag", 1).u(2, "ct_type", 0);
    out.u(1, "nuit_field_based_flag", 0).u(5, "counting_type", 4).u(1, "full_timestamp_flag", 1);
    out.u(1, "discontinuity_flag", 0).u(1, "cnt_dropped_flag", 1).u(8, "n_frames", 29);
    out.u(6, "seconds_value", 59).u(6, "minutes_value", 8).u(5, "hours_value", 23);
    EXPECT_EQ(lines(describeSei(QVCodecIDAvc, 1, out.bytes(), &sps)),
              "pic_struct = 0 (frame)\nclock timestamp 0 = 23:08:59;29 (full)\n");
}

TEST(SeiBlocks, aRefusalGivesTheLibrarysReason) {
    auto sps = spsWithoutHrd();
    sps.avc.pic_struct_present_flag = 1;
    EXPECT_EQ(lines(describeSei(QVCodecIDAvc, 1, hex("90"), &sps)),
              "refused = parserAvcPictureTiming: pic_struct(9) error.\n");
    sps.avc.nal_hrd_parameters_present_flag = 1;
    sps.avc.cpb_cnt = 1;
    BitWriter id;
    id.ue("seq_parameter_set_id", 32);
    EXPECT_EQ(lines(describeSei(QVCodecIDAvc, 0, id.bytes(), &sps)),
              "refused = parserAvcBufferingPeriod: non-existing SPS %d referenced in buffering period.\n");
}

TEST(SeiBlocks, framePackingAndItsCancellation) {
    BitWriter out;
    out.ue("frame_packing_arrangement_id", 1).u(1, "cancel", 0).u(7, "type", 4).u(1, "quincunx", 1);
    out.u(6, "content_interpretation_type", 2).u(3, "flags", 0).u(1, "current_frame_is_frame0_flag", 1);
    out.u(2, "self_contained", 0).u(8, "reserved", 0).ue("repetition_period", 7).u(1, "extension", 0);
    EXPECT_EQ(lines(describeSei(QVCodecIDAvc, 45, out.bytes(), nullptr)),
              "frame_packing_arrangement_id = 1\nframe_packing_arrangement_cancel_flag = 0\n"
              "frame_packing_arrangement_type = 4 (top and bottom)\nquincunx_sampling_flag = 1\n"
              "content_interpretation_type = 2\ncurrent_frame_is_frame0_flag = 1\n"
              "frame_packing_arrangement_repetition_period = 7\n");
    EXPECT_EQ(lines(describeSei(QVCodecIDAvc, 45, hex("C0"), nullptr)),
              "frame_packing_arrangement_id = 0\nframe_packing_arrangement_cancel_flag = 1\n");
    EXPECT_EQ(lines(describeSei(QVCodecIDHevc, 45, hex("C0"), nullptr)),
              "frame_packing_arrangement_cancel_flag = 1\n");
}

TEST(SeiBlocks, orientationInDegrees) {
    // not cancelled, hor_flip 1, ver_flip 0, rotation 0x4000
    BitWriter out;
    out.u(1, "cancel", 0).u(1, "hor_flip", 1).u(1, "ver_flip", 0).u(16, "rotation", 0x4000);
    const std::string expected =
        "hor_flip = 1\nver_flip = 0\nanticlockwise_rotation = 16384 (90.000 degrees anticlockwise)\n";
    EXPECT_EQ(lines(describeSei(QVCodecIDAvc, 47, out.bytes(), nullptr)), expected);
    EXPECT_EQ(lines(describeSei(QVCodecIDHevc, 47, out.bytes(), nullptr)), expected);
}

TEST(SeiBlocks, userDataThatIsTooShort) {
    EXPECT_EQ(lines(describeSei(QVCodecIDAvc, 4, hex("B5 00"), nullptr)),
              "refused = shorter than country and provider code\n");
    EXPECT_EQ(lines(describeSei(QVCodecIDAvc, 5, hex("00 11"), nullptr)), "refused = shorter than a UUID\n");
    EXPECT_EQ(lines(describeSei(QVCodecIDHevc, 137, {}, nullptr)), "refused = empty payload\n");
}

TEST(SeiBlocks, userDataByItsRegistration) {
    EXPECT_EQ(lines(describeSei(QVCodecIDHevc, 4, hex("B5 00 3C 00 01 04 01"), nullptr)),
              "itu_t_t35_country_code = 0xb5 (United States)\nitu_t_t35_provider_code = 0x003c\n"
              "kind = HDR10+ (ST 2094-40)\n");
    EXPECT_EQ(lines(describeSei(QVCodecIDAvc, 4, hex("FF 01 00 31 44 54 47 31 41 F8"), nullptr)),
              "itu_t_t35_country_code = 0xff (extended)\nitu_t_t35_provider_code = 0x0031\n"
              "kind = active format description (DTG1)\nactive_format = 8 (as the coded frame)\n");
    EXPECT_EQ(lines(describeSei(QVCodecIDAvc, 4, hex("B5 00 31 44 54 47 31 01"), nullptr)),
              "itu_t_t35_country_code = 0xb5 (United States)\nitu_t_t35_provider_code = 0x0031\n"
              "kind = active format description (DTG1)\nactive_format_flag = 0\n");
    EXPECT_EQ(lines(describeSei(QVCodecIDHevc, 4, hex("26 00 04 00 05 01 00"), nullptr)),
              "itu_t_t35_country_code = 0x26 (China)\nitu_t_t35_provider_code = 0x0004\n"
              "kind = HDR Vivid (T/UWA 005.1)\nrefused = status 5 (fewer bits than the syntax requires)\n");
    EXPECT_EQ(lines(describeSei(QVCodecIDHevc, 4, hex("01 02 03"), nullptr)),
              "itu_t_t35_country_code = 0x01\nitu_t_t35_provider_code = 0x0203\nkind = unknown\n");
}

TEST(SeiBlocks, greenMetadataByType) {
    EXPECT_EQ(lines(describeSei(QVCodecIDAvc, 56, hex("01 00 12 34"), nullptr)),
              "green_metadata_type = 1\nxsd_metric_type = 0\nxsd_metric_value = 4660\n");
    EXPECT_EQ(lines(describeSei(QVCodecIDAvc, 56, hex("00 02 01 02 0A 0B 0C 0D"), nullptr)),
              "green_metadata_type = 0\nperiod_type = 2\nnum_seconds = 258\n"
              "percent_non_zero_macroblocks = 10\npercent_intra_coded_macroblocks = 11\n"
              "percent_six_tap_filtering = 12\npercent_alpha_point_deblocking_instance = 13\n");
    EXPECT_EQ(lines(describeSei(QVCodecIDAvc, 56, hex("02"), nullptr)), "green_metadata_type = 2\n");
}

TEST(SeiBlocks, pictureHashesByType) {
    EXPECT_EQ(lines(describeSei(QVCodecIDHevc, 132, hex("01 AB CD 01 02"), nullptr)),
              "hash_type = 1 (CRC)\ncomponent 0 = abcd\ncomponent 1 = 0102\n");
    EXPECT_EQ(lines(describeSei(QVCodecIDHevc, 132, hex("02 00 00 00 07"), nullptr)),
              "hash_type = 2 (checksum)\ncomponent 0 = 00000007\n");
    EXPECT_EQ(lines(describeSei(QVCodecIDHevc, 132, hex("07"), nullptr)), "hash_type = 7 (reserved)\n");
    EXPECT_EQ(lines(describeSei(QVCodecIDHevc, 132, {}, nullptr)), "refused = empty payload\n");
}

TEST(SeiBlocks, activeParameterSets) {
    // id 2, flags 1 and 0, two identifiers: 0 and 3
    BitWriter out;
    out.u(4, "vps", 2).u(1, "self_contained", 1).u(1, "no_update", 0).ue("num_sps_ids_minus1", 1);
    out.ue("id", 0).ue("id", 3);
    EXPECT_EQ(lines(describeSei(QVCodecIDHevc, 129, out.bytes(), nullptr)),
              "active_video_parameter_set_id = 2\nself_contained_cvs_flag = 1\n"
              "no_parameter_set_update_flag = 0\nnum_sps_ids_minus1 = 1\n"
              "active_seq_parameter_set_id[0] = 0\nactive_seq_parameter_set_id[1] = 3\n");
    BitWriter many;
    many.u(6, "head", 0).ue("num_sps_ids_minus1", 16);
    EXPECT_EQ(lines(describeSei(QVCodecIDHevc, 129, many.bytes(), nullptr)),
              "refused = parserHevcActiveParameterSets: num_sps_ids_minus1(16) is invalid!\n");
}

TEST(SeiBlocks, typesThatAreNotReadSayNothing) {
    EXPECT_TRUE(describeSei(QVCodecIDAvc, 200, hex("01"), nullptr).fields.empty());
    EXPECT_TRUE(describeSei(QVCodecIDHevc, 6, hex("80"), nullptr).fields.empty());
}

}  // namespace
}  // namespace qv_test
