// Start codes of the byte stream format, ITU-T H.264 (08/2021) and H.265 (08/2021) B.1.1.
//
// D02: trailing_zero_8bits stay with the unit before, all but the one that makes a 4-byte start code.
#ifndef QV_DEMUXER_DETAIL_STARTCODE_H
#define QV_DEMUXER_DETAIL_STARTCODE_H

#include <cstddef>

#include "detail/StartCodeSearch.h"

namespace qv_detail {

// Walks the start codes of a buffer that have a byte behind them.
class StartCodeScanner {
public:
    // data may be null only when size is 0.
    StartCodeScanner(const unsigned char* data, size_t size)
        : data_(data), prefixEnd_(size > kPrefixLength ? size - kPrefixLength : 0) {}

    // Moves on to the next start code. False when there is none left.
    bool next() { return nextBelow(prefixEnd_); }

    // Moves on to the next start code if its prefix begins below limit; otherwise the next search goes on
    // from limit.
    bool nextBelow(size_t limit) {
        const size_t end = limit < prefixEnd_ ? limit : prefixEnd_;
        if (searchFrom_ >= end) {
            return false;
        }
        const size_t prefix = findPrefix(data_, searchFrom_, end);
        if (prefix == end) {
            searchFrom_ = end;
            return false;
        }
        // A zero byte ahead makes it a 4-byte start code, unless that byte was ruled out as the byte behind
        // the start code before.
        const bool hasZeroByte = prefix > firstPlace_ && data_[prefix - 1] == 0x00;
        codeOffset_ = hasZeroByte ? prefix - 1 : prefix;
        unitOffset_ = prefix + kPrefixLength;
        searchFrom_ = firstPlace_ = unitOffset_ + 1;
        return true;
    }

    // True when no further start code can be found.
    bool atEnd() const { return searchFrom_ >= prefixEnd_; }

    // First byte of the start code found last, zero_byte included.
    int codeOffset() const { return static_cast<int>(codeOffset_); }

    // First byte behind the start code found last; below the size.
    int unitOffset() const { return static_cast<int>(unitOffset_); }

private:
    static constexpr size_t kPrefixLength = 3;

    const unsigned char* data_;
    size_t prefixEnd_;       // a prefix that begins here has no byte behind it any more
    size_t searchFrom_ = 0;  // nothing begins before it that was not found
    size_t firstPlace_ = 0;  // where the next start code may begin at the earliest
    size_t codeOffset_ = 0;
    size_t unitOffset_ = 0;
};

}  // namespace qv_detail

#endif
