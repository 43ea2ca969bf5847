// Single units that parsing is measured on.
#ifndef QV_BENCH_UNITS_H
#define QV_BENCH_UNITS_H

#include "Pools.h"

class QVByteStream;

namespace qv_bench {

// High, level 1.2, 320x180, no VUI; header included.
const Bytes& avcSpsUnit();

// Main 10, 320x180 coded as 320x184; header included.
const Bytes& hevcSpsUnit();

constexpr size_t kSeiPayload = 700;

// One user_data_unregistered message of kSeiPayload bytes, trailing bits behind it; without a header.
Bytes seiRbsp();

// size bytes with an emulation prevention byte every distance bytes.
Bytes emulated(size_t size, size_t distance);

// count codes ue(v) of so many leading zero bits, each with its information bits set.
Bytes golombCodes(int count, int leadingZeroBits);

void rewind(QVByteStream& stream);

}  // namespace qv_bench

#endif
