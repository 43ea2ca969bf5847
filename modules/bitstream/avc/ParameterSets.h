/// \file
/// The parameter sets of an H.264 stream that are in force.
#ifndef QV_BITSTREAM_AVC_PARAMETERSETS_H
#define QV_BITSTREAM_AVC_PARAMETERSETS_H

#include <array>
#include <cstdint>
#include <memory>

#include "bitstream/Bytes.h"
#include "bitstream/Read.h"
#include "bitstream/avc/Pps.h"
#include "bitstream/avc/Sps.h"
#include "bitstream/avc/SpsExtension.h"
#include "bitstream/avc/SubsetSps.h"
#include "bitstream/units/ParameterSetEvent.h"
#include "bitstream/units/StoredSets.h"

namespace qv::avc {

/// The sets that a slice refers to, H.264 7.4.1.2.1.
struct Activation {
    /// The PPS; null when there is none with the identifier.
    const Pps* pps = nullptr;

    /// The SPS that the PPS refers to; null when there is none. For a slice of type 20 or 21 the data of the
    /// subset SPS.
    const SpsData* sps = nullptr;

    /// True when the slice makes another SPS, or another content of the same one, active.
    bool spsIsNew = false;

    /// The first of the problems, in the order of their values.
    ActivationProblem problem = ActivationProblem::None;
};

/// Keeps the parameter sets of a stream, with copies of their units, and knows which ones are active.
///
/// Pointers to records stay valid until the next call of take(). Only take() allocates: a record and the
/// unit's bytes, at most kMostSetBytes, for each of 32 SPS, 32 subset SPS, 32 SPS extensions and 256 PPS.
/// When an allocation fails, std::bad_alloc leaves the sets as they were.
class ParameterSets {
public:
    /// Takes a unit of type 7 (SPS), 8 (PPS), 13 (SPS extension) or 15 (subset SPS), and calls announce() for
    /// the buffering period messages of one of type 6 (SEI); others change nothing.
    ///
    /// A set with a fault is kept, as far as it was read, while its identifier has no set without one. A PPS
    /// that comes before its SPS has a fault only when it has one with every chroma_format_idc.
    ///
    /// \param unit  one NAL unit from its header on, copied when it is kept
    SetTaken take(Bytes unit);

    /// The SPS with an identifier; null when there is none, and for identifiers above 31.
    const Sps* sps(uint32_t seq_parameter_set_id) const noexcept;

    /// The subset SPS with an identifier; null when there is none, and for identifiers above 31.
    const SubsetSps* subsetSps(uint32_t seq_parameter_set_id) const noexcept;

    /// The SPS extension that came after the SPS with an identifier; null when there is none, for identifiers
    /// above 31, and when the SPS has got other content since.
    const SpsExtension* spsExtension(uint32_t seq_parameter_set_id) const noexcept;

    /// The PPS with an identifier, read with the chroma_format_idc of the SPS (of the subset SPS, for
    /// \p ofSubsetSps) that it refers to now; null when there is none, and for identifiers above 255.
    const Pps* pps(uint32_t pic_parameter_set_id, bool ofSubsetSps = false) noexcept;

    /// The sets that a slice refers to, which become active with it.
    ///
    /// \param pic_parameter_set_id  that of the slice header
    /// \param begins                what the slice begins; only CodedVideoSequence may activate another SPS,
    ///                              or one whose content has changed
    /// \param ofSubsetSps           true for slices of types 20 and 21. Each view or layer may have a subset
    ///                              SPS with another identifier.
    /// \return the sets, and the first rule of 7.4.1.2.1 that the slice breaks. A set that may not become
    ///         active becomes active all the same.
    Activation activate(uint32_t pic_parameter_set_id, SliceBegins begins, bool ofSubsetSps = false) noexcept;

    /// The PPS with an identifier, for a slice header; null when there is none, and for identifiers above
    /// 255. Its scaling lists may have been read with another chroma_format_idc than that of the SPS; see
    /// pps().
    const Pps* ppsOfSlice(uint32_t pic_parameter_set_id) const noexcept;

    /// The data of the SPS, or of the subset SPS for \p ofSubsetSps, that the PPS of a slice refers to; null
    /// when there is none.
    const SpsData* spsOfSlice(const Pps& pps, bool ofSubsetSps) const noexcept;

    /// The SPS that a buffering period SEI message names by its seq_parameter_set_id (D.2.2). It applies to
    /// the other SEI messages up to the next slice; see ofNextPicture().
    ///
    /// \return the SPS; null when there is none, which changes nothing
    const Sps* announce(uint32_t seq_parameter_set_id) noexcept;

    /// The SPS that SEI messages of the next picture refer to: the one that a buffering period SEI message
    /// has announced, otherwise the active one, before the first slice the one that came last. Null without
    /// any.
    const Sps* ofNextPicture() const noexcept;

    /// The PPS that SEI messages of the next picture refer to: the active one of slices with an SPS, before
    /// the first slice the one that came last. Null without any. Its scaling lists may have been read with
    /// another chroma_format_idc than that of the SPS; see pps().
    const Pps* ppsOfNextPicture() const noexcept;

private:
    static constexpr uint32_t kSpsIds = 32;
    static constexpr uint32_t kPpsIds = 256;

    // A PPS is read in one of two ways: its lists depend on whether the format is 4:4:4.
    struct StoredPps : detail::StoredSet<Pps> {
        bool is444 = false;
        Read<Pps> other = {};  // the other way
        uint64_t otherSerial = 0;
    };

    bool chromaFormatIs444(uint32_t seq_parameter_set_id, bool ofSubsetSps) const noexcept;
    const Read<Pps>* readOfPps(uint32_t pic_parameter_set_id, bool ofSubsetSps) noexcept;
    SetTaken takeSps(Bytes unit);
    SetTaken takeSubsetSps(Bytes unit);
    SetTaken takeSpsExtension(Bytes unit);
    SetTaken takePps(Bytes unit);
    void takeSei(Bytes unit) noexcept;
    void activateSps(Activation& activation, uint32_t id, SliceBegins begins) noexcept;
    void activateSubsetSps(Activation& activation, uint32_t id, SliceBegins begins) noexcept;

    std::array<std::unique_ptr<detail::StoredSet<Sps>>, kSpsIds> sps_;
    std::array<std::unique_ptr<detail::StoredSet<SubsetSps>>, kSpsIds> subsetSps_;
    std::array<std::unique_ptr<detail::StoredSet<SpsExtension>>, kSpsIds> spsExtension_;
    std::array<uint64_t, kSpsIds> serialOfExtendedSps_ = {};
    std::array<std::unique_ptr<StoredPps>, kPpsIds> pps_;

    detail::ActiveSet activeSps_;
    std::array<uint64_t, kSpsIds> activeSubsetSps_ = {};  // serials, 0 for one that is not active
    detail::ActiveSet activePps_[2];                      // of slices with an SPS, and with a subset SPS
    uint32_t announced_ = kSpsIds;
    uint32_t last_ = kSpsIds;     // the SPS that came last
    uint32_t lastPps_ = kPpsIds;  // the PPS that came last
};

}  // namespace qv::avc

#endif
