// Cuts a stream of length-prefixed NAL units, as in samples of ISO/IEC 14496-15, without a container.
#ifndef QVINSPECT_LENGTHUNITREADER_H
#define QVINSPECT_LENGTHUNITREADER_H

#include <cstddef>
#include <cstdint>
#include <optional>

#include "input/ByteWindow.h"
#include "input/UnitReader.h"

namespace qvinspect {

// A broken length ends the units, since the beginning of the next one is unknown. So does a unit that is
// longer than longest bytes with its length field; it is not read.
class LengthUnitReader : public UnitReader {
public:
    // lengthSize: 1 to 4 bytes.
    LengthUnitReader(ByteWindow& window, unsigned lengthSize, size_t longest);

    bool next(RawUnit& unit) override;
    std::optional<Finding> rest() const override { return rest_; }

private:
    bool hold(uint64_t end);
    void endAt(std::string text);

    ByteWindow& window_;
    unsigned lengthSize_;
    size_t longest_;
    uint64_t next_ = 0;
    std::optional<Finding> rest_;
};

}  // namespace qvinspect

#endif
