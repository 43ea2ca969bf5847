// Compares the instruction counts of a callgrind profile with a budget, or writes a new budget from them.
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <sstream>
#include <string>

#include "CallgrindCounts.h"
#include "InstructionBudget.h"

namespace {

using namespace qv_bench;

std::string readText(const char* path) {
    std::ifstream file(path);
    if (!file) {
        throw std::runtime_error(std::string("cannot read ") + path);
    }
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

int compareCounts(const InstructionCounts& counts, const char* path) {
    std::istringstream text(readText(path));
    const BudgetReport report = compare(counts, readBudget(text));
    std::fputs(report.text.c_str(), stdout);
    if (report.isKept) {
        return EXIT_SUCCESS;
    }
    std::puts("\nThe budget is not kept. If the change is intended, run scripts/dev/instructions --renew");
    return EXIT_FAILURE;
}

int renew(const InstructionCounts& counts, const char* path) {
    std::ofstream file(path);
    file << "# Instructions of each operation: callgrind, " QV_BENCH_COMPILER
            ", vectors of every machine.\n"
            "# scripts/dev/instructions compares them, scripts/dev/instructions --renew writes this file.\n"
         << budgetText(counts) << std::flush;
    std::printf("%zu operations written to %s\n", counts.size(), path);
    return file.good() ? EXIT_SUCCESS : EXIT_FAILURE;
}

int run(int argc, char** argv) {
    const bool isRenewal = argc == 4 && std::string(argv[3]) == "--renew";
    if (argc != 3 && !isRenewal) {
        std::fputs("usage: qvnalu_budget PROFILE BUDGET [--renew]\n", stderr);
        return EXIT_FAILURE;
    }
    std::istringstream profile(readText(argv[1]));
    const InstructionCounts counts = readCallgrind(profile);
    if (counts.empty()) {
        throw std::runtime_error(std::string("no counts in ") + argv[1]);
    }
    return isRenewal ? renew(counts, argv[2]) : compareCounts(counts, argv[2]);
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return run(argc, argv);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return EXIT_FAILURE;
    }
}
