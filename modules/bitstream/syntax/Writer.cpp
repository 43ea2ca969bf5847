// The writer's bytes.
#include "bitstream/syntax/Writer.h"

#include "bitstream/syntax/EmulationPrevention.h"

namespace qv {

void Writer::append(uint32_t n, uint64_t value) {
    while (n > 0) {
        const uint32_t taken = n < 8 - pendingBits_ ? n : 8 - pendingBits_;
        n -= taken;
        pending_ = pending_ << taken | (value >> n & ((1U << taken) - 1));
        pendingBits_ += taken;
        if (pendingBits_ == 8) {
            appendByte(static_cast<uint8_t>(pending_));
            pending_ = 0;
            pendingBits_ = 0;
        }
    }
}

void Writer::appendByte(uint8_t byte) {
    const bool isHeader = out_.size() - begin_ < headerEnd_;
    if (!isHeader && zeroBytes_ >= 2 && byte <= detail::kGreatestEmulatingByte) {
        out_.push_back(detail::kEmulationPreventionThreeByte);
        zeroBytes_ = 0;
    }
    out_.push_back(byte);
    zeroBytes_ = byte == 0x00 ? zeroBytes_ + 1 : 0;
}

// Bytes without emulation prevention, as those of a header.
void Writer::appendBytes(Bytes bytes) {
    out_.insert(out_.end(), bytes.begin(), bytes.end());
    headerEnd_ += bytes.size;
}

Written Writer::finish() {
    Written written;
    written.fault = fault();
    if (written.fault) {
        out_.resize(begin_);
        return written;
    }
    if (zeroBytes_ > 0 && out_.size() - begin_ > headerEnd_) {
        out_.push_back(detail::kEmulationPreventionThreeByte);
    }
    written.size = out_.size() - begin_;
    return written;
}

}  // namespace qv
