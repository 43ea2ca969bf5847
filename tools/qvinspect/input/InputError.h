// Thrown if a file cannot be inspected at all. The text is one line that says what to do next.
#ifndef QVINSPECT_INPUTERROR_H
#define QVINSPECT_INPUTERROR_H

#include <stdexcept>

namespace qvinspect {

struct InputError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

}  // namespace qvinspect

#endif
