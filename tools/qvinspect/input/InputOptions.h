// What the caller says about the input, and which part of it to inspect.
#ifndef QVINSPECT_INPUTOPTIONS_H
#define QVINSPECT_INPUTOPTIONS_H

#include <cstdint>
#include <optional>

#include "QVCodecParameters.h"

namespace qvinspect {

enum class InputFormat { Auto, AnnexB, Lengths1, Lengths2, Lengths4, Container };

struct InputOptions {
    std::optional<QVCodecID> codec;  // in a container it chooses among its videos
    InputFormat format = InputFormat::Auto;
    std::optional<unsigned> stream;   // index in the container
    std::optional<double> frameRate;  // frames a second, for a raw stream that does not tell its own
    std::optional<double> start;      // seconds from the first access unit
    std::optional<double> duration;   // seconds
    std::optional<uint64_t> mostAccessUnits;
};

}  // namespace qvinspect

#endif
