// A file, a pipe or standard input, whose first bytes can be examined before reading.
#ifndef QVINSPECT_FILESOURCE_H
#define QVINSPECT_FILESOURCE_H

#include <sys/types.h>

#include <string>
#include <vector>

#include "input/ByteSource.h"

namespace qvinspect {

class FileSource : public ByteSource {
public:
    // "-" is standard input, from its current position. Throws InputError if the file cannot be opened or
    // read.
    explicit FileSource(const std::string& path);
    ~FileSource() override;
    FileSource(const FileSource&) = delete;
    FileSource& operator=(const FileSource&) = delete;

    // The first size bytes, or all if the source is shorter. Call it only before the first read.
    const std::vector<unsigned char>& peek(size_t size);

    size_t read(unsigned char* to, size_t size) override;

    // Regular files have one. Only sources with a size can be read in any order.
    std::optional<uint64_t> size() const override { return size_; }
    bool canSeek() const { return size_.has_value(); }

    // To the end if offset is after it.
    void seek(uint64_t offset);

    std::string failure() const override { return failure_; }
    bool isInterrupted() const override { return isInterrupted_; }

private:
    void examine();
    size_t readFile(unsigned char* to, size_t size);
    ssize_t readOnce(unsigned char* to, size_t size) const;

    int file_;
    bool isOwned_;
    off_t begin_ = 0;  // position of standard input in a seekable file
    std::optional<uint64_t> size_;
    std::vector<unsigned char> head_;
    uint64_t position_ = 0;  // from begin_
    std::string failure_;
    bool isInterrupted_ = false;
};

}  // namespace qvinspect

#endif
