#include "analysis/PayloadOffsets.h"

namespace qvinspect {

namespace {

// The bytes of a NAL unit one after the other, without emulation_prevention_three_byte.
class UnitBytes {
public:
    UnitBytes(const unsigned char* unit, size_t size) : unit_(unit), size_(size) { skipPrevention(); }

    size_t position() const { return position_; }

    // The next byte; 0 at the end.
    unsigned next() {
        if (position_ == size_) {
            return 0;
        }
        const unsigned byte = unit_[position_++];
        zeros_ = byte == 0 ? zeros_ + 1 : 0;
        skipPrevention();
        return byte;
    }

    void skip(size_t count) {
        for (size_t i = 0; i < count && position_ < size_; ++i) {
            next();
        }
    }

private:
    void skipPrevention() {
        if (zeros_ >= 2 && position_ < size_ && unit_[position_] == 0x03) {
            ++position_;
            zeros_ = 0;
        }
    }

    const unsigned char* unit_;
    size_t size_;
    size_t position_ = 0;
    size_t zeros_ = 0;
};

// payloadType or payloadSize of sei_message(), H.264 and H.265 7.3.2.3.1.
void skipNumber(UnitBytes& bytes) {
    while (bytes.next() == 0xFF) {
    }
}

}  // namespace

std::vector<uint64_t> payloadOffsets(const unsigned char* unit, size_t size, size_t headerSize,
                                     const std::vector<SeiMessage>& messages) {
    std::vector<uint64_t> offsets;
    offsets.reserve(messages.size());
    UnitBytes bytes(unit, size);
    bytes.skip(headerSize);
    for (const SeiMessage& message : messages) {
        skipNumber(bytes);
        skipNumber(bytes);
        offsets.push_back(bytes.position());
        bytes.skip(message.payloadSize);
    }
    return offsets;
}

}  // namespace qvinspect
