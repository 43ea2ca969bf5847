// The one interface of the two ways to read a file: raw byte streams and containers.
#ifndef QVINSPECT_ACCESSUNITREADER_H
#define QVINSPECT_ACCESSUNITREADER_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "input/AccessUnit.h"

namespace qvinspect {

// A stream as its first access unit will find it; a container may change the framing later on.
struct StreamInfo {
    std::string format;  // the container's name, or what stands in its place
    QVCodecParameters parameters{};
    std::vector<uint8_t> configuration;  // the container's record for the decoder; empty when there is none
    std::optional<uint32_t> transfer_characteristics;  // where the container tells it
};

// How far reading has come.
struct ReadProgress {
    uint64_t bytes = 0;
    std::optional<uint64_t> size;  // of the file; not of a pipe
};

class AccessUnitReader {
public:
    virtual ~AccessUnitReader() = default;

    virtual const StreamInfo& info() const = 0;

    // Reads the next access unit into accessUnit, whatever it held. False at the end: accessUnit is then
    // empty but for the findings that stand behind the last access unit.
    virtual bool next(AccessUnit& accessUnit) = 0;

    virtual ReadProgress progress() const = 0;
};

}  // namespace qvinspect

#endif
