// A file read from front to back, whose first bytes can be looked at ahead of that.
#ifndef QVINSPECT_FILESOURCE_H
#define QVINSPECT_FILESOURCE_H

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "input/ByteSource.h"

namespace qvinspect {

class FileSource : public ByteSource {
public:
    // Throws InputError when the file cannot be opened or is a directory.
    explicit FileSource(const std::string& path);

    // The first bytes, at most size of them. Only ahead of the first read.
    const std::vector<unsigned char>& peek(size_t size);

    size_t read(unsigned char* to, size_t size) override;
    std::string failure() const override { return failure_; }

private:
    size_t readFile(unsigned char* to, size_t size);

    struct Close {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };
    std::unique_ptr<std::FILE, Close> file_;
    std::vector<unsigned char> head_;
    size_t headRead_ = 0;
    std::string failure_;
};

}  // namespace qvinspect

#endif
