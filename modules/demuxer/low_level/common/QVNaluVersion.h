// The version of the library: of the headers that a caller is compiled with, and of the library that runs.
#ifndef QV_DEMUXER_QVNALUVERSION_H
#define QV_DEMUXER_QVNALUVERSION_H

#include <stdint.h>

#include "QVNaluExport.h"

// Within one major version records keep their layout and functions stay: a program runs with every library
// that is not older than the headers it was compiled with. The build takes its version from here.
#define QVNALU_VERSION_MAJOR 0
#define QVNALU_VERSION_MINOR 1
#define QVNALU_VERSION_PATCH 0

// One number that grows from version to version, fit for #if.
#define QVNALU_MAKE_VERSION(major, minor, patch) ((major)*65536 + (minor)*256 + (patch))
#define QVNALU_VERSION QVNALU_MAKE_VERSION(QVNALU_VERSION_MAJOR, QVNALU_VERSION_MINOR, QVNALU_VERSION_PATCH)

extern "C" {

// QVNALU_VERSION of the library that runs; a shared one may be newer than the caller's headers.
QV_NALU_API uint32_t qvNaluVersion(void);

// The same as text, "major.minor.patch". Static, never null.
QV_NALU_API const char* qvNaluVersionString(void);
}

#endif
