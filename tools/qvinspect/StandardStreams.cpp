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
    // The opposite of what the stream is for, so that using it fails instead of losing data silently.
    static constexpr int kModes[] = {O_WRONLY, O_RDONLY, O_RDONLY};
    for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor) {
        // open() returns the lowest descriptor that is free.
        if (fcntl(descriptor, F_GETFD) < 0 && open("/dev/null", kModes[descriptor]) != descriptor) {
            return false;
        }
    }
    return true;
}

// What the program opens itself is closed by exec, which an inherited descriptor has just survived.
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
