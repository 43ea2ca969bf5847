// What the syntax functions of T.35 bodies have in common.
#ifndef QV_BITSTREAM_SEI_T35BODYSYNTAX_H
#define QV_BITSTREAM_SEI_T35BODYSYNTAX_H

#include "bitstream/sei/PayloadSyntax.h"
#include "bitstream/sei/T35.h"
#include "bitstream/syntax/Tracer.h"

namespace qv::sei {

// --- What follows the last element of a body: bits up to the byte boundary, and whole bytes ---

inline void t35_padding(Reader& reader, CodedBits& padding) {
    reader.payload_bytes("padding", padding);
}

inline void t35_padding(Tracer& tracer, CodedBits& padding) {
    tracer.keep(padding, [](Tracer& in) {
        while (in.more_rbsp_data()) {
            uint32_t bits = 0;
            in.u(static_cast<uint32_t>(8 - in.position() % 8), "padding", bits);
        }
    });
}

template <class Sink>
void t35_padding(BitOutput<Sink>& output, const CodedBits& padding) {
    output.payload_bytes("padding", padding);
    byte_alignment(output, "padding", 0);
}

// A message whose owner defines its body. For each record there is
//
//     template <class Syntax>
//     void t35_body(Syntax& s, Record& body);
//
// which begins with itu_t_t35_terminal_provider_code, and the record has a member
//
//     static constexpr T35Owner kOwner;
template <class Syntax, class Body>
void t35_message(Syntax& s, const Context& context, Body& body) {
    static constexpr SharedStructure kStructure =
        sharedStructure("user_data_registered_itu_t_t35()", "D.1.6", "D.2.6");
    const Within<Syntax> within(s, kStructure.of(context));
    s.f(8, "itu_t_t35_country_code", t35OwnerNameOf(Body::kOwner)->code.itu_t_t35_country_code);
    t35_body(s, body);
}

// The provider code that a body begins with.
template <T35Owner kOwner, class Syntax>
void t35_provider(Syntax& s) {
    constexpr uint32_t kProvider = *t35OwnerNameOf(kOwner)->code.itu_t_t35_terminal_provider_code;
    s.f(16, "itu_t_t35_terminal_provider_code", kProvider);
}

// The codes and the identifier that a body begins with, each of one value.
template <T35Owner kOwner, class Syntax>
void t35_codes(Syntax& s) {
    constexpr T35OwnerName kRow = *t35OwnerNameOf(kOwner);
    t35_provider<kOwner>(s);
    s.f(kRow.identifierBits, "itu_t_t35_terminal_provider_oriented_code", kRow.identifier);
}

}  // namespace qv::sei

#endif
