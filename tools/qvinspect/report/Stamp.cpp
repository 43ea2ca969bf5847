#include "report/Stamp.h"

#include <fmt/chrono.h>

namespace qvinspect {

std::string stampText(std::time_t time) {
    return fmt::format("{:%Y-%m-%dT%H:%M:%SZ}", fmt::gmtime(time));
}

}  // namespace qvinspect
