// Faults of configuration records that are not those of one element's bits.
#include "bitstream/units/ConfigurationFault.h"

namespace qv::detail {

Fault outOfRange(const Structure& structure, const Element& element, int64_t value, int64_t least,
                 int64_t most) {
    Fault fault;
    fault.kind = FaultKind::OutOfRange;
    fault.element = element;
    fault.structure = &structure;
    fault.value = value;
    fault.least = least;
    fault.most = most;
    return fault;
}

Fault otherUnit(const Structure& structure, size_t number, uint32_t nal_unit_type) {
    Fault fault = unitCut(structure, number);
    fault.kind = FaultKind::OtherUnit;
    fault.value = nal_unit_type;
    return fault;
}

Fault unitCut(const Structure& structure, size_t number) {
    Fault fault;
    fault.kind = FaultKind::EndOfData;
    fault.element = elementOf(at("NALUnit", number));
    fault.structure = &structure;
    return fault;
}

Fault unitTooLong(const Structure& structure, size_t number, size_t size) {
    return outOfRange(structure, elementOf(at("NALUnit", number)), static_cast<int64_t>(size), 0, 0xFFFF);
}

Fault checkCount(const Structure& structure, const Element& count, const UnitList& list) {
    int64_t units = 0;
    for (const NalUnit& unit : list.units(Codec::Avc)) {
        if (isCut(unit)) {
            Fault fault = outOfRange(structure, count, 0, 0, 0);
            fault.kind = FaultKind::EndOfData;
            return fault;
        }
        ++units;
    }
    return units == list.count ? Fault() : outOfRange(structure, count, list.count, units, units);
}

Fault setLengthSize(const Structure& structure, Framing framing, uint32_t& lengthSizeMinusOne) {
    const auto value = static_cast<int64_t>(lengthSizeOf(framing)) - 1;
    if (value != 0 && value != 1 && value != 3) {
        return outOfRange(structure, elementOf("lengthSizeMinusOne"), value, 3, 3);
    }
    lengthSizeMinusOne = static_cast<uint32_t>(value);
    return {};
}

}  // namespace qv::detail
