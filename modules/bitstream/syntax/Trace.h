/// \file
/// What a trace reports: every syntax element of a unit, in bitstream order.
#ifndef QV_BITSTREAM_SYNTAX_TRACE_H
#define QV_BITSTREAM_SYNTAX_TRACE_H

#include <cstddef>
#include <cstdint>

#include "bitstream/syntax/Element.h"

namespace qv {

/// How an element is coded (H.264 7.2, H.265 7.2). Bytes are a run of whole bytes.
enum class Descriptor : uint8_t {
    u,      ///< u(n), an unsigned number of n bits
    i,      ///< i(n), a signed number of n bits
    f,      ///< f(n), n bits with a fixed value
    ue,     ///< ue(v), an unsigned Exp-Golomb code
    se,     ///< se(v), a signed Exp-Golomb code
    bytes,  ///< whole bytes
};

/// One syntax element as it was read.
struct TracedElement {
    Element element;                        ///< its name
    Descriptor descriptor = Descriptor::u;  ///< how it is coded

    /// The first bit, counted in the unit without emulation prevention bytes, the NAL unit header included,
    /// from 0.
    uint64_t firstBit = 0;

    /// Bits, 0 for an element whose width comes to nothing.
    uint32_t width = 0;

    /// The value; bits of u(n) and f(n) as an unsigned number; of bytes their number.
    int64_t value = 0;

    /// The bits as coded, the last one in the least significant place; 0 for bytes.
    uint64_t bits = 0;

    /// The byte of the coded unit, emulation prevention bytes included, that holds the first bit.
    size_t codedByte = 0;
};

/// Receives the elements of a trace.
class TraceVisitor {
public:
    /// A visitor without state.
    TraceVisitor() = default;

    /// Visitors may be copied.
    TraceVisitor(const TraceVisitor&) = default;

    /// Visitors may be assigned.
    TraceVisitor& operator=(const TraceVisitor&) = default;

    /// Visitors are owned by the caller.
    virtual ~TraceVisitor() = default;

    /// A syntax structure begins. \p structure lives as long as the program.
    virtual void begin(const Structure& structure) { static_cast<void>(structure); }

    /// An element was read without a fault.
    virtual void element(const TracedElement& element) = 0;

    /// The innermost structure ends.
    virtual void end() {}
};

}  // namespace qv

#endif
