#include "analysis/HdrValues.h"

#include <cmath>

#include "QVCoreStandalone.h"

namespace qvinspect {

double pqLuminance(uint32_t code) {
    constexpr double kStep = 1e6;  // mathematical libraries differ in further decimals
    return std::round(qvPqToLuminance(qvHdrVividPq(code)) * kStep) / kStep;
}

}  // namespace qvinspect
