// The results of the checks on standard error.
#ifndef QVINSPECT_CHECKLINES_H
#define QVINSPECT_CHECKLINES_H

#include <string>

#include "report/Presenter.h"

namespace qvinspect {

// "[OK] rule: evidence", or "[FAIL] ...".
std::string checkLine(const CheckResult& check);

// Used if another report than the listing uses standard output.
class CheckLines : public Presenter {
public:
    void fail(const std::string& name, const std::string& reason) override;
    void begin(const StreamHead& head) override;
    void add(const AccessUnitView& view) override;
    void end(const StreamEnd& end) override;
    void finish() override;

private:
    std::string name_;
};

}  // namespace qvinspect

#endif
