// Leaves SEI messages out of a stream that is written, and counts them.
#ifndef QVINSPECT_SEIREMOVER_H
#define QVINSPECT_SEIREMOVER_H

#include <cstdint>
#include <string>
#include <vector>

#include "QVCodecParameters.h"
#include "bitstream/Bytes.h"
#include "bitstream/sei/T35.h"

namespace qvinspect {

// The messages that are left out: each that one of the conditions applies to.
struct SeiRemoval {
    std::vector<uint32_t> droppedTypes;
    std::vector<uint32_t> keptTypes;  // if there are any, all other types are left out
    std::vector<qv::sei::T35Code> droppedT35;

    bool empty() const { return droppedTypes.empty() && keptTypes.empty() && droppedT35.empty(); }
};

class SeiRemover {
public:
    SeiRemover(QVCodecID codec, const SeiRemoval& removal) : codec_(codec), removal_(removal) {}

    // Appends a unit: one of SEI without the messages that are left out, any other as it is. False if no
    // message is left; nothing is appended then.
    bool append(qv::Bytes unit, std::vector<uint8_t>& out);

    // "12 SEI messages and 10 SEI units are dropped"
    std::string summary() const;

private:
    QVCodecID codec_;
    SeiRemoval removal_;
    uint64_t messages_ = 0;
    uint64_t units_ = 0;
};

}  // namespace qvinspect

#endif
