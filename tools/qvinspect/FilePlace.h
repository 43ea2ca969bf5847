// Identifies the file that a path names, by whatever name, and whether or not it exists.
#ifndef QVINSPECT_FILEPLACE_H
#define QVINSPECT_FILEPLACE_H

#include <sys/types.h>

#include <optional>
#include <string>

namespace qvinspect {

// The folder that the file is in; "." if the path names none.
std::string folderOf(const std::string& path);

// Follows the symbolic links at the end of the path, also to a file that does not exist. A link that is a
// descriptor of this process is not followed. A path that is a cycle of links is returned unchanged.
std::string followLinks(const std::string& path);

// The descriptor of this process that the link names, as /dev/fd/3 does.
std::optional<int> descriptorNamedBy(const std::string& path);

// Identifies a file.
struct FilePlace {
    enum class Kind {
        Missing,
        Regular,
        BlockDevice,
        Pipe,
        Other  // a terminal, a socket, a folder
    };

    Kind kind = Kind::Other;
    // For a missing file, those of its folder.
    dev_t device = 0;
    ino_t inode = 0;
    std::string name;  // only for a missing file
};

FilePlace placeOf(const std::string& path);
FilePlace placeOf(int descriptor);

bool isSamePlace(const FilePlace& a, const FilePlace& b);

// True if the input would be overwritten, or if the output would be read again.
bool canWriteOver(const FilePlace& output, const FilePlace& input);

// True if two outputs would overwrite each other. Terminals and pipes take several.
bool canWriteOverEachOther(const FilePlace& a, const FilePlace& b);

}  // namespace qvinspect

#endif
