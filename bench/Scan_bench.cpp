// Scanning, key frame detection and reframing, on generated pools.
#include <benchmark/benchmark.h>

#include "Framing.h"
#include "Groups.h"
#include "Measure.h"
#include "Peers.h"
#include "QVNaluParser.h"
#include "ReferenceFraming.h"

namespace qv_bench {

namespace {

Shared share(Bytes bytes) {
    return std::make_shared<const Bytes>(std::move(bytes));
}

SharedSamples share(Samples samples) {
    return std::make_shared<const Samples>(std::move(samples));
}

std::function<void()> slowReferenceOver(const Shared& bytes) {
    return [=] {
        NalIndexList nalus;
        qv_test::referenceAnnexBScan(*bytes, nalus);
        benchmark::DoNotOptimize(nalus.data());
    };
}

std::function<void()> plainLoopOver(const Shared& bytes) {
    return [bytes, nalus = std::make_shared<NalIndexList>()] {
        nalus->clear();
        plainScan(*bytes, *nalus);
    };
}

Rows scanCached(const std::string& name, size_t unitSize, const Goal& ofMemchr) {
    const Shared bytes = share(byteStream(kCachePool, unitSize));
    Operation scan = scanWhole(name, bytes);
    scan.yardsticks = {{"memchr", memchrOver(bytes), ofMemchr},
                       {"GStreamer's search", gstreamerOver(QVCodecIDAvc, bytes)},
                       {"the reference loop", slowReferenceOver(bytes), atLeast(50)},
                       {"a plain loop", plainLoopOver(bytes)}};
    return {{scan}};
}

Rows scanMemory(const std::string& name, size_t unitSize) {
    const Shared bytes = share(byteStream(kMemoryPool, unitSize));
    Operation scan = scanWhole(name, bytes);
    scan.yardsticks = {{"memchr", memchrOver(bytes), atLeast(0.9, 0.85)}};
    return {{scan}};
}

Rows scanFill(const std::string& name, std::initializer_list<unsigned char> pattern) {
    const Shared bytes = share(repeatedPattern(kCachePool, pattern));
    Operation scan = scanWhole(name, bytes);
    scan.yardsticks = {{"memchr", memchrOver(bytes), atLeast(0.3, 0.18)}};
    return {{scan}};
}

Rows scanDense() {
    const Shared bytes = share(repeatedPattern(kCachePool, {0, 0, 1, 0x41}));
    Operation scan = scanWhole("a start code every 4 bytes", bytes);
    scan.yardsticks = {{"a plain loop", plainLoopOver(bytes), atLeast(1 / 1.1)},
                       {"the reference loop", slowReferenceOver(bytes), atLeast(1 / 1.1)}};
    return {{scan}};
}

Rows scratch() {
    return {{{"scratch array of a length field", allocateScratch, {}, {{"unit"}}}}};
}

// Samples of one unit each.
SharedSamples lengthSamples(size_t size) {
    return share(lengthPrefixed(cut(byteStream(kCachePool, size), size)));
}

Bytes keyUnit(size_t size) {
    Bytes bytes = {0, 0, 0, 1, 0x67, 0x64, 0x00, 0x0C, 0xAC, 0xD9, 0x41, 0x41, 0x9F, 0x9F, 0x01, 0x10,
                   0, 0, 0, 1, 0x68, 0xEB, 0xE3, 0xCB, 0,    0,    1,    0x06, 0x05, 0xFF, 0xFF, 0xBE};
    bytes.resize(bytes.size() + 700, 0x55);
    bytes.insert(bytes.end(), {0, 0, 1, 0x65});
    bytes.resize(size, 0x55);
    return bytes;
}

Rows keyFrame(const std::string& name, size_t size) {
    Operation isKey = keyFrameOf("key unit of " + name, QVCodecIDAvc, share(cut(keyUnit(size), size)));
    isKey.costs = {{"call"}};
    return {{isKey}};
}

Rows noKeyFrame() {
    const Shared bytes = share(byteStream(kCachePool, 1000000));
    Operation isKey = keyFrameOf("no key unit", QVCodecIDAvc, share(cut(*bytes, bytes->size())));
    isKey.yardsticks = {{"memchr", memchrOver(bytes), atLeast(0.95, 0.85)}};
    return {{isKey}};
}

Rows toLengths(const std::string& name, size_t size) {
    return {{toLengthsOf(name, share(cut(byteStream(kCachePool, std::min<size_t>(size, 40000)), size)))}};
}

}  // namespace

std::vector<Group> scanGroups() {
    return {
        {"scan", [] { return scanCached("units of 5 KB", 5000, atLeast(0.9, 0.6)); }},
        {"scan", [] { return scanCached("units of 40 KB", 40000, atLeast(1.0, 0.9)); }},
        {"scan", [] { return scanCached("units of 1 MB", 1000000, atLeast(1.0, 0.9)); }},
        {"scan", [] { return scanMemory("units of 40 KB, DRAM", 40000); }},
        {"scan", [] { return scanMemory("units of 1 MB, DRAM", 1000000); }},
        {"scan", [] { return scanFill("zeros", {0}); }},
        {"scan",
         [] {
             return scanFill("00 01", {0, 1});
         }},
        {"scan",
         [] {
             return scanFill("00 01 02", {0, 1, 2});
         }},
        {"scan",
         [] {
             return scanFill("00 00 03", {0, 0, 3});
         }},
        {"scan", scanDense},
    };
}

std::vector<Group> lengthScanGroups() {
    return {
        {"lengths", scratch},
        {"lengths", [] { return Rows{{lengthScanOf("samples of 40 KB", lengthSamples(40000))}}; }},
        {"lengths", [] { return Rows{{lengthScanOf("samples of 200 KB", lengthSamples(200000))}}; }},
        {"lengths", [] { return Rows{{lengthScanOf("samples of 1 MB", lengthSamples(1000000))}}; }},
    };
}

std::vector<Group> keyFrameGroups() {
    return {
        {"key", [] { return keyFrame("40 KB", 40000); }},
        {"key", [] { return keyFrame("16 MB", kCachePool); }},
        {"key", noKeyFrame},
    };
}

std::vector<Group> reframeGroups() {
    return {
        {"reframe", [] { return toLengths("samples of 40 KB", 40000); }},
        {"reframe", [] { return toLengths("samples of 1 MB, units of 40 KB", 1000000); }},
        {"reframe", [] { return toLengths("a sample of 16 MB, units of 40 KB", kCachePool); }},
        {"reframe", [] { return Rows{{toStartCodesOf("samples of 40 KB", lengthSamples(40000))}}; }},
        {"reframe", [] { return Rows{{toStartCodesOf("samples of 1 MB", lengthSamples(1000000))}}; }},
    };
}

}  // namespace qv_bench
