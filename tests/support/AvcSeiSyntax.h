// SEI payloads of ITU-T H.264 (08/2021) D.1 as coded values, with the user data of ATSC A/53 Part 4 (2009)
// and ETSI TS 101 154 V2.3.1 and the green metadata of ISO/IEC 23001-11 (2019). Nothing here is derived from
// anything else.
#ifndef QV_TESTS_AVCSEISYNTAX_H
#define QV_TESTS_AVCSEISYNTAX_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "BitWriter.h"
#include "CursorModel.h"
#include "QVNaluParser.h"

namespace qv_test {

// recovery_point(), D.1.8
struct RecoveryPointSyntax {
    uint32_t recovery_frame_cnt = 0;
    uint32_t exact_match_flag = 0;
    uint32_t broken_link_flag = 0;
    uint32_t changing_slice_group_idc = 0;
};

// buffering_period(), D.1.2; the entries are by SchedSelIdx, and all of them are written
struct CpbDelaySyntax {
    uint64_t initial_cpb_removal_delay = 0;
    uint64_t initial_cpb_removal_delay_offset = 0;
};

struct BufferingPeriodSyntax {
    uint32_t seq_parameter_set_id = 0;
    std::vector<CpbDelaySyntax> nal;
    std::vector<CpbDelaySyntax> vcl;
};

// pic_timing(), D.1.3
struct ClockTimestampSyntax {
    uint32_t clock_timestamp_flag = 0;
    uint32_t ct_type = 0;
    uint32_t nuit_field_based_flag = 0;
    uint32_t counting_type = 0;
    uint32_t full_timestamp_flag = 0;
    uint32_t discontinuity_flag = 0;
    uint32_t cnt_dropped_flag = 0;
    uint32_t n_frames = 0;
    uint32_t seconds_flag = 0;  // written with full_timestamp_flag 0, as the other two
    uint32_t seconds_value = 0;
    uint32_t minutes_flag = 0;
    uint32_t minutes_value = 0;
    uint32_t hours_flag = 0;
    uint32_t hours_value = 0;
    uint64_t time_offset = 0;
};

struct PicTimingSyntax {
    uint64_t cpb_removal_delay = 0;
    uint64_t dpb_output_delay = 0;
    uint32_t pic_struct = 0;
    std::array<ClockTimestampSyntax, 3> clockTimestamps;  // NumClockTS of them are written
};

// frame_packing_arrangement(), D.1.25
struct FramePackingSyntax {
    uint32_t frame_packing_arrangement_id = 0;
    uint32_t frame_packing_arrangement_cancel_flag = 0;
    uint32_t frame_packing_arrangement_type = 3;
    uint32_t quincunx_sampling_flag = 0;
    uint32_t content_interpretation_type = 1;
    uint32_t spatial_flipping_flag = 0;
    uint32_t frame0_flipped_flag = 0;
    uint32_t field_views_flag = 0;
    uint32_t current_frame_is_frame0_flag = 0;
    uint32_t frame0_self_contained_flag = 0;
    uint32_t frame1_self_contained_flag = 0;
    uint32_t frame0_grid_position_x = 0;  // written with quincunx_sampling_flag 0, not for type 5
    uint32_t frame0_grid_position_y = 0;
    uint32_t frame1_grid_position_x = 0;
    uint32_t frame1_grid_position_y = 0;
    uint32_t frame_packing_arrangement_reserved_byte = 0;
    uint32_t frame_packing_arrangement_repetition_period = 1;
    uint32_t frame_packing_arrangement_extension_flag = 0;
};

// display_orientation(), D.1.27
struct DisplayOrientationSyntax {
    uint32_t display_orientation_cancel_flag = 0;
    uint32_t hor_flip = 0;
    uint32_t ver_flip = 0;
    uint32_t anticlockwise_rotation = 0;
    uint32_t display_orientation_repetition_period = 1;
    uint32_t display_orientation_extension_flag = 0;
};

// green_metadata(), ISO/IEC 23001-11 Annex A
struct GreenMetadataSyntax {
    uint32_t green_metadata_type = 0;
    uint32_t period_type = 0;
    uint32_t num_seconds = 0;   // written with period_type 2
    uint32_t num_pictures = 0;  // written with period_type 3
    uint32_t percent_non_zero_macroblocks = 0;
    uint32_t percent_intra_coded_macroblocks = 0;
    uint32_t percent_six_tap_filtering = 0;
    uint32_t percent_alpha_point_deblocking_instance = 0;
    uint32_t xsd_metric_type = 0;
    uint32_t xsd_metric_value = 0;
};

// user_data_registered_itu_t_t35(), D.1.6, up to the user_identifier of ATSC A/53 and ETSI TS 101 154
struct T35Syntax {
    uint32_t itu_t_t35_country_code = 0xB5;
    uint32_t itu_t_t35_country_code_extension_byte = 0;  // written with country code 0xFF
    uint32_t itu_t_t35_provider_code = 0x0031;
    uint32_t user_identifier = 0;
};

// afd_data(), TS 101 154 B.3
struct AfdSyntax {
    uint32_t zero = 0;
    uint32_t active_format_flag = 1;
    uint32_t reserved6 = 1;
    uint32_t reserved4 = 15;  // written with active_format_flag 1, as the next
    uint32_t active_format = 8;
};

// user_data_type_code and cc_data(), A/53 Part 4 6.2
struct CcConstructSyntax {
    uint32_t marker_bits = 31;
    uint32_t cc_valid = 1;
    uint32_t cc_type = 0;
    uint32_t cc_data_1 = 0x94;
    uint32_t cc_data_2 = 0x2C;
};

struct CcDataSyntax {
    uint32_t user_data_type_code = 3;
    uint32_t process_em_data_flag = 1;
    uint32_t process_cc_data_flag = 1;
    uint32_t additional_data_flag = 0;
    uint32_t cc_count = 0;
    uint32_t em_data = 0xFF;
    std::vector<CcConstructSyntax> constructs;  // all of them are written
    uint32_t marker_bits = 0xFF;
};

// Append a payload. Field lengths and the presence of sections are those of the parameter set.
void write(BitWriter& out, const RecoveryPointSyntax& syntax);
void write(BitWriter& out, const BufferingPeriodSyntax& syntax, const QVAvcSps& sps);
void write(BitWriter& out, const PicTimingSyntax& syntax, const QVAvcSps& sps);
void write(BitWriter& out, const FramePackingSyntax& syntax);
void write(BitWriter& out, const DisplayOrientationSyntax& syntax);
void write(BitWriter& out, const GreenMetadataSyntax& syntax);
void write(BitWriter& out, const T35Syntax& syntax);
void write(BitWriter& out, const AfdSyntax& syntax);
void write(BitWriter& out, const CcDataSyntax& syntax);

// The payload alone.
template <class Syntax, class... Context>
BitWriter payload(const Syntax& syntax, const Context&... context) {
    BitWriter out;
    write(out, syntax, context...);
    return out;
}

// The values at the cursor, read element by element, with zero bits after the end of the data. Elements that
// nobody keeps are skipped, adjacent ones in one skip, and a skip that does not fit has no effect. A value
// out of range ends the reading.
RecoveryPointSyntax readRecoveryPoint(CursorModel& in);
BufferingPeriodSyntax readBufferingPeriod(CursorModel& in, const QVAvcSps& sps);
PicTimingSyntax readPicTiming(CursorModel& in, const QVAvcSps& sps);
FramePackingSyntax readFramePacking(CursorModel& in);
DisplayOrientationSyntax readDisplayOrientation(CursorModel& in);
GreenMetadataSyntax readGreenMetadata(CursorModel& in);

}  // namespace qv_test

#endif
