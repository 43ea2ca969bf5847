#ifndef QVINSPECT_EXITCODE_H
#define QVINSPECT_EXITCODE_H

namespace qvinspect {

constexpr int kExitOk = 0;
constexpr int kExitUsage = 1;  // a wrong command line
constexpr int kExitInput = 2;  // a file could not be inspected, or the listing not be written

}  // namespace qvinspect

#endif
