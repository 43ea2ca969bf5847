// Containers. Support for them is chosen when the program is built.
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
    std::unique_ptr<AccessUnitReader> reader;  // null if the file cannot be read as a container
    std::string reason;                        // why it cannot, and what to do next
};

// Opens the stream in the options, or else the first video of the codec in the options, or else the first
// H.264 or H.265 video. Takes file on success; on failure its position is unspecified.
ContainerResult openContainer(std::unique_ptr<FileSource>& file, const InputOptions& options);

// Whether the first bytes of a file look like a container.
bool looksLikeContainer(const std::vector<unsigned char>& head);

}  // namespace qvinspect

#endif
