// Runs the operations on fixed input, for callgrind. Each runs once to warm up and once to be counted.
#include <valgrind/callgrind.h>

#include <cstdlib>
#include <cstring>
#include <deque>
#include <functional>

#include "Measure.h"
#include "Pools.h"
#include "QVCoreStandalone.h"
#include "QVNaluParser.h"
#include "Units.h"
#include "bitstream/avc/Pps.h"
#include "bitstream/avc/Sps.h"
#include "bitstream/hevc/Pps.h"
#include "bitstream/hevc/Sps.h"
#include "bitstream/hevc/Vps.h"
#include "bitstream/units/NalUnits.h"

// Valgrind's client requests are macros that cause these warnings.
#pragma GCC diagnostic ignored "-Wold-style-cast"
#pragma GCC diagnostic ignored "-Wcast-qual"

namespace {

using namespace qv_bench;

constexpr size_t kPool = size_t{256} << 10;

// name is the operation's name in the budget.
void count(const std::string& name, const std::function<void()>& operation) {
    operation();
    CALLGRIND_ZERO_STATS;
    CALLGRIND_TOGGLE_COLLECT;
    operation();
    CALLGRIND_TOGGLE_COLLECT;
    CALLGRIND_DUMP_STATS_AT(name.c_str());
}

int sizeOf(const Bytes& bytes) {
    return static_cast<int>(bytes.size());
}

void countScan(const std::string& name, const Bytes& bytes, size_t units) {
    NalIndexList nalus;
    count("parserDataToNaluIdx, " + name, [&] {
        nalus.clear();
        QVNaluParser::parserDataToNaluIdx(bytes.data(), sizeOf(bytes), nalus);
    });
    require(nalus.size() == units, name.c_str());
}

void countScans() {
    countScan("units of 64 bytes", byteStream(kPool, 64), 4096);
    countScan("units of 5 KB", byteStream(kPool, 5000), 53);
    countScan("units of 40 KB", byteStream(kPool, 40000), 7);
    countScan("zeros", repeatedPattern(kPool, {0}), 1);
    countScan("00 01", repeatedPattern(kPool, {0, 1}), 1);
    countScan("00 00 03", repeatedPattern(kPool, {0, 0, 3}), 1);
    countScan("a start code every 4 bytes", repeatedPattern(kPool, {0, 0, 1, 0x41}), kPool / 4);
}

void countAnnexB() {
    const Bytes bytes = byteStream(kPool, 5000);
    std::vector<QVNaluParser::NaluInfo> infos;
    const QVCodecParameters parameters = {QVCodecIDHevc, 1, 0};
    count("parserDataToNaluType, Annex B",
          [&] { QVNaluParser::parserDataToNaluType(bytes.data(), sizeOf(bytes), infos, &parameters); });
    require(infos.size() == 53, "parserDataToNaluType");
    count("isKeyFrame, Annex B, no key unit", [&] {
        require(!QVNaluParser::isKeyFrame(QVCodecIDAvc, bytes.data(), sizeOf(bytes)), "isKeyFrame");
    });
    Bytes out;
    count("converAnnexBToAvcC", [&] { QVNaluParser::converAnnexBToAvcC(bytes.data(), sizeOf(bytes), out); });
    require(out.size() == bytes.size(), "converAnnexBToAvcC");
}

void countKeyFrame() {
    Bytes bytes = {0, 0, 0, 1,    0x67, 0x64, 0x00, 0x0C, 0xAC, 0x80, 0,
                   0, 0, 1, 0x68, 0xEB, 0xE3, 0xCB, 0,    0,    1,    0x06};
    bytes.resize(bytes.size() + 700, 0x55);
    bytes.insert(bytes.end(), {0, 0, 1, 0x65});
    bytes.resize(kPool, 0x55);
    count("isKeyFrame, key unit after 700 bytes", [&] {
        require(QVNaluParser::isKeyFrame(QVCodecIDAvc, bytes.data(), sizeOf(bytes)), "isKeyFrame");
    });
}

void countLengths() {
    const Samples samples = lengthPrefixed(cut(byteStream(kPool, 5000), kPool));
    const Bytes& bytes = samples.bytes;
    NalIndexList nalus;
    count("parserDataToNalus", [&] {
        nalus.clear();
        QVNaluParser::parserDataToNalus(bytes.data(), sizeOf(bytes), nalus, 4);
    });
    require(nalus.size() == 53, "parserDataToNalus");
    count("isKeyFrame, lengths, no key unit", [&] {
        require(!QVNaluParser::isKeyFrame(QVCodecIDAvc, bytes.data(), sizeOf(bytes)), "isKeyFrame");
    });
    count("connvertAvcCToAnnexB", [&] {
        unsigned char* out = nullptr;
        int size = 0;
        QVNaluParser::connvertAvcCToAnnexB(bytes.data(), sizeOf(bytes), 4, &out, size);
        require(size == sizeOf(bytes), "connvertAvcCToAnnexB");
        qvFree(out);
    });
}

void countParameterSets() {
    const auto avcStream = std::make_shared<QVByteStream>(avcSpsUnit().data(), avcSpsUnit().size());
    QVAvcSps avcSps{};
    count("parseAvcSps", [&] {
        rewind(*avcStream);
        require(parseAvcSps(&avcSps, avcStream), "parseAvcSps");
    });
    const auto hevcStream = std::make_shared<QVByteStream>(hevcSpsUnit().data(), hevcSpsUnit().size());
    QVHevcSps hevcSps{};
    count("parseHevcSps", [&] {
        rewind(*hevcStream);
        require(parseHevcSps(&hevcSps, hevcStream), "parseHevcSps");
    });
}

void release(std::vector<QVSeiItem>& items) {
    for (const QVSeiItem& item : items) {
        qvFree(item.payloadData);
    }
    items.clear();
}

void countSei() {
    const Bytes rbsp = seiRbsp();
    const std::deque<int> requested;
    std::vector<QVSeiItem> items;
    count("parserAvcDataToSei, one message of 700 bytes", [&] {
        QVNaluParser::parserAvcDataToSei(rbsp.data(), sizeOf(rbsp), items, nullptr, requested);
        require(items.size() == 1, "parserAvcDataToSei");
        release(items);
    });
    count("parserHevcDataToSei, one message of 700 bytes", [&] {
        QVNaluParser::parserHevcDataToSei(39, rbsp.data(), sizeOf(rbsp), items, nullptr, requested);
        require(items.size() == 1, "parserHevcDataToSei");
        release(items);
    });
    const Bytes recoveryPoint = {0x06, 0x01, 0xC0, 0x80};
    count("parserAvcDataToSei, recovery point", [&] {
        QVNaluParser::parserAvcDataToSei(recoveryPoint.data(), sizeOf(recoveryPoint), items, nullptr,
                                         requested);
    });
}

void countCapture(size_t distance) {
    const Bytes coded = emulated(65536, distance);
    QVByteStream stream(coded.data(), coded.size());
    Bytes out(coded.size());
    const size_t size = captureBytewise(coded, out);
    count("raw capture, 64 KB, an 03 every " + std::to_string(distance) + " bytes", [&] {
        rewind(stream);
        stream.readRbspBytes(out.data(), size);
    });
}

void countReads() {
    constexpr int kValues = 1000;
    for (const int leadingZeroBits : {0, 3, 10, 28, 31}) {
        const Bytes bytes = golombCodes(kValues, leadingZeroBits);
        QVByteStream stream(bytes.data(), bytes.size());
        uint32_t sum = 0;
        count("readGolombUe, 1000 codes, " + std::to_string(leadingZeroBits) + " leading zero bits", [&] {
            rewind(stream);
            for (int i = 0; i < kValues; ++i) {
                sum += stream.readGolombUe();
            }
        });
        require(sum == 2 * kValues * static_cast<uint32_t>((uint64_t{1} << (leadingZeroBits + 1)) - 2),
                "readGolombUe");
    }
    const Bytes bytes(kValues * 4 + 8, 0x5A);
    QVByteStream stream(bytes.data(), bytes.size());
    for (const uint32_t width : {1U, 5U, 16U}) {
        uint32_t sum = 0;
        count("u(" + std::to_string(width) + "), 1000 values", [&] {
            rewind(stream);
            for (int i = 0; i < kValues; ++i) {
                sum += stream.readBits(width);
            }
        });
        require(sum != 0, "readBits");
    }
}

qv::Bytes borrowed(const Bytes& bytes) {
    return {bytes.data(), bytes.size()};
}

void countWholeParameterSets() {
    const auto read = [](const std::string& name, const auto& reader, const Bytes& unit) {
        count(name, [&] { require(reader(borrowed(unit)).ok(), name.c_str()); });
    };
    const auto readHevcVps = [](qv::Bytes unit) { return qv::hevc::readVps(unit); };
    const auto readHevcSps = [](qv::Bytes unit) { return qv::hevc::readSps(unit); };
    read(
        "avc::readSps, VUI and HRD", [](qv::Bytes unit) { return qv::avc::readSps(unit); },
        avcWholeSpsUnit());
    read(
        "avc::readPps", [](qv::Bytes unit) { return qv::avc::readPps(unit, 1); }, avcPpsUnit());
    read("hevc::readVps", readHevcVps, hevcVpsUnit());
    read("hevc::readVps, sub-layers and timing", readHevcVps, hevcVpsOfSubLayersUnit());
    read("hevc::readSps, VUI", readHevcSps, hevcSpsUnit());
    read("hevc::readSps, VUI and HRD", readHevcSps, hevcHrdSpsUnit());
    read(
        "hevc::readPps", [](qv::Bytes unit) { return qv::hevc::readPps(unit); }, hevcPpsUnit());
}

void countWalk(const std::string& name, const Bytes& bytes, qv::Framing framing, size_t units) {
    count("NalUnits, " + name, [&] {
        size_t found = 0;
        for (const qv::NalUnit& unit : qv::NalUnits(borrowed(bytes), framing, qv::Codec::Avc)) {
            found += unit.ok() ? 1U : 0U;
        }
        require(found == units, name.c_str());
    });
}

void countWalks() {
    countWalk("units of 5 KB", byteStream(kPool, 5000), qv::Framing::StartCodes, 53);
    countWalk("units of 40 KB", byteStream(kPool, 40000), qv::Framing::StartCodes, 7);
    countWalk("lengths, units of 5 KB", lengthPrefixed(cut(byteStream(kPool, 5000), kPool)).bytes,
              qv::Framing::Lengths4, 53);
}

}  // namespace

int main() {
    qvSetTraceLevel(-1);
    countScans();
    countAnnexB();
    countKeyFrame();
    countLengths();
    countParameterSets();
    countSei();
    for (const size_t distance : {3U, 32U, 4096U}) {
        countCapture(distance);
    }
    countReads();
    countWholeParameterSets();
    countWalks();
}
