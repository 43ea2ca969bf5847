/// \file
/// The parameter sets of an H.265 stream that are in force.
#ifndef QV_BITSTREAM_HEVC_PARAMETERSETS_H
#define QV_BITSTREAM_HEVC_PARAMETERSETS_H

#include <array>
#include <cstdint>
#include <memory>

#include "bitstream/Bytes.h"
#include "bitstream/hevc/Pps.h"
#include "bitstream/hevc/Sps.h"
#include "bitstream/hevc/Vps.h"
#include "bitstream/units/ParameterSetEvent.h"
#include "bitstream/units/StoredSets.h"

namespace qv::hevc {

/// The most SPS and PPS that ParameterSets keeps for layers above 0, identifiers of all layers together.
constexpr uint32_t kMostSetsAboveBaseLayer = 256;

/// The sets that a slice segment refers to, H.265 7.4.2.4.2 and F.7.4.1.4.1.
struct Activation {
    /// The PPS; null when there is none with the identifier.
    const Pps* pps = nullptr;

    /// The SPS that the PPS refers to; null when there is none.
    const Sps* sps = nullptr;

    /// The VPS that the SPS refers to; null when there is none.
    const Vps* vps = nullptr;

    /// True when the slice makes another SPS, or another content of the same one, active for its layer.
    bool spsIsNew = false;

    /// True when the slice makes another VPS, or another content of the same one, active.
    bool vpsIsNew = false;

    /// The first of the problems, in the order of their values.
    ActivationProblem problem = ActivationProblem::None;
};

/// Keeps the parameter sets of a stream, with copies of their units, and knows which ones are active.
///
/// SPS and PPS of each layer are kept apart: a layer may send a set with an identifier that a lower layer
/// uses too. A set is looked for in the layer that refers to it, then in the layers below.
///
/// Pointers to records stay valid until the next call of take(). Only take() allocates: a record and the
/// unit's bytes, at most kMostSetBytes, for each of 16 VPS, 16 SPS and 64 PPS of the base layer, and
/// kMostSetsAboveBaseLayer sets of other layers. When an allocation fails, std::bad_alloc leaves the sets as
/// they were.
class ParameterSets {
public:
    /// Takes a unit of type 32 (VPS), 33 (SPS) or 34 (PPS), and calls announce() for the SEI messages of the
    /// base layer that name an SPS; other units, and those of layer 63, which is reserved, change nothing.
    ///
    /// A set with a fault is kept, as far as it was read, while its identifier has no set without one. An SPS
    /// that takes elements from its VPS (multiLayerExtSpsFlag()) is read again when that VPS comes or
    /// changes.
    ///
    /// \param unit  one NAL unit from its header on, copied when it is kept
    SetTaken take(Bytes unit);

    /// The VPS with an identifier; null when there is none, and for identifiers above 15.
    const Vps* vps(uint32_t vps_video_parameter_set_id) const noexcept;

    /// The SPS with an identifier for a layer; null when there is none, for identifiers above 15 and for
    /// layers above 62.
    const Sps* sps(uint32_t sps_seq_parameter_set_id, uint32_t nuh_layer_id = 0) const noexcept;

    /// The PPS with an identifier for a layer; null when there is none, for identifiers above 63 and for
    /// layers above 62.
    const Pps* pps(uint32_t pps_pic_parameter_set_id, uint32_t nuh_layer_id = 0) const noexcept;

    /// The sets that a slice segment refers to, which become active with it.
    ///
    /// \param slice_pic_parameter_set_id  that of the slice segment header
    /// \param nuh_layer_id                the layer of the slice segment, 0..62
    /// \param begins                      what the slice segment begins in its layer; only CodedVideoSequence
    ///                                    may activate another SPS or VPS, or one whose content has changed
    /// \return the sets, and the first rule of 7.4.2.4.2 that the slice segment breaks. A set that may not
    ///         become active becomes active all the same.
    Activation activate(uint32_t slice_pic_parameter_set_id, SliceBegins begins,
                        uint32_t nuh_layer_id = 0) noexcept;

    /// The SPS of the base layer that an SEI message names: active_seq_parameter_set_id[0] of an active
    /// parameter sets SEI message (D.3.21), bp_seq_parameter_set_id of a buffering period SEI message
    /// (D.3.2). It applies to the other SEI messages up to the next slice; see ofNextPicture().
    ///
    /// \return the SPS; null when there is none, which changes nothing
    const Sps* announce(uint32_t sps_seq_parameter_set_id) noexcept;

    /// The SPS that SEI messages of the base layer's next picture refer to: the one that an SEI message has
    /// announced, otherwise the active one, before the first slice the one that came last. Null without any.
    const Sps* ofNextPicture() const noexcept;

private:
    static constexpr uint32_t kLayers = 63;
    static constexpr uint32_t kVpsIds = 16;
    static constexpr uint32_t kSpsIds = 16;
    static constexpr uint32_t kPpsIds = 64;

    using VpsSet = detail::StoredSet<Vps>;
    using PpsSet = detail::StoredSet<Pps>;

    struct SpsSet : detail::StoredSet<Sps> {
        uint64_t vpsSerial = 0;  // of the VPS that it was read with, 0 without one
    };

    struct LayerSets {
        std::array<std::unique_ptr<SpsSet>, kSpsIds> sps;
        std::array<std::unique_ptr<PpsSet>, kPpsIds> pps;
    };

    // A layer that has no set has none of its own active, but may have one of a lower layer.
    struct LayerActive {
        detail::ActiveSet sps;
        detail::ActiveSet pps;
    };

    void takeVps(SetTaken& taken, Bytes unit);
    void takeSps(SetTaken& taken, Bytes unit);
    void takePps(SetTaken& taken, Bytes unit);
    void takeSei(Bytes unit) noexcept;
    template <class Sets, class Record, class ReadRecord>
    void takeOfLayer(SetTaken& taken, Sets LayerSets::*sets, Bytes unit, const Read<Record>& read,
                     const ReadRecord& readRecord);
    void readLayersAgain(uint32_t vps_video_parameter_set_id) noexcept;
    template <class Sets>
    auto find(Sets LayerSets::*sets, uint32_t id, uint32_t& nuh_layer_id) const noexcept;
    void activateSps(Activation& activation, uint32_t id, SliceBegins begins, uint32_t nuh_layer_id) noexcept;
    void activateVps(Activation& activation, uint32_t id, SliceBegins begins) noexcept;

    std::array<std::unique_ptr<VpsSet>, kVpsIds> vps_;
    std::array<std::unique_ptr<LayerSets>, kLayers> layers_;
    uint32_t setsAboveBaseLayer_ = 0;

    std::array<LayerActive, kLayers> active_ = {};
    detail::ActiveSet activeVps_;
    uint32_t announced_ = kSpsIds;
    uint32_t last_ = kSpsIds;  // the SPS of the base layer that came last
};

}  // namespace qv::hevc

#endif
