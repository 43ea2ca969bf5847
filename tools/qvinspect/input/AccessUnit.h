// One access unit as a reader delivers it, with its framing and what was wrong before it.
#ifndef QVINSPECT_ACCESSUNIT_H
#define QVINSPECT_ACCESSUNIT_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "QVCodecParameters.h"

namespace qvinspect {

enum class Severity {
    Note,  // worth knowing; nothing is wrong
    Error  // the stream or the file is broken here
};

struct Finding {
    Severity severity;
    std::optional<uint64_t> offset;  // in the same count as the offsets of the NAL units
    std::string text;
};

struct AccessUnit {
    // size bytes that belong to the reader; valid until its next call.
    const unsigned char* data = nullptr;
    size_t size = 0;

    // Offset of data in the file, of raw streams only.
    std::optional<uint64_t> fileOffset;

    // In seconds, if the container has them.
    std::optional<double> time;  // of presentation
    std::optional<double> decodeTime;
    std::optional<double> duration;

    // A field of a picture coded as two, H.264 only (field_pic_flag). Set for raw streams only.
    bool isField = false;

    QVCodecParameters parameters{};

    // The decoder configuration record that applies from here on; empty if this access unit has none.
    std::vector<uint8_t> newConfiguration;

    std::vector<Finding> findings;
};

}  // namespace qvinspect

#endif
