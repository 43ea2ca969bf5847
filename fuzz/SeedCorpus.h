// What fuzzing begins with: inputs for each target, from the builders of the tests and from real streams.
#ifndef QV_FUZZ_SEEDCORPUS_H
#define QV_FUZZ_SEEDCORPUS_H

#include <string>
#include <vector>

#include "BitWriter.h"

namespace qv_fuzz {

struct Seed {
    std::string target;
    qv_test::Bytes bytes;
};

// Parameter sets, messages and small samples as the builders make them.
std::vector<Seed> builtSeeds();

// A byte stream as a whole, and its units.
std::vector<Seed> seedsOf(const qv_test::Bytes& stream, bool isHevc);

}  // namespace qv_fuzz

#endif
