#include "Interrupt.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>

namespace qvinspect {

namespace {

volatile std::sig_atomic_t interrupted = 0;

// Written to when the program is interrupted: a signal between a look at the flag and a wait would be missed
// by the wait. -1, which poll passes over, until interrupts are noted.
int wakeRead = -1;
volatile std::sig_atomic_t wakeWrite = -1;

extern "C" void noteInterrupt(int) {
    const int error = errno;
    interrupted = 1;
    const char byte = 0;
    [[maybe_unused]] const ssize_t written = write(wakeWrite, &byte, 1);
    errno = error;
}

void openWakePipe() {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC | O_NONBLOCK) == 0) {
        wakeRead = ends[0];
        wakeWrite = ends[1];
    }
}

}  // namespace

void noteInterrupts() {
    openWakePipe();
    struct sigaction action = {};
    action.sa_handler = noteInterrupt;
    sigemptyset(&action.sa_mask);
    // Without SA_RESTART: a wait for input comes back.
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
}

bool isInterrupted() {
    return interrupted != 0;
}

bool waitForInput(int file) {
    pollfd files[] = {{file, POLLIN, 0}, {wakeRead, POLLIN, 0}};
    while (!isInterrupted() && poll(files, 2, -1) < 0 && errno == EINTR) {
    }
    return !isInterrupted();
}

}  // namespace qvinspect
