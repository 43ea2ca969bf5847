/// \file
/// The player's HDR Vivid (T/UWA 005.1) dynamic metadata parser. Declaration only: a host links its own
/// definition or the stand-alone core's.
#ifndef QV_CORE_QVHDRVIVID_H
#define QV_CORE_QVHDRVIVID_H

#include "QVCoreExport.h"

struct QVSeiItem;
struct QVHDRVividDynamicMetadata;

/// The player's HDR Vivid parser.
namespace qv_hdr_vivid_parser {

/// Reads the HDR Vivid metadata (T/UWA 005.1) from one H.265 user_data_registered_itu_t_t35 item (D.2.6).
/// The library passes items of any kind, so the parser itself must check what the payload is.
///
/// \param item      the message, its payload without emulation prevention bytes; read only
/// \param metadata  the record to fill; the host defines its layout, the caller owns it
/// \return 0 on success, otherwise a non-zero status that the host defines
QV_CORE_API int fillHDRVividDynamicMetadataFromHevcUserDataRegisteredSei(const QVSeiItem& item,
                                                                         QVHDRVividDynamicMetadata* metadata);

}  // namespace qv_hdr_vivid_parser

#endif
