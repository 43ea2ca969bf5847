// The units of a stream in their order, with the parameter sets in force before each.
#ifndef QVINSPECT_UNITWALK_H
#define QVINSPECT_UNITWALK_H

#include <cstdint>
#include <set>
#include <vector>

#include "analysis/StreamSets.h"
#include "analysis/UnitBytes.h"

namespace qvinspect {

class UnitWalk {
public:
    explicit UnitWalk(QVCodecID codec) : codec_(codec), sets_(codec) {}

    // In force before the unit that is visited.
    const StreamSets& sets() const { return sets_; }

    // The units of a configuration record to visit(const UnitBytes&). A record that was there before is not
    // visited again: samples can refer to records in turn at little cost.
    template <class Visit>
    void record(const std::vector<uint8_t>& record, const Visit& visit) {
        const bool isNew = !record.empty() && records_.insert(record).second;
        forEachRecordUnit(codec_, record, [&](const UnitBytes& unit) {
            if (isNew) {
                visit(unit);
            }
            sets_.take(unit.bytes);
        });
    }

    // The units of an access unit that are shown to visit(const UnitBytes&, const UnitView&). The sets of the
    // others are in force too.
    template <class Visit>
    void accessUnit(const AccessUnitView& view, const Visit& visit) {
        forEachUnit(view, [&](const UnitBytes& unit, const UnitView* shown) {
            if (shown != nullptr) {
                visit(unit, *shown);
            }
            sets_.take(unit.bytes);
        });
    }

private:
    QVCodecID codec_;
    StreamSets sets_;
    std::set<std::vector<uint8_t>> records_;
};

}  // namespace qvinspect

#endif
