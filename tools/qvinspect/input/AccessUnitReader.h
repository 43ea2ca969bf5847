// The interface of the two kinds of input: raw byte streams and containers.
#ifndef QVINSPECT_ACCESSUNITREADER_H
#define QVINSPECT_ACCESSUNITREADER_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "bitstream/units/DolbyVisionConfiguration.h"
#include "input/AccessUnit.h"

namespace qvinspect {

// A stream at its first access unit; a container may change the framing later.
struct StreamInfo {
    std::string format;  // the container's name, or that of a raw stream
    QVCodecParameters parameters{};
    std::vector<uint8_t> configuration;  // the container's decoder configuration record; empty if it has none
    std::optional<uint32_t> transfer_characteristics;         // if the container has them
    std::optional<qv::DolbyVisionConfiguration> dolbyVision;  // if the container has its record
};

// How much was read.
struct ReadProgress {
    uint64_t bytes = 0;
    std::optional<uint64_t> size;  // of the file; none for a pipe
};

class AccessUnitReader {
public:
    virtual ~AccessUnitReader() = default;

    virtual const StreamInfo& info() const = 0;

    // Replaces accessUnit with the next access unit. Returns false at the end: accessUnit then has only the
    // findings after the last access unit.
    virtual bool next(AccessUnit& accessUnit) = 0;

    virtual ReadProgress progress() const = 0;
};

}  // namespace qvinspect

#endif
