// Names of SEI payloads and codes in the standards.
#ifndef QVINSPECT_SEINAMES_H
#define QVINSPECT_SEINAMES_H

#include <cstdint>

#include "QVCodecParameters.h"

namespace qvinspect {

// The syntax structure of a payloadType: H.264 D.1.1, H.265 D.2.1. "reserved" for others.
const char* seiName(QVCodecID codec, uint32_t payloadType);

// transfer_characteristics of H.264 Table E-5 and H.265 Table E.4.
const char* transferName(uint32_t transfer_characteristics);

}  // namespace qvinspect

#endif
