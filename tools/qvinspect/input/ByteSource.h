// A source of bytes that are read in order.
#ifndef QVINSPECT_BYTESOURCE_H
#define QVINSPECT_BYTESOURCE_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace qvinspect {

class ByteSource {
public:
    virtual ~ByteSource() = default;

    // Reads up to size bytes to to and returns their number as soon as there are any. Returns 0 only at the
    // end, if reading failed, or if the program was interrupted.
    virtual size_t read(unsigned char* to, size_t size) = 0;

    // Of the whole source, if known before its end.
    virtual std::optional<uint64_t> size() const { return std::nullopt; }

    // Why reading ended before the end; empty if it did not.
    virtual std::string failure() const = 0;

    // Whether reading ended before the end because the program was interrupted.
    virtual bool isInterrupted() const { return false; }
};

}  // namespace qvinspect

#endif
