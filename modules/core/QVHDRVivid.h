/// \file
/// The player's HDR Vivid (T/UWA 005.1) dynamic metadata parser. Contract only: a host links its own
/// definition or the stand-alone core's.
#ifndef QV_CORE_QVHDRVIVID_H
#define QV_CORE_QVHDRVIVID_H

#include "QVCoreExport.h"

struct QVSeiItem;
struct QVHDRVividDynamicMetadata;

/// The player's HDR Vivid parser.
namespace qv_hdr_vivid_parser {

/// Reads the HDR Vivid metadata (T/UWA 005.1) of one kept H.265 user_data_registered_itu_t_t35 message
/// (D.2.6). The parser recognises the payload itself: it is handed items of any kind.
///
/// \param item      the message, payload without emulation prevention bytes; only read
/// \param metadata  the host's record, the caller's
/// \return 0 on success, a non-zero status of the host's otherwise
QV_CORE_API int fillHDRVividDynamicMetadataFromHevcUserDataRegisteredSei(const QVSeiItem& item,
                                                                         QVHDRVividDynamicMetadata* metadata);

}  // namespace qv_hdr_vivid_parser

#endif
