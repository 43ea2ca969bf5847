// A file that is written completely or not at all.
#ifndef QVINSPECT_OUTPUTFILE_H
#define QVINSPECT_OUTPUTFILE_H

#include <sys/types.h>

#include <string>

namespace qvinspect {

// Regular files are written under another name in the same folder, and renamed when they are complete: until
// then, and after a failure, an existing file of that name keeps its content. The new file has the
// permissions of the old one, and its owner and group if this user may set them. Symbolic links are kept.
//
// Standard output, pipes, terminals and devices are written directly, and so is a file whose folder this user
// may not write to.
class OutputFile {
public:
    OutputFile() = default;
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    // "-" is standard output, /dev/fd/N a descriptor that the program was started with. Returns 0, or the
    // errno of the failure. Opening a pipe waits for its reader; EINTR then means that the program was
    // interrupted.
    int open(const std::string& path);

    // Returns 0, or the errno of the failure.
    int write(const char* bytes, size_t size);

    // Renames the file to its final name. Returns 0, or the errno of the failure; a regular file is then
    // unchanged.
    int close();

    // True if an existing file of that name still has its old content, or if it still does not exist.
    bool isUntouched() const { return isUntouched_; }

private:
    int openDescriptor(int descriptor);
    int openDirectly(const std::string& path);
    int openBeside(const std::string& place);
    int makeTemporary(mode_t mode);
    int putInPlace();
    int copyIntoPlace();
    void removeTemporary();

    int descriptor_ = -1;
    std::string place_;      // the path with links followed
    std::string temporary_;  // empty if written directly
    bool isUntouched_ = true;
};

}  // namespace qvinspect

#endif
