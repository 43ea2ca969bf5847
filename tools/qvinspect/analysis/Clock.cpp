#include "analysis/Clock.h"

#include <cmath>

namespace qvinspect {

namespace {

std::optional<double> secondsPerPictureOf(const SequenceParameterSet* sps) {
    return sps != nullptr && sps->video ? secondsPerPicture(*sps->video) : std::nullopt;
}

}  // namespace

void Clock::apply(AccessUnitView& view) {
    if (view.time || view.decodeTime || !isRunning_) {
        isRunning_ = false;
        return;
    }
    const std::optional<double> frame = frameRate_ ? 1 / *frameRate_ : secondsPerPictureOf(view.details.sps);
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
