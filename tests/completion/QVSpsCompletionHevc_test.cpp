// completeHevcSps: each field, from bits that are laid by hand.
#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <vector>

#include "HevcSpsRecord.h"
#include "HevcSpsSyntax.h"
#include "HevcVuiSyntax.h"
#include "QVNaluParser.h"
#include "QVSpsCompletion.h"
#include "SpsCompletionTest.h"
#include "SpsUnit.h"
#include "SyntaxElements.h"
#include "bitstream/hevc/Sps.h"

namespace qv_test {
namespace {

// The fields of a record that completeHevcSps sets, for a VUI with every flag 0.
QVHevcSps inferred(QVHevcSps sps = patternHevcSps()) {
    sps.vui_parameters_present_flag = 1;
    sps.aspect_ratio_info_present_flag = 0;
    sps.aspect_ratio_idc = 0;
    sps.sar_width = 0;
    sps.sar_height = 0;
    sps.overscan_info_present_flag = 0;
    sps.overscan_appropriate_flag = 0;
    sps.video_signal_type_present_flag = 0;
    sps.video_format = 5;
    sps.video_full_range_flag = 0;
    sps.colour_description_present_flag = 0;
    sps.colour_primaries = 2;
    sps.transfer_characteristics = 2;
    sps.matrix_coeffs = 2;
    sps.chroma_loc_info_present_flag = 0;
    sps.chroma_sample_loc_type_top_field = 0;
    sps.chroma_sample_loc_type_bottom_field = 0;
    sps.neutral_chroma_indication_flag = 0;
    sps.field_seq_flag = 0;
    sps.frame_field_info_present_flag = 0;
    return sps;
}

// Every flag 1, and values that differ from those inferred and from each other where they can.
HevcVuiSyntax fullVui() {
    HevcVuiSyntax vui;
    vui.aspect_ratio_info_present_flag = 1;
    vui.aspect_ratio_idc = 255;
    vui.sar_width = 65535;
    vui.sar_height = 45;
    vui.overscan_info_present_flag = 1;
    vui.overscan_appropriate_flag = 1;
    vui.video_signal_type_present_flag = 1;
    vui.video_format = 6;
    vui.video_full_range_flag = 1;
    vui.colour_description_present_flag = 1;
    vui.colour_primaries = 9;
    vui.transfer_characteristics = 18;
    vui.matrix_coefficients = 10;
    vui.chroma_loc_info_present_flag = 1;
    vui.chroma_sample_loc_type_top_field = 4;
    vui.chroma_sample_loc_type_bottom_field = 5;
    vui.neutral_chroma_indication_flag = 1;
    vui.field_seq_flag = 1;
    vui.frame_field_info_present_flag = 1;
    vui.default_display_window_flag = 1;
    vui.vui_timing_info_present_flag = 1;
    vui.vui_hrd_parameters_present_flag = 1;
    vui.bitstream_restriction_flag = 1;
    return vui;
}

QVHevcSps fullRecord() {
    QVHevcSps sps = patternHevcSps();
    sps.vui_parameters_present_flag = 1;
    sps.aspect_ratio_info_present_flag = 1;
    sps.aspect_ratio_idc = 255;
    sps.sar_width = 65535;
    sps.sar_height = 45;
    sps.overscan_info_present_flag = 1;
    sps.overscan_appropriate_flag = 1;
    sps.video_signal_type_present_flag = 1;
    sps.video_format = 6;
    sps.video_full_range_flag = 1;
    sps.colour_description_present_flag = 1;
    sps.colour_primaries = 9;
    sps.transfer_characteristics = 18;
    sps.matrix_coeffs = 10;
    sps.chroma_loc_info_present_flag = 1;
    sps.chroma_sample_loc_type_top_field = 4;
    sps.chroma_sample_loc_type_bottom_field = 5;
    sps.neutral_chroma_indication_flag = 1;
    sps.field_seq_flag = 1;
    sps.frame_field_info_present_flag = 1;
    return sps;
}

class HevcSpsCompletion : public SpsCompletionTest<QVHevcSps> {
protected:
    HevcSpsCompletion() : SpsCompletionTest(completeHevcSps, patternHevcSps()) {}
};

TEST_F(HevcSpsCompletion, everyField) {
    ASSERT_EQ(complete(hevcSpsWithVui(fullVui())), QVResultOk);
    EXPECT_TRUE(sameHevcSps(sps, fullRecord()));
    expectNoLines();
}

TEST_F(HevcSpsCompletion, valuesInferred) {
    ASSERT_EQ(complete(hevcSpsWithVui(HevcVuiSyntax())), QVResultOk);
    EXPECT_TRUE(sameHevcSps(sps, inferred()));
}

// frame_field_info_present_flag follows from the source flags: E.3.1.
TEST_F(HevcSpsCompletion, valuesInferredWithoutVui) {
    for (uint32_t flags = 0; flags < 4; ++flags) {
        SCOPED_TRACE(flags);
        const BitWriter syntax = hevcSps([flags](HevcSpsSyntax& head) {
            head.general.progressive_source_flag = flags >> 1;
            head.general.interlaced_source_flag = flags & 1;
        });
        QVHevcSps expected = inferred();
        expected.vui_parameters_present_flag = 0;
        expected.frame_field_info_present_flag = flags == 3 ? 1 : 0;
        sps = patternHevcSps();
        ASSERT_EQ(complete(syntax), QVResultOk);
        EXPECT_TRUE(sameHevcSps(sps, expected));
    }
}

TEST_F(HevcSpsCompletion, partsOfTheVui) {
    struct Case {
        const char* name;
        void (*change)(HevcVuiSyntax&);
        void (*expect)(QVHevcSps&);
    };
    const std::vector<Case> cases = {
        {"aspect ratio of the table",
         [](HevcVuiSyntax& vui) {
             vui.aspect_ratio_info_present_flag = 1;
             vui.aspect_ratio_idc = 16;
         },
         [](QVHevcSps& record) {
             record.aspect_ratio_info_present_flag = 1;
             record.aspect_ratio_idc = 16;
         }},
        {"overscan", [](HevcVuiSyntax& vui) { vui.overscan_info_present_flag = 1; },
         [](QVHevcSps& record) { record.overscan_info_present_flag = 1; }},
        {"video signal without colour description",
         [](HevcVuiSyntax& vui) {
             vui.video_signal_type_present_flag = 1;
             vui.video_format = 0;
             vui.video_full_range_flag = 1;
         },
         [](QVHevcSps& record) {
             record.video_signal_type_present_flag = 1;
             record.video_format = 0;
             record.video_full_range_flag = 1;
         }},
        {"colour description",
         [](HevcVuiSyntax& vui) {
             vui.video_signal_type_present_flag = vui.colour_description_present_flag = 1;
             vui.colour_primaries = 255;
             vui.transfer_characteristics = 0;
             vui.matrix_coefficients = 1;
         },
         [](QVHevcSps& record) {
             record.video_signal_type_present_flag = record.colour_description_present_flag = 1;
             record.colour_primaries = 255;
             record.transfer_characteristics = 0;
             record.matrix_coeffs = 1;
         }},
        {"chroma location",
         [](HevcVuiSyntax& vui) {
             vui.chroma_loc_info_present_flag = 1;
             vui.chroma_sample_loc_type_top_field = 2;
         },
         [](QVHevcSps& record) {
             record.chroma_loc_info_present_flag = 1;
             record.chroma_sample_loc_type_top_field = 2;
         }},
        {"neutral chroma", [](HevcVuiSyntax& vui) { vui.neutral_chroma_indication_flag = 1; },
         [](QVHevcSps& record) { record.neutral_chroma_indication_flag = 1; }},
        {"fields", [](HevcVuiSyntax& vui) { vui.field_seq_flag = 1; },
         [](QVHevcSps& record) { record.field_seq_flag = 1; }},
        {"frame field information", [](HevcVuiSyntax& vui) { vui.frame_field_info_present_flag = 1; },
         [](QVHevcSps& record) { record.frame_field_info_present_flag = 1; }},
        {"fields that the record does not have",
         [](HevcVuiSyntax& vui) {
             vui.default_display_window_flag = vui.vui_timing_info_present_flag = 1;
             vui.vui_hrd_parameters_present_flag = vui.bitstream_restriction_flag = 1;
         },
         [](QVHevcSps&) {}},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.name);
        HevcVuiSyntax vui;
        each.change(vui);
        QVHevcSps expected = inferred();
        each.expect(expected);
        sps = patternHevcSps();
        EXPECT_EQ(complete(hevcSpsWithVui(vui)), QVResultOk);
        EXPECT_TRUE(sameHevcSps(sps, expected));
    }
}

// What a VUI says does not depend on the source flags.
TEST_F(HevcSpsCompletion, codedFrameFieldInfoIsKept) {
    ASSERT_EQ(complete(hevcSpsWithVui(HevcVuiSyntax(),
                                      [](HevcSpsSyntax& head) { head.general.interlaced_source_flag = 1; })),
              QVResultOk);
    EXPECT_EQ(sps.frame_field_info_present_flag, 0);
}

// Each with a profile and a level of its own, and with its HRD parameters.
TEST_F(HevcSpsCompletion, subLayers) {
    for (uint32_t highest = 0; highest <= 6; ++highest) {
        SCOPED_TRACE(highest);
        const BitWriter syntax = hevcSpsWithVui(fullVui(), [highest](HevcSpsSyntax& head) {
            head.sps_max_sub_layers_minus1 = highest;
            head.sps_sub_layer_ordering_info_present_flag = highest & 1;
            for (uint32_t i = 0; i < highest; ++i) {
                head.subLayers[i].sub_layer_profile_present_flag = i & 1;
                head.subLayers[i].sub_layer_level_present_flag = i >> 1 & 1;
            }
        });
        sps = patternHevcSps();
        EXPECT_EQ(complete(syntax), QVResultOk);
        EXPECT_TRUE(sameHevcSps(sps, fullRecord()));
    }
}

// What an earlier parameter set left in the fields is replaced.
TEST_F(HevcSpsCompletion, completesAgain) {
    ASSERT_EQ(complete(hevcSpsWithVui(fullVui())), QVResultOk);
    ASSERT_EQ(complete(hevcSpsWithVui(HevcVuiSyntax())), QVResultOk);
    EXPECT_TRUE(sameHevcSps(sps, inferred()));
}

// After a parse, the fields of the parse are as it left them.
TEST_F(HevcSpsCompletion, completesAParsedRecord) {
    const Bytes unit = spsUnitOf(hevcSpsWithVui(HevcVuiSyntax()));
    ASSERT_TRUE(parseHevcSps(&sps, std::make_shared<QVByteStream>(unit.data(), unit.size())));
    const QVHevcSps expected = inferred(sps);
    EXPECT_EQ(complete(unit), QVResultOk);
    EXPECT_TRUE(sameHevcSps(sps, expected));
}

// The profile bits of most streams have some; vui_num_units_in_tick 1 has one more.
TEST_F(HevcSpsCompletion, emulationPreventionBytes) {
    const BitWriter syntax = hevcSpsWithVui(fullVui());
    const Bytes unit = spsUnitOf(syntax);
    ASSERT_GE(unit.size(), syntax.bytes().size() + 2);
    ASSERT_EQ(complete(unit), QVResultOk);
    EXPECT_TRUE(sameHevcSps(sps, fullRecord()));
}

// The scan of the library leaves trailing_zero_8bits in the unit before them.
TEST_F(HevcSpsCompletion, zeroBytesAfterTheUnit) {
    Bytes unit = spsUnitOf(hevcSpsWithVui(fullVui()));
    unit.insert(unit.end(), 3, 0);
    EXPECT_EQ(complete(unit), QVResultOk);
    EXPECT_TRUE(sameHevcSps(sps, fullRecord()));
}

TEST_F(HevcSpsCompletion, missingArguments) {
    expectArgumentsAreChecked(spsUnitOf(hevcSpsWithVui(fullVui())));
}

TEST_F(HevcSpsCompletion, otherUnits) {
    Bytes unit = spsUnitOf(hevcSpsWithVui(fullVui()));
    for (uint8_t type = 0; type < 64; ++type) {
        SCOPED_TRACE(int{type});
        unit[0] = static_cast<uint8_t>(type << 1);
        if (type == 33) {
            EXPECT_EQ(complete(unit), QVResultOk);
        } else {
            expectRefused(unit, QVResultInvalidData);
        }
    }
}

TEST_F(HevcSpsCompletion, truncated) {
    const BitWriter syntax =
        hevcSpsWithVui(fullVui(), [](HevcSpsSyntax& head) { head.sps_max_sub_layers_minus1 = 2; });
    expectCutsAreRefused(syntax, 16, endOf(syntax, "sps_extension_present_flag"));
}

TEST_F(HevcSpsCompletion, valuesOutOfRange) {
    struct Case {
        const char* name;
        void (*changeVui)(HevcVuiSyntax&);
        void (*changeHead)(HevcSpsSyntax&);
    };
    const std::vector<Case> cases = {
        {"chroma_sample_loc_type_top_field",
         [](HevcVuiSyntax& vui) { vui.chroma_sample_loc_type_top_field = 6; }, [](HevcSpsSyntax&) {}},
        {"chroma_sample_loc_type_bottom_field",
         [](HevcVuiSyntax& vui) { vui.chroma_sample_loc_type_bottom_field = 6; }, [](HevcSpsSyntax&) {}},
        {"vui_num_units_in_tick", [](HevcVuiSyntax& vui) { vui.vui_num_units_in_tick = 0; },
         [](HevcSpsSyntax&) {}},
        {"vui_time_scale", [](HevcVuiSyntax& vui) { vui.vui_time_scale = 0; }, [](HevcSpsSyntax&) {}},
        {"min_spatial_segmentation_idc", [](HevcVuiSyntax& vui) { vui.min_spatial_segmentation_idc = 4096; },
         [](HevcSpsSyntax&) {}},
        {"sps_max_sub_layers_minus1", [](HevcVuiSyntax&) {},
         [](HevcSpsSyntax& head) { head.sps_max_sub_layers_minus1 = 7; }},
        {"chroma_format_idc", [](HevcVuiSyntax&) {}, [](HevcSpsSyntax& head) { head.chroma_format_idc = 4; }},
        {"sps_seq_parameter_set_id", [](HevcVuiSyntax&) {},
         [](HevcSpsSyntax& head) { head.sps_seq_parameter_set_id = 16; }},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.name);
        HevcVuiSyntax vui = fullVui();
        each.changeVui(vui);
        expectRefused(spsUnitOf(hevcSpsWithVui(vui, each.changeHead)), QVResultFailed);
    }
}

// The unit of a layer above 0 that takes its sub-layers from the VPS, which the HRD parameters depend on:
// F.7.3.2.2.1. In the plain form it is like any other.
TEST_F(HevcSpsCompletion, layerAbove0) {
    ASSERT_EQ(complete(hevcSpsWithVui(fullVui(), [](HevcSpsSyntax& head) { head.nuh_layer_id = 1; })),
              QVResultOk);
    EXPECT_TRUE(sameHevcSps(sps, fullRecord()));

    const BitWriter plain = hevcSpsWithVui(fullVui());
    const Bytes plainBytes = plain.bytes();
    BitWriter bits;
    bits.u(16, "header", 33 << 9 | 1 << 3 | 1).u(4, "sps_video_parameter_set_id", 0);
    bits.u(3, "sps_ext_or_max_sub_layers_minus1", 7).ue("sps_seq_parameter_set_id", 1);
    bits.u(1, "update_rep_format_flag", 0).ue("log2_max_pic_order_cnt_lsb_minus4", 0);
    // The rest is the same.
    for (size_t bit = startOf(hevcSps(), "log2_min_luma_coding_block_size_minus3"); bit < plain.bitCount();
         ++bit) {
        bits.u(1, "rest", static_cast<uint64_t>(plainBytes[bit / 8] >> (7 - bit % 8) & 1));
    }
    const Bytes unit = spsUnitOf(bits);
    ASSERT_EQ(qv::hevc::readSps({unit.data(), unit.size()}).fault.kind, qv::FaultKind::NoSuchSet);
    expectRefused(unit, QVResultFailed);
}

TEST_F(HevcSpsCompletion, allocatesNothing) {
    expectNoAllocation(spsUnitOf(hevcSpsWithVui(fullVui())));
}

// --- What it is for ---

// pic_struct 9 to 12 pair a field with one of another picture, 1 and 2 are single fields: Table D.2.
TEST_F(HevcSpsCompletion, pictureTiming) {
    ASSERT_EQ(complete(hevcSpsWithVui(fullVui())), QVResultOk);
    const std::vector<uint32_t> parities = {0, 1, 2, 0, 0, 0, 0, 0, 0, 1, 2, 1, 2};
    for (uint32_t pic_struct = 0; pic_struct < parities.size(); ++pic_struct) {
        BitWriter bits;
        bits.u(4, "pic_struct", pic_struct).u(2, "source_scan_type", 0).u(1, "duplicate_flag", 0);
        bits.u(24, "au_cpb_removal_delay_minus1", 1).u(24, "pic_dpb_output_delay", 2);
        const Bytes payload = bits.bytes();
        QVByteStream stream(payload.data(), payload.size());
        QVHevcSeiPictureTiming timing = {};
        ASSERT_EQ(
            QVNaluParser::parserHevcPictureTiming(stream, static_cast<int>(payload.size()), &timing, &sps),
            QVResultOk);
        EXPECT_EQ(timing.fieldParity, parities[pic_struct]) << pic_struct;
    }
}

}  // namespace
}  // namespace qv_test
