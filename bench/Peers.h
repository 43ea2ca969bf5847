// Other libraries, called through their public interfaces. The functions of a library that was not found at
// build time are empty.
#ifndef QV_BENCH_PEERS_H
#define QV_BENCH_PEERS_H

#include <functional>
#include <memory>
#include <string>

#include "Pools.h"

namespace qv_bench {

// Return the library's name and version, or an empty text if it is not available.
std::string gstreamerName();
std::string libavcodecName();

// --- GStreamer's codecparsers ---

// Finds the units of an Annex B byte stream, one identify call for each.
using PeerScan = std::function<void(const Bytes&, NalIndexList&)>;
PeerScan gstreamerScan(QVCodecID codec);

// Parses one parameter set unit, header included, and returns its picture width, or 0 if it is rejected.
std::function<int()> gstreamerAvcSps(const Bytes& unit);
std::function<int()> gstreamerHevcSps(const Bytes& unit);

// Parse one parameter set unit whole, header included. Each returns the last element of the unit that is not
// 0 in those of the benchmark, or 0 if the unit is rejected. A PPS refers to the sequence parameter set sps.
std::function<int()> gstreamerAvcWholeSps(const Bytes& unit);               // max_dec_frame_buffering
std::function<int()> gstreamerAvcPps(const Bytes& unit, const Bytes& sps);  // second_chroma_qp_index_offset
std::function<int()> gstreamerHevcVps(const Bytes& unit);       // vps_max_dec_pic_buffering_minus1
std::function<int()> gstreamerHevcWholeSps(const Bytes& unit);  // vui_time_scale
std::function<int()> gstreamerHevcPps(const Bytes& unit, const Bytes& sps);  // diff_cu_qp_delta_depth

// Parses one SEI unit, header included, and returns the number of its messages.
std::function<int()> gstreamerAvcSei(const Bytes& unit);

// The same with the sequence parameter set in force.
std::function<int()> gstreamerAvcSei(const Bytes& unit, const Bytes& sps);
std::function<int()> gstreamerHevcSei(const Bytes& unit, const Bytes& sps);

// --- libavcodec ---

// Parses one access unit with the codec's parser and returns whether it found a key picture.
std::function<bool()> libavcodecKeyFrame(QVCodecID codec, const Bytes& accessUnit);

// Converts samples with 4-byte lengths to a byte stream with libavcodec's bitstream filter and the parameter
// sets sps and pps. Returns the number of bytes written.
std::function<size_t()> libavcodecToStartCodes(const std::shared_ptr<const Samples>& samples,
                                               const Bytes& sps, const Bytes& pps);

}  // namespace qv_bench

#endif
