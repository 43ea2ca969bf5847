// Scanning, key frames and reframing, on pools larger than the caches near the core.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <random>
#include <utility>
#include <vector>

#include "QVCoreStandalone.h"
#include "QVNaluParser.h"
#include "RatioTable.h"

namespace qv_bench {

namespace {

using Bytes = std::vector<unsigned char>;
using NalIndexList = std::vector<std::pair<int, int>>;

constexpr size_t kPool = size_t{16} << 20;
constexpr unsigned char kAbsent = 0xFE;

// Payload as an encoder leaves it: any byte, but no start code.
Bytes randomPayload(size_t size) {
    std::mt19937 random(1);
    Bytes bytes(size);
    for (size_t i = 0; i < size; ++i) {
        const auto byte = static_cast<unsigned char>(random());
        const bool isEmulation = i >= 2 && byte <= 3 && bytes[i - 1] == 0 && bytes[i - 2] == 0;
        bytes[i] = byte == kAbsent || isEmulation ? 0x55 : byte;
    }
    return bytes;
}

Bytes byteStream(size_t unitSize) {
    static const unsigned char header[] = {0, 0, 0, 1, 0x41};
    Bytes bytes = randomPayload(kPool);
    for (size_t at = 0; at + sizeof header < bytes.size(); at += unitSize) {
        std::memcpy(bytes.data() + at, header, sizeof header);
    }
    return bytes;
}

Bytes repeated(std::initializer_list<unsigned char> pattern) {
    Bytes bytes = {0, 0, 1, 0x41};
    while (bytes.size() < kPool) {
        bytes.insert(bytes.end(), pattern);
    }
    return bytes;
}

Bytes lengthPrefixed(const Bytes& stream) {
    Bytes bytes;
    QVNaluParser::converAnnexBToAvcC(stream.data(), static_cast<int>(stream.size()), bytes);
    return bytes;
}

// The scan step by step, as its contract has it.
void referenceScan(const Bytes& bytes, NalIndexList& nalus) {
    const size_t size = bytes.size();
    const auto open = [&](size_t code, size_t unit) {
        if (!nalus.empty()) {
            nalus.back().second = static_cast<int>(code) - nalus.back().first;
        }
        nalus.emplace_back(static_cast<int>(unit), 0);
    };
    for (size_t i = 0; i < size;) {
        const bool isZeroPair = i + 3 < size && bytes[i] == 0 && bytes[i + 1] == 0;
        if (isZeroPair && i + 4 < size && bytes[i + 2] == 0 && bytes[i + 3] == 1) {
            open(i, i + 4);
            i += 5;
        } else if (isZeroPair && bytes[i + 2] == 1) {
            open(i, i + 3);
            i += 4;
        } else {
            ++i;
        }
    }
    if (!nalus.empty()) {
        nalus.back().second = static_cast<int>(size) - nalus.back().first;
    }
}

void scan(const Bytes& bytes, NalIndexList& nalus) {
    nalus.clear();
    QVNaluParser::parserDataToNaluIdx(bytes.data(), static_cast<int>(bytes.size()), nalus);
}

void searchAbsentByte(const Bytes& bytes) {
    benchmark::DoNotOptimize(std::memchr(bytes.data(), kAbsent, bytes.size()));
}

using Shared = std::shared_ptr<const Bytes>;

Shared share(Bytes bytes) {
    return std::make_shared<const Bytes>(std::move(bytes));
}

void addScan(const std::string& name, const Shared& bytes) {
    const auto nalus = std::make_shared<NalIndexList>();
    NalIndexList expected;
    referenceScan(*bytes, expected);
    scan(*bytes, *nalus);
    require(*nalus == expected, name.c_str());
    addRow({"parserDataToNaluIdx, " + name, "memchr", [=] { scan(*bytes, *nalus); },
            [=] { searchAbsentByte(*bytes); }});
    addRow({"parserDataToNaluIdx, " + name + ", loop", "the reference loop", [=] { scan(*bytes, *nalus); },
            [=] {
                nalus->clear();
                referenceScan(*bytes, *nalus);
            }});
}

void copyAndFree(const Bytes& bytes) {
    void* const copy = std::malloc(bytes.size());
    std::memcpy(copy, bytes.data(), bytes.size());
    benchmark::DoNotOptimize(copy);
    std::free(copy);
}

void addLengthScan(const std::string& name, const Shared& bytes) {
    const auto nalus = std::make_shared<NalIndexList>();
    addRow({"parserDataToNalus, " + name, "malloc + memcpy + free",
            [=] {
                nalus->clear();
                QVNaluParser::parserDataToNalus(bytes->data(), static_cast<int>(bytes->size()), *nalus, 4);
            },
            [=] { copyAndFree(*bytes); }});
}

void addToLengths(const std::string& name, const Shared& bytes) {
    const auto out = std::make_shared<Bytes>(bytes->size() * 2);
    addRow({"converAnnexBToAvcC, " + name, "memcpy",
            [=] { QVNaluParser::converAnnexBToAvcC(bytes->data(), static_cast<int>(bytes->size()), *out); },
            [=] {
                out->resize(bytes->size());
                std::memcpy(out->data(), bytes->data(), bytes->size());
            }});
}

void addToStartCodes(const std::string& name, const Shared& bytes) {
    addRow({"connvertAvcCToAnnexB, " + name, "its allocation + memcpy, private copy on both sides",
            [=] {
                unsigned char* out = nullptr;
                int size = 0;
                QVNaluParser::connvertAvcCToAnnexB(bytes->data(), static_cast<int>(bytes->size()), 4, &out,
                                                   size);
                qvFree(out);
            },
            [=] {
                copyAndFree(*bytes);
                void* const out = qvMallocz(bytes->size());
                std::memcpy(out, bytes->data(), bytes->size());
                benchmark::DoNotOptimize(out);
                qvFree(out);
            }});
}

Bytes accessUnit(unsigned char sliceHeader, size_t size) {
    Bytes bytes = {0, 0, 0, 1, 0x67, 0x64, 0x00, 0x0C, 0xAC, 0xD9, 0x41, 0x41, 0x9F, 0x9F, 0x01, 0x10,
                   0, 0, 0, 1, 0x68, 0xEB, 0xE3, 0xCB, 0,    0,    1,    0x06, 0x05, 0xFF, 0xFF, 0xBE};
    bytes.resize(bytes.size() + 700, 0x55);
    bytes.insert(bytes.end(), {0, 0, 1, sliceHeader});
    bytes.resize(size, 0x55);
    return bytes;
}

void addKeyFrames() {
    const Shared key = share(accessUnit(0x65, 40000));
    const Shared other = share(accessUnit(0x41, kPool));
    const auto isKey = [](const Bytes& bytes) {
        return QVNaluParser::isKeyFrame(QVCodecIDAvc, bytes.data(), static_cast<int>(bytes.size()));
    };
    require(isKey(*key) && !isKey(*other), "isKeyFrame");
    addRow({"isKeyFrame, key unit behind 700 bytes of SEI",
            "ns a call",
            [=] { benchmark::DoNotOptimize(isKey(*key)); },
            {}});
    addRow({"isKeyFrame, no key unit", "memchr", [=] { benchmark::DoNotOptimize(isKey(*other)); },
            [=] { searchAbsentByte(*other); }});
}

}  // namespace

void addFramingRows() {
    const Shared units5K = share(byteStream(5000));
    const Shared units40K = share(byteStream(40000));
    const Shared units1M = share(byteStream(1000000));
    addScan("units of 5 KB", units5K);
    addScan("units of 40 KB", units40K);
    addScan("units of 1 MB", units1M);
    addScan("zeros", share(repeated({0})));
    addScan("00 01", share(repeated({0, 1, 2})));
    addScan("00 00 03", share(repeated({0, 0, 3})));
    addScan("a start code every 4 bytes", share(repeated({0, 0, 1, 0x41})));
    const Shared lengths40K = share(lengthPrefixed(*units40K));
    addLengthScan("units of 40 KB", lengths40K);
    addToLengths("units of 40 KB", units40K);
    addToStartCodes("units of 40 KB", lengths40K);
    addKeyFrames();
}

}  // namespace qv_bench
