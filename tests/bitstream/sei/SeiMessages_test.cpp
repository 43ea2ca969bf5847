// The messages of SEI units: where each is, what it holds, and what is wrong after it.
#include "bitstream/sei/SeiMessages.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "../support/Hex.h"
#include "AllocationFault.h"
#include "BitWriter.h"
#include "GuardedBuffer.h"
#include "RandomSei.h"

namespace {

using namespace qv_test;
using qv::Codec;
using qv::SeiFault;
using qv::SeiMessage;
using qv::SeiMessages;

// What is compared: all positions, the payload without emulation prevention bytes, the faults.
struct Found {
    uint64_t payloadType;
    uint64_t payloadSize;
    size_t offset;
    size_t payloadOffset;
    size_t payloadEnd;
    size_t rbspOffset;
    size_t rbspPayloadOffset;
    Bytes payload;
    std::string faults;
};

std::string textOf(const Found& found) {
    const qv::Bytes payload = {found.payload.data(), found.payload.size()};
    return "type " + std::to_string(found.payloadType) + " size " + std::to_string(found.payloadSize) +
           " at " + std::to_string(found.offset) + "/" + std::to_string(found.rbspOffset) + ", payload at " +
           std::to_string(found.payloadOffset) + "/" + std::to_string(found.rbspPayloadOffset) + " to " +
           std::to_string(found.payloadEnd) + ": " + hexOf(payload) + " " + found.faults;
}

std::vector<std::string> textsOf(const std::vector<Found>& all) {
    std::vector<std::string> texts;
    for (const Found& found : all) {
        texts.push_back(textOf(found));
    }
    return texts;
}

// The payload as its reader gives it, byte by byte.
Bytes payloadOf(const SeiMessage& message) {
    Bytes bytes;
    qv::Reader reader = message.reader();
    while (reader.more_rbsp_data()) {
        EXPECT_EQ(reader.position(), 8 * (message.rbspPayloadOffset + bytes.size()));
        uint32_t byte = 0;
        reader.u(8, "byte", byte);
        bytes.push_back(static_cast<uint8_t>(byte));
    }
    EXPECT_FALSE(reader.failed());
    EXPECT_EQ(bytes.size(), message.rbspPayloadSize);
    return bytes;
}

std::vector<Found> messagesOf(qv::Bytes unit, Codec codec) {
    std::vector<Found> all;
    for (const SeiMessage& message : SeiMessages(unit, codec)) {
        EXPECT_EQ(message.unit.data, unit.data);
        EXPECT_EQ(message.unit.size, unit.size);
        EXPECT_EQ(message.ok(), !message.faults);
        const auto payloadBegin = static_cast<size_t>(message.payload.data - unit.data);
        EXPECT_EQ(payloadBegin, message.payloadOffset);
        all.push_back({message.payloadType, message.payloadSize, message.offset, message.payloadOffset,
                       payloadBegin + message.payload.size, message.rbspOffset, message.rbspPayloadOffset,
                       payloadOf(message), qv::textOf(message.faults)});
    }
    return all;
}

// --- A walk that follows the syntax byte by byte over the unescaped unit ---

class SlowWalk {
public:
    SlowWalk(const Bytes& unit, size_t headerBytes) : codedSize_(unit.size()) {
        for (size_t i = 0; i < unit.size(); ++i) {
            const bool isEmulation =
                i >= headerBytes && i >= 2 && unit[i] == 3 && unit[i - 1] == 0 && unit[i - 2] == 0;
            if (!isEmulation) {
                bytes_.push_back(unit[i]);
                coded_.push_back(i);
            }
        }
        next_ = std::min(headerBytes, bytes_.size());
    }

    std::vector<Found> messages() {
        std::vector<Found> all;
        if (isEnd(next_) || isTrailing(next_)) {
            all.push_back({0, 0, next_, next_, next_, next_, next_, {}, "no SEI message"});
            return all;
        }
        do {
            all.push_back(message());
        } while (all.back().faults.empty() && !isTrailing(next_));
        return all;
    }

private:
    size_t codedOf(size_t at) const { return at < coded_.size() ? coded_[at] : codedSize_; }

    // Nothing but zero bytes from at on.
    bool isEnd(size_t at) const {
        return std::all_of(bytes_.begin() + static_cast<long>(at), bytes_.end(),
                           [](uint8_t byte) { return byte == 0; });
    }
    bool isTrailing(size_t at) const { return at < bytes_.size() && bytes_[at] == 0x80 && isEnd(at + 1); }

    bool number(uint64_t& value) {
        value = 0;
        while (next_ < bytes_.size() && bytes_[next_] == 0xFF) {
            value += 255;
            ++next_;
        }
        if (next_ == bytes_.size()) {
            value = 0;
            return false;
        }
        value += bytes_[next_++];
        return true;
    }

    Found bareMessage() {
        Found found = {};
        found.rbspOffset = next_;
        found.offset = codedOf(next_);
        if (!number(found.payloadType) || !number(found.payloadSize)) {
            found.payloadType = 0;
            found.rbspPayloadOffset = next_;
            found.payloadOffset = found.payloadEnd = codedSize_;
            found.faults = "the unit ends within payloadType or payloadSize";
            return found;
        }
        found.rbspPayloadOffset = next_;
        found.payloadOffset = found.payloadEnd = codedOf(next_);
        const size_t left = bytes_.size() - next_;
        const bool isCut = found.payloadSize > left;
        const size_t size = isCut ? left : static_cast<size_t>(found.payloadSize);
        found.payload.assign(bytes_.begin() + static_cast<long>(next_),
                             bytes_.begin() + static_cast<long>(next_ + size));
        if (size > 0) {
            found.payloadEnd = codedOf(next_ + size - 1) + 1;
        }
        next_ += size;
        if (isCut) {
            found.payloadEnd = codedSize_;
            found.faults = "payloadSize runs past the end of the unit";
        }
        return found;
    }

    Found message() {
        Found found = bareMessage();
        if (!found.faults.empty() || isTrailing(next_)) {
            return found;
        }
        if (isEnd(next_)) {
            found.faults = "no rbsp_trailing_bits() after the last message";
        } else if (bytes_[next_] == 0x80) {
            SlowWalk ahead = *this;
            if (!ahead.bareMessage().faults.empty()) {
                found.faults = "bytes other than zero after rbsp_trailing_bits()";
            }
        }
        return found;
    }

    Bytes bytes_;
    std::vector<size_t> coded_;
    size_t codedSize_;
    size_t next_ = 0;
};

std::vector<Found> slowMessages(const Bytes& unit, Codec codec) {
    return SlowWalk(unit, codec == Codec::Avc ? 1 : 2).messages();
}

// --- Units as written ---

struct Case {
    const char* unit;
    std::vector<std::string> messages;
};

TEST(SeiMessages, table) {
    const Case kCases[] = {
        {"06 06 01 C4 80", {"type 6 size 1 at 1/1, payload at 3/3 to 4: C4 "}},
        {"06 06 01 C4 05 02 11 22 80 00 00",
         {"type 6 size 1 at 1/1, payload at 3/3 to 4: C4 ",
          "type 5 size 2 at 4/4, payload at 6/6 to 8: 11 22 "}},
        // No rbsp_trailing_bits() and zero bytes at the end of the payload
        {"06 01 06 1B 05 09 B8 00 00",
         {"type 1 size 6 at 1/1, payload at 3/3 to 9: 1B 05 09 B8 00 00 no rbsp_trailing_bits() after the "
          "last message"}},
        // The second message is cut
        {"06 06 01 C4 05 09 11 22 80",
         {"type 6 size 1 at 1/1, payload at 3/3 to 4: C4 ",
          "type 5 size 9 at 4/4, payload at 6/6 to 9: 11 22 80 payloadSize runs past the end of the unit"}},
        {"06 06 01 C4 05",
         {"type 6 size 1 at 1/1, payload at 3/3 to 4: C4 ",
          "type 0 size 0 at 4/4, payload at 5/5 to 5:  the unit ends within payloadType or "
          "payloadSize"}},
        // A stop bit that is not on a byte boundary
        {"06 06 01 C4 40",
         {"type 6 size 1 at 1/1, payload at 3/3 to 4: C4 ",
          "type 0 size 0 at 4/4, payload at 5/5 to 5:  the unit ends within payloadType or "
          "payloadSize"}},
        {"06 06 01 C4 80 07",
         {"type 6 size 1 at 1/1, payload at 3/3 to 4: C4 bytes other than zero after rbsp_trailing_bits()"}},
        // Type 128, not rbsp_trailing_bits()
        {"06 80 01 C4 80", {"type 128 size 1 at 1/1, payload at 3/3 to 4: C4 "}},
        {"06 0E 00 80 02 01 02 80",
         {"type 14 size 0 at 1/1, payload at 3/3 to 3:  ",
          "type 128 size 2 at 3/3, payload at 5/5 to 7: 01 02 "}},
        // Emulation prevention bytes in the header, at both ends of the payload and in it
        {"06 00 00 03 05 00 80",
         {"type 0 size 0 at 1/1, payload at 4/3 to 4:  ", "type 5 size 0 at 4/3, payload at 6/5 to 6:  "}},
        {"06 05 00 00 03 02 11 22 80",
         {"type 5 size 0 at 1/1, payload at 3/3 to 3:  ",
          "type 0 size 2 at 3/3, payload at 6/5 to 8: 11 22 "}},
        {"06 05 04 00 00 03 00 01 80", {"type 5 size 4 at 1/1, payload at 3/3 to 8: 00 00 00 01 "}},
        {"06 05 02 00 00 03 80", {"type 5 size 2 at 1/1, payload at 3/3 to 5: 00 00 "}},
        {"06 05 02 00 00 03",
         {"type 5 size 2 at 1/1, payload at 3/3 to 5: 00 00 no rbsp_trailing_bits() after the last message"}},
        {"06 FF 01 00 80", {"type 256 size 0 at 1/1, payload at 4/4 to 4:  "}},
        {"06", {"type 0 size 0 at 1/1, payload at 1/1 to 1:  no SEI message"}},
        {"06 80", {"type 0 size 0 at 1/1, payload at 1/1 to 1:  no SEI message"}},
        {"06 00 00", {"type 0 size 0 at 1/1, payload at 1/1 to 1:  no SEI message"}},
        {"", {"type 0 size 0 at 0/0, payload at 0/0 to 0:  no SEI message"}},
    };
    for (const Case& row : kCases) {
        const Bytes unit = hex(row.unit);
        EXPECT_EQ(textsOf(messagesOf(bytesOf(unit), Codec::Avc)), row.messages) << row.unit;
    }
}

TEST(SeiMessages, hevcUnitsHaveTwoBytesOfHeader) {
    const Bytes unit = hex("4E 01 88 01 C4 80");
    EXPECT_EQ(textsOf(messagesOf(bytesOf(unit), Codec::Hevc)),
              std::vector<std::string>{"type 136 size 1 at 2/2, payload at 4/4 to 5: C4 "});
    EXPECT_EQ(textsOf(messagesOf({unit.data(), 1}, Codec::Hevc)),
              std::vector<std::string>{"type 0 size 0 at 1/1, payload at 1/1 to 1:  no SEI message"});
}

TEST(SeiMessages, runsOfFf) {
    Bytes rbsp = seiHeader(Codec::Avc);
    appendSeiMessage(rbsp, 255 * 255 + 7, Bytes(255 * 3, 0x11));
    appendSeiMessage(rbsp, 4, {});
    rbsp.push_back(0x80);
    const std::vector<Found> all = messagesOf(bytesOf(rbsp), Codec::Avc);
    ASSERT_EQ(all.size(), 2U);
    EXPECT_EQ(all[0].payloadType, 255U * 255 + 7);
    EXPECT_EQ(all[0].payload.size(), 255U * 3);
    EXPECT_EQ(all[1].payloadType, 4U);
    EXPECT_EQ(all[1].faults, "");
}

TEST(SeiMessages, tenThousand) {
    Bytes rbsp = seiHeader(Codec::Hevc);
    for (uint32_t i = 0; i < 10000; ++i) {
        appendSeiMessage(rbsp, i, Bytes(i % 7, 0x00));
    }
    rbsp.push_back(0x80);
    const Bytes unit = withEmulationPrevention(rbsp);
    uint32_t count = 0;
    for (const SeiMessage& message : SeiMessages(bytesOf(unit), Codec::Hevc)) {
        EXPECT_TRUE(message.ok());
        EXPECT_EQ(message.payloadType, count);
        EXPECT_EQ(message.rbspPayloadSize, count % 7);
        ++count;
    }
    EXPECT_EQ(count, 10000U);
}

TEST(SeiMessages, iteratorsGoTheirOwnWays) {
    const Bytes unit = hex("06 06 01 C4 05 02 11 22 80");
    const SeiMessages messages(bytesOf(unit), Codec::Avc);
    SeiMessages::Iterator first = messages.begin();
    const SeiMessages::Iterator before = first++;
    EXPECT_EQ(before->payloadType, 6U);
    EXPECT_EQ((*first).payloadType, 5U);
    EXPECT_TRUE(first != SeiMessages::end());
    ++first;
    EXPECT_TRUE(first == SeiMessages::end());
}

// --- Against the slow walk ---

// Each unit is between inaccessible pages, whole and cut at every byte.
TEST(SeiMessages, randomUnitsAsTheSlowWalk) {
    SeiRandom random(23);
    GuardedBuffer guarded(256);
    size_t messages = 0;
    for (int round = 0; round < 20000; ++round) {
        const Codec codec = round % 2 == 0 ? Codec::Avc : Codec::Hevc;
        Bytes unit = randomSeiUnit(random, codec);
        for (bool isWhole = true; isWhole || round % 20 == 0; isWhole = false) {
            const uint8_t* const place =
                round % 4 < 2 ? guarded.placeAtEnd(unit) : guarded.placeAtBegin(unit);
            const std::vector<Found> found = messagesOf({place, unit.size()}, codec);
            ASSERT_EQ(textsOf(found), textsOf(slowMessages(unit, codec))) << hexOf(bytesOf(unit));
            messages += found.size();
            if (unit.empty()) {
                break;
            }
            unit.pop_back();
        }
    }
    EXPECT_GT(messages, 40000U);
}

TEST(SeiMessages, noWalkAllocates) {
    SeiRandom random(24);
    std::vector<Bytes> units;
    for (int i = 0; i < 200; ++i) {
        units.push_back(randomSeiUnit(random, Codec::Avc));
    }
    const AllocationFault allocations(Allocator::New, 0);
    const AllocationFault blocks(Allocator::Malloc, 0);
    size_t sum = 0;
    for (const Bytes& unit : units) {
        for (const SeiMessage& message : SeiMessages(bytesOf(unit), Codec::Avc)) {
            uint32_t value = 0;
            message.reader().u(8, "byte", value);
            sum += message.rbspPayloadSize + value;
        }
    }
    EXPECT_EQ(allocations.seen(), 0);
    EXPECT_EQ(blocks.seen(), 0);
    EXPECT_GT(sum, 0U);
}

}  // namespace
