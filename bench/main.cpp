// Measures every operation and its yardsticks, and prints the table.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>

#include "Curves.h"
#include "Groups.h"
#include "Measure.h"
#include "Peers.h"
#include "Pools.h"
#include "QVCoreStandalone.h"

namespace {

using namespace qv_bench;

constexpr const char* kUsage =
    "usage: qvnalu_bench --streams=FOLDER [--only=GROUP] [--docs=FILE] [--commit=TEXT] [--curves=FOLDER] "
    "[GOOGLE BENCHMARK OPTION...]\n"
    "  --streams=FOLDER  read the encoded streams from FOLDER; scripts/dev/bench makes them\n"
    "  --only=GROUP      run only scan, lengths, key, reframe, sps, sei, reader, allocations, streams, sets, "
    "messages\n"
    "                    or units\n"
    "  --docs=FILE       write the table into FILE, between its markers\n"
    "  --commit=TEXT     name the commit in the head of the table\n"
    "  --curves=FOLDER   also measure cost against size and density, and write it to FOLDER for gnuplot\n";

struct Options {
    std::string streams;
    std::string only;
    std::string docs;
    std::string commit;
    std::string curves;
    std::vector<char*> others;  // for Google Benchmark
};

bool take(const char* argument, const char* name, std::string& value) {
    const size_t length = std::strlen(name);
    if (std::strncmp(argument, name, length) != 0) {
        return false;
    }
    value = argument + length;
    return true;
}

Options readOptions(int argc, char** argv) {
    Options options;
    options.others.push_back(argv[0]);
    for (int i = 1; i < argc; ++i) {
        const bool isOurs =
            take(argv[i], "--streams=", options.streams) || take(argv[i], "--only=", options.only) ||
            take(argv[i], "--docs=", options.docs) || take(argv[i], "--commit=", options.commit) ||
            take(argv[i], "--curves=", options.curves);
        if (!isOurs) {
            options.others.push_back(argv[i]);
        }
    }
    return options;
}

Vectors vectorsInUse() {
    const std::string built = QV_BENCH_VECTORS;
    if (built == "none") {
        return Vectors::None;
    }
#if defined(__x86_64__)
    if (built == "auto" && __builtin_cpu_supports("avx2") != 0) {
        return Vectors::Wide;
    }
#endif
    return Vectors::Baseline;
}

const char* nameOf(Vectors vectors) {
#if defined(__aarch64__)
    constexpr const char* kBaseline = "NEON";
#else
    constexpr const char* kBaseline = "SSE2";
#endif
    return vectors == Vectors::Wide ? "AVX2" : vectors == Vectors::Baseline ? kBaseline : "none";
}

std::string processorName() {
    std::ifstream info("/proc/cpuinfo");
    for (std::string line; std::getline(info, line);) {
        if (line.rfind("model name", 0) == 0) {
            return line.substr(line.find(':') + 2);
        }
    }
    return "unknown";
}

// The time of one addition in a chain of dependent additions, which is one processor cycle. It puts rows in
// nanoseconds in relation, because the clock of a virtual machine varies.
double nanosecondsOfAnAddition() {
    constexpr int kAdditions = 10000;
    const auto chain = [] {
        uint64_t sum = 0;
        for (int i = 0; i < kAdditions; ++i) {
            asm volatile("" : "+r"(sum));
            ++sum;
        }
    };
    return medians({chain}).front() / kAdditions;
}

std::string additionLine() {
    char text[64];
    std::snprintf(text, sizeof text, "cycle       %.2f ns, by a chain of additions",
                  nanosecondsOfAnAddition());
    return text;
}

std::string heading(const Options& options, Vectors vectors) {
    const auto orNone = [](const std::string& name) { return name.empty() ? "none" : name; };
    return "commit      " + orNone(options.commit) + "\nvectors     " + nameOf(vectors) + "\nprocessor   " +
           processorName() + "\n" + additionLine() + "\ncompiler    " QV_BENCH_COMPILER "\npeers       " +
           orNone(gstreamerName()) + ", " + orNone(libavcodecName()) + "\n\n" + tableHeading();
}

std::vector<Group> groups(const Options& options) {
    std::vector<Group> all;
    for (const auto& some :
         {scanGroups(), lengthScanGroups(), keyFrameGroups(), reframeGroups(), parameterSetGroups(),
          seiGroups(), readerGroups(), allocationGroups(), streamGroups(options.streams),
          wholeParameterSetGroups(), messageGroups(), unitGroups(options.streams)}) {
        all.insert(all.end(), some.begin(), some.end());
    }
    return all;
}

void show(const std::string& text, std::string& report) {
    std::fputs(text.c_str(), stdout);
    std::fflush(stdout);
    report += text;
}

std::string reportTable(const Options& options, Vectors vectors) {
    std::string report;
    show(heading(options, vectors), report);
    std::vector<TableRow> table;
    for (const Group& group : groups(options)) {
        if (!options.only.empty() && group.name != options.only) {
            continue;
        }
        for (const TableRow& row : measure(group.make(), medians)) {
            table.push_back(row);
            show(tableLine(row, vectors), report);
        }
    }
    show('\n' + summaryLine(table, vectors), report);
    return report;
}

int writeDocs(const std::string& path, const std::string& name, const std::string& table) {
    const Bytes text = readFile(path);
    const std::string replaced =
        replaceMarked(std::string(text.begin(), text.end()), name, "```\n" + table + "```\n");
    if (replaced.empty()) {
        std::fprintf(stderr, "%s has no markers for the table \"%s\"\n", path.c_str(), name.c_str());
        return EXIT_FAILURE;
    }
    std::ofstream out(path);
    out << replaced << std::flush;
    return out.good() ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace

int main(int argc, char** argv) {
    Options options = readOptions(argc, argv);
    if (options.streams.empty()) {
        std::fputs(kUsage, stderr);
        return EXIT_FAILURE;
    }
    if (!initialiseMeasuring(static_cast<int>(options.others.size()), options.others.data())) {
        return EXIT_FAILURE;
    }
    qvSetTraceLevel(-1);
    const Vectors vectors = vectorsInUse();
    const std::string report = reportTable(options, vectors);
    if (!options.curves.empty()) {
        writeCurves(options.curves);
    }
    return options.docs.empty() ? EXIT_SUCCESS : writeDocs(options.docs, nameOf(vectors), report);
}
