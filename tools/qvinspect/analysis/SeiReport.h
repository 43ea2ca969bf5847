// The SEI messages of one access unit: what the library keeps of them and what they say.
#ifndef QVINSPECT_SEIREPORT_H
#define QVINSPECT_SEIREPORT_H

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <vector>

#include "QVNaluParser.h"
#include "analysis/Block.h"
#include "analysis/SequenceParameterSet.h"

namespace qvinspect {

enum class Delivery {
    Kept,       // an item of the library's list
    Requested,  // an item because --request asked for it
    Text,       // an item that holds text made from the message
    NotKept     // parsed or skipped by the walk
};

struct SeiMessage {
    uint32_t payloadType;
    uint32_t payloadSize;
    std::vector<uint8_t> payload;  // without emulation prevention bytes
    Delivery delivery = Delivery::NotKept;
    Block block;

    // Where the payload begins, counted as the offset of its NAL unit, and the bytes that it takes there:
    // more than payloadSize where emulation prevention bytes stand between them.
    uint64_t offset = 0;
    uint32_t codedSize = 0;
};

// What the library handed over of a message.
struct SeiItem {
    uint32_t payloadType;
    std::vector<uint8_t> bytes;
    Delivery delivery;
};

struct SeiUnit {
    uint64_t offset = 0;      // as that of its NAL unit
    int result = QVResultOk;  // of the library's walk
    std::vector<std::string> log;
    std::vector<SeiMessage> messages;
    std::vector<SeiItem> items;  // all of them, in the order of the walk
};

struct SeiReport {
    std::vector<SeiUnit> units;
    size_t items = 0;
    int sideDataSize = 0;  // of the access unit's items; 0 without items
};

// Collects the SEI of access units, one after the other.
class SeiReader {
public:
    SeiReader(QVCodecID codec, std::deque<int> requested);

    // The parameter set in force; null when none was seen.
    void use(const SequenceParameterSet* sps) { sps_ = sps; }

    // data, size: the SEI unit, header included. Adds to report.
    void add(const unsigned char* data, size_t size, uint32_t nalUnitType, uint64_t offset,
             SeiReport& report);

    // Packs the items of the access unit and forgets them.
    void finish(SeiReport& report);

    ~SeiReader();
    SeiReader(const SeiReader&) = delete;
    SeiReader& operator=(const SeiReader&) = delete;

private:
    void forgetItems();

    QVCodecID codec_;
    std::deque<int> requested_;
    const SequenceParameterSet* sps_ = nullptr;
    std::vector<QVSeiItem> items_;
};

}  // namespace qvinspect

#endif
