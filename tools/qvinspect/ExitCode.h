#ifndef QVINSPECT_EXITCODE_H
#define QVINSPECT_EXITCODE_H

namespace qvinspect {

// If several apply, the first of: kExitInterrupted, kExitOutput, kExitInput, kExitCheck, kExitErrors.
constexpr int kExitOk = 0;
constexpr int kExitUsage = 1;          // a wrong command line
constexpr int kExitInput = 2;          // an input cannot be opened or has no such video
constexpr int kExitErrors = 3;         // errors in a stream, with --strict
constexpr int kExitCheck = 4;          // a check failed
constexpr int kExitOutput = 5;         // an output cannot be written
constexpr int kExitInterrupted = 130;  // what was written is valid

}  // namespace qvinspect

#endif
