// Cuts a stream of any length into NAL units.
#ifndef QVINSPECT_UNITREADER_H
#define QVINSPECT_UNITREADER_H

#include <cstdint>
#include <optional>

#include "input/AccessUnit.h"

namespace qvinspect {

// A NAL unit by its offsets in the stream.
struct RawUnit {
    uint64_t codeOffset;  // of its start code or length field
    uint64_t offset;      // of its first byte
    uint64_t end;         // after its last byte, trailing zero bytes included
    bool isCut;           // longer than allowed: end is not the end of the unit
    uint64_t skipped;     // bytes left out before the start code
    bool isFieldSlice;    // as the splitter finds
};

// Reads from a window. Releases only bytes that are left out.
class UnitReader {
public:
    virtual ~UnitReader() = default;

    // The next unit, with all its bytes in the window. False if there are no more.
    virtual bool next(RawUnit& unit) = 0;

    // After the last unit: remaining bytes that are not a unit.
    virtual std::optional<Finding> rest() const = 0;
};

}  // namespace qvinspect

#endif
