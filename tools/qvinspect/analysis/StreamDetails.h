// What parameter sets and SEI messages say, access unit by access unit.
#ifndef QVINSPECT_STREAMDETAILS_H
#define QVINSPECT_STREAMDETAILS_H

#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <vector>

#include "analysis/Analysis.h"
#include "analysis/SeiReport.h"
#include "analysis/SequenceParameterSet.h"
#include "input/AccessUnit.h"

namespace qvinspect {

// What one NAL unit says beyond its type.
struct UnitDetails {
    std::optional<SequenceParameterSet> newSps;  // a parameter set that was not seen like this before
    bool isRepeatedSps = false;
    std::optional<SeiUnit> sei;
};

struct AccessUnitDetails {
    std::vector<UnitDetails> units;             // one for each unit of the report
    const SequenceParameterSet* sps = nullptr;  // in force behind it, until the next call; null without one
    size_t seiItems = 0;
    int sideDataSize = 0;
};

// What came with the container for the decoder.
struct ConfigurationDetails {
    std::vector<SequenceParameterSet> parameterSets;  // sequence parameter sets, each once
    std::vector<uint32_t> unitTypes;                  // of all its NAL units
};

class StreamDetails {
public:
    StreamDetails(QVCodecID codec, std::deque<int> requested);

    ConfigurationDetails addConfiguration(const std::vector<uint8_t>& record);

    AccessUnitDetails add(const AccessUnit& accessUnit, const AccessUnitReport& report);

private:
    bool isSps(uint32_t nalUnitType) const;
    bool isSei(uint32_t nalUnitType) const;
    void takeSps(const unsigned char* unit, size_t size, UnitDetails& details);

    struct KnownSps {
        std::vector<uint8_t> bytes;
        SequenceParameterSet sps;
    };

    QVCodecID codec_;
    SeiReader seiReader_;
    std::map<int, KnownSps> known_;  // by identifier, which is at most 31 where it is accepted; else -1
    const SequenceParameterSet* active_ = nullptr;
};

}  // namespace qvinspect

#endif
