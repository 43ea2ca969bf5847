// Ctrl-C ends the reading, not the program: the results so far are still written.
#ifndef QVINSPECT_INTERRUPT_H
#define QVINSPECT_INTERRUPT_H

namespace qvinspect {

// Handles SIGINT, SIGTERM and, unless it is ignored, SIGHUP from here on. A second signal, a quarter of a
// second later or more, ends the program at once.
void noteInterrupts();

bool isInterrupted();

// Waits until a read of the file would not block, which includes its end, or until the program is
// interrupted. An interrupt just before the call is not missed. False if the program is interrupted.
bool waitForInput(int file);

// Removes the file of that path if a second signal ends the program. The text must stay valid until
// keepWhenKilled() is called with it. At most 16 files at a time; more are not removed.
void removeWhenKilled(const char* path);
void keepWhenKilled(const char* path);

}  // namespace qvinspect

#endif
