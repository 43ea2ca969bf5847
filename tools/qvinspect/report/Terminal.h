// What a terminal asks of a listing.
#ifndef QVINSPECT_TERMINAL_H
#define QVINSPECT_TERMINAL_H

#include <cstddef>
#include <optional>
#include <string>

#include "report/ColorUse.h"

namespace qvinspect {

// What is known of where a listing goes. Names in capitals are variables of the environment, empty when they
// are not set: an empty one counts as not set.
struct Terminal {
    bool isTerminal = false;
    size_t columns = 0;  // as the terminal says; 0 when it does not
    std::string COLUMNS;
    std::string NO_COLOR;
    std::string TERM;
};

struct PageFormat {
    bool isColored = false;
    std::optional<size_t>
        width;  // in characters; longer lines are cut. Not set: lines are as long as they are
};

// Terminal of an open file.
Terminal terminalOf(int fileDescriptor);

// Colour, unless it is said: on a terminal that is not "dumb", without NO_COLOR (https://no-color.org).
// Width: of terminals only: COLUMNS, or else what the terminal says, or else 80.
PageFormat pageFormat(const Terminal& terminal, ColorUse color);

}  // namespace qvinspect

#endif
