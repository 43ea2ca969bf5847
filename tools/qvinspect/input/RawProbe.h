// Which codec a raw byte stream is coded with.
#ifndef QVINSPECT_RAWPROBE_H
#define QVINSPECT_RAWPROBE_H

#include <cstddef>

namespace qvinspect {

enum class RawCodec { Neither, Avc, Hevc, Ambiguous };

struct RawProbe {
    RawCodec codec;

    // Nothing but zero bytes stands ahead of the first start code, as Annex B has it.
    bool beginsWithStartCode;
};

// The probe looks at the NAL units in the first 1 MiB of a file.
constexpr size_t kProbeBytes = size_t{1} << 20;

// Reads each NAL unit of the data as one of either codec and counts for both what speaks for it:
// - parameter sets: an H.264 SPS with a known profile and level, an H.265 VPS or SPS in base layer and
//   temporal sub-layer 0 with its reserved bits as they have to be;
// - slices, access unit delimiters and H.265 picture parameter sets with plausible headers;
// and what speaks against it: forbidden_zero_bit, types that are reserved, headers that break the standard's
// constraints (nal_ref_idc, nuh_temporal_id_plus1, ranges). Units of unspecified types (24 to 31 of H.264, 48
// to 63 of H.265) count for nothing: applications carry metadata of their own in them.
//
// A codec is taken for likely with a parameter set and more for it than against it. Without a parameter set
// four times as much has to speak for it as against it, and of that a single unit will do when the stream
// begins with a start code and eight when it does not. When both are likely a parameter set decides; when
// both or neither has one the answer is Ambiguous.
RawProbe probeRaw(const unsigned char* data, size_t size);

}  // namespace qvinspect

#endif
