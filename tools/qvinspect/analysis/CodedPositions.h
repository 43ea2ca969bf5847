// From positions in an unescaped NAL unit back to those in the unit as it is coded.
#ifndef QVINSPECT_CODEDPOSITIONS_H
#define QVINSPECT_CODEDPOSITIONS_H

#include <cstddef>
#include <vector>

namespace qvinspect {

class CodedPositions {
public:
    // unit: a whole NAL unit as coded.
    CodedPositions(const unsigned char* unit, size_t size);

    // Where the byte at position of unescapedUnit() stands in the unit: behind the emulation prevention byte
    // ahead of it, when there is one.
    size_t of(size_t position) const;

private:
    std::vector<size_t> escaped_;  // positions of the bytes that an emulation prevention byte stands ahead of
};

}  // namespace qvinspect

#endif
