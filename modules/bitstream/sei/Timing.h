/// \file
/// Buffering periods and picture timing: when coded pictures enter and leave the buffers of the HRD, and how
/// they are displayed.
#ifndef QV_BITSTREAM_SEI_TIMING_H
#define QV_BITSTREAM_SEI_TIMING_H

#include <cstdint>

#include "bitstream/avc/Hrd.h"
#include "bitstream/hevc/Hrd.h"
#include "bitstream/sei/ClockTimestamp.h"
#include "bitstream/sei/SeiPayload.h"
#include "bitstream/syntax/CodedBits.h"
#include "bitstream/syntax/Reader.h"

namespace qv::sei {

/// The initial delays of an H.264 HRD, one entry for each SchedSelIdx, in units of a 90 kHz clock. Their
/// length is initial_cpb_removal_delay_length_minus1 + 1 bits.
struct AvcInitialDelays {
    uint32_t count;  ///< entries: cpb_cnt_minus1 + 1; 0 when they are not present

    uint32_t initial_cpb_removal_delay[avc::Hrd::kMostCpbs];         ///< u(v), above 0
    uint32_t initial_cpb_removal_delay_offset[avc::Hrd::kMostCpbs];  ///< u(v)
};

/// buffering_period() of H.264, D.1.2 and D.2.2. Its syntax depends on the SPS that it names.
struct AvcBufferingPeriod {
    static constexpr PayloadTypes kPayloadTypes = {0, kNoPayloadType};  ///< payloadType

    uint32_t seq_parameter_set_id;  ///< ue(v), 0..31
    AvcInitialDelays nal;           ///< with NalHrdBpPresentFlag
    AvcInitialDelays vcl;           ///< with VclHrdBpPresentFlag
};

/// The initial delays of an H.265 HRD, one entry for each CPB, in units of a 90 kHz clock. Elements are named
/// without their prefix nal_ or vcl_. Their length is initial_cpb_removal_delay_length_minus1 + 1 bits.
struct HevcInitialDelays {
    uint32_t count;  ///< entries: CpbCnt; 0 when they are not present

    uint32_t initial_cpb_removal_delay[hevc::CpbParameters::kMostCpbs];   ///< u(v), above 0
    uint32_t initial_cpb_removal_offset[hevc::CpbParameters::kMostCpbs];  ///< u(v)

    /// u(v), above 0; 0 without sub_pic_hrd_params_present_flag and irap_cpb_params_present_flag.
    uint32_t initial_alt_cpb_removal_delay[hevc::CpbParameters::kMostCpbs];
    /// u(v); present as initial_alt_cpb_removal_delay.
    uint32_t initial_alt_cpb_removal_offset[hevc::CpbParameters::kMostCpbs];
};

/// buffering_period() of H.265, D.2.2 and D.3.2. Its syntax depends on the SPS that it names.
struct HevcBufferingPeriod {
    static constexpr PayloadTypes kPayloadTypes = {kNoPayloadType, 0};  ///< payloadType

    uint32_t bp_seq_parameter_set_id;            ///< ue(v), 0..15
    bool irap_cpb_params_present_flag;           ///< 0 when not present
    uint32_t cpb_delay_offset;                   ///< u(v), clock ticks; 0 when not present
    uint32_t dpb_delay_offset;                   ///< u(v), clock ticks; 0 when not present
    bool concatenation_flag;                     ///< u(1)
    uint32_t au_cpb_removal_delay_delta_minus1;  ///< u(v), clock ticks
    HevcInitialDelays nal;                       ///< with NalHrdBpPresentFlag
    HevcInitialDelays vcl;                       ///< with VclHrdBpPresentFlag
    bool payload_extension_present;              ///< true when use_alt_cpb_params_flag follows
    bool use_alt_cpb_params_flag;                ///< u(1); 0 when not present
};

/// pic_timing() of H.264, D.1.3 and D.2.3. Its syntax depends on the SPS of the picture.
struct AvcPicTiming {
    static constexpr PayloadTypes kPayloadTypes = {1, kNoPayloadType};  ///< payloadType
    static constexpr uint32_t kMostClockTimestamps = 3;                 ///< the greatest NumClockTS

    uint32_t cpb_removal_delay;  ///< u(v), clock ticks; present with HRD parameters
    uint32_t dpb_output_delay;   ///< u(v), clock ticks; present with HRD parameters

    uint32_t pic_struct;  ///< u(4), Table D-1, 0..8; present with pic_struct_present_flag
    uint32_t NumClockTS;  ///< 1..3 with pic_struct_present_flag, otherwise 0

    ClockTimestamp clock_timestamp[kMostClockTimestamps];  ///< NumClockTS of them
};

/// NumClockTS of a pic_struct of H.264, Table D-1: 1..3; 0 for the values 9 to 15, which are reserved.
constexpr uint32_t numClockTsOf(uint32_t pic_struct) {
    constexpr uint32_t kNumClockTs[] = {1, 1, 1, 2, 2, 3, 3, 2, 3};
    return pic_struct < 9 ? kNumClockTs[pic_struct] : 0;
}

/// pic_timing() of H.265, D.2.3 and D.3.3. Its syntax depends on the SPS of the picture.
struct HevcPicTiming {
    static constexpr PayloadTypes kPayloadTypes = {kNoPayloadType, 1};  ///< payloadType

    uint32_t pic_struct;        ///< u(4), Table D.2; 0 without frame_field_info_present_flag
    uint32_t source_scan_type;  ///< u(2): 0 interlaced, 1 progressive, 2 unknown; inferred from the profile
    bool duplicate_flag;        ///< u(1); 0 without frame_field_info_present_flag

    uint32_t
        au_cpb_removal_delay_minus1;   ///< u(v), clock ticks; present with HRD parameters, as what follows
    uint32_t pic_dpb_output_delay;     ///< u(v), clock ticks
    uint32_t pic_dpb_output_du_delay;  ///< u(v), sub-ticks; with sub_pic_hrd_params_present_flag

    /// True when the elements of decoding units follow: sub_pic_cpb_params_in_pic_timing_sei_flag.
    bool hasDecodingUnits;
    uint32_t num_decoding_units_minus1;                     ///< ue(v), 0..PicSizeInCtbsY - 1
    bool du_common_cpb_removal_delay_flag;                  ///< u(1)
    uint32_t du_common_cpb_removal_delay_increment_minus1;  ///< u(v), sub-ticks; with the flag before
    uint32_t du_cpb_removal_delay_increment_length_minus1;  ///< that of the HRD parameters, 0..31
    CodedBits decoding_units;                               ///< see DecodingUnitReader
};

/// A decoding unit of pic_timing(), H.265 D.3.3.
struct DecodingUnit {
    uint32_t num_nalus_in_du_minus1;  ///< ue(v)

    /// u(v), sub-ticks. That of all decoding units with du_common_cpb_removal_delay_flag; 0 for the last one
    /// without it.
    uint32_t du_cpb_removal_delay_increment_minus1;
};

/// Reads the decoding units of a pic_timing() that was read without a fault, in order.
class DecodingUnitReader {
public:
    /// \p timing, and the unit that it was read from, are borrowed.
    explicit DecodingUnitReader(const HevcPicTiming& timing) noexcept;

    /// num_decoding_units_minus1 + 1; 0 without hasDecodingUnits.
    uint64_t count() const noexcept { return count_; }

    /// Reads the next one; false when there is none left.
    bool next(DecodingUnit& unit) noexcept;

private:
    const HevcPicTiming& timing_;
    Reader reader_;
    uint64_t count_;
    uint64_t next_ = 0;
};

/// decoding_unit_info() of H.265, D.2.22 and D.3.22. Its syntax depends on the SPS of the picture.
struct DecodingUnitInfo {
    static constexpr PayloadTypes kPayloadTypes = {kNoPayloadType, 130};  ///< payloadType

    uint32_t decoding_unit_idx;  ///< ue(v), 0..PicSizeInCtbsY - 1

    /// u(v), sub-ticks; present without sub_pic_cpb_params_in_pic_timing_sei_flag.
    uint32_t du_spt_cpb_removal_delay_increment;
    bool dpb_output_du_delay_present_flag;  ///< u(1)
    uint32_t pic_spt_dpb_output_du_delay;   ///< u(v), sub-ticks; with dpb_output_du_delay_present_flag
};

}  // namespace qv::sei

#endif
