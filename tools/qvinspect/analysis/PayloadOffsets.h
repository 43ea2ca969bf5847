// Where the payloads of SEI messages stand.
#ifndef QVINSPECT_PAYLOADOFFSETS_H
#define QVINSPECT_PAYLOADOFFSETS_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "analysis/SeiReport.h"

namespace qvinspect {

// For each message of the unit, the offset of its payload's first byte in unit: a whole SEI NAL unit with its
// header of headerSize bytes and its emulation prevention bytes. The size of the unit for what is not in it.
std::vector<uint64_t> payloadOffsets(const unsigned char* unit, size_t size, size_t headerSize,
                                     const std::vector<SeiMessage>& messages);

}  // namespace qvinspect

#endif
