// A file, a pipe or standard input, whose first bytes can be looked at ahead of reading.
#ifndef QVINSPECT_FILESOURCE_H
#define QVINSPECT_FILESOURCE_H

#include <sys/types.h>

#include <string>
#include <vector>

#include "input/ByteSource.h"

namespace qvinspect {

class FileSource : public ByteSource {
public:
    // "-" is standard input, from where it stands. Throws InputError when the file cannot be opened or is
    // nothing to read from.
    explicit FileSource(const std::string& path);
    ~FileSource() override;
    FileSource(const FileSource&) = delete;
    FileSource& operator=(const FileSource&) = delete;

    // The first bytes: size of them, unless the source is shorter. Only ahead of the first read.
    const std::vector<unsigned char>& peek(size_t size);

    size_t read(unsigned char* to, size_t size) override;

    // Regular files have one, and only what has a size can be read in another order.
    std::optional<uint64_t> size() const override { return size_; }
    bool canSeek() const { return size_.has_value(); }

    // To the end, when offset lies behind it.
    void seek(uint64_t offset);

    std::string failure() const override { return failure_; }
    bool isInterrupted() const override { return isInterrupted_; }

private:
    void examine();
    size_t readFile(unsigned char* to, size_t size);
    ssize_t readOnce(unsigned char* to, size_t size) const;

    int file_;
    bool isOwned_;
    off_t begin_ = 0;  // where standard input stands in a file that can be seeked
    std::optional<uint64_t> size_;
    std::vector<unsigned char> head_;
    uint64_t position_ = 0;  // from begin_
    std::string failure_;
    bool isInterrupted_ = false;
};

}  // namespace qvinspect

#endif
