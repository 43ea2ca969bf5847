// A private copy of a caller's buffer, from malloc, released on every path.
#ifndef QV_DEMUXER_DETAIL_WORKINGCOPY_H
#define QV_DEMUXER_DETAIL_WORKINGCOPY_H

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace qv_detail {

struct FreeDeleter {
    void operator()(unsigned char* memory) const { std::free(memory); }
};

using WorkingCopy = std::unique_ptr<unsigned char, FreeDeleter>;

// Null when there is nothing to copy or the allocation fails.
inline WorkingCopy makeWorkingCopy(const unsigned char* source, size_t size) {
    if (source == nullptr || size == 0) {
        return nullptr;
    }
    WorkingCopy copy(static_cast<unsigned char*>(std::malloc(size)));
    if (copy != nullptr) {
        std::memcpy(copy.get(), source, size);
    }
    return copy;
}

}  // namespace qv_detail

#endif
