#include "Interrupt.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <ctime>

namespace qvinspect {

namespace {

volatile std::sig_atomic_t interrupted = 0;
std::atomic<int64_t> interruptedAt = 0;  // milliseconds

// timeout(1) sends its signal twice, to the program and to its process group, as one request.
constexpr int64_t kSameRequest = 250;  // milliseconds

// Written when the program is interrupted: a wait would miss a signal that arrives between the test of the
// flag and the wait. -1, which poll ignores, until interrupts are handled.
int wakeRead = -1;
volatile std::sig_atomic_t wakeWrite = -1;

// Paths of files to remove, or null.
std::array<std::atomic<const char*>, 16> removed = {};
static_assert(std::atomic<const char*>::is_always_lock_free && std::atomic<int64_t>::is_always_lock_free,
              "a signal handler may use them");

int64_t now() {
    timespec time = {};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return int64_t{1000} * time.tv_sec + time.tv_nsec / 1'000'000;
}

void endProgram(int signal) {
    for (const std::atomic<const char*>& path : removed) {
        if (const char* const file = path.load(); file != nullptr) {
            unlink(file);
        }
    }
    std::signal(signal, SIG_DFL);
    raise(signal);  // blocked until the handler returns
}

extern "C" void noteInterrupt(int signal) {
    const int error = errno;
    if (interrupted != 0 && now() - interruptedAt.load() >= kSameRequest) {
        endProgram(signal);
    }
    if (interrupted == 0) {
        interruptedAt.store(now());
    }
    interrupted = 1;
    const char byte = 0;
    [[maybe_unused]] const ssize_t written = write(wakeWrite, &byte, 1);
    errno = error;
}

bool isIgnored(int number) {
    struct sigaction action = {};
    return sigaction(number, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
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
    action.sa_flags = 0;  // without SA_RESTART: a wait for input returns
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
    if (!isIgnored(SIGHUP)) {  // nohup
        sigaction(SIGHUP, &action, nullptr);
    }
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

void removeWhenKilled(const char* path) {
    for (std::atomic<const char*>& place : removed) {
        if (place.load() == nullptr) {
            place.store(path);
            return;
        }
    }
}

void keepWhenKilled(const char* path) {
    for (std::atomic<const char*>& place : removed) {
        if (place.load() == path) {
            place.store(nullptr);
        }
    }
}

}  // namespace qvinspect
