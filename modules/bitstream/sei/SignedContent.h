/// \file
/// Digitally signed content. The messages are newer than the editions whose clauses this library cites.
#ifndef QV_BITSTREAM_SEI_SIGNEDCONTENT_H
#define QV_BITSTREAM_SEI_SIGNEDCONTENT_H

#include <cstdint>

#include "bitstream/sei/SeiPayload.h"
#include "bitstream/syntax/CodedBits.h"

namespace qv::sei {

/// digitally_signed_content_initialization(), H.264 Annex D, H.265 Annex D; see refersToSubstream().
struct DigitallySignedContentInitialization {
    static constexpr PayloadTypes kPayloadTypes = {220, 220};  ///< payloadType
    static constexpr uint32_t kUuidBytes = 16;                 ///< bytes of a UUID

    uint32_t dsci_id;                                  ///< u(8)
    uint32_t dsci_hash_method_type;                    ///< u(8)
    uint32_t dsci_key_retrieval_mode_idc;              ///< ue(v)
    bool dsci_use_key_register_idx_flag;               ///< u(1), with dsci_key_retrieval_mode_idc 1
    uint32_t dsci_key_register_idx;                    ///< ue(v)
    bool dsci_content_uuid_present_flag;               ///< u(1)
    uint8_t dsci_content_uuid[kUuidBytes];             ///< u(128), the first byte first
    uint32_t dsci_num_verification_substreams_minus1;  ///< ue(v)
    CodedBits dsci_ref_substream_flag;                 ///< u(1) each: one flag, then two, three and so on
    bool dsci_vss_implicit_association_mode_flag;      ///< u(1)
    bool dsci_signed_content_start_flag;               ///< u(1)
    bool dsci_sei_signing_flag;                        ///< u(1)
    CodedBits dsci_key_source_uri;                     ///< st(v), with its zero byte
};

/// digitally_signed_content_selection(), H.264 Annex D, H.265 Annex D.
struct DigitallySignedContentSelection {
    static constexpr PayloadTypes kPayloadTypes = {221, 221};  ///< payloadType
    uint32_t dscs_id;                                          ///< u(8)
    uint32_t dscs_verification_substream_id;                   ///< u(8)
};

/// digitally_signed_content_verification(), H.264 Annex D, H.265 Annex D.
struct DigitallySignedContentVerification {
    static constexpr PayloadTypes kPayloadTypes = {222, 222};  ///< payloadType
    uint32_t dscv_id;                                          ///< u(8)
    uint32_t dscv_verification_substream_id;                   ///< u(8)
    uint32_t dscv_signature_length_in_octets_minus1;           ///< u(24)
    CodedBits dscv_signature;                                  ///< u(8) each, borrowed
    bool dscv_signed_content_end_flag;                         ///< u(1)
};

/// dsci_ref_substream_flag[ i ][ j ]: true when verification substream \p i refers to \p j. False when there
/// is no such flag: \p i is 1 to dsci_num_verification_substreams_minus1, \p j 0 to \p i - 1. Reads the flags
/// before it.
bool refersToSubstream(const DigitallySignedContentInitialization& content, uint32_t i, uint32_t j) noexcept;

}  // namespace qv::sei

#endif
