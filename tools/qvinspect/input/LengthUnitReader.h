// Cuts a stream of NAL units behind length fields, as the samples of ISO/IEC 14496-15 hold them, without a
// container around it.
#ifndef QVINSPECT_LENGTHUNITREADER_H
#define QVINSPECT_LENGTHUNITREADER_H

#include <cstddef>
#include <cstdint>
#include <optional>

#include "input/ByteWindow.h"
#include "input/UnitReader.h"

namespace qvinspect {

// A broken length ends the units: nothing tells where the next one would begin. So does a unit of more than
// longest bytes, its length field included, of which nothing more is read.
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
