// The head of a NAL unit as the syntax tables read it.
#ifndef QVINSPECT_UNESCAPEDUNIT_H
#define QVINSPECT_UNESCAPEDUNIT_H

#include <cstddef>
#include <cstdint>
#include <vector>

namespace qvinspect {

// The first bytes of a unit, its header included, without emulation_prevention_three_byte: made of at most
// limit coded bytes.
std::vector<uint8_t> unescapedUnit(const unsigned char* unit, size_t size, size_t limit);

}  // namespace qvinspect

#endif
