// The date that --stamp puts into outputs.
#ifndef QVINSPECT_STAMP_H
#define QVINSPECT_STAMP_H

#include <ctime>
#include <string>

namespace qvinspect {

// ISO 8601, UTC, to the second: "2024-02-29T23:59:59Z".
std::string stampText(std::time_t time);

}  // namespace qvinspect

#endif
