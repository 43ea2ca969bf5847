#include "report/UnitRewriter.h"

#include <fmt/format.h>

namespace qvinspect {

void UnitRewriter::append(qv::Bytes unit, std::vector<uint8_t>& out) {
    if (sets_.rewrite(unit, out).isRewritten) {
        ++rewritten_;
    } else {
        out.insert(out.end(), unit.begin(), unit.end());
        ++copied_;
    }
    sets_.take(unit);
}

std::string UnitRewriter::summary() const {
    return fmt::format("{} NAL unit{} written from {}, {} copied", rewritten_,
                       rewritten_ == 1 ? " is" : "s are", rewritten_ == 1 ? "its record" : "their records",
                       copied_ == 1 ? "1 is" : fmt::format("{} are", copied_));
}

}  // namespace qvinspect
