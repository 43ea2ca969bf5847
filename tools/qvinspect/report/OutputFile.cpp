#include "report/OutputFile.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <utility>

#include "FilePlace.h"
#include "Interrupt.h"
#include "StandardStreams.h"
#include "report/WriteAll.h"

namespace qvinspect {

namespace {

constexpr mode_t kForAll = 0666;  // minus the umask
constexpr mode_t kForOwner = 0600;
constexpr mode_t kPermissions = 0777;

// Opening a pipe waits for its reader. Returns -1 and sets errno on failure.
int openWaiting(const std::string& path, int flags) {
    int descriptor = -1;
    do {
        descriptor = ::open(path.c_str(), flags | O_CLOEXEC | O_NOCTTY);
    } while (descriptor < 0 && errno == EINTR && !isInterrupted());
    return descriptor;
}

int closed(int descriptor) {
    return ::close(descriptor) == 0 || errno == EINTR ? 0 : errno;
}

// May fail in part: the file may belong to somebody else.
void copyPermissions(const struct stat& from, int to) {
    [[maybe_unused]] const int isOwned = fchown(to, from.st_uid, from.st_gid);
    [[maybe_unused]] const int isChanged = fchmod(to, from.st_mode & kPermissions);
}

int copyAll(int from, int to) {
    std::array<char, size_t{64} * 1024> piece{};
    for (;;) {
        const ssize_t count = read(from, piece.data(), piece.size());
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            return count < 0 ? errno : 0;
        }
        if (const int error = writeAll(to, piece.data(), static_cast<size_t>(count)); error != 0) {
            return error;
        }
    }
}

}  // namespace

OutputFile::~OutputFile() {
    if (descriptor_ > STDERR_FILENO) {
        ::close(descriptor_);
    }
    removeTemporary();
}

int OutputFile::open(const std::string& path) {
    if (path == "-") {
        return openDescriptor(STDOUT_FILENO);
    }
    const std::string end = followLinks(path);
    if (const auto descriptor = descriptorNamedBy(end)) {
        return openDescriptor(*descriptor);
    }
    struct stat status = {};
    struct stat atEnd = {};
    if (stat(path.c_str(), &status) != 0) {
        return errno == ENOENT ? openBeside(end) : errno;
    }
    // The text of a link in /proc may not be a path.
    const bool isThere =
        stat(end.c_str(), &atEnd) == 0 && atEnd.st_dev == status.st_dev && atEnd.st_ino == status.st_ino;
    return S_ISREG(status.st_mode) && isThere ? openBeside(end) : openDirectly(path);
}

int OutputFile::openDescriptor(int descriptor) {
    if (!isInherited(descriptor) || !isWritable(descriptor)) {
        return EBADF;
    }
    isUntouched_ = false;
    descriptor_ =
        descriptor == STDOUT_FILENO ? descriptor : fcntl(descriptor, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    return descriptor_ >= 0 ? 0 : errno;
}

int OutputFile::openDirectly(const std::string& path) {
    isUntouched_ = false;
    descriptor_ = openWaiting(path, O_WRONLY | O_TRUNC);
    return descriptor_ >= 0 ? 0 : errno;
}

int OutputFile::openBeside(const std::string& place) {
    struct stat former = {};
    const bool isThere = stat(place.c_str(), &former) == 0;
    // Renaming would also replace a file that this user may not write.
    if (isThere && faccessat(AT_FDCWD, place.c_str(), W_OK, AT_EACCESS) != 0) {
        return errno;
    }
    place_ = place;
    const int error = makeTemporary(isThere ? kForOwner : kForAll);
    if (isThere && (error == EACCES || error == EPERM || error == EROFS)) {
        return openDirectly(place);
    }
    if (isThere && error == 0) {
        copyPermissions(former, descriptor_);
    }
    return error;
}

int OutputFile::makeTemporary(mode_t mode) {
    constexpr int kMostAttempts = 1000;  // more than the files left by killed processes with the same number
    static unsigned made = 0;
    int error = EEXIST;
    for (int attempt = 0; error == EEXIST && attempt < kMostAttempts; ++attempt) {
        std::string path = fmt::format("{}/.qvinspect-{}-{}.tmp", folderOf(place_), getpid(), made++);
        descriptor_ = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
        error = descriptor_ >= 0 ? 0 : errno;
        if (error == 0) {
            temporary_ = std::move(path);
            removeWhenKilled(temporary_.c_str());
        }
    }
    return error;
}

int OutputFile::write(const char* bytes, size_t size) {
    return writeAll(descriptor_, bytes, size);
}

int OutputFile::close() {
    const int descriptor = std::exchange(descriptor_, -1);
    const int error = descriptor > STDERR_FILENO ? closed(descriptor) : 0;
    const int result = error == 0 && !temporary_.empty() ? putInPlace() : error;
    removeTemporary();
    return result;
}

// A writable file cannot be replaced if it is a mount point, or if it belongs to somebody else in a folder
// with the sticky bit.
int OutputFile::putInPlace() {
    if (rename(temporary_.c_str(), place_.c_str()) == 0) {
        keepWhenKilled(temporary_.c_str());
        temporary_.clear();
        return 0;
    }
    const int error = errno;
    return error == EBUSY || error == EPERM || error == EACCES ? copyIntoPlace() : error;
}

int OutputFile::copyIntoPlace() {
    const int from = ::open(temporary_.c_str(), O_RDONLY | O_CLOEXEC);
    if (from < 0) {
        return errno;
    }
    int error = openDirectly(place_);
    if (error == 0) {
        error = copyAll(from, descriptor_);
        const int atClose = closed(std::exchange(descriptor_, -1));
        error = error == 0 ? atClose : error;
    }
    ::close(from);
    return error;
}

void OutputFile::removeTemporary() {
    if (!temporary_.empty()) {
        unlink(temporary_.c_str());
        keepWhenKilled(temporary_.c_str());
        temporary_.clear();
    }
}

}  // namespace qvinspect
