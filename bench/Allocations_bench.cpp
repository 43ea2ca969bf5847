// Counts the heap allocations of each operation.
#include <cstring>
#include <deque>

#include "AllocationCount.h"
#include "Groups.h"
#include "Measure.h"
#include "QVCoreStandalone.h"
#include "QVNaluParser.h"
#include "Units.h"

namespace qv_bench {

namespace {

constexpr int kUnits = 40;
constexpr size_t kUnitSize = 5000;

// Counts the second call, when the caller's lists and buffers already have room.
Count allocationsOf(const std::string& name, const Goal& goal, const std::function<void()>& operation) {
    operation();
    const unsigned long before = allocations();
    operation();
    const unsigned long asked = allocations() - before;
    return {name, "allocations", static_cast<double>(asked), goal};
}

void addAnnexB(std::vector<Count>& counts) {
    const Bytes bytes = byteStream(kUnits * kUnitSize, kUnitSize);
    const int size = static_cast<int>(bytes.size());
    NalIndexList nalus;
    counts.push_back(allocationsOf("parserDataToNaluIdx, list with room", exactly(0), [&] {
        nalus.clear();
        QVNaluParser::parserDataToNaluIdx(bytes.data(), size, nalus);
        require(nalus.size() == kUnits, "parserDataToNaluIdx");
    }));
    counts.push_back(allocationsOf("isKeyFrame, Annex B", exactly(0), [&] {
        require(!QVNaluParser::isKeyFrame(QVCodecIDAvc, bytes.data(), size), "isKeyFrame");
    }));
    Bytes out;
    // The operation's internal list doubles its room: 1, 2, 4, ... 64 pairs.
    counts.push_back(allocationsOf("converAnnexBToAvcC, vector with room", atMost(7), [&] {
        QVNaluParser::converAnnexBToAvcC(bytes.data(), size, out);
        require(out.size() == bytes.size(), "converAnnexBToAvcC");
    }));
    std::vector<QVNaluParser::NaluInfo> infos;
    const QVCodecParameters parameters = {QVCodecIDAvc, 1, 0};
    counts.push_back(allocationsOf("parserDataToNaluType, Annex B, list with room", atMost(7), [&] {
        QVNaluParser::parserDataToNaluType(bytes.data(), size, infos, &parameters);
        require(infos.size() == kUnits, "parserDataToNaluType");
    }));
    counts.push_back(allocationsOf("parseNalusToNaluType, list with room", exactly(0), [&] {
        QVNaluParser::parseNalusToNaluType(bytes.data(), nalus, infos, QVCodecIDAvc);
        require(infos.size() == kUnits, "parseNalusToNaluType");
    }));
}

void addLengthPrefixed(std::vector<Count>& counts) {
    const Samples samples =
        lengthPrefixed(cut(byteStream(kUnits * kUnitSize, kUnitSize), kUnits * kUnitSize));
    const Bytes& bytes = samples.bytes;
    const int size = static_cast<int>(bytes.size());
    NalIndexList nalus;
    counts.push_back(allocationsOf("parserDataToNalus, 40 units: the copy, a scratch array each",
                                   exactly(1 + kUnits), [&] {
                                       nalus.clear();
                                       QVNaluParser::parserDataToNalus(bytes.data(), size, nalus, 4);
                                       require(nalus.size() == kUnits, "parserDataToNalus");
                                   }));
    counts.push_back(allocationsOf("isKeyFrame, lengths: the copy", exactly(1), [&] {
        require(!QVNaluParser::isKeyFrame(QVCodecIDAvc, bytes.data(), size), "isKeyFrame");
    }));
    counts.push_back(
        allocationsOf("connvertAvcCToAnnexB: the same, list, output", atMost(1 + kUnits + 7 + 1), [&] {
            unsigned char* out = nullptr;
            int outSize = 0;
            QVNaluParser::connvertAvcCToAnnexB(bytes.data(), size, 4, &out, outSize);
            require(outSize == size, "connvertAvcCToAnnexB");
            qvFree(out);
        }));
}

void addParameterSets(std::vector<Count>& counts) {
    const auto avcStream = std::make_shared<QVByteStream>(avcSpsUnit().data(), avcSpsUnit().size());
    QVAvcSps avcSps{};
    counts.push_back(allocationsOf("parseAvcSps", exactly(0), [&] {
        rewind(*avcStream);
        require(parseAvcSps(&avcSps, avcStream), "parseAvcSps");
    }));
    const auto hevcStream = std::make_shared<QVByteStream>(hevcSpsUnit().data(), hevcSpsUnit().size());
    QVHevcSps hevcSps{};
    counts.push_back(allocationsOf("parseHevcSps", exactly(0), [&] {
        rewind(*hevcStream);
        require(parseHevcSps(&hevcSps, hevcStream), "parseHevcSps");
    }));
}

void release(std::vector<QVSeiItem>& items) {
    for (const QVSeiItem& item : items) {
        qvFree(item.payloadData);
    }
    items.clear();
}

void addSei(std::vector<Count>& counts) {
    const Bytes captured = seiRbsp();
    const Bytes parsed = {0x06, 0x01, 0xC0, 0x80};  // recovery_point
    const std::deque<int> requested;
    std::vector<QVSeiItem> items;
    const auto walkAvc = [&](const Bytes& rbsp) {
        QVNaluParser::parserAvcDataToSei(rbsp.data(), static_cast<int>(rbsp.size()), items, nullptr,
                                         requested);
        release(items);
    };
    const auto walkHevc = [&](const Bytes& rbsp) {
        QVNaluParser::parserHevcDataToSei(39, rbsp.data(), static_cast<int>(rbsp.size()), items, nullptr,
                                          requested);
        release(items);
    };
    counts.push_back(allocationsOf("parserAvcDataToSei, a captured message: copy, payload", exactly(2),
                                   [&] { walkAvc(captured); }));
    counts.push_back(allocationsOf("parserAvcDataToSei, a parsed message: the copy", exactly(1),
                                   [&] { walkAvc(parsed); }));
    counts.push_back(allocationsOf("parserHevcDataToSei, a captured message: copy, payload", exactly(2),
                                   [&] { walkHevc(captured); }));
}

Rows all() {
    Rows rows;
    addAnnexB(rows.counts);
    addLengthPrefixed(rows.counts);
    addParameterSets(rows.counts);
    addSei(rows.counts);
    return rows;
}

}  // namespace

std::vector<Group> allocationGroups() {
    return {{"allocations", all}};
}

}  // namespace qv_bench
