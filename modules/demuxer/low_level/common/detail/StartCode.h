// Start codes of the byte stream format, ITU-T H.264 (08/2021) and H.265 (08/2021) B.1.1.
#ifndef QV_DEMUXER_DETAIL_STARTCODE_H
#define QV_DEMUXER_DETAIL_STARTCODE_H

#include <cstddef>

namespace qv_detail {

// Walks the start codes of a buffer that have a byte behind them.
class StartCodeScanner {
public:
    // data may be null only when size is 0.
    StartCodeScanner(const unsigned char* data, size_t size) : data_(data), size_(size) {}

    // Moves on to the next start code. False when there is none left.
    bool next() {
        const size_t prefix = findPrefix(searchFrom_);
        if (prefix == size_) {
            return false;
        }
        // A zero byte ahead makes it a 4-byte start code, unless that byte was ruled out as the byte behind
        // the start code before.
        const bool hasZeroByte = prefix > searchFrom_ && data_[prefix - 1] == 0x00;
        codeOffset_ = hasZeroByte ? prefix - 1 : prefix;
        unitOffset_ = prefix + kPrefixLength;
        searchFrom_ = unitOffset_ + 1;
        return true;
    }

    // First byte of the start code found last, zero_byte included.
    int codeOffset() const { return static_cast<int>(codeOffset_); }

    // First byte behind the start code found last; below the size.
    int unitOffset() const { return static_cast<int>(unitOffset_); }

private:
    static constexpr size_t kPrefixLength = 3;

    // The first start_code_prefix_one_3bytes at or behind from with a byte after it; size_ when there is
    // none.
    size_t findPrefix(size_t from) const {
        // The search looks at the third byte: anything above 01 there rules out three places at once.
        for (size_t third = from + 2; third + 1 < size_;) {
            if (data_[third] > 0x01) {
                third += 3;
            } else if (data_[third] == 0x00) {
                third += 1;
            } else if (data_[third - 1] == 0x00 && data_[third - 2] == 0x00) {
                return third - 2;
            } else {
                third += 3;
            }
        }
        return size_;
    }

    const unsigned char* data_;
    size_t size_;
    size_t searchFrom_ = 0;
    size_t codeOffset_ = 0;
    size_t unitOffset_ = 0;
};

}  // namespace qv_detail

#endif
