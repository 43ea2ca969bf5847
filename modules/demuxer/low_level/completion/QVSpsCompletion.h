/// \file
/// The VUI and HRD fields of QVAvcSps and QVHevcSps.
///
/// parseAvcSps and parseHevcSps stop before the VUI. These functions read it, so that
/// parserAvcBufferingPeriod, parserAvcPictureTiming and parserHevcPictureTiming find the lengths and flags
/// that they depend on.
///
/// Clauses are those of ITU-T H.264 (08/2021) and H.265 (08/2021).
#ifndef QV_DEMUXER_QVSPSCOMPLETION_H
#define QV_DEMUXER_QVSPSCOMPLETION_H

#include "QVAvcSps.h"
#include "QVHevcSps.h"
#include "QVResult.h"

/// Fills the VUI and HRD fields of a record from a sequence parameter set (H.264 7.3.2.1.1, E.1.1, E.1.2).
/// All of these are set:
///
/// - video_signal_type_present_flag, full_range, colour_description_present_flag, colour_primaries,
///   transfer_characteristics and colorspace (matrix_coefficients)
/// - timing_info_present_flag, num_units_in_tick, time_scale and fixed_frame_rate_flag
/// - nal_hrd_parameters_present_flag, vcl_hrd_parameters_present_flag and pic_struct_present_flag
/// - cpb_cnt (1..32), initial_cpb_removal_delay_length, cpb_removal_delay_length, dpb_output_delay_length
///   (1..32 bits) and time_offset_length (0..31 bits): those of the NAL HRD parameters if present, otherwise
///   those of the VCL HRD parameters. E.2.2 requires equal lengths in both. The counts may differ, but the
///   record holds one: parserAvcBufferingPeriod then reads the VCL delays with the count of the NAL ones.
///
/// An element that is not present has the value that E.2.1 and E.2.2 infer, also if there is no VUI: colour 2
/// (unspecified), full_range 0, cpb_cnt 1, each length 24, otherwise 0.
///
/// Call it after parseAvcSps, which resets full_range, colorspace and time_offset_length. The other fields of
/// the record are neither read nor written. Nothing is allocated or logged.
///
/// \param[in,out] sps  the caller's record; untouched unless the result is QVResultOk
/// \param data  the NAL unit from its header on, without start code or length field and with its emulation
///              prevention bytes; zero bytes after it are allowed
/// \param size  bytes at data
/// \return QVResultOk. QVResultFailed when sps is null or an element of the parameter set is out of its
///         range. QVResultInvalidData when data is null, size is below 1, the unit is not of type 7, or it
///         ends before the end of the parameter set.
int completeAvcSps(QVAvcSps* sps, const unsigned char* data, int size);

/// Fills the VUI fields of a record from a sequence parameter set (H.265 7.3.2.2, E.2.1): all fields from
/// vui_parameters_present_flag to frame_field_info_present_flag are set. The record has no HRD fields.
///
/// An element that is not present has the value that E.3.1 infers, also if there is no VUI: video_format 5
/// and colour 2 (unspecified), frame_field_info_present_flag 1 when general_progressive_source_flag and
/// general_interlaced_source_flag are both 1, otherwise 0.
///
/// The other fields of the record are neither read nor written. Nothing is allocated or logged.
///
/// \param[in,out] sps  the caller's record; untouched unless the result is QVResultOk
/// \param data  the NAL unit from its header on, without start code or length field and with its emulation
///              prevention bytes; zero bytes after it are allowed
/// \param size  bytes at data
/// \return QVResultOk. QVResultFailed when sps is null, when an element of the parameter set is out of its
///         range, and when a unit with nuh_layer_id above 0 depends on its VPS for elements that follow.
///         QVResultInvalidData when data is null, size is below 1, the unit is not of type 33, or it ends
///         before the end of the parameter set.
int completeHevcSps(QVHevcSps* sps, const unsigned char* data, int size);

#endif
