// Containers. Whether the program can read any is settled when it is built.
#ifndef QVINSPECT_CONTAINERS_H
#define QVINSPECT_CONTAINERS_H

#include <memory>
#include <optional>
#include <string>

#include "input/AccessUnitReader.h"

namespace qvinspect {

struct ContainerResult {
    std::unique_ptr<AccessUnitReader> reader;  // null when the file cannot be read as a container
    std::string reason;                        // why it cannot, and what to do next
};

// Opens the first H.264 or H.265 video of the file, or the first of the codec that is asked for.
ContainerResult openContainer(const std::string& path, std::optional<QVCodecID> codec);

}  // namespace qvinspect

#endif
