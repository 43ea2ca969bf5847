// The caller's options for reading an input, and the part of it to inspect.
#ifndef QVINSPECT_INPUTOPTIONS_H
#define QVINSPECT_INPUTOPTIONS_H

#include <cstdint>
#include <optional>

#include "QVCodecParameters.h"

namespace qvinspect {

enum class InputFormat { Auto, AnnexB, Lengths1, Lengths2, Lengths4, Container };

struct InputOptions {
    std::optional<QVCodecID> codec;  // in a container it selects the first video of it
    InputFormat format = InputFormat::Auto;
    std::optional<unsigned> stream;   // index in the container
    std::optional<double> frameRate;  // frames a second, for a raw stream without a frame rate
    std::optional<double> start;      // seconds from the first access unit
    std::optional<double> duration;   // seconds
    std::optional<uint64_t> mostAccessUnits;
};

}  // namespace qvinspect

#endif
