// Bytes in order, from wherever they come.
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

    // Reads up to size bytes to to and returns how many, as soon as there are any. 0 only at the end, when
    // reading failed, or when the program was interrupted.
    virtual size_t read(unsigned char* to, size_t size) = 0;

    // Of the whole source, where it is known ahead of its end.
    virtual std::optional<uint64_t> size() const { return std::nullopt; }

    // Why reading ended ahead of the end; empty when it did not.
    virtual std::string failure() const = 0;

    // Reading ended ahead of the end because the program was interrupted.
    virtual bool isInterrupted() const { return false; }
};

}  // namespace qvinspect

#endif
