// Digitally signed content.
#include "bitstream/sei/SignedContent.h"

#include "bitstream/sei/PayloadTemplates.h"
#include "bitstream/sei/SignedContentSyntax.h"

namespace qv::sei {

QV_SEI_PAYLOAD(DigitallySignedContentInitialization, digitally_signed_content_initialization);
QV_SEI_PAYLOAD(DigitallySignedContentSelection, digitally_signed_content_selection);
QV_SEI_PAYLOAD(DigitallySignedContentVerification, digitally_signed_content_verification);

bool refersToSubstream(const DigitallySignedContentInitialization& content, uint32_t i, uint32_t j) noexcept {
    if (i > content.dsci_num_verification_substreams_minus1 || j >= i) {
        return false;
    }
    Reader reader(content.dsci_ref_substream_flag);
    bool flag = false;
    const uint64_t number = uint64_t{i} * (i - 1) / 2 + j;
    for (uint64_t before = 0; before <= number && !reader.failed(); ++before) {
        reader.flag("dsci_ref_substream_flag", flag);
    }
    return flag;
}

}  // namespace qv::sei
