// The parameter set parsers, the SEI walk, raw capture and the bit reader.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstring>
#include <deque>

#include "CursorModel.h"
#include "Groups.h"
#include "Measure.h"
#include "Peers.h"
#include "QVCoreStandalone.h"
#include "QVNaluParser.h"
#include "Units.h"

namespace qv_bench {

namespace {

std::shared_ptr<QVByteStream> streamOver(const Bytes& bytes) {
    return std::make_shared<QVByteStream>(bytes.data(), bytes.size());
}

// Returns a peer's parser as a yardstick after checking its result. An empty parser gives no row.
std::function<void()> checked(const std::function<int()>& parse, int expected, const char* what) {
    if (!parse) {
        return {};
    }
    require(parse() == expected, what);
    return [parse] { benchmark::DoNotOptimize(parse()); };
}

template <class Sps>
Operation parse(const std::string& name, const Bytes& unit,
                bool (*parser)(Sps*, std::shared_ptr<QVByteStream>), const std::shared_ptr<Sps>& sps) {
    const auto stream = streamOver(unit);
    const auto run = [=] {
        rewind(*stream);
        benchmark::DoNotOptimize(parser(sps.get(), stream));
    };
    run();
    return {name, run, {}, {{"call"}}};
}

Rows avcSps() {
    const auto sps = std::make_shared<QVAvcSps>();
    const Bytes& unit = avcSpsUnit();
    Operation operation = parse("parseAvcSps, no VUI", unit, parseAvcSps, sps);
    require(sps->width == 320 && sps->mb_height == 12, "parseAvcSps");
    operation.yardsticks = {
        {"malloc + memcpy + free", [&unit] { copyAndFree(unit.data(), unit.size()); }, atLeast(1 / 3.0)},
        {"GStreamer's parser", checked(gstreamerAvcSps(unit), 320, "GStreamer's parser"), atLeast(8)}};
    return {{operation}};
}

Rows hevcSps() {
    const auto sps = std::make_shared<QVHevcSps>();
    const Bytes& unit = hevcSpsUnit();
    Operation operation = parse("parseHevcSps", unit, parseHevcSps, sps);
    require(sps->pic_width_in_luma_samples == 320 && sps->pic_height_in_luma_samples == 184, "parseHevcSps");
    operation.yardsticks = {
        {"GStreamer's parser", checked(gstreamerHevcSps(unit), 320, "GStreamer's parser"), atLeast(10)}};
    return {{operation}};
}

class SeiWalk {
public:
    explicit SeiWalk(Bytes rbsp) : rbsp_(std::move(rbsp)) { items_.reserve(8); }

    void walk() {
        QVNaluParser::parserAvcDataToSei(rbsp_.data(), static_cast<int>(rbsp_.size()), items_, nullptr,
                                         requested_);
    }

    void release() {
        for (const QVSeiItem& item : items_) {
            qvFree(item.payloadData);
        }
        items_.clear();
    }

    const Bytes& rbsp() const { return rbsp_; }
    const std::vector<QVSeiItem>& items() const { return items_; }

private:
    Bytes rbsp_;
    std::vector<QVSeiItem> items_;
    std::deque<int> requested_;
};

Rows avcSei() {
    const auto sei = std::make_shared<SeiWalk>(seiRbsp());
    sei->walk();
    require(sei->items().size() == 1 && sei->items().front().payloadSize == kSeiPayload &&
                std::memcmp(sei->items().front().payloadData, sei->rbsp().data() + 4, kSeiPayload) == 0,
            "parserAvcDataToSei");
    sei->release();
    Bytes unit(1 + sei->rbsp().size(), 0x06);
    std::copy(sei->rbsp().begin(), sei->rbsp().end(), unit.begin() + 1);
    Operation operation = {"parserAvcDataToSei, one message of 700 bytes", [=] {
                               sei->walk();
                               sei->release();
                           }};
    operation.yardsticks = {
        {"two malloc + memcpy + free",
         [=] {
             copyAndFree(sei->rbsp().data(), sei->rbsp().size());
             copyAndFree(sei->rbsp().data(), sei->rbsp().size());
         },
         atLeast(0.45)},
        {"GStreamer's parser", checked(gstreamerAvcSei(unit), 1, "GStreamer's parser"), atLeast(30)}};
    return {{operation}};
}

Operation captureOf(const std::string& name, const Bytes& coded) {
    const auto stream = streamOver(coded);
    Bytes expected(coded.size());
    const size_t size = captureBytewise(coded, expected);
    const auto out = std::make_shared<Bytes>(size);
    const auto run = [=] {
        rewind(*stream);
        stream->readRbspBytes(out->data(), size);
    };
    run();
    expected.resize(size);
    require(*out == expected, name.c_str());
    return {"raw capture, 64 KB, " + name, run};
}

constexpr size_t kCaptured = 65536;

Rows sparseCapture() {
    const Bytes coded = emulated(kCaptured, 4096);
    Operation operation = captureOf("an 03 every 4 KB", coded);
    const auto source = std::make_shared<const Bytes>(coded);
    const auto out = std::make_shared<Bytes>(coded.size());
    operation.yardsticks = {
        {"memcpy", [=] { std::memcpy(out->data(), source->data(), source->size()); }, atLeast(0.4)}};
    return {{operation}};
}

Rows denseCapture(size_t distance) {
    const Bytes coded = emulated(kCaptured, distance);
    Operation operation = captureOf("an 03 every " + std::to_string(distance) + " bytes", coded);
    const auto source = std::make_shared<const Bytes>(coded);
    const auto out = std::make_shared<Bytes>(coded.size());
    operation.yardsticks = {
        {"a byte loop", [=] { benchmark::DoNotOptimize(captureBytewise(*source, *out)); }, atLeast(1 / 1.3)}};
    return {{operation}};
}

constexpr int kValues = 1000;

// kValues reads of a stream, compared with the model of the reader.
template <class Reader>
Operation reads(const std::string& name, const Bytes& bytes, const Reader& read) {
    const auto stream = streamOver(bytes);
    const auto readAll = [=] {
        QVByteStream& reader = *stream;
        rewind(reader);
        uint32_t sum = 0;
        for (int i = 0; i < kValues; ++i) {
            sum += read(reader);
        }
        return sum;
    };
    qv_test::CursorModel model(bytes);
    uint32_t expected = 0;
    for (int i = 0; i < kValues; ++i) {
        expected += read(model);
    }
    require(readAll() == expected, name.c_str());
    return {name, [readAll] { benchmark::DoNotOptimize(readAll()); }, {}, {{"value", kValues}}};
}

Rows golomb() {
    Rows rows;
    for (const int leadingZeroBits : {0, 3, 10, 20, 28, 31}) {
        rows.operations.push_back(
            reads("readGolombUe, " + std::to_string(leadingZeroBits) + " leading zero bits",
                  golombCodes(kValues, leadingZeroBits), [](auto& reader) { return reader.readGolombUe(); }));
    }
    return rows;
}

Rows plainReads() {
    Rows rows;
    const Bytes bytes(kValues * 4 + 8, 0x5A);
    for (const uint32_t width : {1U, 5U, 8U, 16U, 32U}) {
        rows.operations.push_back(reads("u(" + std::to_string(width) + ")", bytes,
                                        [width](auto& reader) { return reader.readBits(width); }));
    }
    return rows;
}

}  // namespace

std::vector<Group> parameterSetGroups() {
    return {{"sps", avcSps}, {"sps", hevcSps}};
}

std::vector<Group> seiGroups() {
    std::vector<Group> groups = {{"sei", avcSei}, {"sei", sparseCapture}};
    for (const size_t distance : {3U, 4U, 8U, 16U, 32U, 128U}) {
        groups.push_back({"sei", [=] { return denseCapture(distance); }});
    }
    return groups;
}

std::vector<Group> readerGroups() {
    return {{"reader", golomb}, {"reader", plainReads}};
}

}  // namespace qv_bench
