// What SEI messages a stream has, and what they begin with.
#include "bitstream/sei/SeiManifest.h"

#include "bitstream/sei/PayloadTemplates.h"
#include "bitstream/sei/SeiManifestSyntax.h"

namespace qv::sei {

QV_SEI_PAYLOAD(SeiManifest, sei_manifest);
QV_SEI_PAYLOAD(SeiPrefixIndication, sei_prefix_indication);

CodedEntries<SeiManifest, SeiManifestEntry> manifestEntriesOf(const SeiManifest& manifest) noexcept {
    return {manifest, manifest.entries, manifest.manifest_num_sei_msg_types,
            [](Reader& reader, const SeiManifest& /*manifest*/, uint32_t i, SeiManifestEntry& entry) {
                manifest_entry(reader, i, entry);
            }};
}

CodedEntries<SeiPrefixIndication, PrefixIndication> prefixIndicationsOf(
    const SeiPrefixIndication& indication) noexcept {
    return {indication, indication.indications, uint64_t{indication.num_sei_prefix_indications_minus1} + 1,
            [](Reader& reader, const SeiPrefixIndication& /*all*/, uint32_t i, PrefixIndication& prefix) {
                prefix_indication(reader, i, prefix);
            }};
}

}  // namespace qv::sei
