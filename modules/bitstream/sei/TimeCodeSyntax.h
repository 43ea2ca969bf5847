// Time codes as syntax functions.
#ifndef QV_BITSTREAM_SEI_TIMECODESYNTAX_H
#define QV_BITSTREAM_SEI_TIMECODESYNTAX_H

#include "bitstream/sei/ClockTimestampSyntax.h"
#include "bitstream/sei/PayloadSyntax.h"
#include "bitstream/sei/TimeCode.h"

namespace qv::sei {

// time_code(), H.265 D.2.27
template <class Syntax>
void time_code(Syntax& s, const Context& context, TimeCode& payload) {
    static constexpr Structure kStructure = {"time_code()", "D.2.27"};
    static_cast<void>(context);
    const Within<Syntax> within(s, kStructure);
    s.u(2, "num_clock_ts", payload.num_clock_ts, 1, 3);
    for (uint32_t i = 0; i < payload.num_clock_ts; ++i) {
        ClockTimestamp& timestamp = payload.clock_timestamp[i];
        s.flag(at("clock_timestamp_flag", i), timestamp.clock_timestamp_flag);
        if (timestamp.clock_timestamp_flag) {
            s.flag(at("units_field_based_flag", i), timestamp.units_field_based_flag);
            timestamp_body(
                s, [i](const char* name) { return at(name, i); }, 9, timestamp);
            s.u(5, at("time_offset_length", i), timestamp.time_offset_length);
            if (timestamp.time_offset_length > 0) {
                s.i(timestamp.time_offset_length, at("time_offset_value", i), timestamp.time_offset_value);
            }
        }
    }
}

}  // namespace qv::sei

#endif
