// Values that several JSON records have.
#ifndef QVINSPECT_JSONVALUES_H
#define QVINSPECT_JSONVALUES_H

#include <nlohmann/json.hpp>
#include <optional>
#include <vector>

#include "analysis/Block.h"
#include "analysis/VideoFormat.h"
#include "input/AccessUnit.h"

namespace qvinspect {

// null if there is no value.
template <typename Value>
nlohmann::ordered_json jsonOptional(const std::optional<Value>& value) {
    return value ? nlohmann::ordered_json(*value) : nlohmann::ordered_json();
}

nlohmann::ordered_json jsonFindings(const std::vector<Finding>& findings);
nlohmann::ordered_json jsonFields(const Block& block);

// Profile, level and picture of a parameter set that the library accepts.
nlohmann::ordered_json jsonVideo(const VideoFormat& video);

}  // namespace qvinspect

#endif
