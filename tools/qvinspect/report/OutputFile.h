// A file that is written as a whole or not at all.
#ifndef QVINSPECT_OUTPUTFILE_H
#define QVINSPECT_OUTPUTFILE_H

#include <sys/types.h>

#include <string>

namespace qvinspect {

// Regular files are written under another name in the same folder, and renamed when they are whole: until
// then, and after a failure, a file of that name keeps its former content. The new file gets the permissions
// of the former one, and its owner and group as far as this user may set them. Links to a file are kept.
//
// Standard output, pipes, terminals and devices are written to directly, and so is a file whose folder this
// user may not write to.
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

    // Puts the file in its place. Returns 0, or the errno of the failure; a regular file is then as it was.
    int close();

    // True if a file of that name still has its former content, or still does not exist.
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
    std::string place_;      // with links followed
    std::string temporary_;  // empty when written to directly
    bool isUntouched_ = true;
};

}  // namespace qvinspect

#endif
