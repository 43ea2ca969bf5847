// The reader, the parameter set parsers, SEI and raw capture.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <cstring>
#include <deque>
#include <memory>
#include <vector>

#include "QVCoreStandalone.h"
#include "QVNaluParser.h"
#include "RatioTable.h"

namespace qv_bench {

namespace {

using Bytes = std::vector<unsigned char>;

void copyAndFree(const Bytes& bytes) {
    void* const copy = std::malloc(bytes.size());
    std::memcpy(copy, bytes.data(), bytes.size());
    benchmark::DoNotOptimize(copy);
    std::free(copy);
}

void rewind(QVByteStream& stream) {
    stream.bytePos = 0;
    stream.bitOffset = 0;
    stream.rbspBitIndex = 7;
}

void addAvcSps() {
    // High, level 1.2, 320x180, no VUI.
    const auto unit = std::make_shared<const Bytes>(
        Bytes{0x67, 0x64, 0x00, 0x0C, 0xAC, 0xD9, 0x41, 0x41, 0x9F, 0x9E, 0x80});
    const auto stream = std::make_shared<QVByteStream>(unit->data(), unit->size());
    const auto sps = std::make_shared<QVAvcSps>();
    require(parseAvcSps(sps.get(), stream) && sps->width == 320 && sps->mb_height == 12, "parseAvcSps");
    addRow({"parseAvcSps, no VUI", "malloc + memcpy + free of the unit",
            [=] {
                rewind(*stream);
                parseAvcSps(sps.get(), stream);
            },
            [=] { copyAndFree(*unit); }});
}

void addHevcSps() {
    const Bytes unit = {0x42, 0x01, 0x01, 0x02, 0x20, 0x00, 0x00, 0x03, 0x00, 0x90, 0x00, 0x00, 0x03,
                        0x00, 0x00, 0x03, 0x00, 0x3C, 0xA0, 0x0A, 0x08, 0x0B, 0x9F, 0x79, 0x65, 0x79};
    const auto stream = std::make_shared<QVByteStream>(unit.data(), unit.size());
    const auto sps = std::make_shared<QVHevcSps>();
    require(parseHevcSps(sps.get(), stream) && sps->pic_width_in_luma_samples == 320, "parseHevcSps");
    addRow({"parseHevcSps",
            "ns a call",
            [=] {
                rewind(*stream);
                parseHevcSps(sps.get(), stream);
            },
            {}});
}

void addSei() {
    Bytes unit = {0x05, 0xFF, 0xFF, 0xBE};
    for (unsigned i = 0; i < 700; ++i) {
        unit.push_back(static_cast<unsigned char>(7 * i + 1));
    }
    unit.push_back(0x80);
    const auto rbsp = std::make_shared<const Bytes>(unit);
    const auto items = std::make_shared<std::vector<QVSeiItem>>();
    items->reserve(8);
    const auto requested = std::make_shared<const std::deque<int>>();
    const auto walk = [=] {
        QVNaluParser::parserAvcDataToSei(rbsp->data(), static_cast<int>(rbsp->size()), *items, nullptr,
                                         *requested);
    };
    const auto release = [=] {
        for (const QVSeiItem& item : *items) {
            qvFree(item.payloadData);
        }
        items->clear();
    };
    walk();
    require(items->size() == 1 && std::memcmp(items->front().payloadData, rbsp->data() + 4, 700) == 0,
            "parserAvcDataToSei");
    release();
    addRow({"parserAvcDataToSei, one message of 700 bytes", "two malloc + memcpy + free",
            [=] {
                walk();
                release();
            },
            [=] {
                copyAndFree(*rbsp);
                copyAndFree(*rbsp);
            }});
}

// Without emulation prevention bytes, as the standard's table has it.
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

void addCapture(const std::string& name, size_t distance, bool againstMemcpy) {
    Bytes coded(65536, 0x55);
    for (size_t at = 8; at + 3 < coded.size(); at += distance) {
        coded[at] = 0x00;
        coded[at + 1] = 0x00;
        coded[at + 2] = 0x03;
    }
    const auto stream = std::make_shared<QVByteStream>(coded.data(), coded.size());
    const auto out = std::make_shared<Bytes>(coded.size());
    Bytes expected(coded.size());
    const size_t size = captureBytewise(coded, expected);
    stream->readRbspBytes(out->data(), size);
    require(std::equal(out->begin(), out->begin() + static_cast<std::ptrdiff_t>(size), expected.begin()),
            name.c_str());
    const auto source = std::make_shared<const Bytes>(std::move(coded));
    addRow({"raw capture, 64 KB, " + name, againstMemcpy ? "memcpy" : "a byte loop",
            [=] {
                rewind(*stream);
                stream->readRbspBytes(out->data(), size);
            },
            [=] {
                if (againstMemcpy) {
                    std::memcpy(out->data(), source->data(), source->size());
                } else {
                    benchmark::DoNotOptimize(captureBytewise(*source, *out));
                }
            }});
}

constexpr int kValues = 1000;

void addGolomb(int leadingZeroBits) {
    std::vector<bool> bits;
    for (int i = 0; i < kValues; ++i) {
        bits.insert(bits.end(), static_cast<size_t>(leadingZeroBits), false);
        bits.push_back(true);
        bits.insert(bits.end(), static_cast<size_t>(leadingZeroBits), true);
    }
    Bytes bytes(bits.size() / 8 + 1);
    for (size_t i = 0; i < bits.size(); ++i) {
        bytes[i / 8] = static_cast<unsigned char>(bytes[i / 8] | (bits[i] ? 0x80 >> i % 8 : 0));
    }
    const auto stream = std::make_shared<QVByteStream>(bytes.data(), bytes.size());
    const auto readAll = [=] {
        rewind(*stream);
        uint32_t sum = 0;
        for (int i = 0; i < kValues; ++i) {
            sum += stream->readGolombUe();
        }
        return sum;
    };
    const uint64_t value = (uint64_t{1} << (leadingZeroBits + 1)) - 2;
    require(readAll() == static_cast<uint32_t>(kValues * value), "readGolombUe");
    addRow({"readGolombUe, " + std::to_string(leadingZeroBits) + " leading zero bits",
            "ns a value",
            [=] { benchmark::DoNotOptimize(readAll()); },
            {},
            kValues});
}

void addPlainReads(uint32_t width) {
    const Bytes bytes(kValues * 4 + 8, 0x5A);
    const auto stream = std::make_shared<QVByteStream>(bytes.data(), bytes.size());
    addRow({"u(" + std::to_string(width) + ")",
            "ns a value",
            [=] {
                rewind(*stream);
                uint32_t sum = 0;
                for (int i = 0; i < kValues; ++i) {
                    sum += stream->readBits(width);
                }
                benchmark::DoNotOptimize(sum);
            },
            {},
            kValues});
}

}  // namespace

void addParsingRows() {
    addAvcSps();
    addHevcSps();
    addSei();
    addCapture("an 03 every 4 KB", 4096, true);
    for (const size_t distance : {3U, 4U, 8U, 32U, 128U}) {
        addCapture("an 03 every " + std::to_string(distance) + " bytes", distance, false);
    }
    for (const int leadingZeroBits : {0, 3, 10, 20, 28, 31}) {
        addGolomb(leadingZeroBits);
    }
    addPlainReads(1);
    addPlainReads(5);
    addPlainReads(16);
}

}  // namespace qv_bench
