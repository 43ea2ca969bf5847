// The parameter sets of a decoder configuration record, ISO/IEC 14496-15.
#ifndef QVINSPECT_CONFIGURATIONRECORD_H
#define QVINSPECT_CONFIGURATIONRECORD_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "QVCodecParameters.h"

namespace qvinspect {

// The NAL units that an avcC or hvcC record holds, or those of a byte stream in its place, as far as they are
// whole: the first kMostRecordUnits of them. None when it is neither.
struct ConfigurationUnits {
    std::vector<std::vector<uint8_t>> units;
    size_t leftOut = 0;  // units after these
};

ConfigurationUnits configurationUnits(QVCodecID codec, const std::vector<uint8_t>& record);

}  // namespace qvinspect

#endif
