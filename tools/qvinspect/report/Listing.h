// The listing, as a person reads it.
#ifndef QVINSPECT_LISTING_H
#define QVINSPECT_LISTING_H

#include <cstdint>
#include <string>
#include <vector>

#include "report/Level.h"
#include "report/Output.h"
#include "report/Presenter.h"

namespace qvinspect {

class Listing : public Presenter {
public:
    Listing(const std::string& path, Level level);

    void fail(const std::string& name, const std::string& reason) override;
    void begin(const StreamHead& head) override;
    void add(const AccessUnitView& view) override;
    void end(const StreamEnd& end) override;
    void finish() override;

private:
    void addUnit(const UnitView& unit);
    void addSps(const SequenceParameterSet& sps);
    void addMessage(const SeiMessage& message);
    void addBlock(const Block& block);
    void addFindings(const std::vector<Finding>& findings);
    void addSummary(const StreamTotals& totals);
    void addUnitCounts(const StreamTotals& totals);
    void addChecks(const std::vector<CheckResult>& checks);

    Output output_;
    Level level_;
    StreamHead head_;
    bool isFirst_ = true;
};

}  // namespace qvinspect

#endif
