// H.265: the order of NAL units and their association to coded pictures and access units.
#ifndef QVINSPECT_HEVCUNITROLES_H
#define QVINSPECT_HEVCUNITROLES_H

#include "input/AccessUnitSplitter.h"

namespace qvinspect {

class HevcUnitRoles : public UnitRoles {
public:
    UnitRole roleOf(const unsigned char* unit, size_t size) override;
};

}  // namespace qvinspect

#endif
