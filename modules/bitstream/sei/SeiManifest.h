/// \file
/// What SEI messages a stream has, and what they begin with.
#ifndef QV_BITSTREAM_SEI_SEIMANIFEST_H
#define QV_BITSTREAM_SEI_SEIMANIFEST_H

#include <cstdint>

#include "bitstream/sei/CodedEntries.h"
#include "bitstream/sei/SeiPayload.h"
#include "bitstream/syntax/CodedBits.h"

namespace qv::sei {

/// sei_manifest(), H.264 D.1.36, H.265 D.2.45; see manifestEntriesOf().
struct SeiManifest {
    static constexpr PayloadTypes kPayloadTypes = {200, 200};  ///< payloadType
    uint32_t manifest_num_sei_msg_types;                       ///< u(16)
    CodedBits entries;                                         ///< an entry for each type
};

/// A type of messages: the loop body of sei_manifest().
struct SeiManifestEntry {
    uint32_t manifest_sei_payload_type;  ///< u(16)

    /// u(8): 0 no such message is in the stream, 1 there are and they are necessary, 2 there are and they are
    /// unnecessary, 3 there are and it is not known whether they are necessary; 4..255 are reserved.
    uint32_t manifest_sei_description;
};

/// sei_prefix_indication(), H.264 D.1.37, H.265 D.2.46; see prefixIndicationsOf().
struct SeiPrefixIndication {
    static constexpr PayloadTypes kPayloadTypes = {201, 201};  ///< payloadType
    uint32_t prefix_sei_payload_type;                          ///< u(16)
    uint32_t num_sei_prefix_indications_minus1;                ///< u(8)
    CodedBits indications;                                     ///< an entry for each
};

/// What payloads begin with: the loop body of sei_prefix_indication().
struct PrefixIndication {
    uint32_t num_bits_in_prefix_indication_minus1;  ///< u(16)
    CodedBits sei_prefix_data_bit;                  ///< u(1) each
};

/// The types of \p manifest, manifest_num_sei_msg_types of them.
CodedEntries<SeiManifest, SeiManifestEntry> manifestEntriesOf(const SeiManifest& manifest) noexcept;

/// The prefixes of \p indication, num_sei_prefix_indications_minus1 + 1 of them.
CodedEntries<SeiPrefixIndication, PrefixIndication> prefixIndicationsOf(
    const SeiPrefixIndication& indication) noexcept;

}  // namespace qv::sei

#endif
