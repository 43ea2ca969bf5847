#include "GuardedBuffer.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <stdexcept>
#include <system_error>

namespace qv_test {

namespace {

void require(bool isDone) {
    if (!isDone) {
        throw std::system_error(errno, std::generic_category());
    }
}

}  // namespace

GuardedBuffer::GuardedBuffer(size_t capacity)
    : mapping_(nullptr),
      pageSize_(static_cast<size_t>(sysconf(_SC_PAGESIZE))),
      capacity_((capacity + pageSize_ - 1) / pageSize_ * pageSize_) {
    void* const mapping =
        mmap(nullptr, capacity_ + 2 * pageSize_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    require(mapping != MAP_FAILED);
    mapping_ = static_cast<unsigned char*>(mapping);
    require(capacity_ == 0 || mprotect(begin(), capacity_, PROT_READ | PROT_WRITE) == 0);
}

GuardedBuffer::~GuardedBuffer() {
    munmap(mapping_, capacity_ + 2 * pageSize_);
}

unsigned char* GuardedBuffer::end(size_t size) const {
    if (size > capacity_) {
        throw std::length_error("GuardedBuffer");
    }
    return begin() + (capacity_ - size);
}

unsigned char* GuardedBuffer::placeAtEnd(const Bytes& bytes) {
    unsigned char* const place = end(bytes.size());
    std::copy(bytes.begin(), bytes.end(), place);
    return place;
}

unsigned char* GuardedBuffer::placeAtBegin(const Bytes& bytes) {
    if (bytes.size() > capacity_) {
        throw std::length_error("GuardedBuffer");
    }
    std::copy(bytes.begin(), bytes.end(), begin());
    return begin();
}

}  // namespace qv_test
