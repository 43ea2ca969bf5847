// NAL units of a decoder configuration record.
#include "bitstream/units/UnitList.h"

namespace qv {

bool appendUnit(Bytes unit, std::vector<uint8_t>& coded) {
    constexpr size_t kMostBytes = 0xFFFF;
    if (unit.size > kMostBytes) {
        return false;
    }
    coded.push_back(static_cast<uint8_t>(unit.size >> 8));
    coded.push_back(static_cast<uint8_t>(unit.size));
    coded.insert(coded.end(), unit.begin(), unit.end());
    return true;
}

}  // namespace qv
