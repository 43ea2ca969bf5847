/// \file
/// Clock timestamps: when a picture, or a field of it, was captured or is to be displayed.
#ifndef QV_BITSTREAM_SEI_CLOCKTIMESTAMP_H
#define QV_BITSTREAM_SEI_CLOCKTIMESTAMP_H

#include <cstdint>

namespace qv::sei {

/// A set of clock timestamp syntax elements: of pic_timing() in H.264 (D.1.3, D.2.3), of time_code() in H.265
/// (D.2.27, D.3.27). Elements that are not present are 0.
struct ClockTimestamp {
    bool clock_timestamp_flag;    ///< u(1); without it nothing else is present
    uint32_t ct_type;             ///< H.264 alone: u(2), Table D-2
    bool nuit_field_based_flag;   ///< H.264 alone: u(1)
    bool units_field_based_flag;  ///< H.265 alone: u(1)
    uint32_t counting_type;       ///< u(5), Table D-3 of H.264; 7..31 are reserved
    bool full_timestamp_flag;     ///< u(1)
    bool discontinuity_flag;      ///< u(1)
    bool cnt_dropped_flag;        ///< u(1)
    uint32_t n_frames;            ///< u(8) in H.264, u(9) in H.265
    bool seconds_flag;            ///< u(1); not present with full_timestamp_flag
    uint32_t seconds_value;       ///< u(6), 0..59
    bool minutes_flag;            ///< u(1); not present with full_timestamp_flag
    uint32_t minutes_value;       ///< u(6), 0..59
    bool hours_flag;              ///< u(1); not present with full_timestamp_flag
    uint32_t hours_value;         ///< u(5), 0..23
    int32_t time_offset;  ///< H.264 alone: i(v), time_offset_length bits, in units of 1 / time_scale s
    uint32_t time_offset_length;  ///< H.265 alone: u(5)
    int32_t time_offset_value;    ///< H.265 alone: i(v), in units of 1 / vui_time_scale s
};

/// The time that a clock timestamp specifies, with its absent parts taken from those before it.
struct ClockTime {
    /// False when no timestamp up to this one had hours. Those below are 0 then.
    bool hasHours = false;
    bool hasMinutes = false;  ///< as hasHours, of minutes
    bool hasSeconds = false;  ///< as hasHours, of seconds

    uint32_t hours = 0;    ///< hH, 0..23
    uint32_t minutes = 0;  ///< mM, 0..59
    uint32_t seconds = 0;  ///< sS, 0..59
    uint32_t frames = 0;   ///< nFrames, as n_frames

    /// Clock ticks that \ref frames counts: 1 + nuit_field_based_flag, or 1 + units_field_based_flag.
    uint32_t ticksPerFrame = 1;

    /// True for counting_type 4: values 0 and 1 of \ref frames are left out at the beginning of each minute
    /// but every tenth, as in drop-frame time codes of SMPTE ST 12-1.
    bool isDropFrame = false;

    int32_t offset = 0;  ///< tOffset, in units of 1 / time_scale s
};

/// The time of a timestamp whose clock_timestamp_flag is 1, H.264 D.2.3, H.265 D.3.27.
///
/// \param previous  that of the timestamp before it in decoding order, a default one for the first
constexpr ClockTime clockTimeOf(const ClockTimestamp& timestamp, const ClockTime& previous) {
    ClockTime time = previous;
    if (timestamp.full_timestamp_flag || timestamp.seconds_flag) {
        time.hasSeconds = true;
        time.seconds = timestamp.seconds_value;
    }
    if (timestamp.full_timestamp_flag || timestamp.minutes_flag) {
        time.hasMinutes = true;
        time.minutes = timestamp.minutes_value;
    }
    if (timestamp.full_timestamp_flag || timestamp.hours_flag) {
        time.hasHours = true;
        time.hours = timestamp.hours_value;
    }
    time.frames = timestamp.n_frames;
    time.ticksPerFrame = timestamp.nuit_field_based_flag || timestamp.units_field_based_flag ? 2 : 1;
    time.isDropFrame = timestamp.counting_type == 4;
    time.offset = timestamp.time_offset_length != 0 ? timestamp.time_offset_value : timestamp.time_offset;
    return time;
}

/// clockTimestamp in units of 1 / time_scale s, H.264 (D-1), H.265 D.3.27.
///
/// \param num_units_in_tick  that of the VUI
/// \param time_scale         that of the VUI
constexpr int64_t clockTimestampOf(const ClockTime& time, uint32_t num_units_in_tick, uint32_t time_scale) {
    const int64_t seconds = (int64_t{time.hours} * 60 + time.minutes) * 60 + time.seconds;
    const int64_t unitsPerFrame = int64_t{num_units_in_tick} * time.ticksPerFrame;
    return seconds * time_scale + time.frames * unitsPerFrame + time.offset;
}

}  // namespace qv::sei

#endif
