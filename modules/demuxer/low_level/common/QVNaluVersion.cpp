#include "QVNaluVersion.h"

#define QV_TEXT(number) #number
#define QV_VERSION_TEXT(major, minor, patch) QV_TEXT(major) "." QV_TEXT(minor) "." QV_TEXT(patch)

uint32_t qvNaluVersion(void) {
    return QVNALU_VERSION;
}

const char* qvNaluVersionString(void) {
    return QV_VERSION_TEXT(QVNALU_VERSION_MAJOR, QVNALU_VERSION_MINOR, QVNALU_VERSION_PATCH);
}
