#include "report/GuardedPresenter.h"

#include <utility>

namespace qvinspect {

GuardedPresenter::GuardedPresenter(std::unique_ptr<Presenter> presenter, Report report)
    : presenter_(std::move(presenter)), report_(std::move(report)) {}

template <typename Call>
void GuardedPresenter::guard(const Call& call) {
    if (presenter_ == nullptr) {
        return;
    }
    try {
        call(*presenter_);
    } catch (const OutputError& error) {
        report_(error);
        presenter_ = nullptr;
    }
}

void GuardedPresenter::fail(const std::string& name, const std::string& reason) {
    guard([&](Presenter& presenter) { presenter.fail(name, reason); });
}

void GuardedPresenter::begin(const StreamHead& head) {
    guard([&](Presenter& presenter) { presenter.begin(head); });
}

void GuardedPresenter::add(const AccessUnitView& view) {
    guard([&](Presenter& presenter) { presenter.add(view); });
}

void GuardedPresenter::end(const StreamEnd& end) {
    guard([&](Presenter& presenter) { presenter.end(end); });
}

void GuardedPresenter::finish() {
    guard([&](Presenter& presenter) { presenter.finish(); });
}

}  // namespace qvinspect
