// Removes a random subset of a unit's SEI messages and inserts them again: the messages must be the same as
// before. A unit that loses no message must keep its bytes.
#include "FuzzCheck.h"
#include "FuzzInput.h"
#include "bitstream/sei/SeiEdit.h"

namespace {

using qv::Bytes;
using qv::Codec;
using qv::SeiFault;
using qv::SeiMessage;
using qv::sei::NewMessage;
using Buffer = std::vector<uint8_t>;

Bytes bytesOf(const Buffer& buffer) {
    return {buffer.data(), buffer.size()};
}

std::vector<SeiMessage> messagesOf(Bytes unit, Codec codec) {
    std::vector<SeiMessage> messages;
    for (const SeiMessage& message : qv::SeiMessages(unit, codec)) {
        if (!message.faults.has(SeiFault::NoMessage) && !message.faults.has(SeiFault::HeaderCut)) {
            messages.push_back(message);
        }
    }
    return messages;
}

Buffer payloadOf(const SeiMessage& message) {
    Buffer payload;
    qv::Reader reader = message.reader();
    while (reader.more_rbsp_data()) {
        uint32_t byte = 0;
        reader.u(8, "byte", byte);
        payload.push_back(static_cast<uint8_t>(byte));
    }
    return payload;
}

void checkSame(const std::vector<SeiMessage>& a, const std::vector<SeiMessage>& b) {
    FUZZ_CHECK(a.size() == b.size());
    for (size_t i = 0; i < a.size(); ++i) {
        FUZZ_CHECK(a[i].payloadType == b[i].payloadType);
        FUZZ_CHECK(a[i].payloadSize == b[i].payloadSize);
        FUZZ_CHECK(payloadOf(a[i]) == payloadOf(b[i]));
    }
}

// The unit without some of its messages; the header when none is left.
Buffer withoutSome(Bytes unit, Codec codec, uint32_t mask) {
    const std::vector<SeiMessage> all = messagesOf(unit, codec);
    std::vector<SeiMessage> kept;
    for (size_t i = 0; i < all.size(); ++i) {
        if ((mask >> i % 32 & 1U) == 0) {
            kept.push_back(all[i]);
        }
    }
    Buffer out = {0xAA};
    size_t i = 0;
    const qv::sei::Removed removed = qv::sei::removeMessages(
        unit, codec, out, [&](const SeiMessage&) { return (mask >> i++ % 32 & 1U) != 0; });
    FUZZ_CHECK(i == all.size());
    FUZZ_CHECK(removed.messages == all.size() - kept.size());
    FUZZ_CHECK(removed.isUnitGone == (kept.empty() && !all.empty()));
    FUZZ_CHECK(out[0] == 0xAA);
    out.erase(out.begin());
    FUZZ_CHECK(removed.isUnitGone == (out.empty() && !unit.empty()));
    FUZZ_CHECK(removed.messages > 0 || std::equal(out.begin(), out.end(), unit.begin(), unit.end()));
    checkSame(messagesOf(bytesOf(out), codec), kept);
    if (removed.isUnitGone) {
        const Bytes header = unit.first(qv::nalUnitOf(unit, codec).headerBytes);
        out.assign(header.begin(), header.end());
    }
    return out;
}

void checkInserting(Bytes unit, Codec codec, uint32_t mask) {
    std::vector<SeiMessage> all = messagesOf(unit, codec);
    Buffer current = withoutSome(unit, codec, mask);
    for (size_t i = 0; i < all.size(); ++i) {
        if ((mask >> i % 32 & 1U) == 0) {
            continue;
        }
        Buffer next;
        const bool isInserted = qv::sei::insertMessage(bytesOf(current), codec, i, all[i], next);
        FUZZ_CHECK(isInserted == NewMessage(all[i]).isWhole());
        if (isInserted) {
            current = next;
        } else {
            FUZZ_CHECK(i + 1 == all.size());
            all.pop_back();
        }
    }
    checkSame(messagesOf(bytesOf(current), codec), all);
}

void checkBuilding(Bytes unit, Codec codec) {
    std::vector<SeiMessage> all = messagesOf(unit, codec);
    Buffer built;
    qv::sei::SeiUnitWriter writer(unit.first(qv::nalUnitOf(unit, codec).headerBytes), built);
    size_t count = 0;
    for (const SeiMessage& message : all) {
        count += writer.add(message) ? 1U : 0U;
    }
    all.resize(count);
    const size_t size = writer.finish();
    FUZZ_CHECK(size == built.size());
    checkSame(messagesOf(bytesOf(built), codec), all);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    qv_fuzz::FuzzInput input(bytes, size);
    const Codec codec = input.byte() % 2 == 0 ? Codec::Avc : Codec::Hevc;
    const uint32_t mask = input.word();
    const qv_fuzz::ExactBlock rest = input.rest();
    const Bytes unit = {rest.data(), static_cast<size_t>(rest.size())};
    checkInserting(unit, codec, mask);
    checkInserting(unit, codec, UINT32_MAX);
    withoutSome(unit, codec, 0);
    checkBuilding(unit, codec);
    return 0;
}
