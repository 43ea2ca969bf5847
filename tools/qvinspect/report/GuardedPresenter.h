// Isolates an output that cannot be written from the others.
#ifndef QVINSPECT_GUARDEDPRESENTER_H
#define QVINSPECT_GUARDEDPRESENTER_H

#include <functional>
#include <memory>
#include <string>

#include "report/Output.h"
#include "report/Presenter.h"

namespace qvinspect {

// Forwards all calls until one throws OutputError, which is passed to report. The presenter is then
// destroyed.
class GuardedPresenter : public Presenter {
public:
    using Report = std::function<void(const OutputError&)>;

    GuardedPresenter(std::unique_ptr<Presenter> presenter, Report report);

    void fail(const std::string& name, const std::string& reason) override;
    void begin(const StreamHead& head) override;
    void add(const AccessUnitView& view) override;
    void end(const StreamEnd& end) override;
    void finish() override;
    bool isWritable() const override { return presenter_ != nullptr; }

private:
    template <typename Call>
    void guard(const Call& call);

    std::unique_ptr<Presenter> presenter_;
    Report report_;
};

}  // namespace qvinspect

#endif
