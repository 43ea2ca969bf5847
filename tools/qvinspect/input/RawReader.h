// Access units of a raw stream of any length: NAL units after start codes (ITU-T H.264 / H.265 Annex B) or
// length fields.
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

    // An access unit is cut where one of its units becomes longer than this, or before the unit that makes it
    // longer: 256 MiB, several times the maximum of the highest levels of both standards. At most twice as
    // much and a chunk are held: an access unit, and the unit after it that marks its end.
    size_t accessUnit = size_t{256} << 20;

    // It is also cut before the unit that makes it more units than this.
    size_t units = kMostUnits;
};

class RawReader : public AccessUnitReader {
public:
    // stream: the codec and the framing.
    RawReader(std::unique_ptr<ByteSource> source, const QVCodecParameters& stream, RawLimits limits = {});

    const StreamInfo& info() const override { return info_; }

    // If the program is interrupted, the stream ends at the last access unit that is known to be whole.
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
    size_t complete_ = 0;         // how many of them are an access unit whose end is known
    bool isClosed_ = false;       // no more units follow those read
    bool isAtEnd_ = false;
    bool isFirst_ = true;
    std::vector<Finding> findings_;
};

}  // namespace qvinspect

#endif
