// The caption services that a stream holds.
#include "bitstream/sei/CaptionServices.h"

#include <iterator>

namespace qv::sei {

namespace {

bool hasOddParity(uint32_t byte) noexcept {
    byte ^= byte >> 4;
    byte ^= byte >> 2;
    byte ^= byte >> 1;
    return (byte & 1) != 0;
}

enum class Begins { Nothing, Captions, Text };

// What the second byte of a miscellaneous control code begins (CTA-608).
Begins meaningOf(uint32_t command) noexcept {
    switch (command) {
        case 0x20:  // RCL, resume caption loading
        case 0x25:  // RU2, roll-up captions with 2 rows
        case 0x26:  // RU3
        case 0x27:  // RU4
        case 0x29:  // RDC, resume direct captioning
        case 0x2F:  // EOC, end of caption
            return Begins::Captions;
        case 0x2A:  // TR, text restart
        case 0x2B:  // RTD, resume text display
            return Begins::Text;
        default:
            return Begins::Nothing;
    }
}

// The first byte of a miscellaneous control code: 14 in field 1 and 15 in field 2, plus 8 in data channel 2.
// Some encoders write 14 in field 2, where it has no other meaning: the field is that of the construct.
bool isMiscellaneous(uint32_t first) noexcept {
    return (first & 0x76U) == 0x14;
}

// The class and type of an XDS packet begin with a byte of 01 to 0E in field 2; 0F ends it.
bool isXdsStart(uint32_t field, uint32_t first) noexcept {
    return field == 1 && first >= 0x01 && first <= 0x0E;
}

// The channels of a field: bit 0 is that of CC1, or of CC3.
uint32_t channelOf(uint32_t first, uint32_t second) noexcept {
    const uint32_t dataChannel = first >> 3 & 1;
    switch (meaningOf(second)) {
        case Begins::Captions:
            return 1U << dataChannel;
        case Begins::Text:
            return 1U << (4 + dataChannel);
        default:
            return 0;
    }
}

}  // namespace

const char* nameOf(CaptionChannel channel) noexcept {
    static constexpr const char* kNames[] = {"CC1", "CC2", "CC3", "CC4", "T1", "T2", "T3", "T4"};
    const auto index = static_cast<uint8_t>(channel);
    return index < std::size(kNames) ? kNames[index] : "";
}

void CaptionServiceFinder::take(const CaptionedPicture& picture) noexcept {
    found_.constructs += picture.count;
    for (const CcConstruct& construct : picture) {
        if (!construct.cc_valid) {
            continue;
        }
        ++found_.valid[construct.cc_type & 3U];
        if (construct.type() == CcType::Field1) {
            takePair(0, construct);
        } else if (construct.type() == CcType::Field2) {
            takePair(1, construct);
        } else if (packets_.take(construct)) {
            takePacket(packets_.packet());
        }
    }
    found_.incompletePackets = packets_.incomplete();
    found_.orphans = packets_.orphans();
}

void CaptionServiceFinder::takePair(uint32_t field, const CcConstruct& construct) noexcept {
    const uint32_t first = construct.cc_data_1 & 0x7FU;
    const uint32_t second = construct.cc_data_2 & 0x7FU;
    if ((first | second) != 0) {
        ++found_.pairs[field];
    }
    if (!hasOddParity(construct.cc_data_1) || !hasOddParity(construct.cc_data_2)) {
        ++found_.parityFaults[field];
        return;
    }
    if (isMiscellaneous(first)) {
        found_.channels |= channelOf(first, second) << (2 * field);
    }
    found_.hasXds = found_.hasXds || isXdsStart(field, first);
}

void CaptionServiceFinder::takePacket(const DtvccPacket& packet) noexcept {
    if (found_.packets > 0 && packet.sequenceNumber() != (lastSequenceNumber_ + 1) % 4) {
        ++found_.sequenceJumps;
    }
    lastSequenceNumber_ = packet.sequenceNumber();
    ++found_.packets;
    for (const ServiceBlock& block : ServiceBlocks(packet)) {
        if (block.isCut || block.service == 0) {
            ++found_.blockFaults;
        }
        if (block.service != 0) {
            found_.services |= uint64_t{1} << block.service;
        }
    }
}

}  // namespace qv::sei
