// Start codes of the byte stream format, ITU-T H.264 (08/2021) B.1.1 and H.265 (08/2021) B.2.1.
//
// D02: trailing_zero_8bits stay in the previous unit, except the one that makes a 4-byte start code.
#ifndef QV_DEMUXER_DETAIL_STARTCODE_H
#define QV_DEMUXER_DETAIL_STARTCODE_H

#include <cstddef>

#include "startcode/StartCodeSearch.h"

namespace qv_detail {

// Bytes of a start_code_prefix_one_3bytes.
constexpr size_t kPrefixLength = 3;

// The end of the places where a prefix may begin that has a byte after it. D35: a start code at the very end
// is not one, its bytes are data of the previous unit.
constexpr size_t prefixEnd(size_t size) {
    return size > kPrefixLength ? size - kPrefixLength : 0;
}

// Prefixes that one search found: so a search costs little for each, even where units are small.
struct PrefixList {
    static constexpr size_t kMost = 32;
    size_t places[kMost];
};

// Walks the start codes of a buffer that have a byte after them.
class StartCodeScanner {
public:
    // data may be null only when size is 0. The scanner fills the list, which is separate so that the rest of
    // the scanner stays in registers.
    StartCodeScanner(const unsigned char* data, size_t size, PrefixList& list)
        : data_(data), prefixEnd_(prefixEnd(size)), places_(list.places) {}

    // Moves to the next start code. False when there is none left.
    bool next() { return nextBelow(prefixEnd_); }

    // Moves to the next start code if its prefix begins below limit; otherwise the next search continues from
    // limit. A limit is never below the previous one.
    bool nextBelow(size_t limit) {
        if (passed_ == listed_ && !list(limit < prefixEnd_ ? limit : prefixEnd_)) {
            return false;
        }
        const size_t prefix = places_[passed_++];
        // A zero byte before it makes it a 4-byte start code, unless that byte is the one after the previous
        // start code.
        const bool hasZeroByte = prefix > firstPlace_ && data_[prefix - 1] == 0x00;
        codeOffset_ = hasZeroByte ? prefix - 1 : prefix;
        unitOffset_ = prefix + kPrefixLength;
        firstPlace_ = unitOffset_ + 1;
        return true;
    }

    // After a search without result: true when no further start code can be found.
    bool atEnd() const { return searchFrom_ >= prefixEnd_; }

    // First byte of the start code found last, zero_byte included.
    int codeOffset() const { return static_cast<int>(codeOffset_); }

    // First byte after the start code found last; below the size.
    int unitOffset() const { return static_cast<int>(unitOffset_); }

private:
    // Lists prefixes that begin below end. False when there is none.
    bool list(size_t end) {
        if (searchFrom_ >= end) {
            return false;
        }
        listed_ = listPrefixes(data_, searchFrom_, end, places_, PrefixList::kMost);
        passed_ = 0;
        if (listed_ == 0) {
            searchFrom_ = end;
            return false;
        }
        // A place close to end excludes some after it.
        const size_t behindLast = places_[listed_ - 1] + kPrefixLength + 1;
        searchFrom_ = listed_ == PrefixList::kMost || behindLast > end ? behindLast : end;
        return true;
    }

    const unsigned char* data_;
    size_t prefixEnd_;  // a prefix that begins here has no byte after it
    size_t* places_;
    size_t searchFrom_ = 0;  // every start code that begins before it was found
    size_t firstPlace_ = 0;  // the next start code begins here at the earliest
    size_t codeOffset_ = 0;
    size_t unitOffset_ = 0;
    size_t listed_ = 0;
    size_t passed_ = 0;  // how many of the listed ones were passed
};

}  // namespace qv_detail

#endif
