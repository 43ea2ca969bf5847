#include "input/AccessUnitSplitter.h"

#include <algorithm>
#include <utility>

#include "input/AvcUnitRoles.h"
#include "input/HevcUnitRoles.h"

namespace qvinspect {

AccessUnitSplitter::AccessUnitSplitter(std::unique_ptr<UnitRoles> roles) : roles_(std::move(roles)) {}

size_t AccessUnitSplitter::take(const unsigned char* unit, size_t size) {
    const bool mayHaveBegun = held_ > 0;
    held_ += mayHaveBegun ? 1 : 0;

    switch (roles_->roleOf(unit, size)) {
        case UnitRole::Delimiter:
            return beginAccessUnit(false);
        case UnitRole::MayBegin:
            if (hasPicture_ && !mayHaveBegun) {
                held_ = 1;
            }
            return 0;
        case UnitRole::BeginsPicture:
            return beginAccessUnit(true);
        case UnitRole::SeemsToContinue:
            if (mayHaveBegun) {
                return beginAccessUnit(true);
            }
            [[fallthrough]];
        case UnitRole::ContinuesPicture:
            hasPicture_ = true;
            held_ = 0;
            return 0;
        case UnitRole::Belongs:
            break;
    }
    return 0;
}

// At the current unit or at the held units before it, unless there is no picture yet to end.
size_t AccessUnitSplitter::beginAccessUnit(bool hasPicture) {
    const size_t units = hasPicture_ ? std::max<size_t>(held_, 1) : 0;
    hasPicture_ = hasPicture;
    held_ = 0;
    return units;
}

AccessUnitSplitter makeAccessUnitSplitter(QVCodecID codec) {
    if (codec == QVCodecIDAvc) {
        return AccessUnitSplitter(std::make_unique<AvcUnitRoles>());
    }
    return AccessUnitSplitter(std::make_unique<HevcUnitRoles>());
}

}  // namespace qvinspect
