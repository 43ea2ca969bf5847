// Cuts a byte stream of any length into NAL units, ITU-T H.264 / H.265 Annex B.
#ifndef QVINSPECT_RAWUNITREADER_H
#define QVINSPECT_RAWUNITREADER_H

#include <cstddef>
#include <cstdint>
#include <optional>

#include "input/ByteWindow.h"
#include "input/UnitReader.h"

namespace qvinspect {

class RawUnitReader : public UnitReader {
public:
    // Units with their start codes are cut to longest bytes.
    RawUnitReader(ByteWindow& window, size_t longest);

    // Bytes before the first start code and the rest of a cut unit are left out: everything before the next
    // start code is then released from the window, so a cut unit must be used before the next call.
    bool next(RawUnit& unit) override;

    std::optional<Finding> rest() const override;

private:
    struct Code {
        uint64_t codeOffset;
        uint64_t offset;
    };
    std::optional<Code> findCode();
    void skipToCode();

    ByteWindow& window_;
    size_t longest_;
    std::optional<Code> open_;  // the start code before the next unit
    bool isSkipping_ = true;
    bool hasUnit_ = false;
    uint64_t searchFrom_ = 0;
    uint64_t zeroByteFrom_ = 0;
    uint64_t skipped_ = 0;
};

}  // namespace qvinspect

#endif
