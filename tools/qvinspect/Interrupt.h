// Ctrl-C ends the work, not the program: what was found out so far is still written.
#ifndef QVINSPECT_INTERRUPT_H
#define QVINSPECT_INTERRUPT_H

namespace qvinspect {

// SIGINT and SIGTERM are noted from here on; a second one ends the program at once.
void noteInterrupts();

bool isInterrupted();

// Waits until a read of the file would not block, its end included, or the program is interrupted, also when
// that happens right ahead of the call. False when it is interrupted.
bool waitForInput(int file);

}  // namespace qvinspect

#endif
