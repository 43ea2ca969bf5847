// The fields of an SEI payload, read by the library's payload parsers.
#ifndef QVINSPECT_SEIBLOCKS_H
#define QVINSPECT_SEIBLOCKS_H

#include <cstdint>
#include <vector>

#include "analysis/Block.h"
#include "analysis/SequenceParameterSet.h"

namespace qvinspect {

// payload is without emulation prevention bytes; sps may be null. Empty for a payloadType that is not parsed.
Block describeSei(QVCodecID codec, uint32_t payloadType, const std::vector<uint8_t>& payload,
                  const SequenceParameterSet* sps);

}  // namespace qvinspect

#endif
