/// \file
/// The macro that exports symbols from the shared library.
#ifndef QV_DEMUXER_QVNALUEXPORT_H
#define QV_DEMUXER_QVNALUEXPORT_H

/// Exports a symbol from the shared library. All other symbols are hidden, and all symbols of the static
/// library are, so that a player's shared library that links it does not export them. Only the build of the
/// static library defines QV_NALU_STATIC; callers need not.
#if defined(__GNUC__) && !defined(QV_NALU_STATIC)
#define QV_NALU_API __attribute__((visibility("default")))
#else
#define QV_NALU_API
#endif

#endif
