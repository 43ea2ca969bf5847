#include "analysis/Clock.h"

#include <cmath>

namespace qvinspect {

namespace {

std::optional<double> secondsPerFrame(const SequenceParameterSet* sps) {
    if (sps == nullptr || sps->codec != QVCodecIDAvc || sps->avc.timing_info_present_flag == 0 ||
        sps->avc.num_units_in_tick == 0 || sps->avc.time_scale == 0) {
        return std::nullopt;
    }
    return 2.0 * sps->avc.num_units_in_tick / sps->avc.time_scale;
}

}  // namespace

void Clock::apply(AccessUnitView& view) {
    if (view.time || view.decodeTime || !isRunning_) {
        isRunning_ = false;
        return;
    }
    const std::optional<double> frame = frameRate_ ? 1 / *frameRate_ : secondsPerFrame(view.details.sps);
    if (!frame || !std::isfinite(*frame)) {
        isRunning_ = false;
        return;
    }
    view.time = now_;
    view.decodeTime = now_;
    view.duration = view.accessUnit.isField ? *frame / 2 : *frame;
    now_ += *view.duration;
}

}  // namespace qvinspect
