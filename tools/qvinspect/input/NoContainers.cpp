#include "input/Containers.h"

namespace qvinspect {

ContainerResult openContainer(std::unique_ptr<FileSource>& /*file*/, const InputOptions& /*options*/) {
    return {nullptr,
            "this qvinspect was built without libavformat and reads raw streams only; build it with "
            "-DQVINSPECT_WITH_LIBAVFORMAT=ON"};
}

bool looksLikeContainer(const std::vector<unsigned char>& /*head*/) {
    return false;
}

}  // namespace qvinspect
