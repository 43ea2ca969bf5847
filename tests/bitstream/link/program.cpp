// A program that links the player's library, the standards' library, both, or the completion on top of them,
// and asks what it links.
#include <cstddef>
#include <cstdio>

#if defined(WITH_NALU)
#include <utility>
#include <vector>

#include "QVNaluParser.h"
#endif
#if defined(WITH_BITSTREAM)
#include "bitstream/units/NalUnits.h"
#endif
#if defined(WITH_COMPLETION)
#include "QVSpsCompletion.h"
#endif

namespace {

const unsigned char kStream[] = {0, 0, 0, 1, 0x67, 0x42, 0, 0, 1, 0x68, 0xCE, 0, 0, 1, 0x65, 0x88};
constexpr size_t kUnits = 3;

#if defined(WITH_NALU)
size_t unitsOfPlayersLibrary() {
    std::vector<std::pair<int, int>> units;
    QVNaluParser::parserDataToNaluIdx(kStream, sizeof kStream, units);
    return QVNaluParser::isKeyFrame(QVCodecIDAvc, kStream, sizeof kStream) ? units.size() : 0;
}
#endif

#if defined(WITH_BITSTREAM)
size_t unitsOfStandardsLibrary() {
    size_t count = 0;
    for (const qv::NalUnit& unit :
         qv::NalUnits({kStream, sizeof kStream}, qv::Framing::StartCodes, qv::Codec::Avc)) {
        count += unit.ok() ? size_t{1} : 0;
    }
    return count;
}
#endif

#if defined(WITH_COMPLETION)
// A parameter set that ends after its second byte.
bool completionFindsTheEnd() {
    QVAvcSps sps = {};
    return completeAvcSps(&sps, kStream + 4, 2) == QVResultInvalidData;
}
#endif

}  // namespace

int main() {
#if defined(WITH_NALU)
    if (unitsOfPlayersLibrary() != kUnits) {
        std::puts("the player's library finds other units");
        return 1;
    }
#endif
#if defined(WITH_BITSTREAM)
    if (unitsOfStandardsLibrary() != kUnits) {
        std::puts("the standards' library finds other units");
        return 1;
    }
#endif
#if defined(WITH_COMPLETION)
    if (!completionFindsTheEnd()) {
        std::puts("the completion misses the end of the data");
        return 1;
    }
#endif
    return 0;
}
