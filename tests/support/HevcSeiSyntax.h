// SEI payloads of ITU-T H.265 (08/2021) D.2 as coded values: nothing here is derived from anything else.
#ifndef QV_TESTS_HEVCSEISYNTAX_H
#define QV_TESTS_HEVCSEISYNTAX_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "BitWriter.h"

namespace qv_test {

// mastering_display_colour_volume(), D.2.28
struct HevcMasteringDisplaySyntax {
    std::array<uint32_t, 3> display_primaries_x = {{13250, 7500, 34000}};
    std::array<uint32_t, 3> display_primaries_y = {{34500, 3000, 16000}};
    uint32_t white_point_x = 15635;
    uint32_t white_point_y = 16450;
    uint32_t max_display_mastering_luminance = 10000000;
    uint32_t min_display_mastering_luminance = 50;
};

// content_light_level_info(), D.2.35
struct HevcContentLightSyntax {
    uint32_t max_content_light_level = 1000;
    uint32_t max_pic_average_light_level = 400;
};

// alternative_transfer_characteristics(), D.2.38
struct HevcAlternativeTransferSyntax {
    uint32_t preferred_transfer_characteristics = 18;
};

// pic_timing(), D.2.3: what frame_field_info_present_flag announces
struct HevcPicTimingSyntax {
    uint32_t pic_struct = 0;
    uint32_t source_scan_type = 0;
    uint32_t duplicate_flag = 0;
};

// decoded_picture_hash(), D.2.19, of a picture with three colour components. Of hash types other than 0, 1
// and 2 nothing but the type is written.
struct HevcPictureHashSyntax {
    uint32_t hash_type = 0;
    std::array<std::array<uint32_t, 16>, 3> picture_md5 = {};
    std::array<uint32_t, 3> picture_crc = {};
    std::array<uint32_t, 3> picture_checksum = {};
};

// active_parameter_sets(), D.2.21, of a video parameter set with one layer
struct HevcActiveParameterSetsSyntax {
    uint32_t active_video_parameter_set_id = 0;
    uint32_t self_contained_cvs_flag = 0;
    uint32_t no_parameter_set_update_flag = 0;
    uint32_t num_sps_ids_minus1 = 0;
    std::vector<uint32_t> active_seq_parameter_set_id = {0};  // all of them are written
};

// frame_packing_arrangement(), D.2.16
struct HevcFramePackingSyntax {
    uint32_t frame_packing_arrangement_id = 0;
    uint32_t frame_packing_arrangement_cancel_flag = 0;
    uint32_t frame_packing_arrangement_type = 3;  // written without cancellation, as all up to the last
    uint32_t quincunx_sampling_flag = 0;
    uint32_t content_interpretation_type = 1;
    uint32_t spatial_flipping_flag = 0;
    uint32_t frame0_flipped_flag = 0;
    uint32_t field_views_flag = 0;
    uint32_t current_frame_is_frame0_flag = 1;
    uint32_t frame0_self_contained_flag = 0;
    uint32_t frame1_self_contained_flag = 0;
    uint32_t frame0_grid_position_x = 1;  // written with quincunx_sampling_flag 0, not for type 5
    uint32_t frame0_grid_position_y = 2;
    uint32_t frame1_grid_position_x = 3;
    uint32_t frame1_grid_position_y = 4;
    uint32_t frame_packing_arrangement_reserved_byte = 0;
    uint32_t frame_packing_arrangement_persistence_flag = 1;
    uint32_t upsampled_aspect_ratio_flag = 0;
};

// display_orientation(), D.2.17
struct HevcDisplayOrientationSyntax {
    uint32_t display_orientation_cancel_flag = 0;
    uint32_t hor_flip = 1;
    uint32_t ver_flip = 0;
    uint32_t anticlockwise_rotation = 0x4000;
    uint32_t display_orientation_persistence_flag = 1;
};

// The payload after lead 1 bits.
BitWriter hevcSei(const HevcMasteringDisplaySyntax& syntax, unsigned lead = 0);
BitWriter hevcSei(const HevcContentLightSyntax& syntax, unsigned lead = 0);
BitWriter hevcSei(const HevcAlternativeTransferSyntax& syntax, unsigned lead = 0);
BitWriter hevcSei(const HevcPicTimingSyntax& syntax, unsigned lead = 0);
BitWriter hevcSei(const HevcPictureHashSyntax& syntax, unsigned lead = 0);
BitWriter hevcSei(const HevcActiveParameterSetsSyntax& syntax, unsigned lead = 0);
BitWriter hevcSei(const HevcFramePackingSyntax& syntax, unsigned lead = 0);
BitWriter hevcSei(const HevcDisplayOrientationSyntax& syntax, unsigned lead = 0);

// The values that are left when only the first bitCount bits of the payload are there.
HevcMasteringDisplaySyntax cutAt(const HevcMasteringDisplaySyntax& syntax, size_t bitCount);
HevcContentLightSyntax cutAt(const HevcContentLightSyntax& syntax, size_t bitCount);
HevcAlternativeTransferSyntax cutAt(const HevcAlternativeTransferSyntax& syntax, size_t bitCount);
HevcPicTimingSyntax cutAt(const HevcPicTimingSyntax& syntax, size_t bitCount);
HevcPictureHashSyntax cutAt(const HevcPictureHashSyntax& syntax, size_t bitCount);
HevcFramePackingSyntax cutAt(const HevcFramePackingSyntax& syntax, size_t bitCount);
HevcDisplayOrientationSyntax cutAt(const HevcDisplayOrientationSyntax& syntax, size_t bitCount);

}  // namespace qv_test

#endif
