/// \file
/// What a NAL unit does to the parameter sets in force.
#ifndef QV_BITSTREAM_UNITS_PARAMETERSETEVENT_H
#define QV_BITSTREAM_UNITS_PARAMETERSETEVENT_H

#include <cstddef>
#include <cstdint>

#include "bitstream/Read.h"

namespace qv {

/// How the content of a parameter set relates to the earlier ones of its kind and identifier. The content is
/// what follows the NAL unit header.
enum class SetEvent : uint8_t {
    NotASet,   ///< the unit is no parameter set
    Broken,    ///< the set has a fault; one that was read without a fault stays in force
    TooLong,   ///< the unit is longer than kMostSetBytes; nothing is kept of it
    TooMany,   ///< H.265: layers above 0 have sent hevc::kMostSetsAboveBaseLayer sets; nothing is kept of it
    First,     ///< the identifier had no set
    Repeated,  ///< the set in force has the same content
    Changed,   ///< the set in force had other content, and no earlier set had this one
    Returned,  ///< the set in force had other content, and an earlier set had this one
};

/// The longest unit that is kept as a parameter set. Configuration records cannot hold a longer one (16-bit
/// lengths, ISO/IEC 14496-15).
constexpr size_t kMostSetBytes = 65535;

/// What a NAL unit did to the sets in force.
struct SetTaken {
    SetEvent event = SetEvent::NotASet;  ///< what became of the unit

    /// nal_unit_type.
    uint32_t nal_unit_type = 0;

    /// H.265: nuh_layer_id; otherwise 0.
    uint32_t nuh_layer_id = 0;

    /// The set's identifier.
    uint32_t id = 0;

    /// False when the fault comes before the identifier, which is then 0.
    bool hasId = false;

    /// The first fault of the set. Its names live as long as the program.
    Fault fault;
};

/// What a slice begins. The first slice of a picture begins the picture, in H.265 for each layer.
enum class SliceBegins : uint8_t {
    Nothing,  ///< a further slice of a picture
    Picture,  ///< the first slice of a picture

    /// A picture that may activate another SPS, or one whose content has changed: an IDR picture in H.264, an
    /// IRAP picture with NoRaslOutputFlag 1 in H.265.
    CodedVideoSequence,
};

/// Why a slice cannot use its parameter sets, or may not (H.264 7.4.1.2.1, H.265 7.4.2.4.2).
enum class ActivationProblem : uint8_t {
    None,        ///< the sets are active
    NoPps,       ///< there is no PPS with the identifier
    FaultyPps,   ///< the PPS has a fault
    NoSps,       ///< there is no SPS with the identifier that the PPS has
    FaultySps,   ///< the SPS has a fault
    NoVps,       ///< H.265: there is no VPS with the identifier that the SPS has
    FaultyVps,   ///< H.265: the VPS has a fault
    OtherPps,    ///< H.265: another PPS than that of the slice segments before, within a picture (7.4.7.1)
    PpsChanged,  ///< the active PPS got other content within a picture
    OtherSps,    ///< another SPS than the active one within a coded video sequence
    SpsChanged,  ///< the active SPS got other content within a coded video sequence
    OtherVps,    ///< H.265: another VPS than the active one within a coded video sequence
    VpsChanged,  ///< H.265: the active VPS got other content within a coded video sequence
};

}  // namespace qv

#endif
