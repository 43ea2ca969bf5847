// Random input: how much of it, and numbers below a bound.
#ifndef QV_TESTS_RANDOMROUNDS_H
#define QV_TESTS_RANDOMROUNDS_H

#include <cstddef>
#include <cstdlib>
#include <random>

namespace qv_test {

using Random = std::mt19937;

// The number of buffers of a test: QVNALU_TEST_ROUNDS, or a default that suits every run of the tests.
inline int rounds() {
    const char* const text = std::getenv("QVNALU_TEST_ROUNDS");
    return text != nullptr ? std::atoi(text) : 4000;
}

// A number of [0, bound), for bounds of 1 and more.
inline size_t below(Random& random, size_t bound) {
    return random() % bound;
}

}  // namespace qv_test

#endif
