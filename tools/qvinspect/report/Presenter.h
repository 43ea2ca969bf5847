// What a report is told, in the order of the calls: for each input its head, its access units and its end;
// then that there are no more inputs.
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
    std::string name;  // printable; without its folder, unless that was asked for
    StreamInfo info;
    bool isRaw;  // offsets count in the file, not in the access unit

    std::vector<SequenceParameterSet> parameterSets;  // that came with the container
    std::vector<SeiUnit> seiUnits{};                  // that came with the container
};

struct StreamEnd {
    const StreamTotals& totals;
    const std::vector<Finding>& findings;  // those behind the last access unit
    const std::vector<CheckResult>& checks;
    bool isInterrupted;
};

class Presenter {
public:
    virtual ~Presenter() = default;

    // An input that cannot be inspected: all that is told of it.
    virtual void fail(const std::string& name, const std::string& reason) = 0;

    virtual void begin(const StreamHead& head) = 0;

    // Every access unit, also those that are not to be shown.
    virtual void add(const AccessUnitView& view) = 0;

    virtual void end(const StreamEnd& end) = 0;

    // Behind the last input: the report is whole then, and all of it written.
    virtual void finish() = 0;

    // False when nothing more of the report can be written.
    virtual bool isWritable() const { return true; }
};

}  // namespace qvinspect

#endif
