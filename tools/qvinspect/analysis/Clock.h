// The times of the access units of a raw stream, which has no coded times.
#ifndef QVINSPECT_CLOCK_H
#define QVINSPECT_CLOCK_H

#include <optional>

#include "analysis/AccessUnitView.h"

namespace qvinspect {

class Clock {
public:
    // frameRate: frames a second, instead of the rate in the parameter sets.
    explicit Clock(std::optional<double> frameRate) : frameRate_(frameRate) {}

    // Sets the times of an access unit without times, in decoding order from 0, as long as the frame rate is
    // known: as given, or by the timing of the VUI or of the H.265 VPS. A field of H.264 takes half of the
    // time of a frame.
    void apply(AccessUnitView& view);

private:
    std::optional<double> frameRate_;
    double now_ = 0;
    bool isRunning_ = true;  // false after the first access unit without a duration
};

}  // namespace qvinspect

#endif
