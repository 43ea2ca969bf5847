#include "report/WriteAll.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>

namespace qvinspect {

int writeAll(int descriptor, const char* bytes, size_t size) noexcept {
    while (size > 0) {
        const ssize_t count = write(descriptor, bytes, size);
        if (count > 0) {
            bytes += count;
            size -= static_cast<size_t>(count);
        } else if (count == 0) {
            return EIO;
        } else if (errno == EAGAIN) {
            pollfd room = {descriptor, POLLOUT, 0};
            poll(&room, 1, -1);
        } else if (errno != EINTR) {
            return errno;
        }
    }
    return 0;
}

}  // namespace qvinspect
