// The parameter sets of a decoder configuration record, ISO/IEC 14496-15.
#ifndef QVINSPECT_CONFIGURATIONRECORD_H
#define QVINSPECT_CONFIGURATIONRECORD_H

#include <cstdint>
#include <vector>

#include "QVCodecParameters.h"

namespace qvinspect {

// Every NAL unit that an avcC or hvcC record holds, or those of a byte stream in its place, as far as they
// are whole. None when it is neither.
std::vector<std::vector<uint8_t>> configurationUnits(QVCodecID codec, const std::vector<uint8_t>& record);

}  // namespace qvinspect

#endif
