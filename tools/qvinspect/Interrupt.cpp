#include "Interrupt.h"

#include <csignal>

namespace qvinspect {

namespace {

volatile std::sig_atomic_t interrupted = 0;

extern "C" void noteInterrupt(int) {
    interrupted = 1;
}

}  // namespace

void noteInterrupts() {
    struct sigaction action = {};
    action.sa_handler = noteInterrupt;
    sigemptyset(&action.sa_mask);
    // Without SA_RESTART: a read that waits for more comes back.
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
}

bool isInterrupted() {
    return interrupted != 0;
}

}  // namespace qvinspect
