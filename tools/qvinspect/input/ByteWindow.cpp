#include "input/ByteWindow.h"

#include <algorithm>
#include <utility>

namespace qvinspect {

ByteWindow::ByteWindow(std::unique_ptr<ByteSource> source, size_t chunkSize)
    : source_(std::move(source)), chunkSize_(chunkSize) {}

bool ByteWindow::grow() {
    // Released bytes are removed here, once for each chunk: removing them at every release would copy the
    // rest of the chunk for each access unit in it.
    const auto released = static_cast<std::ptrdiff_t>(begin_ - bufferOffset_);
    bytes_.erase(bytes_.begin(), bytes_.begin() + released);
    bufferOffset_ = begin_;

    const size_t held = bytes_.size();
    bytes_.resize(held + chunkSize_);
    const size_t count = source_->read(bytes_.data() + held, chunkSize_);
    bytes_.resize(held + count);
    return count > 0;
}

void ByteWindow::release(uint64_t offset) {
    begin_ = std::clamp(offset, begin_, end());
}

}  // namespace qvinspect
