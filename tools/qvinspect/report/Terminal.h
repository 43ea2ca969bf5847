// The width and colours of a listing on a terminal.
#ifndef QVINSPECT_TERMINAL_H
#define QVINSPECT_TERMINAL_H

#include <cstddef>
#include <optional>
#include <string>

#include "report/ColorUse.h"

namespace qvinspect {

// The properties of the listing's output. Names in capitals are environment variables, empty if they are not
// set; an empty variable counts as not set.
struct Terminal {
    bool isTerminal = false;
    size_t columns = 0;  // from the terminal; 0 if unknown
    std::string COLUMNS;
    std::string NO_COLOR;
    std::string TERM;
};

struct PageFormat {
    bool isColored = false;
    std::optional<size_t> width;  // in characters; longer lines are cut. Not set: no lines are cut
};

// Terminal of an open file.
Terminal terminalOf(int fileDescriptor);

// Colour by default: on a terminal that is not "dumb", without NO_COLOR (https://no-color.org). Width, of
// terminals only: COLUMNS, or else the terminal's, or else 80.
PageFormat pageFormat(const Terminal& terminal, ColorUse color);

}  // namespace qvinspect

#endif
