// Access units of a raw byte stream (ITU-T H.264 / H.265 Annex B) of any length.
#ifndef QVINSPECT_RAWREADER_H
#define QVINSPECT_RAWREADER_H

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "input/AccessUnitReader.h"
#include "input/AccessUnitSplitter.h"
#include "input/ByteSource.h"
#include "input/ByteWindow.h"
#include "input/RawUnitReader.h"

namespace qvinspect {

struct RawLimits {
    size_t chunk = size_t{1} << 20;  // bytes read at a time

    // An access unit is cut where a unit of it gets longer than this, or ahead of the unit that makes it
    // longer: 256 MiB, several times what the highest levels of both standards allow for. Twice as much and a
    // chunk is the most that is held: an access unit, and the unit behind it that shows where it ends.
    size_t accessUnit = size_t{256} << 20;
};

class RawReader : public AccessUnitReader {
public:
    RawReader(std::unique_ptr<ByteSource> source, QVCodecID codec, RawLimits limits = {});

    const StreamInfo& info() const override { return info_; }
    bool next(AccessUnit& accessUnit) override;
    ReadProgress progress() const override { return {window_.end(), window_.source().size()}; }

private:
    void readUnit();
    void take(const RawUnit& unit);
    void finish();
    void noteSkipped(const RawUnit& unit);
    void noteCut(uint64_t begin, uint64_t end);
    void deliver(AccessUnit& accessUnit);

    StreamInfo info_;
    RawLimits limits_;
    ByteWindow window_;
    RawUnitReader unitReader_;
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
