// What the standards call the types of NAL units.
#ifndef QVINSPECT_NALUNITNAMES_H
#define QVINSPECT_NALUNITNAMES_H

#include <cstdint>

#include "QVCodecParameters.h"

namespace qvinspect {

// H.264: the content of Table 7-1 in short; it has no names. H.265: the name in Table 7-1.
const char* nalUnitName(QVCodecID codec, uint32_t type);

const char* codecName(QVCodecID codec);

}  // namespace qvinspect

#endif
