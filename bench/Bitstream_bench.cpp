// The standard's library: parameter sets, read whole, and the walk over the units of a buffer.
#include <benchmark/benchmark.h>

#include "Framing.h"
#include "Groups.h"
#include "Measure.h"
#include "Peers.h"
#include "ReferenceFraming.h"
#include "Units.h"
#include "bitstream/avc/Pps.h"
#include "bitstream/avc/Sps.h"
#include "bitstream/hevc/Pps.h"
#include "bitstream/hevc/Sps.h"
#include "bitstream/hevc/Vps.h"
#include "bitstream/units/NalUnits.h"

namespace qv_bench {

namespace {

qv::Bytes borrowed(const Bytes& bytes) {
    return {bytes.data(), bytes.size()};
}

// A read and GStreamer's parser of the same bytes. Both must find the same value of an element near the end
// of the unit, which is not 0.
template <class Read, class ElementOf>
Rows whole(const std::string& name, const Bytes& unit, const Read& read, const ElementOf& elementOf,
           const std::function<int()>& peer, const Goal& goal) {
    const auto first = read(borrowed(unit));
    const int element = static_cast<int>(elementOf(first.record));
    require(first.ok() && first.trailing.bits == 0 && element != 0, name.c_str());
    Operation operation = {name, [=, &unit] { benchmark::DoNotOptimize(read(borrowed(unit))); }};
    operation.costs = {{"call"}};
    if (peer) {
        require(peer() == element, "GStreamer's parser");
        operation.yardsticks = {{"GStreamer's parser", [peer] { benchmark::DoNotOptimize(peer()); }, goal}};
    }
    return {{operation}};
}

Rows avcSps() {
    return whole(
        "avc::readSps, VUI and HRD", avcWholeSpsUnit(), [](qv::Bytes unit) { return qv::avc::readSps(unit); },
        [](const qv::avc::Sps& sps) { return sps.data.vui.max_dec_frame_buffering; },
        gstreamerAvcWholeSps(avcWholeSpsUnit()), atLeast(4));
}

Rows avcPps() {
    return whole(
        "avc::readPps", avcPpsUnit(), [](qv::Bytes unit) { return qv::avc::readPps(unit, 1); },
        [](const qv::avc::Pps& pps) { return pps.second_chroma_qp_index_offset; },
        gstreamerAvcPps(avcPpsUnit(), avcWholeSpsUnit()), atLeast(4));
}

Rows hevcVps(const std::string& name, const Bytes& unit) {
    return whole(
        name, unit, [](qv::Bytes bytes) { return qv::hevc::readVps(bytes); },
        [](const qv::hevc::Vps& vps) {
            return vps.vps_max_dec_pic_buffering_minus1[vps.vps_max_sub_layers_minus1];
        },
        gstreamerHevcVps(unit), atLeast(4));
}

Rows hevcSps(const std::string& name, const Bytes& unit) {
    return whole(
        name, unit, [](qv::Bytes bytes) { return qv::hevc::readSps(bytes); },
        [](const qv::hevc::Sps& sps) { return sps.vui.vui_time_scale; }, gstreamerHevcWholeSps(unit),
        atLeast(5));
}

Rows hevcPps() {
    return whole(
        "hevc::readPps", hevcPpsUnit(), [](qv::Bytes unit) { return qv::hevc::readPps(unit); },
        [](const qv::hevc::Pps& pps) { return pps.diff_cu_qp_delta_depth; },
        gstreamerHevcPps(hevcPpsUnit(), hevcHrdSpsUnit()), atLeast(4));
}

// The units that a walk finds and the sum of their types.
std::pair<size_t, uint64_t> walk(const Bytes& bytes, qv::Codec codec) {
    std::pair<size_t, uint64_t> found;
    for (const qv::NalUnit& unit : qv::NalUnits(borrowed(bytes), qv::Framing::StartCodes, codec)) {
        ++found.first;
        found.second += unit.nal_unit_type;
    }
    return found;
}

Operation walkOf(const std::string& name, qv::Codec codec, const Shared& bytes) {
    NalIndexList nalus;
    qv_test::referenceAnnexBScan(*bytes, nalus);
    require(walk(*bytes, codec).first == nalus.size(), name.c_str());
    return {"NalUnits, " + name, [=] { benchmark::DoNotOptimize(walk(*bytes, codec)); }};
}

Rows walkPool(const std::string& name, size_t unitSize) {
    const Shared bytes = std::make_shared<const Bytes>(byteStream(kCachePool, unitSize));
    Operation operation = walkOf(name, qv::Codec::Avc, bytes);
    operation.yardsticks = {{"memchr", memchrOver(bytes), atLeast(0.9, 0.85)},
                            {"GStreamer's search", gstreamerOver(QVCodecIDAvc, bytes)}};
    return {{operation}};
}

// A stream holds every byte value, so memchr searches a constant buffer of the same size.
Rows walkStream(const std::string& name, qv::Codec codec, QVCodecID codecOfPeer, const std::string& path) {
    const Shared bytes = std::make_shared<const Bytes>(readFile(path));
    const Shared constant = std::make_shared<const Bytes>(bytes->size(), 0x55);
    Operation operation = walkOf(name, codec, bytes);
    operation.yardsticks = {{"memchr over as many bytes", memchrOver(constant), atLeast(0.9, 0.85)},
                            {"GStreamer's search", gstreamerOver(codecOfPeer, bytes)}};
    return {{operation}};
}

}  // namespace

std::vector<Group> wholeParameterSetGroups() {
    return {
        {"sets", avcSps},
        {"sets", avcPps},
        {"sets", [] { return hevcVps("hevc::readVps", hevcVpsUnit()); }},
        {"sets", [] { return hevcVps("hevc::readVps, sub-layers and timing", hevcVpsOfSubLayersUnit()); }},
        {"sets", [] { return hevcSps("hevc::readSps, VUI", hevcSpsUnit()); }},
        {"sets", [] { return hevcSps("hevc::readSps, VUI and HRD", hevcHrdSpsUnit()); }},
        {"sets", hevcPps},
    };
}

std::vector<Group> unitGroups(const std::string& path) {
    return {
        {"units", [] { return walkPool("units of 5 KB", 5000); }},
        {"units", [] { return walkPool("units of 40 KB", 40000); }},
        {"units",
         [=] {
             return walkStream("x264 stream of 50 Mbit/s", qv::Codec::Avc, QVCodecIDAvc,
                               path + "/x264-50.h264");
         }},
        {"units",
         [=] {
             return walkStream("x265 stream of 50 Mbit/s", qv::Codec::Hevc, QVCodecIDHevc,
                               path + "/x265-50.h265");
         }},
    };
}

}  // namespace qv_bench
