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
    uint64_t end;         // behind its last byte, trailing zero bytes included
    bool isCut;           // longer than allowed: end is not its end
    uint64_t skipped;     // bytes left out ahead of the start code
    bool isFieldSlice;    // as the splitter finds
};

// Reads from a window. Nothing is released from it but bytes that are left out.
class UnitReader {
public:
    virtual ~UnitReader() = default;

    // The next unit, its bytes all in the window. False when there are no more.
    virtual bool next(RawUnit& unit) = 0;

    // Behind the last unit: what is left there that makes no unit.
    virtual std::optional<Finding> rest() const = 0;
};

}  // namespace qvinspect

#endif
