// Values of HDR metadata.
#ifndef QVINSPECT_HDRVALUES_H
#define QVINSPECT_HDRVALUES_H

#include <cstdint>

namespace qvinspect {

// The luminance of a 12-bit PQ code of HDR Vivid in cd/m2, to the sixth decimal.
double pqLuminance(uint32_t code);

}  // namespace qvinspect

#endif
