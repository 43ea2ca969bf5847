#include "Framing.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstring>

#include "Measure.h"
#include "Peers.h"
#include "QVCoreStandalone.h"
#include "QVNaluParser.h"
#include "ReferenceFraming.h"

namespace qv_bench {

namespace {

constexpr int kLengthSize = 4;

Bytes piece(const Samples& samples, size_t i) {
    return {samples.data(i), samples.data(i) + samples.size(i)};
}

size_t largestPiece(const Samples& samples) {
    int largest = 0;
    for (const auto& [offset, size] : samples.pieces) {
        largest = std::max(largest, size);
    }
    return static_cast<size_t>(largest);
}

void copySamples(const Samples& samples) {
    for (size_t i = 0; i < samples.count(); ++i) {
        copyAndFree(samples.data(i), static_cast<size_t>(samples.size(i)));
    }
}

void scanLengths(const unsigned char* data, int size, NalIndexList& nalus) {
    nalus.clear();
    QVNaluParser::parserDataToNalus(data, size, nalus, kLengthSize);
}

Bytes toStartCodes(const unsigned char* data, int size) {
    unsigned char* out = nullptr;
    int outSize = 0;
    QVNaluParser::connvertAvcCToAnnexB(data, size, kLengthSize, &out, outSize);
    Bytes bytes(out, out + outSize);
    qvFree(out);
    return bytes;
}

// The cost of a conversion without its search: a copy of the input, and a zeroed output that is then filled.
void copyTwiceAndFree(const unsigned char* data, size_t size) {
    copyAndFree(data, size);
    void* const out = qvMallocz(size);
    std::memcpy(out, data, size);
    benchmark::DoNotOptimize(out);
    qvFree(out);
}

// Other libraries assign trailing zero bytes differently, so only the offsets of the units have to agree.
bool beginAlike(const NalIndexList& one, const NalIndexList& other) {
    return std::equal(one.begin(), one.end(), other.begin(), other.end(),
                      [](const auto& a, const auto& b) { return a.first == b.first; });
}

}  // namespace

Operation scanWhole(const std::string& name, const Shared& bytes) {
    const auto nalus = std::make_shared<NalIndexList>();
    const auto scan = [=] {
        nalus->clear();
        QVNaluParser::parserDataToNaluIdx(bytes->data(), static_cast<int>(bytes->size()), *nalus);
    };
    NalIndexList expected;
    qv_test::referenceAnnexBScan(*bytes, expected);
    scan();
    require(*nalus == expected, name.c_str());
    return {"parserDataToNaluIdx, " + name, scan};
}

std::function<void()> memchrOver(const Shared& bytes) {
    require(std::memchr(bytes->data(), kAbsent, bytes->size()) == nullptr, "memchr finds nothing");
    return [=] { searchAbsentByte(bytes->data(), bytes->size()); };
}

std::function<void()> gstreamerOver(QVCodecID codec, const Shared& bytes) {
    const PeerScan scan = gstreamerScan(codec);
    if (!scan) {
        return {};
    }
    const auto nalus = std::make_shared<NalIndexList>();
    NalIndexList expected;
    qv_test::referenceAnnexBScan(*bytes, expected);
    scan(*bytes, *nalus);
    require(beginAlike(*nalus, expected), "GStreamer finds the same units");
    return [=] { scan(*bytes, *nalus); };
}

Operation keyFrameOf(const std::string& name, QVCodecID codec, const SharedSamples& samples) {
    for (size_t i = 0; i < samples->count(); ++i) {
        const bool isKey = QVNaluParser::isKeyFrame(codec, samples->data(i), samples->size(i));
        require(isKey == qv_test::referenceIsKeyFrame(codec, piece(*samples, i)), name.c_str());
    }
    return {
        "isKeyFrame, " + name, [=] {
            for (size_t i = 0; i < samples->count(); ++i) {
                benchmark::DoNotOptimize(QVNaluParser::isKeyFrame(codec, samples->data(i), samples->size(i)));
            }
        }};
}

Operation lengthScanOf(const std::string& name, const SharedSamples& samples) {
    const auto nalus = std::make_shared<NalIndexList>();
    size_t units = 0;
    for (size_t i = 0; i < samples->count(); ++i) {
        scanLengths(samples->data(i), samples->size(i), *nalus);
        require(*nalus == qv_test::referenceLengthScan(piece(*samples, i), kLengthSize).nalus, name.c_str());
        units += nalus->size();
    }
    const auto copies = [=] {
        copySamples(*samples);
        for (size_t i = 0; i < units; ++i) {
            allocateScratch();
        }
    };
    return {"parserDataToNalus, " + name,
            [=] {
                for (size_t i = 0; i < samples->count(); ++i) {
                    scanLengths(samples->data(i), samples->size(i), *nalus);
                }
            },
            {{"malloc + memcpy + free, scratch arrays", copies, atLeast(0.95)}}};
}

Operation toLengthsOf(const std::string& name, const SharedSamples& samples) {
    const auto out = std::make_shared<Bytes>();
    for (size_t i = 0; i < samples->count(); ++i) {
        Bytes expected;
        qv_test::referenceAnnexBToLengths(piece(*samples, i), expected);
        QVNaluParser::converAnnexBToAvcC(samples->data(i), samples->size(i), *out);
        require(*out == expected, name.c_str());
    }
    const auto target = std::make_shared<Bytes>(largestPiece(*samples));
    const auto copy = [=] {
        for (size_t i = 0; i < samples->count(); ++i) {
            std::memcpy(target->data(), samples->data(i), static_cast<size_t>(samples->size(i)));
            benchmark::ClobberMemory();
        }
    };
    return {"converAnnexBToAvcC, " + name,
            [=] {
                for (size_t i = 0; i < samples->count(); ++i) {
                    QVNaluParser::converAnnexBToAvcC(samples->data(i), samples->size(i), *out);
                }
            },
            {{"memcpy", copy, atLeast(0.75, 0.65)}}};
}

Operation toStartCodesOf(const std::string& name, const SharedSamples& samples) {
    for (size_t i = 0; i < samples->count(); ++i) {
        Bytes expected;
        qv_test::referenceLengthsToAnnexB(piece(*samples, i), kLengthSize, expected);
        require(toStartCodes(samples->data(i), samples->size(i)) == expected, name.c_str());
    }
    const auto copies = [=] {
        for (size_t i = 0; i < samples->count(); ++i) {
            copyTwiceAndFree(samples->data(i), static_cast<size_t>(samples->size(i)));
        }
    };
    return {"connvertAvcCToAnnexB, " + name,
            [=] {
                for (size_t i = 0; i < samples->count(); ++i) {
                    unsigned char* out = nullptr;
                    int size = 0;
                    QVNaluParser::connvertAvcCToAnnexB(samples->data(i), samples->size(i), kLengthSize, &out,
                                                       size);
                    qvFree(out);
                }
            },
            {{"both allocations + memcpy, zero fill", copies, atLeast(0.9)}}};
}

}  // namespace qv_bench
