// Reports whether the work and the memory of each operation grow linearly with the input. Reads a callgrind
// profile and a list of allocated bytes.
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fstream>

#include "CallgrindCounts.h"
#include "Growth.h"

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fputs("usage: qvnalu_growth PROFILE BYTES\n", stderr);
        return EXIT_FAILURE;
    }
    try {
        std::ifstream profile(argv[1]);
        std::ifstream bytes(argv[2]);
        const auto report =
            qv_bench::reportGrowth(qv_bench::readCallgrind(profile), qv_bench::readCounts(bytes));
        std::fputs(report.text.c_str(), stdout);
        if (report.isLinear) {
            return EXIT_SUCCESS;
        }
        std::fputs("Some operation grows faster than its input.\n", stderr);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
    }
    return EXIT_FAILURE;
}
