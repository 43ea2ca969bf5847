// Cuts a byte stream of any length into NAL units.
#ifndef QVINSPECT_RAWUNITREADER_H
#define QVINSPECT_RAWUNITREADER_H

#include <cstddef>
#include <cstdint>
#include <optional>

#include "input/ByteWindow.h"

namespace qvinspect {

// A NAL unit by its offsets in the stream.
struct RawUnit {
    uint64_t codeOffset;  // of its start code
    uint64_t offset;      // of its first byte
    uint64_t end;         // behind its last byte, trailing zero bytes included
    bool isCut;           // longer than allowed: end is not its end
    uint64_t skipped;     // bytes left out ahead of the start code
};

class RawUnitReader {
public:
    // Units with their start codes are cut to longest bytes. Nothing is released from window but bytes that
    // are left out.
    RawUnitReader(ByteWindow& window, size_t longest);

    // The next unit, its bytes all in the window. False at the end.
    //
    // What comes ahead of the first start code, and the rest of a cut unit, is left out: the window then
    // loses everything ahead of the next start code, so a cut unit has to be used up before the next call.
    bool next(RawUnit& unit);

    // Bytes left out behind the last unit; at the end of the stream.
    uint64_t skippedAtEnd() const { return skipped_; }

private:
    struct Code {
        uint64_t codeOffset;
        uint64_t offset;
    };
    std::optional<Code> findCode();
    void skipToCode();

    ByteWindow& window_;
    size_t longest_;
    std::optional<Code> open_;  // the start code ahead of the next unit
    bool isSkipping_ = true;
    uint64_t searchFrom_ = 0;
    uint64_t zeroByteFrom_ = 0;
    uint64_t skipped_ = 0;
};

}  // namespace qvinspect

#endif
