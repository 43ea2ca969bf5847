// SEI units built and edited: against bytes worked out by hand, and against a list of messages.
#include "bitstream/sei/SeiEdit.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "../support/Hex.h"
#include "AllocationFault.h"
#include "BitWriter.h"
#include "GuardedBuffer.h"
#include "RandomSei.h"
#include "StructureChecks.h"
#include "bitstream/avc/NalUnitType.h"
#include "bitstream/hevc/NalUnitType.h"
#include "bitstream/sei/ColourVolume.h"
#include "bitstream/sei/PayloadSyntax.h"

namespace {

using namespace qv_test;
using namespace qv::sei;
using qv::Codec;
using qv::SeiFault;
using qv::SeiMessage;
using qv::SeiMessages;

qv::Bytes borrowed(const Bytes& bytes) {
    return {bytes.data(), bytes.size()};
}

Bytes joined(Bytes first, const Bytes& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

// --- Removing ---

struct Removing {
    const char* unit;
    uint64_t payloadType;
    size_t messages;  // that are removed
    const char* left;
};

TEST(SeiEdit, removing) {
    const Removing kCases[] = {
        // The first, a middle one, the last, several
        {"06 06 01 C4 05 02 11 22 80", 6, 1, "06 05 02 11 22 80"},
        {"06 01 01 AA 06 01 C4 05 01 11 80", 6, 1, "06 01 01 AA 05 01 11 80"},
        {"06 06 01 C4 05 02 11 22 80", 5, 1, "06 06 01 C4 80"},
        {"06 05 01 11 06 01 C4 05 01 22 80", 5, 2, "06 06 01 C4 80"},
        // The last message of the unit, and none
        {"06 05 01 11 05 01 22 80", 5, 2, ""},
        {"06 05 01 11 80", 4, 0, "06 05 01 11 80"},
        {"06 80", 0, 0, "06 80"},
        {"06", 0, 0, "06"},
        {"", 0, 0, ""},
        // Types that take several bytes
        {"06 FF 01 01 C4 05 01 11 80", 256, 1, "06 05 01 11 80"},
        // cabac_zero_words and trailing zero bytes
        {"06 06 01 C4 05 01 11 80 00 00 03 00 00 03", 5, 1, "06 06 01 C4 80 00 00 03 00 00 03"},
        {"06 06 01 C4 05 01 11 80 00", 5, 1, "06 06 01 C4 80 00"},
        // An emulation prevention byte is needed where two messages meet, or is no longer needed
        {"06 05 01 00 06 01 C4 00 01 11 80", 6, 1, "06 05 01 00 00 03 01 11 80"},
        {"06 05 02 00 00 06 01 C4 01 01 11 80", 6, 1, "06 05 02 00 00 03 01 01 11 80"},
        {"06 06 02 00 00 03 01 01 11 80", 6, 1, "06 01 01 11 80"},
        {"06 06 01 00 00 03 02 11 22 80", 6, 1, "06 00 02 11 22 80"},
        {"06 06 02 C4 00 00 03 00 80", 6, 1, "06 00 00 80"},
        // The one between a payload and rbsp_trailing_bits(), which is not needed, goes with the payload
        {"06 05 01 11 06 02 00 00 03 80", 6, 1, "06 05 01 11 80"},
        {"06 06 01 C4 05 02 00 00 03 80", 6, 1, "06 05 02 00 00 03 80"},
        // A message without a payload before an emulation prevention byte
        {"06 06 01 C4 00 00 03 01 00 80", 6, 1, "06 00 00 03 01 00 80"},
        {"06 06 01 C4 00 00 03 01 00 80", 1, 1, "06 06 01 C4 00 00 80"},
        // Start codes in a unit: kept, since they are kept without an edit too
        {"06 06 01 C4 05 04 00 00 01 11 80", 6, 1, "06 05 04 00 00 01 11 80"},
        // The payload of the last message is cut
        {"06 06 01 C4 05 09 11 22 80", 6, 1, "06 05 09 11 22 80"},
        {"06 06 01 C4 05 09 11 22 80", 5, 1, "06 06 01 C4 80"},
        {"06 05 09 11 22 80", 5, 1, ""},
        {"06 06 01 C4 05 09 11 00 00 03", 6, 1, "06 05 09 11 00 00 03"},
        // payloadType or payloadSize is cut
        {"06 06 01 C4 01 01 AA 05", 6, 1, "06 01 01 AA 05"},
        {"06 06 01 C4 01 01 AA 40", 1, 1, "06 06 01 C4 40"},
        {"06 06 01 C4 FF", 6, 1, ""},
        {"06 FF", 0, 0, "06 FF"},
        // No rbsp_trailing_bits()
        {"06 06 01 C4 05 02 11 00", 6, 1, "06 05 02 11 00"},
        {"06 06 01 C4 05 02 11 00 00 00", 6, 1, "06 05 02 11 00 00 00"},
        {"06 06 01 C4 05 02 11 22 00 00", 5, 1, "06 06 01 C4 80"},
        {"06 01 06 1B 05 09 B8 00 00", 1, 1, ""},
        // Bytes after rbsp_trailing_bits()
        {"06 06 01 C4 05 01 11 80 07", 6, 1, "06 05 01 11 80 07"},
        {"06 06 01 C4 05 01 11 80 07", 5, 1, "06 06 01 C4 80 07"},
    };
    for (const Removing& row : kCases) {
        const Bytes unit = hex(row.unit);
        Bytes out = {0xAA};
        const Removed removed = removeMessagesOfType(borrowed(unit), Codec::Avc, row.payloadType, out);
        EXPECT_EQ(hexOf(borrowed(out)), hexOf(borrowed(joined({0xAA}, hex(row.left))))) << row.unit;
        EXPECT_EQ(removed.messages, row.messages) << row.unit;
        EXPECT_EQ(removed.isUnitGone, row.messages > 0 && *row.left == '\0') << row.unit;
    }
}

TEST(SeiEdit, removingFromHevcUnits) {
    const Bytes unit = hex("50 01 84 01 33 05 01 11 80");
    Bytes out;
    EXPECT_EQ(removeMessagesOfType(borrowed(unit), Codec::Hevc, 132, out).messages, 1U);
    EXPECT_EQ(out, hex("50 01 05 01 11 80"));
}

TEST(SeiEdit, thePredicateSeesEachMessageOnce) {
    const Bytes unit = hex("06 06 01 C4 05 02 11 22 01 01 AA 80");
    std::vector<uint64_t> types;
    Bytes out;
    const Removed removed = removeMessages(borrowed(unit), Codec::Avc, out, [&](const SeiMessage& message) {
        types.push_back(message.payloadType);
        return message.payloadSize == 2;
    });
    EXPECT_EQ(types, (std::vector<uint64_t>{6, 5, 1}));
    EXPECT_EQ(removed.messages, 1U);
    EXPECT_EQ(out, hex("06 06 01 C4 01 01 AA 80"));
}

// --- Nested messages: of H.265, scalable_nesting() with all_layers_flag, a byte 20, and messages ---

qv::NestedMessages nestedIn(const SeiMessage& message) {
    qv::NestedMessages nested;
    if (message.payloadType == 133) {
        qv::Reader reader = message.reader();
        uint32_t head = 0;
        reader.u(8, "head", head);
        nested_messages(reader, Context(Codec::Hevc), nested);
    }
    return nested;
}

struct Nesting {
    const char* unit;
    uint64_t payloadType;
    size_t messages;
    const char* left;
};

TEST(SeiEdit, nestedMessages) {
    const Nesting kCases[] = {
        {"4E 01 85 07 20 00 01 11 01 01 22 80", 0, 1, "4E 01 85 04 20 01 01 22 80"},
        {"4E 01 85 07 20 00 01 11 01 01 22 80", 1, 1, "4E 01 85 04 20 00 01 11 80"},
        {"4E 01 85 07 20 00 01 11 01 01 22 80", 2, 0, "4E 01 85 07 20 00 01 11 01 01 22 80"},
        {"4E 01 85 07 20 00 01 11 01 01 22 80", 133, 1, ""},
        {"4E 01 85 07 20 00 01 11 00 01 22 80", 0, 2, ""},
        {"4E 01 85 04 20 00 01 11 01 01 33 00 01 44 80", 0, 2, "4E 01 01 01 33 80"},
        {"4E 01 01 01 33 85 07 20 05 02 00 00 03 01 00 80", 5, 1, "4E 01 01 01 33 85 03 20 01 00 80"},
        {"4E 01 05 01 33 85 08 20 05 01 00 00 02 00 00 80", 5, 2, "4E 01 85 05 20 00 02 00 00 80"},
        // Without messages in it, cut, and with a message that is cut
        {"4E 01 85 01 20 80", 0, 0, "4E 01 85 01 20 80"},
        {"4E 01 85 09 20 00 01 11", 0, 0, "4E 01 85 09 20 00 01 11"},
        {"4E 01 85 06 20 00 01 11 01 09 80", 0, 0, "4E 01 85 06 20 00 01 11 01 09 80"},
    };
    for (const Nesting& row : kCases) {
        const Bytes unit = hex(row.unit);
        const auto isOfType = [&](const SeiMessage& message) {
            return message.payloadType == row.payloadType;
        };
        Bytes out;
        const Removed removed = removeMessages(borrowed(unit), Codec::Hevc, out, isOfType, nestedIn);
        EXPECT_EQ(hexOf(borrowed(out)), row.left) << row.unit << " without " << row.payloadType;
        EXPECT_EQ(removed.messages, row.messages) << row.unit << " without " << row.payloadType;
        EXPECT_EQ(removed.isUnitGone, *row.left == '\0');
    }
    const Bytes unit = hex("4E 01 85 04 20 00 01 11 80");
    Bytes out;
    EXPECT_EQ(removeMessagesOfType(borrowed(unit), Codec::Hevc, 0, out).messages, 0U);
    EXPECT_EQ(out, unit);
}

struct Owned {
    const char* unit;
    T35Code owner;
    bool isOwned;
};

TEST(SeiEdit, owners) {
    const Owned kCases[] = {
        {"06 04 03 26 00 04 80", {0x26, 0, 0x0004}, true},
        {"06 04 03 26 00 04 80", {0x26, 0, std::nullopt}, true},
        {"06 04 03 26 00 04 80", {0x26, 0, 0x0005}, false},
        {"06 04 03 26 00 04 80", {0xB5, 0, 0x0004}, false},
        {"06 04 03 B5 00 31 80", {0xB5, 0, 0x0031}, true},
        {"06 04 05 26 00 00 03 00 04 80", {0x26, 0, 0x0000}, true},
        // The provider follows the extension byte
        {"06 04 04 FF 07 00 31 80", {0xFF, 0, 0x0031}, true},
        {"06 04 04 FF 07 00 31 80", {0xFF, 0, 0x0700}, false},
        {"06 04 04 FF 07 00 31 80", {0xFF, 7, 0x0031}, true},
        {"06 04 04 FF 07 00 31 80", {0xFF, 8, 0x0031}, false},
        {"06 04 04 FF 07 00 31 80", {0xFF, 0, std::nullopt}, true},
        {"06 04 01 FF 80", {0xFF, 0, std::nullopt}, true},
        // Not long enough
        {"06 04 02 26 00 80", {0x26, 0, 0x0000}, false},
        {"06 04 03 FF 00 04 80", {0xFF, 0, 0x0004}, false},
        {"06 04 00 80", {0x00, 0, std::nullopt}, false},
        // Cut after the codes, and before their end
        {"06 04 09 26 00 04", {0x26, 0, 0x0004}, true},
        {"06 04 09 26 00", {0x26, 0, 0x0004}, false},
        // Other types
        {"06 05 03 26 00 04 80", {0x26, 0, 0x0004}, false},
    };
    for (const Owned& row : kCases) {
        const Bytes unit = hex(row.unit);
        EXPECT_EQ(isOwnedBy(*SeiMessages(borrowed(unit), Codec::Avc).begin(), row.owner), row.isOwned)
            << row.unit;
        Bytes out;
        EXPECT_EQ(removeMessagesOf(borrowed(unit), Codec::Avc, row.owner, out).isUnitGone, row.isOwned)
            << row.unit;
        EXPECT_EQ(out, row.isOwned ? Bytes() : unit);
    }
}

// --- Building ---

TEST(SeiEdit, unitsAreBuilt) {
    const Bytes source = hex("06 05 00 00 03 02 00 00 05 03 00 00 01 80");  // 5 without payload, 0, 5
    Bytes out = {0xAA};
    const Bytes header = seiHeader(Codec::Hevc);
    SeiUnitWriter writer(borrowed(header), out);
    for (const SeiMessage& message : SeiMessages(borrowed(source), Codec::Avc)) {
        EXPECT_TRUE(writer.add(message));
    }
    const Bytes payload = hex("00 00 00 00 03");
    EXPECT_TRUE(writer.add(NewMessage(256, borrowed(payload))));
    const qv::Written written = writer.add(ContentLightLevelInfo{1000, 400}, Context(Codec::Hevc));
    EXPECT_TRUE(written.ok());
    EXPECT_EQ(written.size, 4U);
    const size_t size = writer.finish();
    EXPECT_EQ(size, out.size() - 1);
    // max_content_light_level 1000 is 03 E8, max_pic_average_light_level 400 is 01 90
    EXPECT_EQ(hexOf(borrowed(out)),
              "AA 4E 01 05 00 00 03 02 00 00 05 03 00 00 01 FF 01 05 00 00 03 00 00 03 03 90 04 03 E8 01 90 "
              "80");
}

TEST(SeiEdit, longPayloadsAndSizes) {
    const Bytes header = seiHeader(Codec::Avc);
    for (const size_t size : {size_t{254}, size_t{255}, size_t{256}, size_t{510}, size_t{70000}}) {
        const Bytes payload(size, 0x00);
        Bytes out;
        SeiUnitWriter writer(borrowed(header), out);
        EXPECT_TRUE(writer.add(NewMessage(5, borrowed(payload))));
        writer.finish();
        Bytes rbsp = header;
        appendSeiMessage(rbsp, 5, payload);
        EXPECT_EQ(out, withEmulationPrevention(joined(rbsp, {0x80})));
        Bytes removed;
        EXPECT_TRUE(removeMessagesOfType(borrowed(out), Codec::Avc, 5, removed).isUnitGone);
    }
}

TEST(SeiEdit, whatCannotBeWrittenIsRefused) {
    Bytes out = {0xAA};
    const Bytes header = seiHeader(Codec::Avc);
    for (const char* const cut : {"06 05 09 11", "06 05", "06 80"}) {
        const Bytes source = hex(cut);
        const NewMessage message = *SeiMessages(borrowed(source), Codec::Avc).begin();
        EXPECT_FALSE(message.isWhole());
        SeiUnitWriter writer(borrowed(header), out);
        EXPECT_FALSE(writer.add(message));
        EXPECT_EQ(writer.finish(), 0U);
        const Bytes unit = hex("06 06 01 C4 80");
        EXPECT_FALSE(insertMessage(borrowed(unit), Codec::Avc, 0, message, out));
        EXPECT_FALSE(insertMessage(borrowed(unit), Codec::Avc, 1, message, out));
        EXPECT_FALSE(replaceMessage(borrowed(unit), Codec::Avc, 0, message, out));
    }
    SeiUnitWriter writer(borrowed(header), out);
    const qv::Written written = writer.add(ContentLightLevelInfo{0x10000, 0}, Context(Codec::Avc));
    EXPECT_FALSE(written.ok());
    EXPECT_EQ(writer.finish(), 0U);
    EXPECT_EQ(out, Bytes{0xAA});
}

// --- Inserting and replacing: a message of type 1 with the payload 00 00 01 ---

struct Placing {
    const char* unit;
    size_t position;
    const char* inserted;  // empty when it is refused
    const char* replaced;
};

TEST(SeiEdit, insertingAndReplacing) {
    const Placing kCases[] = {
        {"06 06 01 C4 80", 0, "06 01 03 00 00 03 01 06 01 C4 80", "06 01 03 00 00 03 01 80"},
        {"06 06 01 C4 80", 1, "06 06 01 C4 01 03 00 00 03 01 80", ""},
        {"06 06 01 C4 80", 2, "", ""},
        {"06 06 02 00 00 03 80", 1, "06 06 02 00 00 03 01 03 00 00 03 01 80", ""},
        {"06 06 01 C4 05 00 80 00 00", 1, "06 06 01 C4 01 03 00 00 03 01 05 00 80 00 00",
         "06 06 01 C4 01 03 00 00 03 01 80 00 00"},
        // Units without a message
        {"06", 0, "06 01 03 00 00 03 01 80", ""},
        {"06 80 00 00 03", 0, "06 01 03 00 00 03 01 80 00 00 03", ""},
        {"06 00 00", 0, "06 01 03 00 00 03 01 80", ""},
        {"06 80", 1, "", ""},
        {"", 0, "", ""},
        // No rbsp_trailing_bits()
        {"06 06 01 C4 00 00", 1, "06 06 01 C4 01 03 00 00 03 01 80", ""},
        {"06 06 01 C4 00 00", 0, "06 01 03 00 00 03 01 06 01 C4 00 00", "06 01 03 00 00 03 01 80"},
        // A payload that is cut
        {"06 06 04 C4", 0, "06 01 03 00 00 03 01 06 04 C4", "06 01 03 00 00 03 01 80"},
        {"06 06 04 C4", 1, "", ""},
        {"06 80 04 C4", 0, "06 01 03 00 00 03 01 80 04 C4", "06 01 03 00 00 03 01 80"},
        // A message that is cut before its payload
        {"06 06 01 C4 FF", 1, "06 06 01 C4 01 03 00 00 03 01 FF", ""},
        {"06 FF", 0, "06 01 03 00 00 03 01 FF", ""},
        // Bytes after rbsp_trailing_bits()
        {"06 06 01 C4 80 07", 1, "06 06 01 C4 01 03 00 00 03 01 80 07", ""},
    };
    const Bytes payload = hex("00 00 01");
    const NewMessage message(1, borrowed(payload));
    for (const Placing& row : kCases) {
        const Bytes unit = hex(row.unit);
        Bytes inserted;
        EXPECT_EQ(insertMessage(borrowed(unit), Codec::Avc, row.position, message, inserted),
                  *row.inserted != '\0')
            << row.unit;
        EXPECT_EQ(hexOf(borrowed(inserted)), row.inserted) << row.unit << " " << row.position;
        Bytes replaced;
        EXPECT_EQ(replaceMessage(borrowed(unit), Codec::Avc, row.position, message, replaced),
                  *row.replaced != '\0')
            << row.unit;
        EXPECT_EQ(hexOf(borrowed(replaced)), row.replaced) << row.unit << " " << row.position;
    }
    const Bytes headerCut = hex("4E");
    Bytes out;
    EXPECT_FALSE(insertMessage(borrowed(headerCut), Codec::Hevc, 0, message, out));
    EXPECT_TRUE(out.empty());
}

// --- Order ---

TEST(SeiEdit, placesOfMessages) {
    const Bytes avc = hex("06 00 01 80 01 01 11 05 01 11 80");
    EXPECT_EQ(placeOfMessage(borrowed(avc), Codec::Avc, 0), 1U);
    EXPECT_EQ(placeOfMessage(borrowed(avc), Codec::Avc, 1), 3U);
    EXPECT_EQ(placeOfMessage(borrowed(avc), Codec::Avc, 129), 3U);
    const Bytes hevc = hex("4E 01 81 01 11 00 01 80 01 01 11 82 01 11 05 01 11 FF");
    EXPECT_EQ(placeOfMessage(borrowed(hevc), Codec::Hevc, 129), 1U);
    EXPECT_EQ(placeOfMessage(borrowed(hevc), Codec::Hevc, 0), 2U);
    EXPECT_EQ(placeOfMessage(borrowed(hevc), Codec::Hevc, 1), 3U);
    EXPECT_EQ(placeOfMessage(borrowed(hevc), Codec::Hevc, 130), 4U);
    EXPECT_EQ(placeOfMessage(borrowed(hevc), Codec::Hevc, 4), 5U);
    const Bytes empty = hex("06 80");
    EXPECT_EQ(placeOfMessage(borrowed(empty), Codec::Avc, 0), 0U);
}

struct AccessUnitCase {
    std::vector<uint32_t> types;  // SEI units of both kinds have a message of type 5
    uint32_t nal_unit_type;
    uint64_t payloadType;
    size_t place;
};

void checkPlaces(Codec codec, const std::vector<AccessUnitCase>& cases) {
    for (const AccessUnitCase& row : cases) {
        std::vector<Bytes> bytes;
        for (const uint32_t type : row.types) {
            bytes.push_back(codec == Codec::Avc ? Bytes{static_cast<uint8_t>(type), 5, 0, 0x80}
                                                : Bytes{static_cast<uint8_t>(type << 1), 1, 5, 0, 0x80});
        }
        std::vector<qv::NalUnit> units;
        for (const Bytes& unit : bytes) {
            units.push_back(qv::nalUnitOf(borrowed(unit), codec));
        }
        EXPECT_EQ(placeOfSeiUnit(units.data(), units.size(), codec, row.nal_unit_type, row.payloadType),
                  row.place)
            << ::testing::PrintToString(row.types) << " " << row.nal_unit_type << " " << row.payloadType;
    }
}

TEST(SeiEdit, placesInAccessUnits) {
    checkPlaces(Codec::Avc, {
                                {{}, 6, 5, 0},
                                {{5}, 6, 5, 0},
                                {{9, 7, 13, 15, 8, 5}, 6, 5, 5},
                                {{9, 7, 8, 5}, 6, 0, 3},
                                {{9, 7, 8, 6, 6, 1, 1}, 6, 5, 5},
                                {{9, 7, 8, 6, 6, 1, 1}, 6, 0, 3},
                                {{9, 6, 8, 1}, 6, 0, 1},
                                {{9, 7, 8, 16, 18, 14, 5, 20}, 6, 5, 5},
                                {{9, 24, 1}, 6, 5, 1},
                                {{9, 10}, 6, 5, 1},
                                {{9, 19, 1}, 6, 5, 1},
                                {{9, 7, 8}, 6, 5, 3},
                            });
    checkPlaces(Codec::Hevc, {
                                 {{}, 39, 5, 0},
                                 {{35, 32, 33, 34, 19, 40}, 39, 5, 4},
                                 {{35, 39, 41, 44, 48, 55, 1, 1}, 39, 5, 6},
                                 {{35, 39, 41, 44, 48, 55, 1, 1}, 39, 129, 1},
                                 {{35, 39, 39, 1}, 39, 1, 1},
                                 {{35, 45, 1}, 39, 5, 1},
                                 {{35, 56, 1}, 39, 5, 1},
                                 {{35, 1, 39, 1}, 39, 5, 1},
                                 {{35, 36}, 39, 5, 1},
                                 {{35, 39, 1, 1}, 40, 132, 4},
                                 {{35, 39, 1, 1, 36, 37}, 40, 132, 4},
                                 {{35, 1, 40, 1, 40, 40, 38, 36}, 40, 132, 6},
                                 {{35, 32}, 40, 132, 2},
                                 {{40}, 40, 132, 1},
                             });
}

// Message types with a place of their own, in units that have such messages.
TEST(SeiEdit, placesAmongSeiUnits) {
    const std::vector<Bytes> bytes = {hex("46 01 50"), hex("4E 01 81 01 11 80"), hex("4E 01 00 01 80 80"),
                                      hex("4E 01 01 01 11 05 00 80"), hex("02 01 80")};
    std::vector<qv::NalUnit> units;
    for (const Bytes& unit : bytes) {
        units.push_back(qv::nalUnitOf(borrowed(unit), Codec::Hevc));
    }
    const auto place = [&](uint64_t payloadType) {
        return placeOfSeiUnit(units.data(), units.size(), Codec::Hevc, qv::hevc::kNalPrefixSei, payloadType);
    };
    EXPECT_EQ(place(129), 2U);
    EXPECT_EQ(place(0), 3U);
    EXPECT_EQ(place(1), 3U) << "before the unit that also has a message that comes later";
    EXPECT_EQ(place(130), 3U);
    EXPECT_EQ(place(4), 4U);
}

// --- Against a list of messages ---

struct ModelMessage {
    uint64_t payloadType = 0;
    uint64_t payloadSize = 0;
    Bytes payload;
};

bool operator==(const ModelMessage& a, const ModelMessage& b) {
    return a.payloadType == b.payloadType && a.payloadSize == b.payloadSize && a.payload == b.payload;
}

Bytes unescaped(const Bytes& unit, size_t headerBytes) {
    Bytes bytes;
    for (size_t i = 0; i < unit.size(); ++i) {
        if (i < headerBytes || i < 2 || unit[i] != 3 || unit[i - 1] != 0 || unit[i - 2] != 0) {
            bytes.push_back(unit[i]);
        }
    }
    return bytes;
}

Bytes rbspPayloadOf(const SeiMessage& message) {
    Bytes bytes;
    qv::Reader reader = message.reader();
    while (reader.more_rbsp_data()) {
        uint32_t byte = 0;
        reader.u(8, "byte", byte);
        bytes.push_back(static_cast<uint8_t>(byte));
    }
    return bytes;
}

// A unit as a list of messages and the bytes after them, without emulation prevention bytes.
class Model {
public:
    Model(const Bytes& unit, Codec codec) : header_(codec == Codec::Avc ? 1 : 2) {
        const Bytes rbsp = unescaped(unit, header_);
        header_ = std::min(header_, rbsp.size());
        size_t end = header_;
        for (const SeiMessage& message : SeiMessages(borrowed(unit), codec)) {
            if (message.faults.has(SeiFault::NoMessage)) {
                hasTrailingBits_ = std::find(rbsp.begin(), rbsp.end(), 0x80) != rbsp.end();
                break;
            }
            if (message.faults.has(SeiFault::HeaderCut)) {
                break;
            }
            messages.push_back({message.payloadType, message.payloadSize, rbspPayloadOf(message)});
            end = message.rbspPayloadOffset + message.rbspPayloadSize;
            hasTrailingBits_ =
                !message.faults.has(SeiFault::NoTrailingBits) && !message.faults.has(SeiFault::PayloadCut);
        }
        head_.assign(rbsp.begin(), rbsp.begin() + static_cast<long>(header_));
        tail_.assign(rbsp.begin() + static_cast<long>(end), rbsp.end());
    }

    // True when the message before this position ends the unit.
    bool isCut(size_t position) const {
        return position > 0 && messages[position - 1].payload.size() < messages[position - 1].payloadSize;
    }

    void remove(size_t position) {
        messages.erase(messages.begin() + static_cast<long>(position));
        changedAt(position);
    }
    void insert(size_t position, const ModelMessage& message) {
        messages.insert(messages.begin() + static_cast<long>(position), message);
        changedAt(position + 1);
    }

    Bytes rbsp() const {
        Bytes bytes = head_;
        for (const ModelMessage& message : messages) {
            appendSeiNumber(bytes, message.payloadType);
            appendSeiNumber(bytes, message.payloadSize);
            bytes.insert(bytes.end(), message.payload.begin(), message.payload.end());
        }
        return joined(bytes, tail_);
    }

    std::vector<ModelMessage> messages;

private:
    void changedAt(size_t position) {
        if (position == messages.size() && !hasTrailingBits_) {
            tail_ = {0x80};
            hasTrailingBits_ = true;
        }
    }

    size_t header_;
    Bytes head_;
    Bytes tail_;
    bool hasTrailingBits_ = true;  // or other bytes that stay after the messages
};

// One random edit of a unit, and the same of the model.
class RandomEdit {
public:
    RandomEdit(SeiRandom& random, const Bytes& unit, qv::Bytes placed, Codec codec)
        : random_(random), unit_(unit), placed_(placed), codec_(codec), model_(unit, codec) {}

    void check() {
        switch (random_() % 4) {
            case 0:
                removeSome();
                break;
            case 1:
                insertOne();
                break;
            case 2:
                replaceOne();
                break;
            default:
                editEverywhere();
        }
    }

private:
    void removeSome() {
        const uint64_t mask = random_();
        size_t position = 0;
        Bytes out;
        const Removed removed = removeMessages(placed_, codec_, out, [&](const SeiMessage& message) {
            EXPECT_EQ(message.unit.data, placed_.data);
            return (mask >> position++ & 1) != 0;
        });
        EXPECT_EQ(position, model_.messages.size());
        size_t count = 0;
        for (size_t i = position; i > 0; --i) {
            if ((mask >> (i - 1) & 1) != 0) {
                model_.remove(i - 1);
                ++count;
            }
        }
        EXPECT_EQ(removed.messages, count);
        EXPECT_EQ(removed.isUnitGone, count > 0 && model_.messages.empty());
        expect(out, count > 0);
    }

    void insertOne() {
        const ModelMessage message = anyMessage();
        const size_t position = random_() % (model_.messages.size() + 2);
        Bytes out;
        const bool isRefused = position > model_.messages.size() || model_.isCut(position);
        EXPECT_EQ(insertMessage(placed_, codec_, position, written(message), out), !isRefused);
        if (isRefused) {
            EXPECT_TRUE(out.empty());
            return;
        }
        model_.insert(position, message);
        expect(out, true);
    }

    void replaceOne() {
        const ModelMessage message = anyMessage();
        const size_t position = random_() % (model_.messages.size() + 1);
        Bytes out;
        const bool isThere = position < model_.messages.size();
        EXPECT_EQ(replaceMessage(placed_, codec_, position, written(message), out), isThere);
        if (!isThere) {
            EXPECT_TRUE(out.empty());
            return;
        }
        model_.remove(position);
        model_.insert(position, message);
        expect(out, true);
    }

    // Removes, keeps and inserts in one walk.
    void editEverywhere() {
        Bytes out;
        SeiUnitEdit edit(placed_, codec_, out);
        bool hasChanged = false;
        size_t position = 0;
        do {
            while (random_() % 4 == 0 && !model_.isCut(position)) {
                const ModelMessage message = anyMessage();
                EXPECT_TRUE(edit.insert(written(message)));
                model_.insert(position++, message);
                hasChanged = true;
            }
            if (edit.message() == nullptr) {
                break;
            }
            if (random_() % 2 == 0) {
                edit.keep();
                ++position;
            } else {
                edit.remove();
                model_.remove(position);
                hasChanged = true;
            }
        } while (random_() % 8 != 0);
        const size_t size = edit.finish();
        EXPECT_EQ(size, out.size());
        expect(out, hasChanged);
    }

    ModelMessage anyMessage() {
        const Bytes payload = randomSeiPayload(random_);
        return {randomSeiType(random_), payload.size(), payload};
    }

    static NewMessage written(const ModelMessage& message) {
        return {static_cast<uint32_t>(message.payloadType), borrowed(message.payload)};
    }

    void expect(const Bytes& out, bool hasChanged) {
        SCOPED_TRACE(hexOf(borrowed(unit_)) + " became " + hexOf(borrowed(out)));
        if (!hasChanged) {
            EXPECT_EQ(out, unit_);
            return;
        }
        if (model_.messages.empty()) {
            EXPECT_TRUE(out.empty());
            return;
        }
        const Bytes rbsp = model_.rbsp();
        EXPECT_EQ(hexOf(borrowed(unescaped(out, seiHeader(codec_).size()))), hexOf(borrowed(rbsp)));
        // A unit with as few emulation prevention bytes as possible stays one.
        const bool isCanonical = unit_ == withEmulationPrevention(unescaped(unit_, seiHeader(codec_).size()));
        if (isCanonical) {
            EXPECT_EQ(hexOf(borrowed(out)), hexOf(borrowed(withEmulationPrevention(rbsp))));
        }
        EXPECT_TRUE(Model(out, codec_).messages == readable());
    }

    // After another message, a cut one of type 128 is bytes after rbsp_trailing_bits().
    std::vector<ModelMessage> readable() const {
        std::vector<ModelMessage> messages = model_.messages;
        if (messages.size() > 1 && messages.back().payloadType == 128 && model_.isCut(messages.size())) {
            messages.pop_back();
        }
        return messages;
    }

    SeiRandom& random_;
    const Bytes& unit_;
    qv::Bytes placed_;
    Codec codec_;
    Model model_;
};

// Each unit is between inaccessible pages.
TEST(SeiEdit, randomEditsAsOfTheList) {
    SeiRandom random(29);
    GuardedBuffer guarded(256);
    const int rounds = unitRounds(20000);
    for (int round = 0; round < rounds && !HasFailure(); ++round) {
        const Codec codec = round % 2 == 0 ? Codec::Avc : Codec::Hevc;
        const Bytes unit = randomSeiUnit(random, codec);
        const uint8_t* const place = round % 4 < 2 ? guarded.placeAtEnd(unit) : guarded.placeAtBegin(unit);
        RandomEdit(random, unit, {place, unit.size()}, codec).check();
    }
}

// Removing all messages and writing copies of them gives back a unit that is as the standard wants it.
TEST(SeiEdit, removedAndInsertedAgain) {
    SeiRandom random(30);
    size_t units = 0;
    const int rounds = unitRounds(2000);
    for (int round = 0; round < rounds; ++round) {
        const Codec codec = round % 2 == 0 ? Codec::Avc : Codec::Hevc;
        const Bytes unit = randomSeiUnit(random, codec);
        std::vector<SeiMessage> messages;
        for (const SeiMessage& message : SeiMessages(borrowed(unit), codec)) {
            messages.push_back(message);
        }
        const bool isWhole = messages.back().ok();
        Bytes gone;
        removeMessages(borrowed(unit), codec, gone, [](const SeiMessage&) { return true; });
        if (!isWhole) {
            continue;
        }
        ++units;
        ASSERT_TRUE(gone.empty());
        // All but the first are removed and inserted again.
        Bytes first;
        size_t position = 0;
        removeMessages(borrowed(unit), codec, first, [&](const SeiMessage&) { return position++ > 0; });
        for (size_t i = 1; i < messages.size(); ++i) {
            Bytes next;
            ASSERT_TRUE(insertMessage(borrowed(first), codec, i, messages[i], next));
            first = next;
        }
        EXPECT_EQ(hexOf(borrowed(unescaped(first, seiHeader(codec).size()))),
                  hexOf(borrowed(unescaped(unit, seiHeader(codec).size()))));
    }
    EXPECT_GT(units, 500U);
}

TEST(SeiEdit, onlyTheListAllocates) {
    SeiRandom random(31);
    std::vector<Bytes> units;
    for (int i = 0; i < 200; ++i) {
        units.push_back(randomSeiUnit(random, Codec::Hevc));
    }
    const Bytes payload = hex("00 00 01");
    Bytes out;
    out.reserve(200 * 200);
    const AllocationFault allocations(Allocator::New, 0);
    const AllocationFault blocks(Allocator::Malloc, 0);
    size_t removed = 0;
    for (const Bytes& unit : units) {
        removed += removeMessagesOfType(borrowed(unit), Codec::Hevc, 5, out).messages;
        removed += removeMessagesOf(borrowed(unit), Codec::Hevc, {0x00, 0, 0x0000}, out).messages;
        insertMessage(borrowed(unit), Codec::Hevc, placeOfMessage(borrowed(unit), Codec::Hevc, 0),
                      {0, borrowed(payload)}, out);
    }
    EXPECT_EQ(allocations.seen(), 0);
    EXPECT_EQ(blocks.seen(), 0);
    EXPECT_GT(removed, 0U);
}

}  // namespace
