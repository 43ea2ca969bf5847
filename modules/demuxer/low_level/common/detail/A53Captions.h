// The common part of the H.264 and H.265 caption walks: user_data() of ATSC A/53 Part 4 (2009) 6.2.
#ifndef QV_DEMUXER_DETAIL_A53CAPTIONS_H
#define QV_DEMUXER_DETAIL_A53CAPTIONS_H

#include "detail/PlainBits.h"

namespace qv_detail {

// user_data_type_code and two bytes of cc_data().
constexpr int kSmallestCaption = 3;

// Skips size - 1 bytes one by one, as far as they fit.
inline void skipUserData(QVByteStream& stream, int size) {
    PlainBits in(stream);
    for (int i = 0; i < size - 1 && !stream.atEnd(); ++i) {
        in.skip(8);
    }
}

// The head of cc_data(), after user_data_type_code. Returns the number of constructs that follow: 0 when they
// are not to be processed or do not fit into size, which includes user_data_type_code.
inline int readCcCount(QVByteStream& stream, int size) {
    PlainBits in(stream);
    in.skip(1);  // process_em_data_flag
    if (stream.atEnd()) {
        return 0;
    }
    const uint32_t process_cc_data_flag = in.u(1);
    if (process_cc_data_flag == 0) {
        return 0;
    }
    in.skip(1);  // additional_data_flag
    const int cc_count = static_cast<int>(in.u(5));
    in.skip(8);  // em_data
    return size - 2 < 3 * cc_count ? 0 : cc_count;
}

}  // namespace qv_detail

#endif
