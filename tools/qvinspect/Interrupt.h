// Ctrl-C ends the work, not the program: what was found out so far is still written.
#ifndef QVINSPECT_INTERRUPT_H
#define QVINSPECT_INTERRUPT_H

namespace qvinspect {

// SIGINT, SIGTERM and, unless it is ignored, SIGHUP are noted from here on. A second signal, a quarter of a
// second later or more, ends the program at once.
void noteInterrupts();

bool isInterrupted();

// Waits until a read of the file would not block, its end included, or the program is interrupted, also when
// that happens right ahead of the call. False when it is interrupted.
bool waitForInput(int file);

// Has the file of that path removed if a second signal ends the program. The text must stay where it is until
// keepWhenKilled() is called with it. At most 16 files at a time; more are left to their fate.
void removeWhenKilled(const char* path);
void keepWhenKilled(const char* path);

}  // namespace qvinspect

#endif
