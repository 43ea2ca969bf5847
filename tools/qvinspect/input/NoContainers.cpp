#include "input/Containers.h"

namespace qvinspect {

ContainerResult openContainer(const std::string& /*path*/, std::optional<QVCodecID> /*codec*/) {
    return {nullptr,
            "this qvinspect was built without libavformat and reads raw streams only; build it with "
            "-DQVINSPECT_WITH_LIBAVFORMAT=ON"};
}

}  // namespace qvinspect
