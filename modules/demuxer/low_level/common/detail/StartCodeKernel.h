// The walk over start_code_prefix_one_3bytes, by vectors and by bytes, and the searches that are made of it.
// Everything has internal linkage and uses nothing inline from outside: each source that includes this is
// compiled for its own instruction set.
#ifndef QV_DEMUXER_DETAIL_STARTCODEKERNEL_H
#define QV_DEMUXER_DETAIL_STARTCODEKERNEL_H

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "detail/StartCodeSearch.h"

namespace qv_detail {
// NOLINTNEXTLINE(cert-dcl59-cpp): see above
namespace {

// The byte behind a prefix never begins another one.
constexpr size_t kPrefixAndHeader = 4;

// A walk hands each place where a prefix begins to visit, which tells whether the walk is to end there.
// walk(from, end) goes through [from, end), reads up to end + 2 and returns true when visit ended it.

// Byte by byte, by the third byte of each place: anything above 01 there rules out three places at once.
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

// Vector: kWidth; mayHold(aligned), true when the eight vectors there hold such a pair as below, and at times
// when they do not; matches(p), a mask of those of the kWidth places at p where a prefix begins, of which
// placeOf tells the first one. It reads kWidth + 2 bytes.
//
// A prefix 00 00 01 always puts the byte pair 00 00 or 00 01 on an even 16-bit lane, wherever it begins. So
// one look at eight vectors tells that they hold no prefix; only where such a pair was seen is each place
// compared. Two bytes of different vectors may look like a pair: four vectors are folded byte by byte ahead
// of the lanes, which is fewer instructions and seldom wrong, and eight would be wrong too often.
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
        // Access units begin with several small units: those are found without a look at whole blocks.
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

    // Leaves out the places before place.
    void passUpTo(size_t place) { next_ = next_ < place ? place : next_; }

    // A prefix that begins on the last byte of a block shows in the block behind it.
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
    size_t next_ = 0;  // no place before it is visited any more
    Visit visit_;
};

// In place of a vector: none.
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
