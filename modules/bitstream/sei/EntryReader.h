/// \file
/// Reads the lists of SEI payloads that a record keeps as coded bits.
#ifndef QV_BITSTREAM_SEI_ENTRYREADER_H
#define QV_BITSTREAM_SEI_ENTRYREADER_H

#include <cstdint>

#include "bitstream/syntax/Reader.h"

namespace qv::sei {

/// Reads the entries of a list in order:
///
///     ScalabilityLayers layers(info);
///     ScalabilityLayer layer;
///     while (layers.next(layer)) { ... }
///
/// Nothing is allocated.
template <class Record, class Entry>
class EntryReader {
public:
    /// \param record  read without a fault, borrowed, as is the unit that it was read from. The list of a
    ///                record with a fault may be empty.
    explicit EntryReader(const Record& record) noexcept;

    explicit EntryReader(Record&& record) = delete;  ///< not for a temporary: the record is borrowed

    /// Stores the next entry. Elements that are not present are 0; elements of arrays beyond their counts are
    /// not set. False after the last entry.
    bool next(Entry& entry) noexcept;

private:
    const Record& record_;
    Reader reader_;
    uint32_t index_ = 0;
};

}  // namespace qv::sei

#endif
