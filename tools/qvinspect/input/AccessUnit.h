// What a reader delivers: one access unit with its framing, and what was wrong on the way to it.
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
    Note,  // worth knowing, nothing is wrong
    Error  // the stream or the file is broken here
};

struct Finding {
    Severity severity;
    std::optional<uint64_t> offset;  // counted as the offsets of the NAL units are
    std::string text;
};

struct AccessUnit {
    // size bytes, the reader's; they stay until its next call.
    const unsigned char* data = nullptr;
    size_t size = 0;

    // Offset of data in the file. Only raw streams have one.
    std::optional<uint64_t> fileOffset;

    // In seconds, where the container tells them.
    std::optional<double> time;  // of presentation
    std::optional<double> decodeTime;
    std::optional<double> duration;

    // A field of a picture coded as two, H.264 only (field_pic_flag). Only raw streams tell.
    bool isField = false;

    QVCodecParameters parameters{};

    // A record for the decoder that holds from here on; empty when none came with this access unit.
    std::vector<uint8_t> newConfiguration;

    std::vector<Finding> findings;
};

}  // namespace qvinspect

#endif
