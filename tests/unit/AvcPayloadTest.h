// Shared by the tests of the H.264 SEI payload parsers.
#ifndef QV_TESTS_AVCPAYLOADTEST_H
#define QV_TESTS_AVCPAYLOADTEST_H

#include <climits>
#include <cstdint>
#include <type_traits>

#include "QVNaluParser.h"

namespace qv_test {

template <class Record>
constexpr bool isPlain() {
    return std::is_standard_layout<Record>::value && std::is_trivial<Record>::value;
}

// Values of payloadSize for parsers that must not use it.
constexpr int kPayloadSizes[] = {INT_MIN, -1, 0, 1, 1000, INT_MAX};

// An SPS with NAL HRD parameters.
inline QVAvcSps nalHrdSps(int32_t cpb_cnt = 1) {
    QVAvcSps sps{};
    sps.nal_hrd_parameters_present_flag = 1;
    sps.cpb_cnt = cpb_cnt;
    sps.initial_cpb_removal_delay_length = 24;
    sps.cpb_removal_delay_length = 24;
    sps.dpb_output_delay_length = 24;
    return sps;
}

inline QVAvcSps bothHrdsSps(int32_t cpb_cnt) {
    QVAvcSps sps = nalHrdSps(cpb_cnt);
    sps.vcl_hrd_parameters_present_flag = 1;
    return sps;
}

}  // namespace qv_test

#endif
