/// \file
/// Which codec a run of bytes is coded with, and how its NAL units are framed.
#ifndef QV_BITSTREAM_UNITS_CODECPROBE_H
#define QV_BITSTREAM_UNITS_CODECPROBE_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "bitstream/Bytes.h"
#include "bitstream/Codec.h"
#include "bitstream/units/Framing.h"

namespace qv {

/// What the units of a buffer say, read as units of one codec.
struct CodecEvidence {
    /// Parameter sets that show the codec: an H.264 SPS with a profile and a level of Annex A, G, H or I; an
    /// H.265 VPS or SPS of the base layer whose fixed bits are as they have to be.
    uint32_t parameterSets = 0;

    /// Slices, access unit delimiters and H.265 picture parameter sets with a header that the codec allows.
    uint32_t plausible = 0;

    /// Units that break the codec's rules: forbidden_zero_bit, nal_ref_idc, nuh_temporal_id_plus1, ranges. A
    /// reserved or unspecified nal_unit_type breaks none.
    uint32_t against = 0;

    /// Units that say nothing.
    uint32_t silent = 0;

    /// Units in all.
    uint32_t units() const { return parameterSets + plausible + against + silent; }
};

/// What a probe found.
struct CodecProbe {
    /// Which codec the bytes are coded with.
    enum class Answer : uint8_t {
        Neither,    ///< nothing shows either codec
        Avc,        ///< H.264
        Hevc,       ///< H.265
        Ambiguous,  ///< the bytes read as both
    };

    /// How much the answer rests on.
    enum class Confidence : uint8_t {
        None,    ///< there is no answer
        Low,     ///< headers alone, without a parameter set
        Medium,  ///< a parameter set, and units against it
        High,    ///< a parameter set, and no unit against it
    };

    Answer answer = Answer::Neither;           ///< which codec it is
    Confidence confidence = Confidence::None;  ///< how sure the answer is

    /// The framing that the evidence was found with. StartCodes when there is no answer.
    Framing framing = Framing::StartCodes;

    /// With start codes: nothing but zero bytes precedes the first of them (B.1.1).
    bool beginsWithStartCode = false;

    CodecEvidence avc;   ///< the units read as H.264
    CodecEvidence hevc;  ///< the units read as H.265

    /// Bytes that were looked at.
    size_t bytes = 0;

    /// The codec, when the answer is one.
    std::optional<Codec> codec() const;
};

/// The most bytes that a probe looks at.
constexpr size_t kProbeBytes = size_t{1} << 20;

/// Finds out what bytes of unknown origin are: the head of a file, or the sample of a container.
///
/// Each unit is read as one of either codec and counts for it or against it. A codec is likely with a
/// parameter set and more units for it than against it. Without a parameter set, four times as many units
/// have to be for it as against it, and eight at least unless the framing is certain: the buffer begins with
/// a start code, or lengths of 2 to 4 bytes lead exactly to its end. When both codecs are likely a parameter
/// set decides; when both or neither has one the answer is Ambiguous. Of several framings the one with most
/// evidence is reported, start codes first.
///
/// \param data  borrowed; no more than its first kProbeBytes are looked at. Work is linear in them, and
/// nothing
///              is allocated.
CodecProbe probeCodec(Bytes data) noexcept;

/// As above, with one framing.
CodecProbe probeCodec(Bytes data, Framing framing) noexcept;

/// A line that shows a person what the answer rests on, for example "H.265 with start codes, confidence high:
/// as H.264 0 parameter sets, 0 plausible units, 40 against, 6 silent; as H.265 3 parameter sets, 41
/// plausible units, 0 against, 2 silent".
std::string textOf(const CodecProbe& probe);

}  // namespace qv

#endif
