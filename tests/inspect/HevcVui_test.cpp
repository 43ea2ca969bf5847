#include "analysis/HevcVui.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "BitWriter.h"

namespace qv_test {
namespace {

using qvinspect::hevcTransferCharacteristics;
using Write = std::function<void(BitWriter&)>;

// The parts of seq_parameter_set_rbsp() whose length varies ahead of the VUI, H.265 (08/2021) 7.3.2.2.
struct Sps {
    uint32_t sps_max_sub_layers_minus1 = 0;
    Write writeSubLayers = [](BitWriter&) {};
    uint32_t chroma_format_idc = 1;
    bool conformance_window_flag = false;
    uint32_t log2_max_pic_order_cnt_lsb_minus4 = 4;
    bool sps_sub_layer_ordering_info_present_flag = true;
    Write writeScalingLists = [](BitWriter& out) { out.u(1, "scaling_list_enabled_flag", 0); };
    bool pcm_enabled_flag = false;
    Write writeShortTermSets = [](BitWriter& out) { out.ue("num_short_term_ref_pic_sets", 0); };
    Write writeLongTermPictures = [](BitWriter& out) { out.u(1, "long_term_ref_pics_present_flag", 0); };
    Write writeVui = [](BitWriter& out) {
        out.u(1, "vui_parameters_present_flag", 1);
        out.u(1, "aspect_ratio_info_present_flag", 0);
        out.u(1, "overscan_info_present_flag", 0);
        out.u(1, "video_signal_type_present_flag", 1);
        out.u(3, "video_format", 5);
        out.u(1, "video_full_range_flag", 0);
        out.u(1, "colour_description_present_flag", 1);
        out.u(8, "colour_primaries", 9);
        out.u(8, "transfer_characteristics", 18);
        out.u(8, "matrix_coeffs", 9);
    };
};

constexpr uint32_t kTransfer = 18;

Bytes unitOf(const Sps& sps) {
    BitWriter out;
    out.u(16, "nal_unit_header", 0x4201);
    out.u(4, "sps_video_parameter_set_id", 0);
    out.u(3, "sps_max_sub_layers_minus1", sps.sps_max_sub_layers_minus1);
    out.u(1, "sps_temporal_id_nesting_flag", 1);
    out.u(64, "general profile", 0x0260000000900000).u(24, "general profile, continued", 0);
    out.u(8, "general_level_idc", 93);
    sps.writeSubLayers(out);
    out.ue("sps_seq_parameter_set_id", 0);
    out.ue("chroma_format_idc", sps.chroma_format_idc);
    if (sps.chroma_format_idc == 3) {
        out.u(1, "separate_colour_plane_flag", 0);
    }
    out.ue("pic_width_in_luma_samples", 1920);
    out.ue("pic_height_in_luma_samples", 1088);
    out.u(1, "conformance_window_flag", sps.conformance_window_flag);
    for (int i = 0; sps.conformance_window_flag && i < 4; ++i) {
        out.ue("conf_win_offset", 4);
    }
    out.ue("bit_depth_luma_minus8", 2).ue("bit_depth_chroma_minus8", 2);
    out.ue("log2_max_pic_order_cnt_lsb_minus4", sps.log2_max_pic_order_cnt_lsb_minus4);
    out.u(1, "sps_sub_layer_ordering_info_present_flag", sps.sps_sub_layer_ordering_info_present_flag);
    const uint32_t first = sps.sps_sub_layer_ordering_info_present_flag ? 0 : sps.sps_max_sub_layers_minus1;
    for (uint32_t i = first; i <= sps.sps_max_sub_layers_minus1; ++i) {
        out.ue("sps_max_dec_pic_buffering_minus1", 4).ue("sps_max_num_reorder_pics", 2);
        out.ue("sps_max_latency_increase_plus1", 0);
    }
    out.ue("log2_min_luma_coding_block_size_minus3", 0).ue("log2_diff_max_min_luma_coding_block_size", 3);
    out.ue("log2_min_luma_transform_block_size_minus2", 0);
    out.ue("log2_diff_max_min_luma_transform_block_size", 3);
    out.ue("max_transform_hierarchy_depth_inter", 1).ue("max_transform_hierarchy_depth_intra", 1);
    sps.writeScalingLists(out);
    out.u(1, "amp_enabled_flag", 1).u(1, "sample_adaptive_offset_enabled_flag", 1);
    out.u(1, "pcm_enabled_flag", sps.pcm_enabled_flag);
    if (sps.pcm_enabled_flag) {
        out.u(4, "pcm_sample_bit_depth_luma_minus1", 7).u(4, "pcm_sample_bit_depth_chroma_minus1", 7);
        out.ue("log2_min_pcm_luma_coding_block_size_minus3", 0);
        out.ue("log2_diff_max_min_pcm_luma_coding_block_size", 2);
        out.u(1, "pcm_loop_filter_disabled_flag", 1);
    }
    sps.writeShortTermSets(out);
    sps.writeLongTermPictures(out);
    out.u(1, "sps_temporal_mvp_enabled_flag", 1).u(1, "strong_intra_smoothing_enabled_flag", 1);
    sps.writeVui(out);
    out.trailingBits();
    return out.bytes();
}

std::optional<uint32_t> transferOf(const std::function<void(Sps&)>& change) {
    Sps sps;
    change(sps);
    return hevcTransferCharacteristics(unitOf(sps));
}

TEST(HevcVui, plain) {
    EXPECT_EQ(transferOf([](Sps&) {}), kTransfer);
}

TEST(HevcVui, subLayers) {
    EXPECT_EQ(transferOf([](Sps& sps) {
                  sps.sps_max_sub_layers_minus1 = 2;
                  sps.sps_sub_layer_ordering_info_present_flag = false;
                  sps.writeSubLayers = [](BitWriter& out) {
                      out.bits("profile and level of sub-layer 0", "1 1").bits("of sub-layer 1", "0 1");
                      for (int i = 2; i < 8; ++i) {
                          out.u(2, "reserved_zero_2bits", 0);
                      }
                      out.u(64, "profile of sub-layer 0", 0x0260000000900000).u(24, "continued", 0);
                      out.u(8, "level of sub-layer 0", 60).u(8, "level of sub-layer 1", 63);
                  };
              }),
              kTransfer);
}

TEST(HevcVui, windowChromaAndPcm) {
    EXPECT_EQ(transferOf([](Sps& sps) {
                  sps.chroma_format_idc = 3;
                  sps.conformance_window_flag = true;
                  sps.pcm_enabled_flag = true;
              }),
              kTransfer);
}

TEST(HevcVui, scalingLists) {
    EXPECT_EQ(transferOf([](Sps& sps) {
                  sps.writeScalingLists = [](BitWriter& out) { out.bits("enabled, no data", "1 0"); };
              }),
              kTransfer);
    EXPECT_EQ(transferOf([](Sps& sps) {
                  sps.writeScalingLists = [](BitWriter& out) {
                      out.bits("enabled, with data", "1 1");
                      for (unsigned sizeId = 0; sizeId < 4; ++sizeId) {
                          for (unsigned matrixId = 0; matrixId < 6; matrixId += sizeId == 3 ? 3 : 1) {
                              const bool isCoded = matrixId % 2 == 0;
                              out.u(1, "scaling_list_pred_mode_flag", isCoded);
                              if (!isCoded) {
                                  out.ue("scaling_list_pred_matrix_id_delta", 1);
                                  continue;
                              }
                              if (sizeId > 1) {
                                  out.se("scaling_list_dc_coef_minus8", -3);
                              }
                              for (unsigned i = 0; i < (sizeId == 0 ? 16U : 64U); ++i) {
                                  out.se("scaling_list_delta_coef", i % 2 == 0 ? 2 : -2);
                              }
                          }
                      }
                  };
              }),
              kTransfer);
}

void writeExplicitSet(BitWriter& out, const std::vector<uint32_t>& s0, const std::vector<uint32_t>& s1) {
    out.ue("num_negative_pics", static_cast<uint32_t>(s0.size()));
    out.ue("num_positive_pics", static_cast<uint32_t>(s1.size()));
    for (const auto* deltas : {&s0, &s1}) {
        for (const uint32_t delta_poc_minus1 : *deltas) {
            out.ue("delta_poc_minus1", delta_poc_minus1).u(1, "used_by_curr_pic_flag", 1);
        }
    }
}

// flags: used_by_curr_pic_flag for each picture of the set before and one more; where it is 0, use_delta_flag
// is too.
void writePredictedSet(BitWriter& out, uint32_t delta_rps_sign, uint32_t abs_delta_rps_minus1,
                       const std::vector<bool>& flags) {
    out.u(1, "inter_ref_pic_set_prediction_flag", 1);
    out.u(1, "delta_rps_sign", delta_rps_sign);
    out.ue("abs_delta_rps_minus1", abs_delta_rps_minus1);
    for (const bool isUsed : flags) {
        out.u(1, "used_by_curr_pic_flag", isUsed);
        if (!isUsed) {
            out.u(1, "use_delta_flag", 0);
        }
    }
}

// How many flags a predicted set has depends on how many pictures the set before really has.
TEST(HevcVui, shortTermSets) {
    EXPECT_EQ(transferOf([](Sps& sps) {
                  sps.writeShortTermSets = [](BitWriter& out) {
                      out.ue("num_short_term_ref_pic_sets", 5);
                      writeExplicitSet(out, {0, 1, 3}, {1});  // -1 -3 -7, 2
                      // Moved by -1: 1, -1, -2, -4, -8 without what is not used: -1, -2, -8 and 1.
                      writePredictedSet(out, 1, 0, {true, false, true, true, true});
                      // Moved by 1: the first comes to 0, which is the picture itself: -1, -7 and 2, 1.
                      writePredictedSet(out, 0, 0, {true, true, true, true, true});
                      out.u(1, "inter_ref_pic_set_prediction_flag", 0);
                      writeExplicitSet(out, {}, {});
                      writePredictedSet(out, 1, 2, {true});
                  };
              }),
              kTransfer);
}

TEST(HevcVui, longTermPictures) {
    EXPECT_EQ(transferOf([](Sps& sps) {
                  sps.writeLongTermPictures = [](BitWriter& out) {
                      out.u(1, "long_term_ref_pics_present_flag", 1).ue("num_long_term_ref_pics_sps", 2);
                      for (int i = 0; i < 2; ++i) {
                          out.u(8, "lt_ref_pic_poc_lsb_sps", 0xA5).u(1, "used_by_curr_pic_lt_sps_flag", 1);
                      }
                  };
              }),
              kTransfer);
}

TEST(HevcVui, aspectRatioAndOverscan) {
    EXPECT_EQ(
        transferOf([](Sps& sps) {
            const Write rest = sps.writeVui;
            sps.writeVui = [](BitWriter& out) {
                out.u(1, "vui_parameters_present_flag", 1);
                out.u(1, "aspect_ratio_info_present_flag", 1).u(8, "aspect_ratio_idc", 255);
                out.u(16, "sar_width", 4).u(16, "sar_height", 3);
                out.bits("overscan", "1 1").u(1, "video_signal_type_present_flag", 1);
                out.bits("video_format, full range, colour description", "101 1 1");
                out.u(8, "colour_primaries", 9).u(8, "transfer_characteristics", 16).u(8, "matrix_coeffs", 9);
            };
        }),
        16U);
}

TEST(HevcVui, withoutAColourDescription) {
    const char* const vuis[] = {"0", "1 0 0 0", "1 0 0 1 101 0 0"};
    for (const char* vui : vuis) {
        EXPECT_EQ(transferOf([vui](Sps& sps) {
                      sps.writeVui = [vui](BitWriter& out) { out.bits("vui_parameters()", vui); };
                  }),
                  std::nullopt)
            << vui;
    }
}

TEST(HevcVui, countsOutOfRange) {
    EXPECT_EQ(transferOf([](Sps& sps) { sps.log2_max_pic_order_cnt_lsb_minus4 = 13; }), std::nullopt);
    const std::pair<const char*, Write> sets[] = {
        {"sets", [](BitWriter& out) { out.ue("num_short_term_ref_pic_sets", 65); }},
        {"negative pictures",
         [](BitWriter& out) { out.ue("sets", 1).ue("num_negative_pics", 17).ue("positive", 0); }},
        {"positive pictures",
         [](BitWriter& out) { out.ue("sets", 1).ue("negative", 0).ue("num_positive_pics", 17); }},
    };
    for (const auto& [name, write] : sets) {
        EXPECT_EQ(transferOf([&write = write](Sps& sps) { sps.writeShortTermSets = write; }), std::nullopt)
            << name;
    }
    EXPECT_EQ(transferOf([](Sps& sps) {
                  sps.writeLongTermPictures = [](BitWriter& out) {
                      out.u(1, "long_term_ref_pics_present_flag", 1).ue("num_long_term_ref_pics_sps", 33);
                  };
              }),
              std::nullopt);
}

// Up to the byte after transfer_characteristics there is nothing to report.
TEST(HevcVui, cutAnywhere) {
    const Bytes whole = unitOf({});
    for (size_t size = 0; size + 2 < whole.size(); ++size) {
        EXPECT_EQ(hevcTransferCharacteristics(Bytes(whole.begin(), whole.begin() + static_cast<long>(size))),
                  std::nullopt)
            << size;
    }
    EXPECT_EQ(hevcTransferCharacteristics(whole), kTransfer);
}

}  // namespace
}  // namespace qv_test
