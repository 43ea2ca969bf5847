// Ctrl-C ends the work, not the program: what was found out so far is still written.
#ifndef QVINSPECT_INTERRUPT_H
#define QVINSPECT_INTERRUPT_H

namespace qvinspect {

// SIGINT and SIGTERM are noted from here on; a second one ends the program at once.
void noteInterrupts();

bool isInterrupted();

}  // namespace qvinspect

#endif
