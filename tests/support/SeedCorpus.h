// The seeds of fuzzing: inputs for each target, from the builders of the tests and from real streams.
#ifndef QV_TESTS_SEEDCORPUS_H
#define QV_TESTS_SEEDCORPUS_H

#include <string>
#include <vector>

#include "BitWriter.h"

namespace qv_test {

struct Seed {
    std::string target;
    Bytes bytes;
};

// Parameter sets, messages and small samples from the builders.
std::vector<Seed> builtSeeds();

// A byte stream as a whole, and its units.
std::vector<Seed> seedsOf(const Bytes& stream, bool isHevc);

}  // namespace qv_test

#endif
