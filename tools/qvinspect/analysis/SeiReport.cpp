#include "analysis/SeiReport.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "QVCoreStandalone.h"
#include "analysis/CoreHooks.h"
#include "analysis/FirstBytes.h"
#include "analysis/SeiBlocks.h"
#include "analysis/SeiNames.h"
#include "analysis/SeiTypes.h"
#include "input/Budgets.h"

namespace qvinspect {

namespace {

// The library logs what it refuses, for most messages once.
constexpr size_t kMostLogLines = 32;

std::vector<uint8_t> bytesOf(const qv::SeiMessage& message) {
    std::vector<uint8_t> bytes(message.rbspPayloadSize);
    qv::Reader reader = message.reader();
    for (uint8_t& byte : bytes) {
        reader.u(8, "payload", byte);
    }
    return bytes;
}

// number: of the message in its unit, from 1.
std::string faultText(const qv::SeiMessage& message, uint64_t number) {
    if (message.faults.has(qv::SeiFault::PayloadCut)) {
        return fmt::format(
            "SEI message {} of the unit is truncated: payloadType {}, payloadSize {}, of which {} "
            "bytes are present",
            number, message.payloadType, message.payloadSize, message.rbspPayloadSize);
    }
    return fmt::format("SEI message {} of the unit: {}", number, qv::textOf(message.faults));
}

uint32_t saturated(uint64_t number) {
    return static_cast<uint32_t>(std::min<uint64_t>(number, UINT32_MAX));
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

// The first ones of an access unit are kept, the others counted.
void SeiReader::addFinding(SeiUnit& sei, Severity severity, uint64_t offset, const std::string& text) {
    if (++findings_ <= kMostSeiFindings) {
        sei.findings.push_back({severity, offset, text});
    }
}

// What the player's library keeps of the unit.
void SeiReader::walk(const unsigned char* data, size_t size, SeiUnit& unit) {
    const LogCapture log;
    const QVNaluParser::NaluInfo nalu{unit.nalUnitType, 0, static_cast<int32_t>(size), false};
    QVAvcSps avc = sps_ != nullptr ? sps_->avc : QVAvcSps{};
    QVHevcSps hevc = sps_ != nullptr ? sps_->hevc : QVHevcSps{};
    void* const sps = codec_ == QVCodecIDAvc ? static_cast<void*>(&avc) : static_cast<void*>(&hevc);
    unit.result = QVNaluParser::parserDataToSei(codec_, data, nalu, items_, sps, requested_);
    for (const LogLine& line : log.lines()) {
        if (line.level != QVTraceDebug && unit.log.size() < kMostLogLines) {
            unit.log.push_back(line.text);
        }
    }
    if (unit.result != QVResultOk) {
        addFinding(unit, Severity::Note, unit.offset,
                   fmt::format("the player's library ends its walk of the SEI unit with {}{}", unit.result,
                               unit.log.empty() ? "" : ": " + unit.log.front()));
    }
}

void SeiReader::addMessage(const qv::SeiMessage& message, const qv::sei::Context& context, SeiUnit& sei) {
    SeiMessage& added = sei.messages.emplace_back();
    added.payloadType = saturated(message.payloadType);
    added.payloadSize = saturated(message.payloadSize);
    added.payload = bytesOf(message);
    added.offset = sei.offset + message.payloadOffset;
    added.codedSize = static_cast<uint32_t>(message.payload.size);
    added.facts = factsOf(message, context);
    const qv::Fault fault = describeSei(message, context, fields_, added.block);
    if (fault && !message.faults.has(qv::SeiFault::PayloadCut)) {
        sei.findings.push_back({Severity::Error, added.offset,
                                fmt::format("SEI {} {}: {}", added.payloadType,
                                            seiName(codec_, added.payloadType), qv::textOf(fault))});
    }
}

// Every message of the unit. The first ones of an access unit are described, the others are counted.
void SeiReader::readMessages(qv::Bytes unit, qv::sei::Context context, SeiUnit& sei) {
    uint64_t number = 0;
    for (const qv::SeiMessage& message : qv::SeiMessages(unit, context.codec)) {
        ++number;
        if (message.faults) {
            addFinding(sei, Severity::Error, sei.offset + message.offset, faultText(message, number));
        }
        if (message.faults.has(qv::SeiFault::NoMessage) || message.faults.has(qv::SeiFault::HeaderCut)) {
            return;
        }
        if (described_ + sei.messages.size() < kMostDescribedMessages) {
            addMessage(message, context, sei);
        } else {
            ++sei.furtherMessages[saturated(message.payloadType)];
        }
        context.take(message);
    }
}

SeiUnit SeiReader::add(const unsigned char* data, size_t size, uint32_t nalUnitType, uint64_t offset,
                       qv::sei::Context context) {
    SeiUnit unit;
    unit.offset = offset;
    unit.nalUnitType = nalUnitType;
    const size_t firstItem = items_.size();
    walk(data, size, unit);
    readMessages({data, size}, context, unit);
    described_ += unit.messages.size();
    for (const auto& [type, count] : unit.furtherMessages) {
        undescribed_ += count;
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
    SeiTotals totals{items_.size(), items_.size() - listedItems_, 0, std::exchange(undescribed_, 0),
                     findings_ > kMostSeiFindings ? findings_ - kMostSeiFindings : 0};
    if (!items_.empty()) {
        unsigned char* sideData = nullptr;
        QVNaluParser::assembleSeiSideDataBuffer(items_, &sideData, totals.sideDataSize);
        freepQVSideData(&sideData);
    }
    forgetItems();
    described_ = 0;
    fields_ = 0;
    findings_ = 0;
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
