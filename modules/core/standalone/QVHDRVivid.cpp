#include "QVHDRVivid.h"

namespace qv_hdr_vivid_parser {

int fillHDRVividDynamicMetadataFromHevcUserDataRegisteredSei(const QVSeiItem& /*item*/,
                                                             QVHDRVividDynamicMetadata* /*metadata*/) {
    constexpr int kNotSupported = 11000001;
    return kNotSupported;
}

}  // namespace qv_hdr_vivid_parser
