// Single units, the input of the parsing benchmarks.
#ifndef QV_BENCH_UNITS_H
#define QV_BENCH_UNITS_H

#include "Pools.h"

class QVByteStream;

namespace qv_bench {

// High, level 1.2, 320x180, no VUI; header included.
const Bytes& avcSpsUnit();

// Main 10, 320x180 coded as 320x184; header included. With a VUI: colour description, timing.
const Bytes& hevcSpsUnit();

// Parameter sets of streams of x264 and x265, and of SVT-HEVC the VPS of several sub-layers with timing;
// headers included. The sequence parameter sets have a VUI with colour description, timing and NAL HRD
// parameters.
const Bytes& avcWholeSpsUnit();
const Bytes& avcPpsUnit();
const Bytes& hevcVpsUnit();
const Bytes& hevcVpsOfSubLayersUnit();
const Bytes& hevcHrdSpsUnit();
const Bytes& hevcPpsUnit();

constexpr size_t kSeiPayload = 700;

// One user_data_unregistered message of kSeiPayload bytes, followed by trailing bits; without a unit header.
Bytes seiRbsp();

// Returns size bytes with an emulation prevention byte every distance bytes.
Bytes emulated(size_t size, size_t distance);

// Returns count ue(v) codes of leadingZeroBits leading zero bits, each with all information bits set.
Bytes golombCodes(int count, int leadingZeroBits);

void rewind(QVByteStream& stream);

}  // namespace qv_bench

#endif
