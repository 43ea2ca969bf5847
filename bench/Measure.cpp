#include "Measure.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace qv_bench {

namespace {

class Medians : public benchmark::BenchmarkReporter {
public:
    explicit Medians(size_t sides) : times(sides) {}

    bool ReportContext(const Context& /*context*/) override { return true; }

    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.run_type == Run::RT_Aggregate && run.aggregate_name == "median") {
                times.at(std::stoul(run.run_name.function_name)) = run.GetAdjustedCPUTime();
            }
        }
    }

    std::vector<double> times;
};

void runSide(benchmark::State& state, const std::function<void()>& side) {
    for (auto _ : state) {
        side();
        benchmark::ClobberMemory();
    }
}

}  // namespace

bool initialiseMeasuring(int argc, char** argv) {
    // These come before the caller's arguments, so the caller's override them.
    static std::vector<std::string> arguments = {argv[0], "--benchmark_repetitions=9",
                                                 "--benchmark_enable_random_interleaving=true",
                                                 "--benchmark_min_time=0.04"};
    arguments.insert(arguments.end(), argv + 1, argv + argc);
    static std::vector<char*> pointers;
    for (std::string& argument : arguments) {
        pointers.push_back(argument.data());
    }
    int count = static_cast<int>(pointers.size());
    benchmark::Initialize(&count, pointers.data());
    return !benchmark::ReportUnrecognizedArguments(count, pointers.data());
}

std::vector<double> medians(const std::vector<std::function<void()>>& sides) {
    benchmark::ClearRegisteredBenchmarks();
    for (size_t i = 0; i < sides.size(); ++i) {
        const auto& side = sides[i];
        benchmark::RegisterBenchmark(std::to_string(i).c_str(), [&side](benchmark::State& state) {
            runSide(state, side);
        })->Unit(benchmark::kNanosecond);
    }
    Medians reporter(sides.size());
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::ClearRegisteredBenchmarks();
    for (const double time : reporter.times) {
        require(time > 0, "every side is timed");
    }
    return reporter.times;
}

void require(bool isRight, const char* what) {
    if (!isRight) {
        std::fprintf(stderr, "check failed, nothing is measured: %s\n", what);
        std::exit(EXIT_FAILURE);
    }
}

}  // namespace qv_bench
