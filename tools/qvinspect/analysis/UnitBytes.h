// The NAL units of an access unit or of a configuration record as bytes.
#ifndef QVINSPECT_UNITBYTES_H
#define QVINSPECT_UNITBYTES_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "analysis/AccessUnitView.h"
#include "bitstream/units/ConfigurationRecord.h"
#include "input/Budgets.h"

namespace qvinspect {

struct UnitBytes {
    size_t number;    // from 1
    uint64_t offset;  // as in UnitReport; in the record for a unit of a configuration record
    qv::Bytes bytes;
};

// Every unit of an access unit to visit(const UnitBytes&, const UnitView*); without a view for a unit that is
// not shown.
template <class Visit>
void forEachUnit(const AccessUnitView& view, const Visit& visit) {
    const uint64_t start = view.accessUnit.fileOffset.value_or(0);
    auto shown = view.units.begin();
    for (size_t i = 0; i < view.report.units.size(); ++i) {
        const UnitReport& unit = view.report.units[i];
        const bool isShown = shown != view.units.end() && shown->report == &unit;
        const UnitBytes bytes{
            i + 1, unit.offset, {view.accessUnit.data + (unit.offset - start), unit.length}};
        visit(bytes, view.isShown && isShown ? &*shown : nullptr);
        shown += isShown ? 1 : 0;
    }
}

inline qv::Codec codecOf(QVCodecID codec) {
    return codec == QVCodecIDAvc ? qv::Codec::Avc : qv::Codec::Hevc;
}

// Every unit of a configuration record, or of the byte stream in its place, to visit(const UnitBytes&).
template <class Visit>
void forEachRecordUnit(QVCodecID codec, const std::vector<uint8_t>& record, const Visit& visit) {
    size_t number = 0;
    qv::forEachConfigurationUnit(
        codecOf(codec), {record.data(), record.size()}, [&](const qv::NalUnit& unit) {
            visit(UnitBytes{++number, static_cast<uint64_t>(unit.bytes.data - record.data()), unit.bytes});
        });
}

// The units of a configuration record, or of the byte stream in its place, borrowed from it.
struct RecordUnits {
    std::vector<qv::Bytes> units;  // the first kMostRecordUnits
    size_t leftOut = 0;            // units after these
};

inline RecordUnits recordUnits(QVCodecID codec, const std::vector<uint8_t>& record) {
    RecordUnits found;
    forEachRecordUnit(codec, record, [&](const UnitBytes& unit) {
        if (found.units.size() < kMostRecordUnits) {
            found.units.push_back(unit.bytes);
        } else {
            ++found.leftOut;
        }
    });
    return found;
}

}  // namespace qvinspect

#endif
