// The parameter set records hold unsigned syntax elements in signed fields, bit for bit.
#ifndef QV_DEMUXER_DETAIL_RECORDFIELD_H
#define QV_DEMUXER_DETAIL_RECORDFIELD_H

#include <cstdint>

namespace qv_detail {

constexpr int32_t asField(uint32_t element) {
    return static_cast<int32_t>(element);
}

constexpr uint32_t asElement(int32_t field) {
    return static_cast<uint32_t>(field);
}

}  // namespace qv_detail

#endif
