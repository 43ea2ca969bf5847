/// \file
/// The caption services that a stream holds.
#ifndef QV_BITSTREAM_SEI_CAPTIONSERVICES_H
#define QV_BITSTREAM_SEI_CAPTIONSERVICES_H

#include <cstdint>

#include "bitstream/sei/Captions.h"
#include "bitstream/sei/DtvccPackets.h"

namespace qv::sei {

/// A data channel of CTA-608.
enum class CaptionChannel : uint8_t {
    CC1,  ///< captions, field 1, data channel 1
    CC2,  ///< captions, field 1, data channel 2
    CC3,  ///< captions, field 2, data channel 1
    CC4,  ///< captions, field 2, data channel 2
    T1,   ///< text, field 1, data channel 1
    T2,   ///< text, field 1, data channel 2
    T3,   ///< text, field 2, data channel 1
    T4,   ///< text, field 2, data channel 2
};

/// The name of a channel: "CC1" to "CC4", "T1" to "T4"; empty for other values.
const char* nameOf(CaptionChannel channel) noexcept;

/// What the caption constructs of a stream hold.
struct CaptionServices {
    uint64_t constructs = 0;  ///< all of them
    uint64_t valid[4] = {};   ///< those with cc_valid, by cc_type
    uint64_t pairs[2] = {};   ///< valid pairs of field 1 and 2 that are not padding (two zeros with parity)
    uint64_t parityFaults[2] = {};  ///< valid pairs of field 1 and 2 with a byte of even parity

    /// Channels that a control code begins captions or text in: bit n is that of CaptionChannel n. Captions
    /// begin with RCL, RU2, RU3, RU4, RDC and EOC, text with TR and RTD (CTA-608). Other control codes and
    /// characters do not tell which of the two they belong to.
    uint32_t channels = 0;

    bool hasXds = false;  ///< field 2 has the start of an XDS packet (CTA-608)

    /// Services that a complete DTVCC packet has a service block of: bit n is that of service n, 1 to 63.
    uint64_t services = 0;

    uint64_t packets = 0;            ///< complete DTVCC packets
    uint64_t incompletePackets = 0;  ///< packets that another one began before the end of
    uint64_t orphans = 0;            ///< constructs with packet data that belong to no packet
    uint64_t sequenceJumps = 0;      ///< packets whose sequence_number is not that of the one before plus 1
    uint64_t blockFaults = 0;  ///< service blocks that their packet cuts, or that have no allowed number

    /// True when the stream has captions: constructs with cc_valid, padding included. Constructs without it,
    /// and those with process_cc_data_flag 0, are none.
    bool hasCaptions() const noexcept { return (valid[0] | valid[1] | valid[2] | valid[3]) != 0; }

    /// True when a type of construct is there with cc_valid.
    bool has(CcType type) const noexcept { return valid[static_cast<uint8_t>(type) & 3U] != 0; }

    /// True when captions or text begin in a channel of CTA-608.
    bool has(CaptionChannel channel) const noexcept {
        return (channels >> (static_cast<uint8_t>(channel) & 31U) & 1U) != 0;
    }

    /// True when a service of CTA-708, 1 to 63, has service blocks. False for other numbers.
    bool hasService(uint32_t service) const noexcept {
        return service < 64 && (services >> service & 1U) != 0;
    }
};

/// Finds out which services a stream holds. Nothing is allocated.
class CaptionServiceFinder {
public:
    /// Takes the constructs of the next picture in output order.
    void take(const CaptionedPicture& picture) noexcept;

    /// What was found so far.
    const CaptionServices& services() const noexcept { return found_; }

private:
    void takePair(uint32_t field, const CcConstruct& construct) noexcept;
    void takePacket(const DtvccPacket& packet) noexcept;

    CaptionServices found_;
    DtvccPackets packets_;
    uint32_t lastSequenceNumber_ = 0;
};

}  // namespace qv::sei

#endif
