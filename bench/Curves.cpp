#include "Curves.h"

#include <algorithm>
#include <cstdio>

#include "Framing.h"
#include "Measure.h"
#include "QVNaluParser.h"
#include "ReferenceFraming.h"

namespace qv_bench {

namespace {

struct Curve {
    std::string name;
    std::function<void()> run;
};

class DataFile {
public:
    explicit DataFile(const std::string& path) : file_(std::fopen(path.c_str(), "w")) {
        require(file_ != nullptr, path.c_str());
    }
    ~DataFile() { std::fclose(file_); }
    DataFile(const DataFile&) = delete;
    DataFile& operator=(const DataFile&) = delete;

    // Writes one line: the position on the axis, and GB/s for each curve. Each curve processes `bytes` bytes.
    void measure(size_t place, size_t bytes, const std::vector<Curve>& curves) {
        std::vector<std::function<void()>> sides;
        for (const Curve& curve : curves) {
            sides.push_back(curve.run);
        }
        if (!hasHeading_) {
            writeHeading(curves);
        }
        std::fprintf(file_, "%zu", place);
        for (const double nanoseconds : medians(sides)) {
            std::fprintf(file_, " %.3f", static_cast<double>(bytes) / nanoseconds);
        }
        std::fputc('\n', file_);
    }

private:
    void writeHeading(const std::vector<Curve>& curves) {
        hasHeading_ = true;
        std::fputs("place", file_);
        for (const Curve& curve : curves) {
            std::fprintf(file_, " \"%s\"", curve.name.c_str());
        }
        std::fputc('\n', file_);
    }

    std::FILE* file_;
    bool hasHeading_ = false;
};

void searchSamples(const Samples& samples) {
    for (size_t i = 0; i < samples.count(); ++i) {
        searchAbsentByte(samples.data(i), static_cast<size_t>(samples.size(i)));
    }
}

std::function<void()> scanSamples(const SharedSamples& samples) {
    const auto nalus = std::make_shared<NalIndexList>();
    const auto scan = [=](size_t i) {
        nalus->clear();
        QVNaluParser::parserDataToNaluIdx(samples->data(i), samples->size(i), *nalus);
    };
    for (size_t i = 0; i < samples->count(); ++i) {
        NalIndexList expected;
        qv_test::referenceAnnexBScan({samples->data(i), samples->data(i) + samples->size(i)}, expected);
        scan(i);
        require(*nalus == expected, "parserDataToNaluIdx");
    }
    return [=] {
        for (size_t i = 0; i < samples->count(); ++i) {
            scan(i);
        }
    };
}

// Cuts small inputs from a large pool: repeated calls on one small input would be too fast, because caches
// and branch predictors learn it.
void measureSize(DataFile& file, size_t size) {
    constexpr size_t kUnitSize = 40000;
    const size_t pool = std::max(size, kCachePool);
    const auto samples =
        std::make_shared<const Samples>(cut(byteStream(pool, std::min(size, kUnitSize)), size));
    const auto lengths = std::make_shared<const Samples>(lengthPrefixed(*samples));
    const Operation toLengths = toLengthsOf("curve", samples);
    const Operation lengthScan = lengthScanOf("curve", lengths);
    const Operation toStartCodes = toStartCodesOf("curve", lengths);
    file.measure(size, samples->count() * size,
                 {{"memchr", [&] { searchSamples(*samples); }},
                  {"parserDataToNaluIdx", scanSamples(samples)},
                  {"memcpy", toLengths.yardsticks.front().run},
                  {"converAnnexBToAvcC", toLengths.run},
                  {"parserDataToNalus", lengthScan.run},
                  {"connvertAvcCToAnnexB", toStartCodes.run}});
}

void measureDensity(DataFile& file, size_t distance) {
    const auto bytes = std::make_shared<const Bytes>(byteStream(kCachePool, distance));
    const auto samples = std::make_shared<const Samples>(cut(*bytes, bytes->size()));
    const Operation scan = scanWhole("curve", bytes);
    const Operation toLengths = toLengthsOf("curve", samples);
    const auto nalus = std::make_shared<NalIndexList>();
    file.measure(distance, bytes->size(),
                 {{"memchr", memchrOver(bytes)},
                  {"parserDataToNaluIdx", scan.run},
                  {"converAnnexBToAvcC", toLengths.run},
                  {"a plain loop", [=] {
                       nalus->clear();
                       plainScan(*bytes, *nalus);
                   }}});
}

}  // namespace

void writeCurves(const std::string& path) {
    DataFile sizes(path + "/size.dat");
    for (const size_t size :
         {5000U, 20000U, 80000U, 320000U, 1280000U, 5000000U, 20000000U, 60000000U, 200000000U}) {
        measureSize(sizes, size);
    }
    DataFile densities(path + "/density.dat");
    for (size_t distance = 8; distance <= size_t{1} << 20; distance *= 4) {
        measureDensity(densities, distance);
        measureDensity(densities, 2 * distance);
    }
}

}  // namespace qv_bench
