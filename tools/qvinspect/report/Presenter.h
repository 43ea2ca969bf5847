// The interface of reports. The calls are, for each input, its head, its access units and its end, and at
// last the end of all inputs.
#ifndef QVINSPECT_PRESENTER_H
#define QVINSPECT_PRESENTER_H

#include <string>
#include <vector>

#include "analysis/AccessUnitView.h"
#include "analysis/Check.h"
#include "analysis/StreamTotals.h"
#include "input/AccessUnitReader.h"

namespace qvinspect {

struct StreamHead {
    std::string name;  // printable; without its folder unless --stamp is given
    StreamInfo info;
    bool isRaw;  // offsets begin at the file, not at the access unit

    std::vector<SequenceParameterSet> parameterSets;  // of the container
    std::vector<SeiUnit> seiUnits{};                  // of the container
};

struct StreamEnd {
    const StreamTotals& totals;
    const std::vector<Finding>& findings;  // those after the last access unit
    const std::vector<CheckResult>& checks;
    bool isInterrupted;
};

class Presenter {
public:
    virtual ~Presenter() = default;

    // The input cannot be inspected, or not to its end. No other call for it follows.
    virtual void fail(const std::string& name, const std::string& reason) = 0;

    virtual void begin(const StreamHead& head) = 0;

    // Every access unit, including those that are not shown.
    virtual void add(const AccessUnitView& view) = 0;

    virtual void end(const StreamEnd& end) = 0;

    // After the last input: completes the report and writes all of it.
    virtual void finish() = 0;

    // False if nothing more of the report can be written.
    virtual bool isWritable() const { return true; }
};

}  // namespace qvinspect

#endif
