#include <cstdio>
#include <fstream>
#include <iterator>
#include <vector>

#include "QVNaluParser.h"

int main(int argc, char** argv) {
    std::ifstream file(argc > 1 ? argv[1] : "samples/hevc_hdr10.h265", std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
    const auto* data = reinterpret_cast<const unsigned char*>(bytes.data());
    const int size = static_cast<int>(bytes.size());

    const QVCodecParameters hevcByteStream{QVCodecIDHevc, 1, 0};
    std::vector<QVNaluParser::NaluInfo> units;
    QVNaluParser::parserDataToNaluType(data, size, units, &hevcByteStream);
    for (const QVNaluParser::NaluInfo& unit : units) {
        std::printf("%8d %6d type %u\n", unit.offset, unit.length, unit.naluType);
    }
    std::printf("key picture: %s\n", QVNaluParser::isKeyFrame(QVCodecIDHevc, data, size) ? "yes" : "no");
}
