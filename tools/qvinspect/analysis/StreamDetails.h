// The parameter sets and SEI messages of each access unit.
#ifndef QVINSPECT_STREAMDETAILS_H
#define QVINSPECT_STREAMDETAILS_H

#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <set>
#include <vector>

#include "analysis/Analysis.h"
#include "analysis/SeiReport.h"
#include "analysis/SequenceParameterSet.h"
#include "analysis/StreamSets.h"
#include "input/AccessUnit.h"

namespace qvinspect {

// The content of one NAL unit.
struct UnitDetails {
    std::shared_ptr<const SequenceParameterSet> newSps;  // one that was not seen before
    bool isRepeatedSps = false;
    std::shared_ptr<const SeiUnit> sei;
};

struct AccessUnitDetails {
    std::vector<UnitDetails> units;  // one for each unit of the report
    std::vector<SeiUnit> recordSei;  // of the configuration record, which apply from here on
    const SequenceParameterSet* sps =
        nullptr;  // active after it; valid until the next call; null without one
    size_t seiItems = 0;
    size_t unlistedItems = 0;  // of these, the ones that are in no SeiUnit
    int sideDataSize = 0;
};

// The content of a container's configuration record.
struct ConfigurationDetails {
    std::vector<SequenceParameterSet> parameterSets;  // sequence parameter sets, each once
    std::vector<uint32_t> unitTypes;                  // of all its NAL units
    std::vector<SeiUnit> seiUnits{};                  // offsets begin at the unit
    std::vector<Finding> findings{};
};

class StreamDetails {
public:
    StreamDetails(QVCodecID codec, std::deque<int> requested);

    // The record's SEI units are counted with the next access unit, unless that has the same SEI unit.
    ConfigurationDetails addConfiguration(const std::vector<uint8_t>& record);

    // Adds what it finds to the findings of report.
    AccessUnitDetails add(const AccessUnit& accessUnit, AccessUnitReport& report);

private:
    bool isSps(uint32_t nalUnitType) const;
    bool isSei(uint32_t nalUnitType) const;
    void takeRecordSei(const AccessUnit& accessUnit, const AccessUnitReport& report,
                       AccessUnitDetails& details);
    const qv::hevc::Vps* vpsOf(const unsigned char* sps, size_t size) const;
    void takeSps(const unsigned char* unit, size_t size, UnitDetails& details);
    void addRecordSei(const std::vector<uint8_t>& unit, uint32_t type, ConfigurationDetails& configuration);
    bool wasSeen(const std::vector<uint8_t>& bytes);
    void addFindings(const SeiTotals& sei, size_t leftOutSps, const char* place,
                     std::vector<Finding>& findings);

    struct KnownSps {
        std::vector<uint8_t> bytes;
        std::shared_ptr<const SequenceParameterSet> sps;
    };

    QVCodecID codec_;
    SeiReader seiReader_;
    StreamSets sets_;
    std::map<int, KnownSps> known_;  // by identifier, which is at most 31 where it is accepted; else -1
    const SequenceParameterSet* active_ = nullptr;

    std::vector<std::vector<uint8_t>> recordSei_;  // not counted yet

    // Contents of all parameter sets, including those replaced by others with the same identifier.
    std::set<std::vector<uint8_t>> seen_;
    size_t seenBytes_ = 0;
    bool hasForgotten_ = false;  // a content exceeded the limit of seen_
    bool hasReportedForgotten_ = false;
};

}  // namespace qvinspect

#endif
