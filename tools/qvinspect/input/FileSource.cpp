#include "input/FileSource.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>

#include "input/InputError.h"

namespace qvinspect {

FileSource::FileSource(const std::string& path) {
    std::error_code ignored;  // what cannot be asked for cannot be opened either
    if (std::filesystem::is_directory(path, ignored)) {
        throw InputError("is a directory; name the files in it");
    }
    file_.reset(std::fopen(path.c_str(), "rb"));
    if (file_ == nullptr) {
        throw InputError(
            fmt::format("cannot be opened: {}; check its name and permissions", std::strerror(errno)));
    }
    // Chunks are large: stdio's own buffer would only copy them once more.
    std::setvbuf(file_.get(), nullptr, _IONBF, 0);
}

const std::vector<unsigned char>& FileSource::peek(size_t size) {
    head_.resize(size);
    head_.resize(readFile(head_.data(), size));
    return head_;
}

size_t FileSource::read(unsigned char* to, size_t size) {
    const size_t fromHead = std::min(size, head_.size() - headRead_);
    if (fromHead > 0) {
        std::memcpy(to, head_.data() + headRead_, fromHead);
        headRead_ += fromHead;
        return fromHead;
    }
    return readFile(to, size);
}

size_t FileSource::readFile(unsigned char* to, size_t size) {
    const size_t count = std::fread(to, 1, size, file_.get());
    if (count < size && std::ferror(file_.get()) != 0) {
        failure_ = std::strerror(errno);
    }
    return count;
}

}  // namespace qvinspect
