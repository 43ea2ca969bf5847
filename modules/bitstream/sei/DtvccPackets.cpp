// DTVCC packets and their service blocks.
#include "bitstream/sei/DtvccPackets.h"

namespace qv::sei {

namespace {

constexpr uint32_t kLeastExtendedService = 7;

}  // namespace

bool DtvccPackets::take(const CcConstruct& construct) noexcept {
    const CcType type = construct.type();
    if (!construct.cc_valid || (type != CcType::DtvccStart && type != CcType::DtvccData)) {
        return false;
    }
    if (type == CcType::DtvccStart) {
        begin();
    } else if (!isOpen_) {
        ++orphans_;
        return false;
    }
    // A packet has an even number of bytes, 128 at most.
    packet_.bytes[packet_.size] = construct.cc_data_1;
    packet_.bytes[packet_.size + 1] = construct.cc_data_2;
    packet_.size += 2;
    isOpen_ = packet_.size < packet_.announcedSize();
    return !isOpen_;
}

void DtvccPackets::begin() noexcept {
    incomplete_ += isOpen_ ? 1U : 0U;
    packet_.size = 0;
}

ServiceBlocks::Iterator& ServiceBlocks::Iterator::operator++() noexcept {
    item_ = {};
    if (rest_.empty()) {
        isAtEnd_ = true;
        return *this;
    }
    item_.service = rest_[0] >> 5;
    item_.block_size = rest_[0] & 0x1FU;
    rest_ = rest_.from(1);
    // A null block: what follows it is padding.
    if (item_.service == 0 || item_.block_size == 0) {
        isAtEnd_ = true;
        return *this;
    }
    if (item_.service == kLeastExtendedService && !takeExtendedNumber()) {
        item_.isCut = true;
        return *this;
    }
    item_.data = rest_.first(item_.block_size);
    item_.isCut = item_.data.size < item_.block_size;
    rest_ = rest_.from(item_.block_size);
    return *this;
}

bool ServiceBlocks::Iterator::takeExtendedNumber() noexcept {
    item_.service = 0;
    if (rest_.empty()) {
        return false;
    }
    const uint32_t extended_service_number = rest_[0] & 0x3FU;
    rest_ = rest_.from(1);
    if (extended_service_number >= kLeastExtendedService) {
        item_.service = extended_service_number;
    }
    return true;
}

}  // namespace qv::sei
