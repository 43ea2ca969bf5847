// The entries of svc_vui_parameters_extension().
#include "bitstream/avc/SpsSvcExtension.h"

#include "bitstream/avc/SpsSvcExtensionSyntax.h"

namespace qv::avc {

SvcVuiEntries::SvcVuiEntries(const SvcVuiExtension& vui) noexcept
    : reader_(vui.entries), left_(vui.entries.empty() ? 0 : vui.vui_ext_num_entries_minus1 + 1) {}

bool SvcVuiEntries::next(SvcVuiEntry& entry) noexcept {
    if (left_ == 0) {
        return false;
    }
    --left_;
    entry = {};
    svc_vui_entry(reader_, entry, 0);
    return true;
}

}  // namespace qv::avc
