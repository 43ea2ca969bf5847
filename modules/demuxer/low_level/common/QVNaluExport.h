/// \file
/// The mark of what the shared library shows.
#ifndef QV_DEMUXER_QVNALUEXPORT_H
#define QV_DEMUXER_QVNALUEXPORT_H

/// Marks what the shared library shows. All else in it is hidden, and in a static library everything is: a
/// player's own shared library that takes it in does not show it on. QV_NALU_STATIC is for the build of the
/// static library alone; callers need not set it.
#if defined(__GNUC__) && !defined(QV_NALU_STATIC)
#define QV_NALU_API __attribute__((visibility("default")))
#else
#define QV_NALU_API
#endif

#endif
