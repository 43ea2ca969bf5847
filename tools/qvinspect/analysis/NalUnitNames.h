// What the standards say of NAL units by codec and type.
#ifndef QVINSPECT_NALUNITNAMES_H
#define QVINSPECT_NALUNITNAMES_H

#include <cstddef>
#include <cstdint>

#include "QVCodecParameters.h"

namespace qvinspect {

// H.264: the content of Table 7-1 in short; it has no names. H.265: the name in Table 7-1.
const char* nalUnitName(QVCodecID codec, uint32_t type);

const char* codecName(QVCodecID codec);

// Bytes of the NAL unit header.
size_t headerSize(QVCodecID codec);

// The type is that of a slice, or of a data partition of one.
bool isVcl(QVCodecID codec, uint32_t nal_unit_type);

}  // namespace qvinspect

#endif
