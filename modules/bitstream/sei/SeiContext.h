/// \file
/// What the syntax of SEI payloads depends on.
#ifndef QV_BITSTREAM_SEI_SEICONTEXT_H
#define QV_BITSTREAM_SEI_SEICONTEXT_H

#include <cstdint>

#include "bitstream/Codec.h"
#include "bitstream/avc/ParameterSets.h"
#include "bitstream/hevc/ParameterSets.h"
#include "bitstream/sei/SeiMessages.h"

namespace qv::sei {

/// The codec and the parameter sets that messages refer to. All pointers are borrowed; a payload whose syntax
/// needs a set that is not there has the fault NoSuchSet.
///
///     sei::Context context(sets);
///     for (const SeiMessage& message : SeiMessages(unit)) {
///         context.take(message);
///         ...
///     }
struct Context {
    Codec codec;  ///< H.264 or H.265

    const avc::ParameterSets* avcSets = nullptr;    ///< H.264: the sets in force
    const hevc::ParameterSets* hevcSets = nullptr;  ///< H.265: the sets in force

    const avc::SpsData* avcSps = nullptr;  ///< H.264: the SPS of the picture that the messages belong to
    const avc::Pps* avcPps = nullptr;      ///< H.264: the PPS of that picture
    const hevc::Sps* hevcSps = nullptr;    ///< H.265: the SPS of the picture that the messages belong to

    /// H.265: the views that a message applies to, minus 1 (G.14.3.6). For a message in the payload of a
    /// scalable nesting message that is nesting_num_layers_minus1.
    uint32_t numViewsMinus1 = 0;

    /// No parameter sets.
    explicit Context(Codec codecOfUnit) noexcept : codec(codecOfUnit) {}

    /// The sets of the next picture, see avc::ParameterSets::ofNextPicture() and ppsOfNextPicture().
    explicit Context(const avc::ParameterSets& sets) noexcept;

    /// The sets of the next picture, see hevc::ParameterSets::ofNextPicture().
    explicit Context(const hevc::ParameterSets& sets) noexcept;

    /// The SPS that a buffering period or active parameter sets message names applies to the messages after
    /// it (H.264 D.2.2, H.265 D.3.2 and D.3.21). Other messages change nothing.
    void take(const SeiMessage& message) noexcept;
};

}  // namespace qv::sei

#endif
