// Keeps an output that cannot be written from taking the others along.
#ifndef QVINSPECT_GUARDEDPRESENTER_H
#define QVINSPECT_GUARDEDPRESENTER_H

#include <functional>
#include <memory>
#include <string>

#include "report/Output.h"
#include "report/Presenter.h"

namespace qvinspect {

// Passes all calls on until one throws OutputError: that one is handed to tell, and the report behind it is
// dropped.
class GuardedPresenter : public Presenter {
public:
    using Tell = std::function<void(const OutputError&)>;

    GuardedPresenter(std::unique_ptr<Presenter> presenter, Tell tell);

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
    Tell tell_;
};

}  // namespace qvinspect

#endif
