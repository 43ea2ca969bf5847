// The positions of SEI payloads.
#include "analysis/SeiReport.h"

#include <gtest/gtest.h>

#include "InspectSupport.h"

namespace qv_test {
namespace {

struct Place {
    uint64_t offset;
    uint32_t payloadSize;
    uint32_t codedSize;
};

bool operator==(const Place& a, const Place& b) {
    return a.offset == b.offset && a.payloadSize == b.payloadSize && a.codedSize == b.codedSize;
}

void PrintTo(const Place& place, std::ostream* out) {
    *out << place.offset << " " << place.payloadSize << " " << place.codedSize;
}

// Of a unit at offset 100.
std::vector<Place> placesIn(QVCodecID codec, const std::string& text) {
    const Bytes unit = hex(text);
    qvinspect::SeiReader reader(codec, {});
    const qvinspect::SeiUnit report =
        reader.add(unit.data(), unit.size(), codec == QVCodecIDAvc ? 6 : 39, 100,
                   qv::sei::Context(codec == QVCodecIDAvc ? qv::Codec::Avc : qv::Codec::Hevc));
    std::vector<Place> places;
    for (const auto& message : report.messages) {
        places.push_back({message.offset, message.payloadSize, message.codedSize});
    }
    return places;
}

TEST(SeiReport, placesOfPayloads) {
    using Places = std::vector<Place>;
    const std::pair<const char*, Places> cases[] = {
        {"06 F0 02 AA BB 80", {{103, 2, 2}}},
        {"06 F0 02 AA BB F1 01 CC 80", {{103, 2, 2}, {107, 1, 1}}},
        // An emulation prevention byte inside, and so before the second message.
        {"06 F0 04 AA 00 00 03 01 F1 01 CC 80", {{103, 4, 5}, {110, 1, 1}}},
        // Directly before the payload: type 0, size 0 and again type 0.
        {"06 00 00 03 00 01 AA 80", {{104, 0, 0}, {106, 1, 1}}},
        // After a payload that ends in zeros: it belongs to the next message.
        {"06 F0 02 00 00 03 01 01 CC 80", {{103, 2, 2}, {108, 1, 1}}},
        // A 03 that is not preceded by two zeros is a byte of the payload.
        {"06 F0 03 00 03 03 80", {{103, 3, 3}}},
        // A size of several bytes.
        {"06 FF 01 02 AA BB 80", {{104, 2, 2}}},
        {"06 F0 00 80", {{103, 0, 0}}},
        {"06 80", {}},
    };
    for (const auto& [unit, places] : cases) {
        EXPECT_EQ(placesIn(QVCodecIDAvc, unit), places) << unit;
    }
    EXPECT_EQ(placesIn(QVCodecIDHevc, "4E 01 F0 03 00 00 03 03 80"), (Places{{104, 3, 4}}));
}

}  // namespace
}  // namespace qv_test
