#include "RatioTable.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <map>
#include <utility>
#include <vector>

namespace qv_bench {

namespace {

std::vector<Row>& rows() {
    static std::vector<Row> all;
    return all;
}

// Keeps the medians, in nanoseconds a call.
class Medians : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context& /*context*/) override { return true; }

    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.run_type == Run::RT_Aggregate && run.aggregate_name == "median") {
                medians_[run.run_name.function_name] = run.GetAdjustedRealTime();
            }
        }
    }

    double of(const std::string& name) const {
        const auto median = medians_.find(name);
        return median != medians_.end() ? median->second : 0;
    }

private:
    std::map<std::string, double> medians_;
};

void registerSide(const std::string& name, const std::function<void()>& side) {
    benchmark::RegisterBenchmark(name.c_str(), [&side](benchmark::State& state) {
        for (auto _ : state) {
            side();
            benchmark::ClobberMemory();
        }
    })->Unit(benchmark::kNanosecond);
}

void print(const Medians& medians) {
    std::printf("%-52s %14s  %s\n", "operation", "ns", "ratio to");
    for (const Row& row : rows()) {
        const double operation = medians.of(row.name);
        if (row.reference) {
            std::printf("%-52s %14.1f  %.2f of %s\n", row.name.c_str(), operation,
                        medians.of(row.name + "/reference") / operation, row.yardstick.c_str());
        } else {
            std::printf("%-52s %14.2f  %s\n", row.name.c_str(), operation / row.perCall,
                        row.yardstick.c_str());
        }
    }
}

}  // namespace

void require(bool isRight, const char* what) {
    if (!isRight) {
        std::fprintf(stderr, "wrong result, nothing is timed: %s\n", what);
        std::exit(EXIT_FAILURE);
    }
}

void addRow(Row row) {
    rows().push_back(std::move(row));
}

int runTable(int argc, char** argv) {
    // Ahead of the caller's own, which win.
    std::vector<std::string> arguments = {argv[0], "--benchmark_repetitions=9",
                                          "--benchmark_enable_random_interleaving=true",
                                          "--benchmark_min_time=0.05"};
    arguments.insert(arguments.end(), argv + 1, argv + argc);
    std::vector<char*> pointers;
    for (std::string& argument : arguments) {
        pointers.push_back(argument.data());
    }
    int count = static_cast<int>(pointers.size());
    benchmark::Initialize(&count, pointers.data());
    if (benchmark::ReportUnrecognizedArguments(count, pointers.data())) {
        return EXIT_FAILURE;
    }
    for (const Row& row : rows()) {
        registerSide(row.name, row.operation);
        if (row.reference) {
            registerSide(row.name + "/reference", row.reference);
        }
    }
    Medians medians;
    benchmark::RunSpecifiedBenchmarks(&medians);
    print(medians);
    return EXIT_SUCCESS;
}

}  // namespace qv_bench
