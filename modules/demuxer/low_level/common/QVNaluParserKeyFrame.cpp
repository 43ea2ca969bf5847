// Key-frame detection by nal_unit_type, ITU-T H.264 (08/2021) and H.265 (08/2021) Table 7-1.
#include <cstdint>

#include "QVNaluParser.h"
#include "detail/NalUnit.h"
#include "detail/StartCode.h"
#include "detail/WorkingCopy.h"

using namespace qv_detail;

namespace {

// D01: one set of type numbers for both codecs: 5 and 16 to 21.
constexpr uint64_t kKeyUnitTypes = uint64_t{1} << 5 | uint64_t{0x3F} << 16;

constexpr UnitTypes keyUnits(QVCodecID codec) {
    return codec == QVCodecIDAvc ? UnitTypes{kKeyUnitTypes, 0, 0x1F} : UnitTypes{kKeyUnitTypes, 1, 0x3F};
}

bool isKeyUnit(QVCodecID codec, unsigned char firstByte) {
    return (kKeyUnitTypes >> nalUnitType(codec, firstByte) & 1) != 0;
}

bool holdsKeyUnitAnnexB(QVCodecID codec, const unsigned char* data, size_t size) {
    return holdsUnit(data, prefixEnd(size), keyUnits(codec));
}

// Length fields have 4 bytes here whatever the stream's configuration record specifies (D23). A length that
// runs past the end does not end the search: the next length field is read from inside the unit. D38: after a
// length of 0 too, the next byte is typed.
bool holdsKeyUnitLengthPrefixed(QVCodecID codec, const unsigned char* data, size_t size) {
    constexpr size_t kLengthSize = 4;
    const WorkingCopy copy = makeWorkingCopy(data, size);
    if (copy == nullptr) {
        return false;
    }
    size_t position = 0;
    while (size - position > kLengthSize) {
        const uint32_t length = readBigEndian(copy.get() + position, kLengthSize);
        position += kLengthSize;
        if (isKeyUnit(codec, data[position])) {
            return true;
        }
        // The size was an int, so a length with its top bit set is always too long.
        if (length <= size - position) {
            position += length;
        }
    }
    return false;
}

}  // namespace

bool QVNaluParser::isKeyFrame(QVCodecID codec, const unsigned char* data, int size) {
    if (data == nullptr || !isSupported(codec)) {
        return false;
    }
    // D26: a length field of 1 or of 256 to 511 looks like a start code here.
    return isAnnexBData(data, size) ? holdsKeyUnitAnnexB(codec, data, bufferSize(size))
                                    : holdsKeyUnitLengthPrefixed(codec, data, bufferSize(size));
}
