// The SEI messages of one access unit, and what the player's library keeps of them.
#ifndef QVINSPECT_SEIREPORT_H
#define QVINSPECT_SEIREPORT_H

#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "QVNaluParser.h"
#include "analysis/Block.h"
#include "analysis/SeiFacts.h"
#include "analysis/SequenceParameterSet.h"
#include "bitstream/sei/SeiContext.h"
#include "bitstream/sei/SeiMessages.h"
#include "input/AccessUnit.h"

namespace qvinspect {

// What the player's library does with a message.
enum class Delivery {
    Kept,       // an item of the library's list
    Requested,  // an item because --request asked for it
    Text,       // an item that is text made from the message
    NotKept     // parsed or skipped by the walk
};

struct SeiMessage {
    uint32_t payloadType;
    uint32_t payloadSize;
    std::vector<uint8_t> payload;  // without emulation prevention bytes
    Delivery delivery = Delivery::NotKept;
    Block block;
    std::shared_ptr<const SeiFacts> facts{};  // null when there is nothing to take

    // Where the payload begins, in the same count as the offset of its NAL unit, and its size there: more
    // than payloadSize if it contains emulation prevention bytes.
    uint64_t offset = 0;
    uint32_t codedSize = 0;
};

// What the library returned for a message.
struct SeiItem {
    uint32_t payloadType;
    std::vector<uint8_t> bytes;
    Delivery delivery;
};

struct SeiUnit {
    uint64_t offset = 0;  // of its NAL unit
    uint32_t nalUnitType = 0;
    int result = QVResultOk;  // of the player's library's walk; another one is no fault of the stream
    std::vector<std::string> log;
    std::vector<SeiMessage> messages;
    std::vector<SeiItem> items;  // in the order of the walk

    // Further messages by payloadType, counted and not described: the access unit has more than
    // kMostDescribedMessages.
    std::map<uint32_t, uint64_t> furtherMessages;

    // What is wrong with the messages by the standard, and notes of what the player's library does with them.
    std::vector<Finding> findings;
};

// What the library keeps of an access unit.
struct SeiTotals {
    size_t items = 0;
    size_t unlistedItems = 0;          // counted only
    int sideDataSize = 0;              // of the items when packed; 0 without items
    uint64_t undescribedMessages = 0;  // counted only
    uint64_t unlistedFindings = 0;     // counted only
};

// Collects the SEI of access units in sequence.
class SeiReader {
public:
    SeiReader(QVCodecID codec, std::deque<int> requested);

    // Sets the active parameter set; null if none was seen.
    void use(const SequenceParameterSet* sps) { sps_ = sps; }

    // data, size: the SEI unit, header included. context: the parameter sets in force before it.
    SeiUnit add(const unsigned char* data, size_t size, uint32_t nalUnitType, uint64_t offset,
                qv::sei::Context context);

    // Packs the items of the access unit and frees them.
    SeiTotals finish();

    ~SeiReader();
    SeiReader(const SeiReader&) = delete;
    SeiReader& operator=(const SeiReader&) = delete;

private:
    void addFinding(SeiUnit& sei, Severity severity, uint64_t offset, const std::string& text);
    void walk(const unsigned char* data, size_t size, SeiUnit& unit);
    void readMessages(qv::Bytes unit, qv::sei::Context context, SeiUnit& sei);
    void addMessage(const qv::SeiMessage& message, const qv::sei::Context& context, SeiUnit& sei);
    void forgetItems();

    QVCodecID codec_;
    std::deque<int> requested_;
    const SequenceParameterSet* sps_ = nullptr;
    std::vector<QVSeiItem> items_;
    size_t described_ = 0;  // messages of the access unit
    size_t fields_ = 0;     // of the messages of the access unit
    uint64_t findings_ = 0;
    size_t listedItems_ = 0;
    uint64_t undescribed_ = 0;
};

}  // namespace qvinspect

#endif
