#include "StandardStreams.h"

#include <fcntl.h>
#include <unistd.h>

namespace qvinspect {

namespace {

bool hasOtherMode(int descriptor, int mode) {
    const int flags = fcntl(descriptor, F_GETFL);
    return flags >= 0 && (flags & O_ACCMODE) != mode;
}

}  // namespace

bool openStandardStreams() {
    // The opposite direction, so that using the stream fails and loses no data silently.
    static constexpr int kModes[] = {O_WRONLY, O_RDONLY, O_RDONLY};
    for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor) {
        // open() returns the lowest free descriptor.
        if (fcntl(descriptor, F_GETFD) < 0 && open("/dev/null", kModes[descriptor]) != descriptor) {
            return false;
        }
    }
    return true;
}

// The program opens descriptors with close-on-exec; inherited ones do not have it.
bool isInherited(int descriptor) {
    const int flags = fcntl(descriptor, F_GETFD);
    return flags >= 0 && (flags & FD_CLOEXEC) == 0;
}

bool isReadable(int descriptor) {
    return hasOtherMode(descriptor, O_WRONLY);
}

bool isWritable(int descriptor) {
    return hasOtherMode(descriptor, O_RDONLY);
}

}  // namespace qvinspect
