// A sliding window over a byte source, addressed by offsets from the start of the source.
#ifndef QVINSPECT_BYTEWINDOW_H
#define QVINSPECT_BYTEWINDOW_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "input/ByteSource.h"

namespace qvinspect {

class ByteWindow {
public:
    // Reads chunkSize bytes at a time.
    ByteWindow(std::unique_ptr<ByteSource> source, size_t chunkSize);

    // Adds one more chunk to the end of the window and invalidates pointers into it. Returns false at the end
    // of the source.
    bool grow();

    // Releases the bytes before offset.
    void release(uint64_t offset);

    uint64_t begin() const { return begin_; }
    uint64_t end() const { return bufferOffset_ + bytes_.size(); }

    // offset is from begin() to end().
    const unsigned char* at(uint64_t offset) const { return bytes_.data() + (offset - bufferOffset_); }

    // Bytes in memory, including those released since the window last grew.
    size_t heldBytes() const { return bytes_.size(); }

    const ByteSource& source() const { return *source_; }

private:
    std::unique_ptr<ByteSource> source_;
    size_t chunkSize_;
    std::vector<unsigned char> bytes_;
    uint64_t bufferOffset_ = 0;  // of the first byte of bytes_
    uint64_t begin_ = 0;
};

}  // namespace qvinspect

#endif
