// The listing of one file, as a person reads it.
#ifndef QVINSPECT_LISTING_H
#define QVINSPECT_LISTING_H

#include <cstdint>
#include <string>
#include <vector>

#include "analysis/Analysis.h"
#include "analysis/StreamDetails.h"
#include "analysis/Summary.h"
#include "input/AccessUnitReader.h"
#include "report/Output.h"

namespace qvinspect {

class Listing {
public:
    // name as it is to be printed. isRaw: access units have offsets instead of times.
    Listing(Output& output, std::string name, StreamInfo info, bool isRaw);

    // parameterSets: those that came with the container.
    void begin(const std::vector<SequenceParameterSet>& parameterSets);
    void add(const AccessUnit& accessUnit, const AccessUnitReport& report, const AccessUnitDetails& details);

    // findings: those behind the last access unit.
    void end(const std::vector<Finding>& findings, const Summary& summary, const StreamDetails& details);

private:
    void addUnit(const UnitReport& unit);
    void addDetails(const UnitDetails& details);
    void addSps(const SequenceParameterSet& sps);
    void addMessage(const SeiMessage& message);
    void addBlock(const Block& block);
    void addFindings(const std::vector<Finding>& findings);
    void endUnits(const Summary& summary);
    void endDetails(const StreamDetails& details);

    Output& output_;
    std::string name_;
    StreamInfo info_;
    bool isRaw_;
    uint64_t number_ = 0;  // of the access unit listed last
};

}  // namespace qvinspect

#endif
