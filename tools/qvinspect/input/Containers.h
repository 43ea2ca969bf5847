// Containers. Whether the program can read any is settled when it is built.
#ifndef QVINSPECT_CONTAINERS_H
#define QVINSPECT_CONTAINERS_H

#include <memory>
#include <string>
#include <vector>

#include "input/AccessUnitReader.h"
#include "input/FileSource.h"
#include "input/InputOptions.h"

namespace qvinspect {

struct ContainerResult {
    std::unique_ptr<AccessUnitReader> reader;  // null when the file cannot be read as a container
    std::string reason;                        // why it cannot, and what to do next
};

// Opens the stream that is asked for, or the first H.264 or H.265 video, or the first of the codec that is
// asked for. file is taken when that succeeds; otherwise it stands anywhere.
ContainerResult openContainer(std::unique_ptr<FileSource>& file, const InputOptions& options);

// The first bytes of a file look like a container, as far as that can be told from them.
bool looksLikeContainer(const std::vector<unsigned char>& head);

}  // namespace qvinspect

#endif
