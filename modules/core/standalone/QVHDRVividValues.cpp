#include <algorithm>
#include <cmath>

#include "QVHDRVividDynamicMetadata.h"

double qvHdrVividPq(uint32_t code) {
    return code / 4095.0;
}

double qvPqToLuminance(double pq) {
    constexpr double kM1 = 2610.0 / 16384;
    constexpr double kM2 = 2523.0 / 4096 * 128;
    constexpr double kC1 = 3424.0 / 4096;
    constexpr double kC2 = 2413.0 / 4096 * 32;
    constexpr double kC3 = 2392.0 / 4096 * 32;
    constexpr double kPeak = 10000;
    const double root = std::pow(std::clamp(pq, 0.0, 1.0), 1 / kM2);
    return kPeak * std::pow(std::max(root - kC1, 0.0) / (kC2 - kC3 * root), 1 / kM1);
}

double qvHdrVividM_p(const QVHDRVividToneMapping& mapping) {
    return mapping.base_param_m_p / 16383.0;
}

double qvHdrVividM_m(const QVHDRVividToneMapping& mapping) {
    return mapping.base_param_m_m / 10.0;
}

double qvHdrVividM_a(const QVHDRVividToneMapping& mapping) {
    return mapping.base_param_m_a / 1023.0;
}

double qvHdrVividM_b(const QVHDRVividToneMapping& mapping) {
    return mapping.base_param_m_b / 1023.0;
}

double qvHdrVividM_n(const QVHDRVividToneMapping& mapping) {
    return mapping.base_param_m_n / 10.0;
}

double qvHdrVividDelta(const QVHDRVividToneMapping& mapping) {
    const double delta = mapping.base_param_enable_Delta / 127.0;
    return mapping.base_param_Delta_enable_mode % 2 == 0 ? delta : -delta;
}

double qvHdrVividThMb(const QVHDRVividSpline& spline) {
    return spline.TH_enable_MB / 255.0;
}

double qvHdrVividTh(const QVHDRVividSpline& spline) {
    return qvHdrVividPq(spline.TH_enable);
}

double qvHdrVividThDelta1(const QVHDRVividSpline& spline) {
    return 0.25 * spline.TH_enable_Delta1 / 1023.0;
}

double qvHdrVividThDelta2(const QVHDRVividSpline& spline) {
    return 0.25 * spline.TH_enable_Delta2 / 1023.0;
}

double qvHdrVividStrength(const QVHDRVividSpline& spline) {
    return spline.enable_Strength / 255.0;
}

double qvHdrVividGain(uint32_t code) {
    return code / 128.0;
}
