/// \file
/// The version of the library: of the headers that a caller is compiled with, and of the library that runs.
///
/// Within one major version records keep their layout and functions are not removed: a program runs with
/// every library that is not older than the headers it was compiled with. The build reads its version here.
#ifndef QV_DEMUXER_QVNALUVERSION_H
#define QV_DEMUXER_QVNALUVERSION_H

#include <stdint.h>

#include "QVNaluExport.h"

/// Incremented when programs compiled earlier may no longer run.
#define QVNALU_VERSION_MAJOR 0
/// Incremented when something is added.
#define QVNALU_VERSION_MINOR 1
/// Incremented with every other release.
#define QVNALU_VERSION_PATCH 0

/// A version as one number that grows from version to version, for use in \#if.
#define QVNALU_MAKE_VERSION(major, minor, patch) ((major)*65536 + (minor)*256 + (patch))

/// The version of these headers.
#define QVNALU_VERSION QVNALU_MAKE_VERSION(QVNALU_VERSION_MAJOR, QVNALU_VERSION_MINOR, QVNALU_VERSION_PATCH)

extern "C" {

/// Returns the version of the library that runs; a shared library may be newer than the caller's headers.
///
/// \return QVNALU_VERSION of the library
QV_NALU_API uint32_t qvNaluVersion(void);

/// Returns the version of the library that runs as text.
///
/// \return "major.minor.patch", static, never null
QV_NALU_API const char* qvNaluVersionString(void);
}

#endif
