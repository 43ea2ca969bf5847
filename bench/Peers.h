// Other libraries through their public interfaces. What was not found at build time gives empty functions.
#ifndef QV_BENCH_PEERS_H
#define QV_BENCH_PEERS_H

#include <functional>
#include <memory>
#include <string>

#include "Pools.h"

namespace qv_bench {

// Name and version; empty when it is not there.
std::string gstreamerName();
std::string libavcodecName();

// --- GStreamer's codecparsers ---

// Finds the units of an Annex B byte stream, one identify call for each.
using PeerScan = std::function<void(const Bytes&, NalIndexList&)>;
PeerScan gstreamerScan(QVCodecID codec);

// Parses one parameter set unit, header included, and gives its picture width; 0 when it is refused.
std::function<int()> gstreamerAvcSps(const Bytes& unit);
std::function<int()> gstreamerHevcSps(const Bytes& unit);

// Parses one SEI unit, header included, and gives the number of its messages.
std::function<int()> gstreamerAvcSei(const Bytes& unit);

// --- libavcodec ---

// Parses one access unit with the codec's parser and tells whether it found a key picture.
std::function<bool()> libavcodecKeyFrame(QVCodecID codec, const Bytes& accessUnit);

// Rewrites samples with 4-byte lengths by the bitstream filter that does so, with parameter sets from sps and
// pps, and gives the bytes written.
std::function<size_t()> libavcodecToStartCodes(const std::shared_ptr<const Samples>& samples,
                                               const Bytes& sps, const Bytes& pps);

}  // namespace qv_bench

#endif
