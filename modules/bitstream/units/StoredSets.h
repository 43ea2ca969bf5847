// Parameter sets as they are kept: a copy of the unit, the record read from it, and the contents that the
// identifier had before.
#ifndef QV_BITSTREAM_UNITS_STOREDSETS_H
#define QV_BITSTREAM_UNITS_STOREDSETS_H

#include <algorithm>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "bitstream/Bytes.h"
#include "bitstream/Read.h"
#include "bitstream/units/ParameterSetEvent.h"

namespace qv::detail {

// The contents that an identifier had, by a hash of 64 bits (FNV-1a).
class ContentHistory {
public:
    static constexpr size_t kMostContents = 64;

    static uint64_t hashOf(Bytes content) noexcept {
        uint64_t hash = 0xCBF29CE484222325;
        for (const uint8_t byte : content) {
            hash = (hash ^ byte) * 0x00000100000001B3;
        }
        return hash;
    }

    // Adds a content and returns whether it was there already. A stream that keeps changing a set forgets the
    // oldest ones.
    bool add(uint64_t hash) {
        if (std::find(hashes_.begin(), hashes_.end(), hash) != hashes_.end()) {
            return true;
        }
        if (hashes_.size() == kMostContents) {
            hashes_.erase(hashes_.begin());
        }
        hashes_.push_back(hash);
        return false;
    }

private:
    std::vector<uint64_t> hashes_;
};

// The set in force of one identifier. Records borrow from the copy of the unit, which does not move.
template <class Record>
struct StoredSet {
    std::vector<uint8_t> unit;
    size_t headerBytes = 0;
    Read<Record> read;
    ContentHistory history;

    // Counts the contents from 1, so that an earlier one can be recognised.
    uint64_t serial = 0;

    Bytes bytes() const noexcept { return {unit.data(), unit.size()}; }
    Bytes content() const noexcept { return bytes().from(headerBytes); }
};

inline bool isEqual(Bytes a, Bytes b) noexcept {
    return a.size == b.size && std::equal(a.begin(), a.end(), b.begin());
}

// Trailing zero bytes are no content.
inline Bytes withoutTrailingZeros(Bytes bytes) noexcept {
    while (!bytes.empty() && bytes[bytes.size - 1] == 0x00) {
        --bytes.size;
    }
    return bytes;
}

// The content of a set that is active.
struct ActiveSet {
    bool isActive = false;
    uint32_t id = 0;
    uint64_t serial = 0;

    friend bool operator!=(const ActiveSet& a, const ActiveSet& b) {
        return a.isActive != b.isActive || a.id != b.id || a.serial != b.serial;
    }
};

// Keeps the first of the problems, in the order of their values.
inline void note(ActivationProblem& first, bool isThere, ActivationProblem problem) noexcept {
    if (isThere && (first == ActivationProblem::None || problem < first)) {
        first = problem;
    }
}

// Puts a set in force, unless the one in force is better. read(bytes) reads the record from bytes that live
// as long as the set. When an allocation fails, the set in force stays as it is.
template <class Set, class ReadRecord>
SetEvent store(std::unique_ptr<Set>& slot, Bytes unit, size_t headerBytes, const Fault& fault,
               const ReadRecord& read) {
    unit = withoutTrailingZeros(unit);
    const Bytes content = unit.from(headerBytes);
    if (slot != nullptr && isEqual(slot->content(), content)) {
        // The same bytes may be read with other sets at hand than before.
        if (!fault && !slot->read.ok()) {
            slot->read = read(slot->bytes());
            ++slot->serial;
        }
        return fault ? SetEvent::Broken : SetEvent::Repeated;
    }
    if (slot != nullptr && fault && slot->read.ok()) {
        return SetEvent::Broken;
    }
    std::unique_ptr<Set> first = slot == nullptr ? std::make_unique<Set>() : nullptr;
    Set& set = first != nullptr ? *first : *slot;
    std::vector<uint8_t> copy(unit.begin(), unit.end());
    const bool wasThere = set.history.add(ContentHistory::hashOf(content));
    set.unit.swap(copy);
    set.headerBytes = headerBytes;
    set.read = read(set.bytes());
    ++set.serial;
    SetEvent event = wasThere ? SetEvent::Returned : SetEvent::Changed;
    if (first != nullptr) {
        slot = std::move(first);
        event = SetEvent::First;
    }
    return fault ? SetEvent::Broken : event;
}

}  // namespace qv::detail

#endif
