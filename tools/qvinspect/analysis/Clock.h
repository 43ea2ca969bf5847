// When the access units of a raw stream come, which has no times of its own.
#ifndef QVINSPECT_CLOCK_H
#define QVINSPECT_CLOCK_H

#include <optional>

#include "analysis/AccessUnitView.h"

namespace qvinspect {

class Clock {
public:
    // frameRate: frames a second, instead of what the parameter sets say.
    explicit Clock(std::optional<double> frameRate) : frameRate_(frameRate) {}

    // Sets the times of an access unit that has none, in decoding order from 0, as long as the frame rate is
    // known: as given, or by the timing of the H.264 VUI (E.2.1; a frame takes two ticks, a field one).
    void apply(AccessUnitView& view);

private:
    std::optional<double> frameRate_;
    double now_ = 0;
    bool isRunning_ = true;  // false behind the first access unit without a duration
};

}  // namespace qvinspect

#endif
