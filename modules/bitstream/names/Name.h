/// \file
/// Names of coded values.
#ifndef QV_BITSTREAM_NAMES_NAME_H
#define QV_BITSTREAM_NAMES_NAME_H

#include <cstddef>
#include <cstdint>

namespace qv {

/// A value, what the standards call it, and the clause or table that says so. Both texts are string literals.
struct Name {
    uint32_t number;     ///< the value
    const char* name;    ///< what it is called
    const char* clause;  ///< where it is defined
};

/// The name of \p number in a table that is ordered by number; \p otherwise with that number when the table
/// does not have it.
template <size_t N>
constexpr Name nameOf(const Name (&table)[N], uint32_t number, const char* otherwise) {
    for (const Name& entry : table) {
        if (entry.number == number) {
            return entry;
        }
    }
    return {number, otherwise, table[0].clause};
}

}  // namespace qv

#endif
