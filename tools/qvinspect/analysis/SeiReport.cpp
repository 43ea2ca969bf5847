#include "analysis/SeiReport.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "QVCoreStandalone.h"
#include "analysis/CoreHooks.h"
#include "analysis/FirstBytes.h"
#include "analysis/NalUnitNames.h"
#include "analysis/SeiBlocks.h"
#include "analysis/SeiNames.h"
#include "analysis/SeiTypes.h"
#include "bitstream/units/Rbsp.h"
#include "input/Budgets.h"

namespace qvinspect {

namespace {

// The library logs what it refuses, for most messages once.
constexpr size_t kMostLogLines = 32;

// The units that the library cuts include trailing_zero_8bits, which no message extends into.
void dropTrailingZeros(std::vector<uint8_t>& unit) {
    while (!unit.empty() && unit.back() == 0x00) {
        unit.pop_back();
    }
}

bool isTrailing(const QVByteStream& rbsp) {
    return rbsp.atEnd() || (rbsp.bytesLeft() == 1 && rbsp.data[rbsp.bytePos] == 0x80);
}

// The place of a payload of size bytes at position of the unescaped unit.
void place(SeiMessage& message, qv::RbspPositions& positions, size_t position, uint64_t unitOffset) {
    const size_t begin = positions.codedByte(position);
    const size_t size = message.payload.size();
    message.offset = unitOffset + begin;
    message.codedSize =
        size == 0 ? 0 : static_cast<uint32_t>(positions.codedByte(position + size - 1) + 1 - begin);
}

// sei_rbsp(): every message of the unit, including those that the library's walk skips. The first most
// messages are described, the others are counted.
void readMessages(const unsigned char* data, size_t size, size_t header, size_t most, SeiUnit& sei) {
    std::vector<uint8_t> unit(size);
    unit.resize(qv::unescape({data, size}, header, unit.data(), unit.size()));
    dropTrailingZeros(unit);
    if (unit.size() <= header) {
        return;
    }
    qv::RbspPositions positions({data, size}, header);
    QVByteStream rbsp(unit.data() + header, unit.size() - header);
    const LogCapture quiet;  // the walk has its own lines
    for (uint64_t number = 1; !isTrailing(rbsp); ++number) {
        const size_t begin = header + rbsp.bytePos;
        int payloadType = 0;
        int payloadSize = 0;
        if (QVNaluParser::parserPayloadParams(rbsp, payloadType, payloadSize) != QVResultOk) {
            sei.fault = Finding{
                Severity::Error, sei.offset + positions.codedByte(begin),
                fmt::format("SEI message {} of the unit is truncated: payloadType {}, payloadSize {}, "
                            "of which {} bytes are present",
                            number, static_cast<uint32_t>(payloadType), static_cast<uint32_t>(payloadSize),
                            rbsp.bytesLeft())};
            return;
        }
        const uint8_t* const payload = rbsp.data + rbsp.bytePos;
        if (sei.messages.size() < most) {
            sei.messages.push_back({static_cast<uint32_t>(payloadType),
                                    static_cast<uint32_t>(payloadSize),
                                    std::vector<uint8_t>(payload, payload + payloadSize),
                                    Delivery::NotKept,
                                    {}});
            place(sei.messages.back(), positions, header + rbsp.bytePos, sei.offset);
        } else {
            ++sei.furtherMessages[static_cast<uint32_t>(payloadType)];
        }
        rbsp.skipBytes(static_cast<uint64_t>(payloadSize));
    }
}

Delivery deliveryOf(const QVSeiItem& item) {
    if (item.isRequested) {
        return Delivery::Requested;
    }
    return item.payloadType == kDisplayOrientation ? Delivery::Text : Delivery::Kept;
}

bool holdsPayload(const QVSeiItem& item, const SeiMessage& message) {
    return std::equal(message.payload.begin(), message.payload.end(), item.payloadData,
                      item.payloadData + item.payloadSize);
}

// Items are in the order of their messages.
void markKept(std::vector<SeiMessage>& messages, const std::vector<QVSeiItem>& items, size_t firstItem) {
    size_t next = 0;
    for (size_t i = firstItem; i < items.size(); ++i) {
        while (next < messages.size() && messages[next].payloadType != items[i].payloadType) {
            ++next;
        }
        if (next == messages.size()) {
            return;
        }
        SeiMessage& message = messages[next++];
        message.delivery = deliveryOf(items[i]);
        if (message.delivery == Delivery::Text) {
            const auto* const text = reinterpret_cast<const char*>(items[i].payloadData);
            message.block.add("item text", std::string(text));
        } else if (!holdsPayload(items[i], message)) {
            message.block.add("item bytes", firstBytes(items[i].payloadData, items[i].payloadSize),
                              "differs from the payload above");
        }
    }
}

}  // namespace

SeiReader::SeiReader(QVCodecID codec, std::deque<int> requested)
    : codec_(codec), requested_(std::move(requested)) {}

SeiReader::~SeiReader() {
    forgetItems();
}

SeiUnit SeiReader::add(const unsigned char* data, size_t size, uint32_t nalUnitType, uint64_t offset) {
    SeiUnit unit;
    unit.offset = offset;
    unit.nalUnitType = nalUnitType;
    const size_t firstItem = items_.size();
    {
        const LogCapture log;
        const QVNaluParser::NaluInfo nalu{nalUnitType, 0, static_cast<int32_t>(size), false};
        QVAvcSps avc = sps_ != nullptr ? sps_->avc : QVAvcSps{};
        QVHevcSps hevc = sps_ != nullptr ? sps_->hevc : QVHevcSps{};
        void* const sps = codec_ == QVCodecIDAvc ? static_cast<void*>(&avc) : static_cast<void*>(&hevc);
        unit.result = QVNaluParser::parserDataToSei(codec_, data, nalu, items_, sps, requested_);
        for (const LogLine& line : log.lines()) {
            if (line.level != QVTraceDebug && unit.log.size() < kMostLogLines) {
                unit.log.push_back(line.text);
            }
        }
    }
    readMessages(data, size, headerSize(codec_), kMostDescribedMessages - described_, unit);
    if (unit.result != QVResultOk) {
        unit.fault.reset();  // the walk's end is reported
    }
    described_ += unit.messages.size();
    for (const auto& [type, count] : unit.furtherMessages) {
        undescribed_ += count;
    }
    for (SeiMessage& message : unit.messages) {
        message.block = describeSei(codec_, message.payloadType, message.payload, sps_);
    }
    markKept(unit.messages, items_, firstItem);
    for (size_t i = firstItem; i < items_.size() && listedItems_ < kMostDescribedMessages;
         ++i, ++listedItems_) {
        const QVSeiItem& item = items_[i];
        unit.items.push_back(
            {item.payloadType, {item.payloadData, item.payloadData + item.payloadSize}, deliveryOf(item)});
    }
    return unit;
}

SeiTotals SeiReader::finish() {
    SeiTotals totals{items_.size(), items_.size() - listedItems_, 0, std::exchange(undescribed_, 0)};
    if (!items_.empty()) {
        unsigned char* sideData = nullptr;
        QVNaluParser::assembleSeiSideDataBuffer(items_, &sideData, totals.sideDataSize);
        freepQVSideData(&sideData);
    }
    forgetItems();
    described_ = 0;
    listedItems_ = 0;
    return totals;
}

void SeiReader::forgetItems() {
    for (const QVSeiItem& item : items_) {
        qvFree(item.payloadData);
    }
    items_.clear();
}

}  // namespace qvinspect
