/// \file
/// A set of faults, each a bit of an enumeration.
#ifndef QV_BITSTREAM_UNITS_FAULTSET_H
#define QV_BITSTREAM_UNITS_FAULTSET_H

#include <cstdint>

namespace qv {

/// The faults of one item. Each value of \p Kind, an enumeration of 32 bits, is a bit of its own.
template <class Kind>
class FaultSet {
public:
    /// True when \p fault is one of them.
    constexpr bool has(Kind fault) const { return (bits_ & static_cast<uint32_t>(fault)) != 0; }

    /// Adds \p fault.
    constexpr void add(Kind fault) { bits_ |= static_cast<uint32_t>(fault); }

    /// True when there is a fault.
    explicit constexpr operator bool() const { return bits_ != 0; }

    /// True when both have the same faults.
    friend constexpr bool operator==(FaultSet a, FaultSet b) { return a.bits_ == b.bits_; }

    /// True when they differ.
    friend constexpr bool operator!=(FaultSet a, FaultSet b) { return a.bits_ != b.bits_; }

private:
    uint32_t bits_ = 0;
};

}  // namespace qv

#endif
