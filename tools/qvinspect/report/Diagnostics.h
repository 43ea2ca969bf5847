// Messages on standard error.
#ifndef QVINSPECT_DIAGNOSTICS_H
#define QVINSPECT_DIAGNOSTICS_H

#include <string_view>

namespace qvinspect {

// Writes text, detail and a line feed to standard error. A failure is ignored: the exit code does not depend
// on standard error.
void printDiagnostic(std::string_view text, std::string_view detail = {}) noexcept;

// The same with "qvinspect: " before it.
void complain(std::string_view text, std::string_view detail = {}) noexcept;

}  // namespace qvinspect

#endif
