/// \file
/// The entries of a list that a payload keeps as coded bits.
#ifndef QV_BITSTREAM_SEI_CODEDENTRIES_H
#define QV_BITSTREAM_SEI_CODEDENTRIES_H

#include <cstdint>

#include "bitstream/syntax/CodedBits.h"
#include "bitstream/syntax/Reader.h"
#include "bitstream/units/ItemIterator.h"

namespace qv::sei {

/// The entries of a list in sequence, each read when it is asked for:
///
///     for (const PackedRegion& region : packedRegionsOf(packing)) { ... }
///
/// The record that has the list, and the unit that its bits are in, are borrowed. Of a list that is cut off,
/// as after a fault, the entries are found that are whole. Nothing is allocated.
template <class Record, class Entry>
class CodedEntries {
public:
    /// Reads the entry with a number, counted from 0. It is zero before.
    using ReadEntry = void (*)(Reader& reader, const Record& record, uint32_t number, Entry& entry);

    class Iterator;

    /// The first \p count entries of \p bits, which \p record keeps.
    CodedEntries(const Record& record, const CodedBits& bits, uint64_t count, ReadEntry readEntry) noexcept
        : record_(&record), bits_(bits), count_(count), readEntry_(readEntry) {}

    /// The first entry. Reads it.
    Iterator begin() const noexcept { return Iterator(*this); }

    /// The end: after the last entry.
    static EndOfItems end() noexcept { return {}; }

private:
    const Record* record_;
    CodedBits bits_;
    uint64_t count_;
    ReadEntry readEntry_;
};

/// An iterator over the entries of a list.
template <class Record, class Entry>
class CodedEntries<Record, Entry>::Iterator
    : public ItemIterator<typename CodedEntries<Record, Entry>::Iterator, Entry> {
public:
    using ItemIterator<Iterator, Entry>::operator++;

    /// Goes on to the next entry. Not allowed at the end.
    Iterator& operator++() noexcept {
        this->isAtEnd_ = number_ == count_;
        if (!this->isAtEnd_) {
            this->item_ = Entry();
            readEntry_(reader_, *record_, static_cast<uint32_t>(number_++), this->item_);
            this->isAtEnd_ = reader_.failed();
        }
        return *this;
    }

private:
    friend class CodedEntries;

    explicit Iterator(const CodedEntries& entries) noexcept
        : record_(entries.record_),
          readEntry_(entries.readEntry_),
          count_(entries.count_),
          reader_(entries.bits_) {
        ++*this;
    }

    const Record* record_;
    ReadEntry readEntry_;
    uint64_t number_ = 0;
    uint64_t count_;
    Reader reader_;
};

}  // namespace qv::sei

#endif
