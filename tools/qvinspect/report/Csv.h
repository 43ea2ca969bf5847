// A table with a row for each NAL unit, RFC 4180.
#ifndef QVINSPECT_CSV_H
#define QVINSPECT_CSV_H

#include <string>

#include "report/Output.h"
#include "report/Presenter.h"

namespace qvinspect {

class Csv : public Presenter {
public:
    explicit Csv(const std::string& path);

    void fail(const std::string& name, const std::string& reason) override;
    void begin(const StreamHead& head) override;
    void add(const AccessUnitView& view) override;
    void end(const StreamEnd& end) override;
    void finish() override;

private:
    void addUnit(const AccessUnitView& view, const UnitView& unit);

    Output output_;
    std::string name_;  // as a field
};

}  // namespace qvinspect

#endif
