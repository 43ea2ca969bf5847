// completeAvcSps: each field, from bits that are laid by hand.
#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "AvcSpsRecord.h"
#include "AvcSpsSyntax.h"
#include "AvcVuiSyntax.h"
#include "QVNaluParser.h"
#include "QVSpsCompletion.h"
#include "SpsCompletionTest.h"
#include "SpsUnit.h"
#include "SyntaxElements.h"

namespace qv_test {
namespace {

// The fields of a record that completeAvcSps sets, without a VUI.
QVAvcSps inferred(QVAvcSps sps = patternAvcSps()) {
    sps.video_signal_type_present_flag = 0;
    sps.full_range = 0;
    sps.colour_description_present_flag = 0;
    sps.colour_primaries = 2;
    sps.transfer_characteristics = 2;
    sps.colorspace = 2;
    sps.timing_info_present_flag = 0;
    sps.num_units_in_tick = 0;
    sps.time_scale = 0;
    sps.fixed_frame_rate_flag = 0;
    sps.nal_hrd_parameters_present_flag = 0;
    sps.vcl_hrd_parameters_present_flag = 0;
    sps.pic_struct_present_flag = 0;
    sps.cpb_cnt = 1;
    sps.initial_cpb_removal_delay_length = 24;
    sps.cpb_removal_delay_length = 24;
    sps.dpb_output_delay_length = 24;
    sps.time_offset_length = 24;
    return sps;
}

// Every flag 1, and values that differ from those inferred and from each other where they can.
AvcVuiSyntax fullVui() {
    AvcVuiSyntax vui;
    vui.aspect_ratio_info_present_flag = 1;
    vui.aspect_ratio_idc = 255;
    vui.sar_width = 64;
    vui.sar_height = 45;
    vui.overscan_info_present_flag = 1;
    vui.video_signal_type_present_flag = 1;
    vui.video_full_range_flag = 1;
    vui.colour_description_present_flag = 1;
    vui.colour_primaries = 9;
    vui.transfer_characteristics = 16;
    vui.matrix_coefficients = 10;
    vui.chroma_loc_info_present_flag = 1;
    vui.chroma_sample_loc_type_top_field = 5;
    vui.timing_info_present_flag = 1;
    vui.num_units_in_tick = 0x80000001;
    vui.time_scale = 0xFFFFFFFF;
    vui.fixed_frame_rate_flag = 1;
    vui.nal_hrd_parameters_present_flag = 1;
    vui.nal_hrd_parameters = avcHrd(4);
    vui.nal_hrd_parameters.initial_cpb_removal_delay_length_minus1 = 16;
    vui.nal_hrd_parameters.cpb_removal_delay_length_minus1 = 17;
    vui.nal_hrd_parameters.dpb_output_delay_length_minus1 = 18;
    vui.nal_hrd_parameters.time_offset_length = 19;
    vui.vcl_hrd_parameters_present_flag = 1;
    vui.vcl_hrd_parameters = vui.nal_hrd_parameters;
    vui.low_delay_hrd_flag = 1;
    vui.pic_struct_present_flag = 1;
    vui.bitstream_restriction_flag = 1;
    return vui;
}

class AvcSpsCompletion : public SpsCompletionTest<QVAvcSps> {
protected:
    AvcSpsCompletion() : SpsCompletionTest(completeAvcSps, patternAvcSps()) {}

    using SpsCompletionTest::complete;
    int complete(const AvcVuiSyntax& vui) { return complete(avcSpsWithVui(vui)); }
};

TEST_F(AvcSpsCompletion, everyField) {
    ASSERT_EQ(complete(fullVui()), QVResultOk);
    QVAvcSps expected = patternAvcSps();
    expected.video_signal_type_present_flag = 1;
    expected.full_range = 1;
    expected.colour_description_present_flag = 1;
    expected.colour_primaries = 9;
    expected.transfer_characteristics = 16;
    expected.colorspace = 10;
    expected.timing_info_present_flag = 1;
    expected.num_units_in_tick = 0x80000001;
    expected.time_scale = 0xFFFFFFFF;
    expected.fixed_frame_rate_flag = 1;
    expected.nal_hrd_parameters_present_flag = 1;
    expected.vcl_hrd_parameters_present_flag = 1;
    expected.pic_struct_present_flag = 1;
    expected.cpb_cnt = 5;
    expected.initial_cpb_removal_delay_length = 17;
    expected.cpb_removal_delay_length = 18;
    expected.dpb_output_delay_length = 19;
    expected.time_offset_length = 19;
    EXPECT_TRUE(sameAvcSps(sps, expected));
    expectNoLines();
}

// Each flag of the VUI is 0, or there is none.
TEST_F(AvcSpsCompletion, valuesInferred) {
    ASSERT_EQ(complete(AvcVuiSyntax()), QVResultOk);
    EXPECT_TRUE(sameAvcSps(sps, inferred()));

    sps = patternAvcSps();
    ASSERT_EQ(complete(avcSps().bytes()), QVResultOk);
    EXPECT_TRUE(sameAvcSps(sps, inferred()));
}

TEST_F(AvcSpsCompletion, partsOfTheVui) {
    struct Case {
        const char* name;
        void (*change)(AvcVuiSyntax&);
        void (*expect)(QVAvcSps&);
    };
    const std::vector<Case> cases = {
        {"video signal without colour description",
         [](AvcVuiSyntax& vui) {
             vui.video_signal_type_present_flag = 1;
             vui.video_full_range_flag = 1;
         },
         [](QVAvcSps& record) {
             record.video_signal_type_present_flag = 1;
             record.full_range = 1;
         }},
        {"colour description in limited range",
         [](AvcVuiSyntax& vui) {
             vui.video_signal_type_present_flag = 1;
             vui.colour_description_present_flag = 1;
             vui.colour_primaries = 0;
             vui.transfer_characteristics = 255;
             vui.matrix_coefficients = 0;
         },
         [](QVAvcSps& record) {
             record.video_signal_type_present_flag = 1;
             record.colour_description_present_flag = 1;
             record.colour_primaries = 0;
             record.transfer_characteristics = 255;
             record.colorspace = 0;
         }},
        {"timing",
         [](AvcVuiSyntax& vui) {
             vui.timing_info_present_flag = 1;
             vui.num_units_in_tick = 1001;
             vui.time_scale = 60000;
         },
         [](QVAvcSps& record) {
             record.timing_info_present_flag = 1;
             record.num_units_in_tick = 1001;
             record.time_scale = 60000;
         }},
        {"fixed frame rate",
         [](AvcVuiSyntax& vui) { vui.timing_info_present_flag = vui.fixed_frame_rate_flag = 1; },
         [](QVAvcSps& record) {
             record.timing_info_present_flag = record.fixed_frame_rate_flag = 1;
             record.num_units_in_tick = 1;
             record.time_scale = 50;
         }},
        {"NAL HRD, the shortest lengths",
         [](AvcVuiSyntax& vui) {
             vui.nal_hrd_parameters_present_flag = 1;
             vui.nal_hrd_parameters.initial_cpb_removal_delay_length_minus1 = 0;
             vui.nal_hrd_parameters.cpb_removal_delay_length_minus1 = 0;
             vui.nal_hrd_parameters.dpb_output_delay_length_minus1 = 0;
             vui.nal_hrd_parameters.time_offset_length = 0;
         },
         [](QVAvcSps& record) {
             record.nal_hrd_parameters_present_flag = 1;
             record.initial_cpb_removal_delay_length = 1;
             record.cpb_removal_delay_length = 1;
             record.dpb_output_delay_length = 1;
             record.time_offset_length = 0;
         }},
        {"VCL HRD, the longest lengths and the greatest count",
         [](AvcVuiSyntax& vui) {
             vui.vcl_hrd_parameters_present_flag = 1;
             vui.vcl_hrd_parameters = avcHrd(31);
             vui.vcl_hrd_parameters.initial_cpb_removal_delay_length_minus1 = 31;
             vui.vcl_hrd_parameters.cpb_removal_delay_length_minus1 = 31;
             vui.vcl_hrd_parameters.dpb_output_delay_length_minus1 = 31;
             vui.vcl_hrd_parameters.time_offset_length = 31;
         },
         [](QVAvcSps& record) {
             record.vcl_hrd_parameters_present_flag = 1;
             record.cpb_cnt = 32;
             record.initial_cpb_removal_delay_length = 32;
             record.cpb_removal_delay_length = 32;
             record.dpb_output_delay_length = 32;
             record.time_offset_length = 31;
         }},
        {"both HRDs with different counts",
         [](AvcVuiSyntax& vui) {
             vui.nal_hrd_parameters_present_flag = vui.vcl_hrd_parameters_present_flag = 1;
             vui.nal_hrd_parameters = avcHrd(2);
             vui.vcl_hrd_parameters = avcHrd(7);
         },
         [](QVAvcSps& record) {
             record.nal_hrd_parameters_present_flag = record.vcl_hrd_parameters_present_flag = 1;
             record.cpb_cnt = 3;
         }},
        {"pic_struct", [](AvcVuiSyntax& vui) { vui.pic_struct_present_flag = 1; },
         [](QVAvcSps& record) { record.pic_struct_present_flag = 1; }},
        {"fields that the record does not have",
         [](AvcVuiSyntax& vui) {
             vui.aspect_ratio_info_present_flag = vui.overscan_info_present_flag = 1;
             vui.chroma_loc_info_present_flag = vui.bitstream_restriction_flag = 1;
         },
         [](QVAvcSps&) {}},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.name);
        AvcVuiSyntax vui;
        each.change(vui);
        QVAvcSps expected = inferred();
        each.expect(expected);
        sps = patternAvcSps();
        EXPECT_EQ(complete(vui), QVResultOk);
        EXPECT_TRUE(sameAvcSps(sps, expected));
    }
}

// What an earlier parameter set left in the fields is replaced.
TEST_F(AvcSpsCompletion, completesAgain) {
    ASSERT_EQ(complete(fullVui()), QVResultOk);
    ASSERT_EQ(complete(AvcVuiSyntax()), QVResultOk);
    EXPECT_TRUE(sameAvcSps(sps, inferred()));
}

// After a parse, the fields of the parse are as it left them.
TEST_F(AvcSpsCompletion, completesAParsedRecord) {
    const Bytes unit =
        highAvcSps([](AvcSpsSyntax& syntax) { syntax.vui_parameters_present_flag = 1; }).bytes();
    ASSERT_TRUE(parseAvcSps(&sps, std::make_shared<QVByteStream>(unit.data(), unit.size())));
    EXPECT_EQ(sps.full_range, -1);
    const QVAvcSps expected = inferred(sps);
    EXPECT_EQ(complete(unit), QVResultOk);
    EXPECT_TRUE(sameAvcSps(sps, expected));
}

// In the VUI and before it.
TEST_F(AvcSpsCompletion, emulationPreventionBytes) {
    AvcVuiSyntax vui = fullVui();
    vui.num_units_in_tick = 1;
    const BitWriter syntax = avcSpsWithVui(vui, [](AvcSpsSyntax& head) {
        head.profile_idc = 0;
        head.level_idc = 1;
    });
    const Bytes unit = spsUnitOf(syntax);
    ASSERT_EQ(unit.size(), syntax.bytes().size() + 2);
    ASSERT_EQ(complete(unit), QVResultOk);
    EXPECT_EQ(sps.transfer_characteristics, 16);
    EXPECT_EQ(sps.num_units_in_tick, 1U);
    EXPECT_EQ(sps.time_scale, 0xFFFFFFFFU);
    EXPECT_EQ(sps.cpb_cnt, 5);
    EXPECT_EQ(sps.time_offset_length, 19);
}

// The scan of the library leaves trailing_zero_8bits in the unit before them.
TEST_F(AvcSpsCompletion, zeroBytesAfterTheUnit) {
    Bytes unit = spsUnitOf(avcSpsWithVui(fullVui()));
    unit.insert(unit.end(), 3, 0);
    EXPECT_EQ(complete(unit), QVResultOk);
    EXPECT_EQ(sps.cpb_cnt, 5);
}

TEST_F(AvcSpsCompletion, missingArguments) {
    expectArgumentsAreChecked(spsUnitOf(avcSpsWithVui(fullVui())));
}

TEST_F(AvcSpsCompletion, otherUnits) {
    Bytes unit = spsUnitOf(avcSpsWithVui(fullVui()));
    for (uint8_t type = 0; type < 32; ++type) {
        SCOPED_TRACE(int{type});
        unit[0] = static_cast<uint8_t>(0x60 | type);
        if (type == 7) {
            EXPECT_EQ(complete(unit), QVResultOk);
        } else {
            expectRefused(unit, QVResultInvalidData);
        }
    }
}

TEST_F(AvcSpsCompletion, truncated) {
    const BitWriter syntax = avcSpsWithVui(fullVui());
    expectCutsAreRefused(syntax, 8, endOf(syntax, "max_dec_frame_buffering"));
}

TEST_F(AvcSpsCompletion, valuesOutOfRange) {
    struct Case {
        const char* name;
        void (*change)(AvcVuiSyntax&);
    };
    const std::vector<Case> cases = {
        {"chroma_sample_loc_type_top_field",
         [](AvcVuiSyntax& vui) { vui.chroma_sample_loc_type_top_field = 6; }},
        {"chroma_sample_loc_type_bottom_field",
         [](AvcVuiSyntax& vui) { vui.chroma_sample_loc_type_bottom_field = 6; }},
        {"num_units_in_tick", [](AvcVuiSyntax& vui) { vui.num_units_in_tick = 0; }},
        {"time_scale", [](AvcVuiSyntax& vui) { vui.time_scale = 0; }},
        {"cpb_cnt_minus1 of NAL", [](AvcVuiSyntax& vui) { vui.nal_hrd_parameters = avcHrd(32); }},
        {"cpb_cnt_minus1 of VCL", [](AvcVuiSyntax& vui) { vui.vcl_hrd_parameters = avcHrd(32); }},
        {"max_num_reorder_frames", [](AvcVuiSyntax& vui) { vui.max_num_reorder_frames = 17; }},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.name);
        AvcVuiSyntax vui = fullVui();
        each.change(vui);
        expectRefused(spsUnitOf(avcSpsWithVui(vui)), QVResultFailed);
    }
    SCOPED_TRACE("an element before the VUI");
    expectRefused(avcSps([](AvcSpsSyntax& syntax) { syntax.seq_parameter_set_id = 32; }).bytes(),
                  QVResultFailed);
}

TEST_F(AvcSpsCompletion, allocatesNothing) {
    expectNoAllocation(spsUnitOf(avcSpsWithVui(fullVui())));
}

// --- What it is for ---

// The delays of NAL and VCL parameters follow each other, each in as many bits as the parameter set says.
TEST_F(AvcSpsCompletion, bufferingPeriod) {
    ASSERT_EQ(complete(fullVui()), QVResultOk);
    BitWriter bits;
    bits.ue("seq_parameter_set_id", 3);
    for (const uint64_t first : {0x10000U, 0x1ABC0U}) {
        for (uint64_t i = 0; i < 5; ++i) {
            bits.u(17, "initial_cpb_removal_delay", first + i).u(17, "initial_cpb_removal_delay_offset", 1);
        }
    }
    const Bytes payload = bits.bytes();
    QVByteStream stream(payload.data(), payload.size());
    QVAvcSeiBufferingPeriod period = {};
    ASSERT_EQ(QVNaluParser::parserAvcBufferingPeriod(stream, static_cast<int>(payload.size()), &period, &sps),
              QVResultOk);
    for (uint32_t i = 0; i < 5; ++i) {
        EXPECT_EQ(period.initial_cpb_removal_delay[i], 0x1ABC0 + i);  // the VCL ones: D17
    }
    EXPECT_EQ(period.initial_cpb_removal_delay[5], 0U);
}

TEST_F(AvcSpsCompletion, pictureTiming) {
    ASSERT_EQ(complete(fullVui()), QVResultOk);
    BitWriter bits;
    bits.u(18, "cpb_removal_delay", 0x2BCDE).u(19, "dpb_output_delay", 0x6DEF0).u(4, "pic_struct", 3);
    for (uint64_t i = 0; i < 2; ++i) {
        bits.u(1, "clock_timestamp_flag", 1).u(2, "ct_type", 1).u(1, "nuit_field_based_flag", 0);
        bits.u(5, "counting_type", 4).u(1, "full_timestamp_flag", 1).u(1, "discontinuity_flag", 0);
        bits.u(1, "cnt_dropped_flag", 0).u(8, "n_frames", 20 + i).u(6, "seconds_value", 30 + i);
        bits.u(6, "minutes_value", 40 + i).u(5, "hours_value", 10 + i).u(19, "time_offset", 0x7FFFF);
    }
    const Bytes payload = bits.bytes();
    QVByteStream stream(payload.data(), payload.size());
    QVAvcSeiPictureTiming timing = {};
    ASSERT_EQ(QVNaluParser::parserAvcPictureTiming(stream, static_cast<int>(payload.size()), &timing, &sps),
              QVResultOk);
    EXPECT_EQ(timing.cpb_removal_delay, 0x2BCDEU);
    EXPECT_EQ(timing.dpb_output_delay, 0x6DEF0U);
    EXPECT_EQ(timing.pic_struct, 3U);
    ASSERT_EQ(timing.numClockTimestamps, 2U);
    for (uint32_t i = 0; i < 2; ++i) {
        EXPECT_EQ(timing.clockTimestamps[i].n_frames, 20 + i);
        EXPECT_EQ(timing.clockTimestamps[i].seconds_value, 30 + i);
        EXPECT_EQ(timing.clockTimestamps[i].minutes_value, 40 + i);
        EXPECT_EQ(timing.clockTimestamps[i].hours_value, 10 + i);
    }
}

}  // namespace
}  // namespace qv_test
