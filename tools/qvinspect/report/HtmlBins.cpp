#include "report/HtmlBins.h"

namespace qvinspect {

void VividBin::merge(const VividBin& next) {
    if (next.count == 0) {
        return;
    }
    minimum = count == 0 ? next.minimum : std::min(minimum, next.minimum);
    maximum = std::max(maximum, next.maximum);
    averageSum += next.averageSum;
    count += next.count;
}

void AccessUnitBin::merge(const AccessUnitBin& next) {
    if (count == 0) {
        time = next.time;
    }
    count += next.count;
    bytes += next.bytes;
    largest = std::max(largest, next.largest);
    keys += next.keys;
    errors += next.errors;
    vivid.merge(next.vivid);
    messages.resize(std::max(messages.size(), next.messages.size()));
    for (size_t lane = 0; lane < next.messages.size(); ++lane) {
        messages[lane] += next.messages[lane];
    }
}

void AccessUnitBin::addMessage(size_t lane) {
    messages.resize(std::max(messages.size(), lane + 1));
    ++messages[lane];
}

void TimeBin::merge(const TimeBin& next) {
    count += next.count;
    bytes += next.bytes;
}

}  // namespace qvinspect
