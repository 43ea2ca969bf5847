#include "report/Level.h"

#include "analysis/Filter.h"

namespace qvinspect {

Level levelFor(const Filter& filter) {
    if (!filter.seiTypes.empty() || !filter.t35.empty()) {
        return Level::Sei;
    }
    if (!filter.unitTypes.empty()) {
        return Level::Nalus;
    }
    return filter.keyOnly || filter.errorsOnly ? Level::Samples : Level::Summary;
}

}  // namespace qvinspect
