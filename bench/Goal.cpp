#include "Goal.h"

#include <cstdio>
#include <cstdlib>

namespace qv_bench {

namespace {

double limitOf(const Goal& goal, Vectors vectors) {
    return vectors == Vectors::Wide ? goal.wide : goal.baseline;
}

double asShown(double figure) {
    return std::strtod(figureText(figure).c_str(), nullptr);
}

}  // namespace

Goal atLeast(double wide, double baseline) {
    return {Bound::AtLeast, wide, baseline};
}

Goal atLeast(double limit) {
    return {Bound::AtLeast, limit, limit};
}

Goal atMost(double limit) {
    return {Bound::AtMost, limit, limit};
}

Goal exactly(double limit) {
    return {Bound::Exactly, limit, limit};
}

bool isReached(const Goal& goal, double figure, Vectors vectors) {
    const double shown = asShown(figure);
    const double limit = asShown(limitOf(goal, vectors));
    switch (goal.bound) {
        case Bound::AtLeast:
            return shown >= limit;
        case Bound::AtMost:
            return shown <= limit;
        case Bound::Exactly:
            return !(shown < limit) && !(shown > limit);
        case Bound::None:
            break;
    }
    return true;
}

std::string markText(const Goal& goal, double figure, Vectors vectors) {
    if (goal.bound == Bound::None) {
        return "";
    }
    return isReached(goal, figure, vectors) ? "pass" : "MISS";
}

std::string goalText(const Goal& goal, Vectors vectors) {
    const std::string limit = figureText(limitOf(goal, vectors));
    switch (goal.bound) {
        case Bound::AtLeast:
            return ">= " + limit;
        case Bound::AtMost:
            return "<= " + limit;
        case Bound::Exactly:
            return "== " + limit;
        case Bound::None:
            break;
    }
    return "";
}

std::string figureText(double figure) {
    char text[64];
    std::snprintf(text, sizeof text, figure < 1000 ? "%.2f" : "%.0f", figure);
    return text;
}

}  // namespace qv_bench
