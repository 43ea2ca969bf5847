// The walk over start_code_prefix_one_3bytes, by vectors and by bytes, and the searches that use it.
// Everything has internal linkage and uses no inline function from elsewhere: each source that includes this
// file is compiled for its own instruction set.
#ifndef QV_STARTCODE_STARTCODEKERNEL_H
#define QV_STARTCODE_STARTCODEKERNEL_H

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "startcode/StartCodeSearch.h"

namespace qv_detail {
// NOLINTNEXTLINE(cert-dcl59-cpp): see above
namespace {

// The byte after a prefix never begins another one (D36).
constexpr size_t kPrefixAndHeader = 4;

// A walk calls visit with each place where a prefix begins; visit returns true to end the walk. walk(from,
// end) covers [from, end), reads up to end + 2 and returns true when visit ended it.

// Byte by byte, by the third byte of each place: a value above 01 excludes three places at once.
template <class Visit>
class ByteWalk {
public:
    ByteWalk(const unsigned char* data, Visit visit) : data_(data), visit_(visit) {}

    bool walk(size_t from, size_t end) {
        for (size_t place = from; place < end;) {
            const unsigned char third = data_[place + 2];
            if (third == 0x01 && data_[place] == 0x00 && data_[place + 1] == 0x00) {
                if (visit_(place)) {
                    return true;
                }
                place += kPrefixAndHeader;
            } else {
                place += third == 0x00 ? 1 : 3;
            }
        }
        return false;
    }

private:
    const unsigned char* data_;
    Visit visit_;
};

// A Vector has kWidth; mayHold(aligned), true when the eight vectors at aligned hold a pair as described
// below, and sometimes when they do not; matches(p), a mask of the kWidth places at p where a prefix begins;
// and placeOf(mask), the first of these places. matches() reads kWidth + 2 bytes.
//
// A prefix 00 00 01 always has the byte pair 00 00 or 00 01 in an even 16-bit lane, wherever it begins. One
// test of eight vectors shows that they hold no such pair and so no prefix; otherwise each place is compared.
// Four vectors are folded byte by byte before the lanes are tested. Bytes of different vectors may then look
// like a pair: that is rare with four vectors, for fewer instructions, and too frequent with eight.
template <class Vector, class Visit>
class VectorWalk {
public:
    VectorWalk(const unsigned char* data, Visit visit) : data_(data), visit_(visit) {}

    bool walk(size_t from, size_t end) {
        if (end - from < kWidth) {
            return ByteWalk<Visit>(data_, visit_).walk(from, end);
        }
        next_ = from;
        size_t at = from;
        // Access units begin with several small units: these are found without testing whole blocks.
        for (; at - from < kHead && end - at >= kWidth; at += kWidth) {
            if (visitPlaces(at)) {
                return true;
            }
        }
        if (at - from >= kHead && end - at >= kBlock) {
            passUpTo(at);
            at -= reinterpret_cast<uintptr_t>(data_ + at) & (kWidth - 1);
            for (; end - at >= kBlock; at += kBlock) {
                if (Vector::mayHold(data_ + at) && visitBlock(at)) {
                    return true;
                }
            }
            --at;
        }
        for (; end - at >= kWidth; at += kWidth) {
            if (visitPlaces(at)) {
                return true;
            }
        }
        passUpTo(at);
        return visitPlaces(end - kWidth);
    }

private:
    static constexpr size_t kWidth = Vector::kWidth;
    static constexpr size_t kBlock = 8 * kWidth;
    static constexpr size_t kHead = 4 * kWidth;

    // Excludes the places before place.
    void passUpTo(size_t place) { next_ = next_ < place ? place : next_; }

    // A prefix that begins on the last byte of a block is found with the next block.
    bool visitBlock(size_t block) {
        for (size_t place = block - 1; place < block - 1 + kBlock; place += kWidth) {
            if (visitPlaces(place)) {
                return true;
            }
        }
        return false;
    }

    bool visitPlaces(size_t places) {
        for (auto matches = Vector::matches(data_ + places); matches != 0; matches &= matches - 1) {
            const size_t place = places + Vector::placeOf(matches);
            if (place >= next_) {
                next_ = place + kPrefixAndHeader;
                if (visit_(place)) {
                    return true;
                }
            }
        }
        return false;
    }

    const unsigned char* data_;
    size_t next_ = 0;  // places before it are not visited
    Visit visit_;
};

// Used instead of a Vector: no vectors.
struct Bytes {};

template <class Vector, class Visit>
bool walkPrefixes(const unsigned char* data, size_t from, size_t end, Visit visit) {
    if constexpr (std::is_same<Vector, Bytes>::value) {
        return ByteWalk<Visit>(data, visit).walk(from, end);
    } else {
        return VectorWalk<Vector, Visit>(data, visit).walk(from, end);
    }
}

// The searches of StartCodeSearch.h.

template <class Vector>
bool holdsUnitOf(const unsigned char* data, size_t end, const UnitTypes& types) {
    const UnitTypes wanted = types;
    return walkPrefixes<Vector>(data, 0, end, [=](size_t place) {
        return (wanted.set >> (data[place + 3] >> wanted.shift & wanted.mask) & 1) != 0;
    });
}

template <class Vector>
size_t listPrefixesOf(const unsigned char* data, size_t from, size_t end, size_t* places, size_t most) {
    size_t count = 0;
    walkPrefixes<Vector>(data, from, end, [=, &count](size_t place) {
        places[count] = place;
        return ++count == most;
    });
    return count;
}

}  // namespace
}  // namespace qv_detail

#endif
