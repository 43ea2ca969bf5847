#include "report/Output.h"

#include <cerrno>

namespace qvinspect {

void Output::flush() {
    const size_t size = text_.size();
    const bool isWritten = std::fwrite(text_.data(), 1, size, file_) == size && std::fflush(file_) == 0;
    const int error = errno;
    text_.clear();
    if (!isWritten) {
        throw std::system_error(error, std::generic_category());
    }
}

}  // namespace qvinspect
