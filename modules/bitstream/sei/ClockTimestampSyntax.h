// What the clock timestamps of both codecs have in common.
#ifndef QV_BITSTREAM_SEI_CLOCKTIMESTAMPSYNTAX_H
#define QV_BITSTREAM_SEI_CLOCKTIMESTAMPSYNTAX_H

#include <cstdint>

#include "bitstream/sei/ClockTimestamp.h"
#include "bitstream/syntax/Reader.h"

namespace qv::sei {

// From seconds_flag on. nameOf makes the name of an element, which has a subscript in H.265 alone.
template <class Syntax, class NameOf>
void parts_of_timestamp(Syntax& s, const NameOf& nameOf, ClockTimestamp& timestamp) {
    s.flag(nameOf("seconds_flag"), timestamp.seconds_flag);
    if (!timestamp.seconds_flag) {
        return;
    }
    s.u(6, nameOf("seconds_value"), timestamp.seconds_value, 0, 59);
    s.flag(nameOf("minutes_flag"), timestamp.minutes_flag);
    if (!timestamp.minutes_flag) {
        return;
    }
    s.u(6, nameOf("minutes_value"), timestamp.minutes_value, 0, 59);
    s.flag(nameOf("hours_flag"), timestamp.hours_flag);
    if (timestamp.hours_flag) {
        s.u(5, nameOf("hours_value"), timestamp.hours_value, 0, 23);
    }
}

// From counting_type to the hours.
template <class Syntax, class NameOf>
void timestamp_body(Syntax& s, const NameOf& nameOf, uint32_t bitsOfFrames, ClockTimestamp& timestamp) {
    s.u(5, nameOf("counting_type"), timestamp.counting_type);
    s.flag(nameOf("full_timestamp_flag"), timestamp.full_timestamp_flag);
    s.flag(nameOf("discontinuity_flag"), timestamp.discontinuity_flag);
    s.flag(nameOf("cnt_dropped_flag"), timestamp.cnt_dropped_flag);
    s.u(bitsOfFrames, nameOf("n_frames"), timestamp.n_frames);
    if (timestamp.full_timestamp_flag) {
        s.u(6, nameOf("seconds_value"), timestamp.seconds_value, 0, 59);
        s.u(6, nameOf("minutes_value"), timestamp.minutes_value, 0, 59);
        s.u(5, nameOf("hours_value"), timestamp.hours_value, 0, 23);
    } else {
        parts_of_timestamp(s, nameOf, timestamp);
    }
}

}  // namespace qv::sei

#endif
