// Access units of a raw stream of any length: NAL units behind start codes (ITU-T H.264 / H.265 Annex B) or
// behind length fields.
#ifndef QVINSPECT_RAWREADER_H
#define QVINSPECT_RAWREADER_H

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "input/AccessUnitReader.h"
#include "input/AccessUnitSplitter.h"
#include "input/Budgets.h"
#include "input/ByteSource.h"
#include "input/ByteWindow.h"
#include "input/UnitReader.h"

namespace qvinspect {

struct RawLimits {
    size_t chunk = size_t{1} << 20;  // bytes read at a time

    // An access unit is cut where a unit of it gets longer than this, or ahead of the unit that makes it
    // longer: 256 MiB, several times what the highest levels of both standards allow for. Twice as much and a
    // chunk is the most that is held: an access unit, and the unit behind it that shows where it ends.
    size_t accessUnit = size_t{256} << 20;

    // And ahead of the unit that makes it more than this.
    size_t units = kMostUnits;
};

class RawReader : public AccessUnitReader {
public:
    // stream: the codec and the framing.
    RawReader(std::unique_ptr<ByteSource> source, const QVCodecParameters& stream, RawLimits limits = {});

    const StreamInfo& info() const override { return info_; }

    // When the program is interrupted the stream ends at the last access unit that is known to be whole.
    bool next(AccessUnit& accessUnit) override;
    ReadProgress progress() const override { return {window_.end(), window_.source().size()}; }

private:
    void readUnit();
    void take(const RawUnit& unit);
    void finish();
    void noteSkipped(const RawUnit& unit);
    bool isTooMuch(const RawUnit& unit) const;
    void noteCut(uint64_t begin, uint64_t end);
    void deliver(AccessUnit& accessUnit);

    StreamInfo info_;
    RawLimits limits_;
    ByteWindow window_;
    std::unique_ptr<UnitReader> unitReader_;
    AccessUnitSplitter splitter_;

    std::vector<RawUnit> units_;  // read, not delivered
    size_t complete_ = 0;         // how many of them make up an access unit that is known to end
    bool isClosed_ = false;       // no more units come to those read
    bool isAtEnd_ = false;
    bool isFirst_ = true;
    std::vector<Finding> findings_;
};

}  // namespace qvinspect

#endif
