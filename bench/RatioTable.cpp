#include "RatioTable.h"

#include <cstddef>
#include <cstdio>

namespace qv_bench {

namespace {

void measureOperation(const Operation& operation, const Stopwatch& medians, std::vector<TableRow>& rows) {
    std::vector<std::function<void()>> sides = {operation.run};
    for (const Yardstick& yardstick : operation.yardsticks) {
        if (yardstick.run) {
            sides.push_back(yardstick.run);
        }
    }
    const std::vector<double> times = medians(sides);
    for (const Cost& cost : operation.costs) {
        rows.push_back({operation.name, "ns a " + cost.of, times.front() / cost.perCall, cost.goal});
    }
    size_t side = 0;
    for (const Yardstick& yardstick : operation.yardsticks) {
        if (yardstick.run) {
            ++side;
            rows.push_back(
                {operation.name, "of " + yardstick.name, times[side] / times.front(), yardstick.goal});
        }
    }
}

std::string line(const std::string& name, const std::string& figure, const std::string& of,
                 const std::string& goal, const std::string& mark) {
    char text[512];
    std::snprintf(text, sizeof text, "%-58s %9s %-42s %9s  %s", name.c_str(), figure.c_str(), of.c_str(),
                  goal.c_str(), mark.c_str());
    std::string result = text;
    result.erase(result.find_last_not_of(' ') + 1);
    return result + '\n';
}

}  // namespace

std::vector<TableRow> measure(const Rows& rows, const Stopwatch& medians) {
    std::vector<TableRow> result;
    for (const Operation& operation : rows.operations) {
        measureOperation(operation, medians, result);
    }
    for (const Count& count : rows.counts) {
        result.push_back({count.name, count.of, count.figure, count.goal});
    }
    return result;
}

std::string tableHeading() {
    return line("operation", "measured", "", "goal", "");
}

std::string tableLine(const TableRow& row, Vectors vectors) {
    return line(row.name, figureText(row.figure), row.of, goalText(row.goal, vectors),
                markText(row.goal, row.figure, vectors));
}

std::string summaryLine(const std::vector<TableRow>& rows, Vectors vectors) {
    size_t goals = 0;
    size_t reached = 0;
    for (const TableRow& row : rows) {
        if (row.goal.bound != Bound::None) {
            ++goals;
            reached += isReached(row.goal, row.figure, vectors) ? 1U : 0U;
        }
    }
    return std::to_string(reached) + " of " + std::to_string(goals) + " goals reached\n";
}

std::string replaceMarked(const std::string& text, const std::string& name, const std::string& lines) {
    const std::string first = "<!-- " + name + " -->\n";
    const size_t opening = text.find(first);
    if (opening == std::string::npos) {
        return "";
    }
    const size_t from = opening + first.size();
    const size_t end = text.find("<!-- end -->\n", from);
    if (end == std::string::npos) {
        return "";
    }
    return text.substr(0, from) + lines + text.substr(end);
}

}  // namespace qv_bench
