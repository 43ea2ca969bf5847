// Names and properties of NAL units by codec and type.
#ifndef QVINSPECT_NALUNITNAMES_H
#define QVINSPECT_NALUNITNAMES_H

#include <cstddef>
#include <cstdint>

#include "QVCodecParameters.h"

namespace qvinspect {

// H.264: a short form of the content in Table 7-1, which has no names. H.265: the name in Table 7-1.
const char* nalUnitName(QVCodecID codec, uint32_t type);

const char* codecName(QVCodecID codec);

// Bytes of the NAL unit header.
size_t headerSize(QVCodecID codec);

// Whether it is the type of a slice or of a slice data partition.
bool isVcl(QVCodecID codec, uint32_t nal_unit_type);

}  // namespace qvinspect

#endif
