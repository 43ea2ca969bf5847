#include "input/FileSource.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "FilePlace.h"
#include "Interrupt.h"
#include "StandardStreams.h"
#include "input/InputError.h"

namespace qvinspect {

namespace {

// Reading a closed stream, or one of the program's own descriptors, could wait for ever.
void refuseUnlessReadable(int file) {
    if (!isInherited(file) || !isReadable(file)) {
        throw InputError(
            "cannot be opened: it is not open for reading; name a file, or send a stream through a pipe");
    }
}

int standardInput() {
    refuseUnlessReadable(STDIN_FILENO);
    return STDIN_FILENO;
}

// Opening a named pipe waits for its writer.
int openFile(const std::string& path) {
    if (const auto descriptor = descriptorNamedBy(followLinks(path))) {
        refuseUnlessReadable(*descriptor);
    }
    for (;;) {
        const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
        if (file >= 0) {
            return file;
        }
        if (errno != EINTR) {
            throw InputError(
                fmt::format("cannot be opened: {}; check its name and permissions", std::strerror(errno)));
        }
        if (isInterrupted()) {
            throw InputError("interrupted before the first byte; nothing was read");
        }
    }
}

}  // namespace

FileSource::FileSource(const std::string& path)
    : file_(path == "-" ? standardInput() : openFile(path)), isOwned_(path != "-") {
    try {
        examine();
    } catch (...) {
        if (isOwned_) {
            close(file_);
        }
        throw;
    }
}

FileSource::~FileSource() {
    if (isOwned_) {
        close(file_);
    }
}

void FileSource::examine() {
    struct stat status = {};
    if (fstat(file_, &status) != 0) {
        throw InputError(fmt::format("cannot be read: {}; check the file", std::strerror(errno)));
    }
    if (S_ISDIR(status.st_mode)) {
        throw InputError("is a directory; name the files in it");
    }
    if (isatty(file_) != 0) {
        throw InputError("is a terminal; name a file, or send a stream through a pipe");
    }
    // Regular files whose content is generated as they are read have a size of 0.
    const off_t begin = S_ISREG(status.st_mode) ? lseek(file_, 0, SEEK_CUR) : -1;
    if (begin >= 0 && begin < status.st_size) {
        begin_ = begin;
        size_ = static_cast<uint64_t>(status.st_size - begin);
    }
}

const std::vector<unsigned char>& FileSource::peek(size_t size) {
    head_.resize(size);
    size_t held = 0;
    while (held < size) {
        const size_t count = readFile(head_.data() + held, size - held);
        if (count == 0) {
            break;
        }
        held += count;
        position_ += count;
    }
    head_.resize(held);
    position_ = 0;
    return head_;
}

size_t FileSource::read(unsigned char* to, size_t size) {
    size_t count = 0;
    if (position_ < head_.size()) {
        count = std::min<size_t>(size, head_.size() - position_);
        std::memcpy(to, head_.data() + position_, count);
    } else {
        count = readFile(to, size);
    }
    position_ += count;
    return count;
}

void FileSource::seek(uint64_t offset) {
    position_ = std::min(offset, size_.value_or(offset));
}

size_t FileSource::readFile(unsigned char* to, size_t size) {
    for (;;) {
        if (!waitForInput(file_)) {
            isInterrupted_ = true;
            return 0;
        }
        const ssize_t count = readOnce(to, size);
        if (count >= 0) {
            return static_cast<size_t>(count);
        }
        if (errno != EINTR && errno != EAGAIN) {
            failure_ = std::strerror(errno);
            return 0;
        }
    }
}

ssize_t FileSource::readOnce(unsigned char* to, size_t size) const {
    return canSeek() ? pread(file_, to, size, begin_ + static_cast<off_t>(position_))
                     : ::read(file_, to, size);
}

}  // namespace qvinspect
