// What the syntax functions of SEI payloads have in common.
#ifndef QV_BITSTREAM_SEI_PAYLOADSYNTAX_H
#define QV_BITSTREAM_SEI_PAYLOADSYNTAX_H

#include "bitstream/Codec.h"
#include "bitstream/sei/SeiContext.h"
#include "bitstream/syntax/Reader.h"
#include "bitstream/syntax/Writer.h"

namespace qv {
class Tracer;
}

namespace qv::sei {

// A structure that both codecs define, each in a clause of its own.
struct SharedStructure {
    Structure avc;
    Structure hevc;

    const Structure& of(const Context& context) const { return context.codec == Codec::Avc ? avc : hevc; }
};

constexpr SharedStructure sharedStructure(const char* name, const char* avcClause, const char* hevcClause) {
    return {{name, avcClause}, {name, hevcClause}};
}

inline constexpr SharedStructure kSeiMessage = sharedStructure("sei_message()", "7.3.2.3.1", "7.3.5");

// Bits of one value up to the next byte boundary.
template <class Syntax>
void byte_alignment(Syntax& s, const char* name, uint32_t bit) {
    while (!s.failed() && !s.byte_aligned()) {
        s.f(1, name, bit);
    }
}

// What follows the syntax of a payload within its payloadSize.
struct PayloadEnd {
    bool isPresent = false;
    CodedBits reserved_payload_extension_data;
};

// The end of sei_payload(): H.264 D.1.1, H.265 D.2.1. H.264 has no extension.
template <class Syntax>
void sei_payload_end(Syntax& s, const Context& context, PayloadEnd& end) {
    static constexpr SharedStructure kStructure = sharedStructure("sei_payload()", "D.1.1", "D.2.1");
    const Within<Syntax> within(s, kStructure.of(context));
    const bool isHevc = context.codec == Codec::Hevc;
    const bool hasMore = isHevc && s.more_rbsp_data(end.isPresent);
    if (hasMore) {
        s.payload_extension("reserved_payload_extension_data", end.reserved_payload_extension_data);
    }
    if (hasMore || !s.byte_aligned()) {
        s.f(1, isHevc ? "payload_bit_equal_to_one" : "bit_equal_to_one", 1);
        byte_alignment(s, isHevc ? "payload_bit_equal_to_zero" : "bit_equal_to_zero", 0);
    }
}

// st(v): the bytes of a string and a zero byte, at most `most` bytes before it. The zero byte is kept as
// well.
template <class Syntax, class Name>
void st(Syntax& s, const Name& name, uint32_t most, CodedBits& bits) {
    s.keep(bits, [&name, most](auto& in) {
        uint32_t byte = 1;
        for (uint32_t k = 0; byte != 0; ++k) {
            in.u(8, detail::subscripted(name, k), byte, 0, k < most ? 0xFF : 0);
        }
    });
}

// --- Messages in the payload of another one ---

// A reader keeps where they are; SeiMessages finds them.
inline void nested_messages(Reader& reader, const Context& context, NestedMessages& nested) {
    static_cast<void>(context);
    reader.payload_bytes("sei_message()", nested.bits);
}

// Traces them as well. Defined in SeiUnit.cpp.
void nested_messages(Tracer& tracer, const Context& context, NestedMessages& nested);

template <class Sink>
void nested_messages(BitOutput<Sink>& output, const Context& context, const NestedMessages& nested) {
    static_cast<void>(context);
    output.payload_bytes("sei_message()", nested.bits);
}

// --- One message among other elements, in a part of a payload that is kept ---

// A reader passes over it.
void nested_message(Reader& reader, const Context& context);

// Traces it.
void nested_message(Tracer& tracer, const Context& context);

}  // namespace qv::sei

#endif
