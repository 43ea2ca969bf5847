// The functions of EntryReader.
#ifndef QV_BITSTREAM_SEI_ENTRYTEMPLATES_H
#define QV_BITSTREAM_SEI_ENTRYTEMPLATES_H

#include "bitstream/sei/EntryReader.h"

namespace qv::sei {

// Where a list is and the syntax function of an entry; see QV_SEI_ENTRIES.
template <class Record, class Entry>
struct EntryTable;

template <class Record, class Entry>
EntryReader<Record, Entry>::EntryReader(const Record& record) noexcept
    : record_(record), reader_(EntryTable<Record, Entry>::bitsOf(record)) {}

// Every entry has at least one bit, and the bits end with the last one.
template <class Record, class Entry>
bool EntryReader<Record, Entry>::next(Entry& entry) noexcept {
    if (!reader_.more_rbsp_data()) {
        return false;
    }
    EntryTable<Record, Entry>::read(reader_, record_, index_++, entry);
    return true;
}

}  // namespace qv::sei

// Makes the reader of a list, in qv::sei: QV_SEI_ENTRIES(Record, its member, Entry, syntax function of one).
// NOLINTBEGIN(cppcoreguidelines-macro-usage,bugprone-macro-parentheses): a list of declarations
#define QV_SEI_ENTRIES(Record, member, Entry, structure)                                           \
    template <>                                                                                    \
    struct EntryTable<Record, Entry> {                                                             \
        static const CodedBits& bitsOf(const Record& record) noexcept { return record.member; }    \
        static void read(Reader& s, const Record& record, uint32_t index, Entry& entry) noexcept { \
            structure(s, record, index, entry);                                                    \
        }                                                                                          \
    };                                                                                             \
    template class EntryReader<Record, Entry>
// NOLINTEND(cppcoreguidelines-macro-usage,bugprone-macro-parentheses)

#endif
