#include "SeiStreams.h"

namespace qv_test {

namespace {

void append(Bytes& bytes, const Bytes& more) {
    bytes.insert(bytes.end(), more.begin(), more.end());
}

Bytes unitInByteStream(const Bytes& header, BitWriter rbsp) {
    Bytes bytes = {0x00, 0x00, 0x01};
    append(bytes, header);
    append(bytes, withEmulationPrevention(rbsp.trailingBits().bytes()));
    return bytes;
}

BitWriter avcSps(uint32_t id) {
    BitWriter bits;
    bits.u(8, "profile_idc", 66).u(8, "constraint flags", 0).u(8, "level_idc", 40);
    bits.ue("seq_parameter_set_id", id).ue("log2_max_frame_num_minus4", 0).ue("pic_order_cnt_type", 2);
    bits.ue("max_num_ref_frames", 1).u(1, "gaps_in_frame_num_value_allowed_flag", 0);
    bits.ue("pic_width_in_mbs_minus1", 10).ue("pic_height_in_map_units_minus1", 8);
    bits.bits("frame_mbs_only, direct_8x8, cropping, vui", "1101");
    bits.bits("aspect ratio, overscan, video signal, chroma loc, timing", "00000");
    bits.u(1, "nal_hrd_parameters_present_flag", 1).ue("cpb_cnt_minus1", 31);
    bits.u(4, "bit_rate_scale", 0).u(4, "cpb_size_scale", 0);
    for (int i = 0; i < 32; ++i) {
        bits.ue("bit_rate_value_minus1", 0).ue("cpb_size_value_minus1", 0).u(1, "cbr_flag", 0);
    }
    bits.u(5, "initial_cpb_removal_delay_length_minus1", 23).u(5, "cpb_removal_delay_length_minus1", 4);
    bits.u(5, "dpb_output_delay_length_minus1", 4).u(5, "time_offset_length", 24);
    bits.u(1, "vcl_hrd_parameters_present_flag", 0).u(1, "low_delay_hrd_flag", 0);
    return bits.u(1, "pic_struct_present_flag", 1).u(1, "bitstream_restriction_flag", 0);
}

BitWriter avcPps(uint32_t spsId) {
    BitWriter bits;
    bits.ue("pic_parameter_set_id", 0).ue("seq_parameter_set_id", spsId).bits("cabac, bottom field", "00");
    bits.ue("num_slice_groups_minus1", 0).ue("l0", 0).ue("l1", 0).bits("weighted_pred, bipred", "000");
    bits.se("pic_init_qp_minus26", 0).se("pic_init_qs_minus26", 0).se("chroma_qp_index_offset", 0);
    return bits.bits("deblocking, intra, redundant", "100");
}

void mainProfileTierLevel(BitWriter& bits) {
    bits.u(8, "general_profile_space, general_tier_flag, general_profile_idc", 1);
    bits.u(32, "general_profile_compatibility_flag", 0x60000000).u(4, "source flags", 9);
    bits.u(44, "reserved bits", 0).u(8, "general_level_idc", 93);
}

BitWriter hevcVps() {
    BitWriter bits;
    bits.u(4, "vps_video_parameter_set_id", 0).bits("base layer internal, available", "11");
    bits.u(6, "vps_max_layers_minus1", 1).u(3, "vps_max_sub_layers_minus1", 0).u(1, "nesting", 1);
    bits.u(16, "vps_reserved_0xffff_16bits", 0xFFFF);
    mainProfileTierLevel(bits);
    bits.u(1, "vps_sub_layer_ordering_info_present_flag", 1);
    bits.ue("vps_max_dec_pic_buffering_minus1", 4).ue("reorder", 0).ue("latency", 0);
    bits.u(6, "vps_max_layer_id", 0).ue("vps_num_layer_sets_minus1", 0);
    return bits.bits("timing, extension", "00");
}

void hevcHrd(BitWriter& bits) {
    bits.bits("nal, vcl, sub_pic_hrd_params_present_flag", "111").u(8, "tick_divisor_minus2", 0);
    bits.u(5, "du_cpb_removal_delay_increment_length_minus1", 7);
    bits.u(1, "sub_pic_cpb_params_in_pic_timing_sei_flag", 1).u(5, "dpb_output_delay_du_length_minus1", 7);
    bits.u(4, "bit_rate_scale", 0).u(4, "cpb_size_scale", 0).u(4, "cpb_size_du_scale", 0);
    bits.u(5, "initial_cpb_removal_delay_length_minus1", 23);
    bits.u(5, "au_cpb_removal_delay_length_minus1", 7).u(5, "dpb_output_delay_length_minus1", 7);
    bits.u(1, "fixed_pic_rate_general_flag", 1).ue("elemental_duration_in_tc_minus1", 0);
    bits.ue("cpb_cnt_minus1", 1);
    for (int i = 0; i < 4; ++i) {
        // The rates of an HRD rise, its sizes fall.
        const uint32_t second = i % 2 == 0 ? 0 : 1;
        bits.ue("bit_rate_value_minus1", second).ue("cpb_size_value_minus1", 1 - second);
        bits.ue("cpb_size_du_value_minus1", 1 - second).ue("bit_rate_du_value_minus1", second);
        bits.u(1, "cbr_flag", 0);
    }
}

BitWriter hevcSps(uint32_t id) {
    BitWriter bits;
    bits.u(4, "sps_video_parameter_set_id", 0).u(3, "sps_max_sub_layers_minus1", 0).u(1, "nesting", 1);
    mainProfileTierLevel(bits);
    bits.ue("sps_seq_parameter_set_id", id).ue("chroma_format_idc", 1);
    bits.ue("pic_width_in_luma_samples", 640).ue("pic_height_in_luma_samples", 480);
    bits.u(1, "conformance_window_flag", 0).ue("bit_depth_luma", 0).ue("bit_depth_chroma", 0);
    bits.ue("log2_max_pic_order_cnt_lsb_minus4", 4).u(1, "sps_sub_layer_ordering_info_present_flag", 1);
    bits.ue("sps_max_dec_pic_buffering_minus1", 4).ue("reorder", 0).ue("latency", 0);
    bits.ue("log2_min_luma_coding_block_size_minus3", 0).ue("log2_diff_max_min", 3);
    bits.ue("log2_min_luma_transform_block_size_minus2", 0).ue("log2_diff_max_min", 3);
    bits.ue("max_transform_hierarchy_depth_inter", 0).ue("max_transform_hierarchy_depth_intra", 0);
    bits.bits("scaling, amp, sao, pcm", "0000").ue("num_short_term_ref_pic_sets", 0);
    bits.bits("long term, temporal mvp, smoothing", "000").u(1, "vui_parameters_present_flag", 1);
    bits.bits("aspect ratio, overscan, video signal, chroma loc", "0000");
    bits.bits("neutral chroma, field_seq, frame_field_info_present_flag, default display", "0010");
    bits.u(1, "vui_timing_info_present_flag", 1).u(32, "vui_num_units_in_tick", 1);
    bits.u(32, "vui_time_scale", 50).u(1, "vui_poc_proportional_to_timing_flag", 0);
    bits.u(1, "vui_hrd_parameters_present_flag", 1);
    hevcHrd(bits);
    return bits.u(1, "bitstream_restriction_flag", 0).u(1, "sps_extension_present_flag", 0);
}

BitWriter hevcPps(uint32_t spsId) {
    BitWriter bits;
    bits.ue("pps_pic_parameter_set_id", 0).ue("pps_seq_parameter_set_id", spsId);
    bits.bits("dependent, output, extra bits, sign hiding, cabac_init", "00 000 00");
    bits.ue("l0", 0).ue("l1", 0).se("init_qp_minus26", 0).bits("intra, skip, qp delta", "000");
    bits.se("pps_cb_qp_offset", 0).se("pps_cr_qp_offset", 0);
    bits.bits("chroma offsets, weighted, bipred, bypass, tiles, sync", "000000");
    bits.bits("loop filter, deblocking control, scaling lists, lists modification", "1000");
    return bits.ue("log2_parallel_merge_level_minus2", 0).bits("slice header extension, extension", "00");
}

}  // namespace

Bytes avcSetsForSei(uint32_t seq_parameter_set_id) {
    Bytes stream = unitInByteStream({0x67}, avcSps(seq_parameter_set_id));
    append(stream, unitInByteStream({0x68}, avcPps(seq_parameter_set_id)));
    return stream;
}

Bytes hevcSetsForSei(uint32_t sps_seq_parameter_set_id) {
    Bytes stream = unitInByteStream({0x40, 0x01}, hevcVps());
    append(stream, unitInByteStream({0x42, 0x01}, hevcSps(sps_seq_parameter_set_id)));
    append(stream, unitInByteStream({0x44, 0x01}, hevcPps(sps_seq_parameter_set_id)));
    return stream;
}

Bytes seiOfTypes(bool isHevc, unsigned first, unsigned last, const Bytes& payload) {
    BitWriter bits;
    for (unsigned type = first; type <= last; ++type) {
        if (type >= 255) {
            bits.u(8, "ff_byte", 0xFF);
        }
        bits.u(8, "last_payload_type_byte", type % 255).u(8, "last_payload_size_byte", payload.size());
        for (const unsigned char byte : payload) {
            bits.u(8, "payload", byte);
        }
    }
    return unitInByteStream(isHevc ? Bytes{0x4E, 0x01} : Bytes{0x06}, bits);
}

}  // namespace qv_test
