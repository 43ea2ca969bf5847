#include "Pools.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <new>
#include <random>

#include "Measure.h"
#include "QVNaluParser.h"

namespace qv_bench {

namespace {

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

bool isSlice(QVCodecID codec, uint32_t type) {
    return codec == QVCodecIDAvc ? type >= 1 && type <= 5 : type < 32;
}

}  // namespace

Bytes byteStream(size_t size, size_t unitSize) {
    static const unsigned char header[] = {0, 0, 0, 1, 0x01};
    Bytes bytes = randomPayload(size);
    for (size_t at = 0; at + sizeof header < bytes.size(); at += unitSize) {
        std::memcpy(bytes.data() + at, header, sizeof header);
    }
    return bytes;
}

Bytes repeatedPattern(size_t size, std::initializer_list<unsigned char> pattern) {
    Bytes bytes = {0, 0, 1, 0x41};
    while (bytes.size() < size) {
        bytes.insert(bytes.end(), pattern);
    }
    return bytes;
}

Samples cut(Bytes bytes, size_t size) {
    Samples samples;
    for (size_t at = 0; at + size <= bytes.size(); at += size) {
        samples.pieces.emplace_back(at, static_cast<int>(size));
    }
    samples.bytes = std::move(bytes);
    return samples;
}

Samples accessUnits(Bytes stream, QVCodecID codec) {
    const QVCodecParameters parameters = {codec, 1, 0};
    std::vector<QVNaluParser::NaluInfo> units;
    QVNaluParser::parserDataToNaluType(stream.data(), static_cast<int>(stream.size()), units, &parameters);
    Samples samples;
    size_t start = 0;
    for (const QVNaluParser::NaluInfo& unit : units) {
        if (isSlice(codec, unit.naluType)) {
            const auto end = static_cast<size_t>(unit.offset + unit.length);
            samples.pieces.emplace_back(start, static_cast<int>(end - start));
            start = end;
        }
    }
    samples.bytes = std::move(stream);
    return samples;
}

Samples lengthPrefixed(const Samples& samples) {
    Samples result;
    result.bytes.reserve(samples.bytes.size() + samples.bytes.size() / 8);
    Bytes piece;
    for (size_t i = 0; i < samples.count(); ++i) {
        QVNaluParser::converAnnexBToAvcC(samples.data(i), samples.size(i), piece);
        result.pieces.emplace_back(result.bytes.size(), static_cast<int>(piece.size()));
        result.bytes.insert(result.bytes.end(), piece.begin(), piece.end());
    }
    return result;
}

Bytes readFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary | std::ios::ate);
    require(file.good(), path.c_str());
    Bytes bytes(static_cast<size_t>(file.tellg()));
    file.seekg(0);
    file.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    require(file.good(), path.c_str());
    return bytes;
}

void searchAbsentByte(const unsigned char* data, size_t size) {
    benchmark::DoNotOptimize(std::memchr(data, kAbsent, size));
}

void copyAndFree(const unsigned char* data, size_t size) {
    void* const copy = std::malloc(size);
    std::memcpy(copy, data, size);
    benchmark::DoNotOptimize(copy);
    std::free(copy);
}

void allocateScratch() {
    auto* scratch = new (std::nothrow) unsigned char[4];
    benchmark::DoNotOptimize(scratch);
    delete[] scratch;
}

void plainScan(const Bytes& bytes, NalIndexList& nalus) {
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

size_t captureBytewise(const Bytes& coded, Bytes& out) {
    size_t zeros = 0;
    size_t size = 0;
    for (const unsigned char byte : coded) {
        if (zeros >= 2 && byte == 0x03) {
            zeros = 0;
            continue;
        }
        out[size++] = byte;
        zeros = byte == 0 ? zeros + 1 : 0;
    }
    return size;
}

}  // namespace qv_bench
