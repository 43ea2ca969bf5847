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
    std::vector<UnitDetails> units;  // one for each unit of the report
    size_t seiItems = 0;
    int sideDataSize = 0;
};

class StreamDetails {
public:
    StreamDetails(QVCodecID codec, std::deque<int> requested);

    // The parameter sets that came with the container; those that are new, in order.
    std::vector<SequenceParameterSet> addConfiguration(const std::vector<uint8_t>& record);

    AccessUnitDetails add(const AccessUnit& accessUnit, const AccessUnitReport& report);

    // --- Totals ---
    uint64_t distinctSps() const { return distinctSps_; }
    uint64_t repeatedSps() const { return repeatedSps_; }
    const std::map<uint32_t, uint64_t>& messagesByType() const { return messagesByType_; }
    const SeiSignals& signals() const { return signals_; }
    uint64_t sideDataBytes() const { return sideDataBytes_; }

private:
    bool isSps(uint32_t nalUnitType) const;
    bool isSei(uint32_t nalUnitType) const;
    void takeSps(const unsigned char* unit, size_t size, UnitDetails& details);
    void count(const SeiReport& sei);

    struct KnownSps {
        std::vector<uint8_t> bytes;
        SequenceParameterSet sps;
    };

    QVCodecID codec_;
    SeiReader seiReader_;
    std::map<int, KnownSps> known_;  // by identifier, which is at most 31 where it is accepted; else -1
    uint64_t distinctSps_ = 0;
    uint64_t repeatedSps_ = 0;
    std::map<uint32_t, uint64_t> messagesByType_;
    SeiSignals signals_;
    uint64_t sideDataBytes_ = 0;
};

}  // namespace qvinspect

#endif
