#include "MatroskaWriter.h"

#include "Mp4Writer.h"

namespace qv_test {

namespace {

Bytes text(const std::string& characters) {
    return {characters.begin(), characters.end()};
}

}  // namespace

Bytes matroskaElement(const Bytes& id, const std::vector<Bytes>& parts) {
    const Bytes content = joined(parts);
    return joined({id, u32(0x10000000U | static_cast<uint32_t>(content.size())), content});
}

Bytes matroskaFile(const std::string& codecId, const Bytes& frame, const std::vector<Bytes>& moreVideo) {
    const Bytes head =
        matroskaElement({0x1A, 0x45, 0xDF, 0xA3}, {matroskaElement({0x42, 0x82}, {text("matroska")})});
    const Bytes video = matroskaElement(
        {0xE0}, {matroskaElement({0xB0}, {{16}}), matroskaElement({0xBA}, {{16}}), joined(moreVideo)});
    const Bytes track = matroskaElement(
        {0xAE}, {matroskaElement({0xD7}, {{1}}), matroskaElement({0x73, 0xC5}, {{1}}),
                 matroskaElement({0x83}, {{1}}), matroskaElement({0x86}, {text(codecId)}), video});
    const Bytes cluster = matroskaElement(
        {0x1F, 0x43, 0xB6, 0x75},
        {matroskaElement({0xE7}, {{0}}), matroskaElement({0xA3}, {{0x81, 0, 0, 0x80}, frame})});
    return joined({head, matroskaElement({0x18, 0x53, 0x80, 0x67},
                                         {matroskaElement({0x16, 0x54, 0xAE, 0x6B}, {track}), cluster})});
}

}  // namespace qv_test
