// FUZZ_CHECK aborts if its claim is false, so the fuzzer reports a violated claim like a crash.
#ifndef QV_FUZZ_FUZZCHECK_H
#define QV_FUZZ_FUZZCHECK_H

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#define FUZZ_CHECK(claim)                                                                   \
    do {                                                                                    \
        if (!(claim)) {                                                                     \
            std::fprintf(stderr, "%s:%d: does not hold: %s\n", __FILE__, __LINE__, #claim); \
            std::abort();                                                                   \
        }                                                                                   \
    } while (false)

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size);

#endif
