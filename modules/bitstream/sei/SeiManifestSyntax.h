// What SEI messages a stream has, as syntax functions.
#ifndef QV_BITSTREAM_SEI_SEIMANIFESTSYNTAX_H
#define QV_BITSTREAM_SEI_SEIMANIFESTSYNTAX_H

#include "bitstream/sei/PayloadSyntax.h"
#include "bitstream/sei/SeiManifest.h"

namespace qv::sei {

// The loop body of sei_manifest().
template <class Syntax>
void manifest_entry(Syntax& s, uint32_t i, SeiManifestEntry& entry) {
    s.u(16, at("manifest_sei_payload_type", i), entry.manifest_sei_payload_type);
    s.u(8, at("manifest_sei_description", i), entry.manifest_sei_description);
}

// sei_manifest(), H.264 D.1.36, H.265 D.2.45
template <class Syntax>
void sei_manifest(Syntax& s, const Context& context, SeiManifest& payload) {
    static constexpr SharedStructure kStructure = sharedStructure("sei_manifest()", "D.1.36", "D.2.45");
    const Within<Syntax> within(s, kStructure.of(context));
    s.u(16, "manifest_num_sei_msg_types", payload.manifest_num_sei_msg_types);
    s.keep(payload.entries, [&payload](auto& in) {
        for (uint32_t i = 0; i < payload.manifest_num_sei_msg_types && !in.failed(); ++i) {
            SeiManifestEntry entry = {};
            manifest_entry(in, i, entry);
        }
    });
}

// The loop body of sei_prefix_indication().
template <class Syntax>
void prefix_indication(Syntax& s, uint32_t i, PrefixIndication& indication) {
    s.u(16, at("num_bits_in_prefix_indication_minus1", i), indication.num_bits_in_prefix_indication_minus1);
    s.keep(indication.sei_prefix_data_bit, [&indication, i](auto& in) {
        for (uint32_t j = 0; j <= indication.num_bits_in_prefix_indication_minus1 && !in.failed(); ++j) {
            bool sei_prefix_data_bit = false;
            in.flag(at("sei_prefix_data_bit", i, j), sei_prefix_data_bit);
        }
    });
    byte_alignment(s, "byte_alignment_bit_equal_to_one", 1);
}

// sei_prefix_indication(), H.264 D.1.37, H.265 D.2.46
template <class Syntax>
void sei_prefix_indication(Syntax& s, const Context& context, SeiPrefixIndication& payload) {
    static constexpr SharedStructure kStructure =
        sharedStructure("sei_prefix_indication()", "D.1.37", "D.2.46");
    const Within<Syntax> within(s, kStructure.of(context));
    s.u(16, "prefix_sei_payload_type", payload.prefix_sei_payload_type);
    s.u(8, "num_sei_prefix_indications_minus1", payload.num_sei_prefix_indications_minus1);
    s.keep(payload.indications, [&payload](auto& in) {
        for (uint32_t i = 0; i <= payload.num_sei_prefix_indications_minus1; ++i) {
            PrefixIndication indication = {};
            prefix_indication(in, i, indication);
        }
    });
}

}  // namespace qv::sei

#endif
