/// \file
/// DTVCC packets and their service blocks, CTA-708 clauses 5 and 6.
#ifndef QV_BITSTREAM_SEI_DTVCCPACKETS_H
#define QV_BITSTREAM_SEI_DTVCCPACKETS_H

#include <cstddef>
#include <cstdint>

#include "bitstream/Bytes.h"
#include "bitstream/sei/A53.h"
#include "bitstream/units/ItemIterator.h"

namespace qv::sei {

/// A caption channel packet, CTA-708 clause 5.
struct DtvccPacket {
    static constexpr uint32_t kMostBytes = 128;  ///< bytes of a packet, its header included

    uint8_t bytes[kMostBytes];  ///< the packet, its header first
    uint32_t size;              ///< bytes that are there

    /// sequence_number, 0 to 3.
    uint32_t sequenceNumber() const noexcept { return bytes[0] >> 6; }

    /// packet_size_code as bytes, header included: 2 to 128.
    uint32_t announcedSize() const noexcept {
        const uint32_t packet_size_code = bytes[0] & 0x3FU;
        return packet_size_code == 0 ? kMostBytes : 2 * packet_size_code;
    }

    /// packet_data: the bytes after the header.
    Bytes data() const noexcept { return Bytes(bytes, size).from(1); }
};

/// Assembles packets from constructs in output order. Nothing is allocated.
class DtvccPackets {
public:
    /// Takes a construct. Those of CTA-608 and those that are not valid have no effect.
    ///
    /// \return true when it completes a packet(): the packet has the bytes that its packet_size_code
    /// announces
    bool take(const CcConstruct& construct) noexcept;

    /// The packet that the last construct completed.
    const DtvccPacket& packet() const noexcept { return packet_; }

    /// Packets that another one began before the end of.
    uint64_t incomplete() const noexcept { return incomplete_; }

    /// Constructs with packet data that belong to no packet.
    uint64_t orphans() const noexcept { return orphans_; }

private:
    void begin() noexcept;

    DtvccPacket packet_ = {};
    bool isOpen_ = false;
    uint64_t incomplete_ = 0;
    uint64_t orphans_ = 0;
};

/// A service block, CTA-708 clause 6.
struct ServiceBlock {
    /// service_number, 1 to 6, or extended_service_number, 7 to 63. 0 for an extended_service_number of less
    /// than 7, which CTA-708 does not allow.
    uint32_t service = 0;

    uint32_t block_size = 0;  ///< bytes of the block as coded, 1 to 31

    Bytes data;  ///< the bytes of the block, borrowed; fewer than block_size when the packet ends within it

    /// True when the packet ends within the block or its header.
    bool isCut = false;
};

/// The service blocks of a packet, up to the first null block or the end of the packet:
///
///     for (const ServiceBlock& block : ServiceBlocks(packet)) { ... }
class ServiceBlocks {
public:
    class Iterator;

    /// The blocks of \p packet, which is borrowed.
    explicit ServiceBlocks(const DtvccPacket& packet) noexcept : data_(packet.data()) {}

    /// The first block. Finds it.
    Iterator begin() const noexcept;

    /// The end: after the last block.
    static EndOfItems end() noexcept { return {}; }

private:
    Bytes data_;
};

/// An iterator over the service blocks of a packet.
class ServiceBlocks::Iterator : public ItemIterator<ServiceBlocks::Iterator, ServiceBlock> {
public:
    using ItemIterator::operator++;

    /// Goes on to the next block. Not allowed at the end.
    Iterator& operator++() noexcept;

private:
    friend class ServiceBlocks;

    explicit Iterator(Bytes data) noexcept : rest_(data) { ++*this; }

    bool takeExtendedNumber() noexcept;

    Bytes rest_;
};

inline ServiceBlocks::Iterator ServiceBlocks::begin() const noexcept {
    return Iterator(data_);
}

}  // namespace qv::sei

#endif
