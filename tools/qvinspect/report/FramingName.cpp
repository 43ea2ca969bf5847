#include "report/FramingName.h"

#include <fmt/format.h>

namespace qvinspect {

std::string framingName(const QVCodecParameters& parameters) {
    return parameters.isAnnexB != 0 ? std::string("Annex B start codes")
                                    : fmt::format("{}-byte length fields", parameters.nalLengthSize);
}

}  // namespace qvinspect
