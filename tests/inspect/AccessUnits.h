// Synthetic access units, as a reader and the analysis would return them.
#ifndef QV_TESTS_ACCESSUNITS_H
#define QV_TESTS_ACCESSUNITS_H

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "BitWriter.h"
#include "analysis/AccessUnitView.h"

namespace qv_test {

// What a view refers to. The bytes of all units are zeros.
struct MadeAccessUnit {
    qvinspect::AccessUnit accessUnit;
    qvinspect::AccessUnitReport report;
    qvinspect::AccessUnitDetails details;

    MadeAccessUnit& key();
    MadeAccessUnit& at(std::optional<double> time);  // of presentation and decoding
    MadeAccessUnit& lasting(double seconds);
    MadeAccessUnit& bytesInAll(size_t size);
    MadeAccessUnit& finding(qvinspect::Severity severity, std::optional<uint64_t> offset,
                            const std::string& text);

    // Adds a unit after the existing ones.
    MadeAccessUnit& unit(uint32_t type, uint32_t length = 3);
    MadeAccessUnit& brokenUnit(qvinspect::UnitState state);
    // payloads: each a message of its type.
    MadeAccessUnit& seiUnit(uint32_t type, const std::vector<std::pair<uint32_t, Bytes>>& payloads);

    qvinspect::AccessUnitView view(uint64_t number) const;

private:
    qvinspect::UnitDetails& add(qvinspect::UnitState state, uint32_t type, uint32_t length);
};

}  // namespace qv_test

#endif
