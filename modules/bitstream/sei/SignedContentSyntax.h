// Digitally signed content as syntax functions.
#ifndef QV_BITSTREAM_SEI_SIGNEDCONTENTSYNTAX_H
#define QV_BITSTREAM_SEI_SIGNEDCONTENTSYNTAX_H

#include "bitstream/sei/PayloadSyntax.h"
#include "bitstream/sei/SignedContent.h"

namespace qv::sei {

// dsci_ref_substream_flag[ i ][ j ]
template <class Syntax>
void dsci_ref_substream_flags(Syntax& s, const DigitallySignedContentInitialization& payload) {
    for (uint32_t i = 1; i <= payload.dsci_num_verification_substreams_minus1 && !s.failed(); ++i) {
        for (uint32_t j = 0; j < i && !s.failed(); ++j) {
            bool dsci_ref_substream_flag = false;
            s.flag(at("dsci_ref_substream_flag", i, j), dsci_ref_substream_flag);
        }
    }
}

// digitally_signed_content_initialization()
template <class Syntax>
void digitally_signed_content_initialization(Syntax& s, const Context& context,
                                             DigitallySignedContentInitialization& payload) {
    constexpr uint32_t kKeyInRegister = 1;
    static constexpr SharedStructure kStructure =
        sharedStructure("digitally_signed_content_initialization()", "Annex D", "Annex D");
    const Within<Syntax> within(s, kStructure.of(context));
    s.u(8, "dsci_id", payload.dsci_id);
    s.u(8, "dsci_hash_method_type", payload.dsci_hash_method_type);
    s.ue("dsci_key_retrieval_mode_idc", payload.dsci_key_retrieval_mode_idc);
    if (payload.dsci_key_retrieval_mode_idc == kKeyInRegister) {
        s.flag("dsci_use_key_register_idx_flag", payload.dsci_use_key_register_idx_flag);
        if (payload.dsci_use_key_register_idx_flag) {
            s.ue("dsci_key_register_idx", payload.dsci_key_register_idx);
        }
    }
    s.flag("dsci_content_uuid_present_flag", payload.dsci_content_uuid_present_flag);
    if (payload.dsci_content_uuid_present_flag) {
        for (uint32_t i = 0; i < DigitallySignedContentInitialization::kUuidBytes; ++i) {
            s.u(8, at("dsci_content_uuid", i), payload.dsci_content_uuid[i]);
        }
    }
    s.ue("dsci_num_verification_substreams_minus1", payload.dsci_num_verification_substreams_minus1);
    s.keep(payload.dsci_ref_substream_flag, [&payload](auto& in) { dsci_ref_substream_flags(in, payload); });
    s.flag("dsci_vss_implicit_association_mode_flag", payload.dsci_vss_implicit_association_mode_flag);
    s.flag("dsci_signed_content_start_flag", payload.dsci_signed_content_start_flag);
    s.flag("dsci_sei_signing_flag", payload.dsci_sei_signing_flag);
    byte_alignment(s, "dsci_alignment_zero_bit", 0);
    st(s, "dsci_key_source_uri", UINT32_MAX, payload.dsci_key_source_uri);
}

// digitally_signed_content_selection()
template <class Syntax>
void digitally_signed_content_selection(Syntax& s, const Context& context,
                                        DigitallySignedContentSelection& payload) {
    static constexpr SharedStructure kStructure =
        sharedStructure("digitally_signed_content_selection()", "Annex D", "Annex D");
    const Within<Syntax> within(s, kStructure.of(context));
    s.u(8, "dscs_id", payload.dscs_id);
    s.u(8, "dscs_verification_substream_id", payload.dscs_verification_substream_id);
}

// digitally_signed_content_verification()
template <class Syntax>
void digitally_signed_content_verification(Syntax& s, const Context& context,
                                           DigitallySignedContentVerification& payload) {
    static constexpr SharedStructure kStructure =
        sharedStructure("digitally_signed_content_verification()", "Annex D", "Annex D");
    const Within<Syntax> within(s, kStructure.of(context));
    s.u(8, "dscv_id", payload.dscv_id);
    s.u(8, "dscv_verification_substream_id", payload.dscv_verification_substream_id);
    s.u(24, "dscv_signature_length_in_octets_minus1", payload.dscv_signature_length_in_octets_minus1);
    s.keep(payload.dscv_signature, [&payload](auto& in) {
        for (uint32_t i = 0; i <= payload.dscv_signature_length_in_octets_minus1 && !in.failed(); ++i) {
            uint32_t dscv_signature = 0;
            in.u(8, at("dscv_signature", i), dscv_signature);
        }
    });
    s.flag("dscv_signed_content_end_flag", payload.dscv_signed_content_end_flag);
}

}  // namespace qv::sei

#endif
