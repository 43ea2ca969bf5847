#include "Growth.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>

namespace qv_bench {

namespace {

struct Series {
    uint64_t size = 0;
    std::array<uint64_t, 3> counts{};  // at size, 2 size and 4 size
};

using SeriesByOperation = std::map<std::string, Series>;

SeriesByOperation seriesOf(const Counts& counts) {
    std::map<std::string, std::map<uint64_t, uint64_t>> sizes;
    for (const auto& [name, count] : counts) {
        const size_t at = name.rfind(" @ ");
        if (at == std::string::npos) {
            throw std::runtime_error("the name has no size: " + name);
        }
        sizes[name.substr(0, at)][std::strtoull(name.c_str() + at + 3, nullptr, 10)] = count;
    }
    SeriesByOperation all;
    for (const auto& [operation, bySize] : sizes) {
        Series series{bySize.begin()->first, {}};
        size_t i = 0;
        for (const auto& [size, count] : bySize) {
            if (i == series.counts.size() || size != series.size << i) {
                throw std::runtime_error("sizes of " + operation + " are not n, 2 n, 4 n");
            }
            series.counts[i++] = count;
        }
        if (i != series.counts.size()) {
            throw std::runtime_error(operation + " has no count for one of the three sizes");
        }
        all[operation] = series;
    }
    return all;
}

// The cost per input byte, without the part that does not depend on the size.
double slope(const Series& series) {
    const auto grown = static_cast<double>(series.counts[2]) - static_cast<double>(series.counts[0]);
    return grown / (3 * static_cast<double>(series.size));
}

bool growsInProportion(const Series& series) {
    return isLinear(series.counts[0], series.counts[1], series.counts[2]);
}

std::string growthOf(const Series& series) {
    const auto& c = series.counts;
    if (c[1] <= c[0] || c[2] - c[0] <= c[0] / 20) {
        return "-";
    }
    char text[32];
    std::snprintf(text, sizeof text, "%.2f",
                  static_cast<double>(c[2] - c[0]) / static_cast<double>(c[1] - c[0]));
    return text;
}

}  // namespace

bool isLinear(uint64_t atSize, uint64_t atTwice, uint64_t atFourTimes) {
    if (atFourTimes <= atSize + atSize / 20) {
        return true;
    }
    const double first = static_cast<double>(atTwice) - static_cast<double>(atSize);
    const double whole = static_cast<double>(atFourTimes) - static_cast<double>(atSize);
    return whole <= 3.3 * first;
}

Counts readCounts(std::istream& text) {
    Counts counts;
    for (std::string line; std::getline(text, line);) {
        char* end = nullptr;
        const uint64_t count = std::strtoull(line.c_str(), &end, 10);
        if (end == line.c_str() || *end != ' ') {
            throw std::runtime_error("not a line \"COUNT OPERATION @ SIZE\": " + line);
        }
        counts[end + 1] = count;
    }
    return counts;
}

GrowthReport reportGrowth(const Counts& instructions, const Counts& bytes) {
    const SeriesByOperation work = seriesOf(instructions);
    const SeriesByOperation memory = seriesOf(bytes);
    if (work.empty() || work.size() != memory.size()) {
        throw std::runtime_error("no counts, or not as many of instructions as of memory");
    }
    GrowthReport report;
    char line[256];
    std::snprintf(line, sizeof line, "%-70s %9s %14s %7s %12s %7s\n", "operation, input", "bytes",
                  "instructions/B", "growth", "allocated/B", "growth");
    report.text = line;
    for (const auto& [operation, series] : work) {
        const auto found = memory.find(operation);
        if (found == memory.end()) {
            throw std::runtime_error("no memory count for " + operation);
        }
        const bool isKept = growsInProportion(series) && growsInProportion(found->second);
        report.isLinear &= isKept;
        std::snprintf(line, sizeof line, "%-70s %9llu %14.3f %7s %12.3f %7s%s\n", operation.c_str(),
                      static_cast<unsigned long long>(series.size << 2), slope(series),
                      growthOf(series).c_str(), slope(found->second), growthOf(found->second).c_str(),
                      isKept ? "" : "  MORE THAN LINEAR");
        report.text += line;
    }
    return report;
}

}  // namespace qv_bench
