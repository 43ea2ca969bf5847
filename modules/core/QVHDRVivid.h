// The player's HDR Vivid (T/UWA 005.1) dynamic metadata parser. Contract only: a host links its own
// definition or the stand-alone core's.
#ifndef QV_CORE_QVHDRVIVID_H
#define QV_CORE_QVHDRVIVID_H

#include "QVCoreExport.h"

struct QVSeiItem;
struct QVHDRVividDynamicMetadata;

namespace qv_hdr_vivid_parser {

// Reads the HDR Vivid metadata of one kept H.265 user_data_registered_itu_t_t35 message into *metadata.
// Recognises the payload itself; returns 0 on success and a non-zero status otherwise.
QV_CORE_API int fillHDRVividDynamicMetadataFromHevcUserDataRegisteredSei(const QVSeiItem& item,
                                                                         QVHDRVividDynamicMetadata* metadata);

}  // namespace qv_hdr_vivid_parser

#endif
