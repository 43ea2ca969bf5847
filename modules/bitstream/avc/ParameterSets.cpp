// The H.264 parameter sets in force, and which of them are active.
#include "bitstream/avc/ParameterSets.h"

#include "bitstream/avc/NalUnitType.h"
#include "bitstream/names/ChromaFormat.h"
#include "bitstream/sei/AnnouncedSps.h"

namespace qv::avc {

namespace {

constexpr size_t kHeaderBytes = 1;

// Where the identifier of a set begins: it has been read when the fault comes after it.
constexpr uint64_t kFirstBitOfSpsId = 32;
constexpr uint64_t kFirstBitOfOtherId = 8;

constexpr uint32_t kChromaFormat420 = 1;
constexpr uint32_t kChromaFormat444 = 3;

template <class Sets>
auto recordAt(const Sets& sets, uint32_t id) noexcept -> decltype(&sets[0]->read.record) {
    return id < sets.size() && sets[id] != nullptr ? &sets[id]->read.record : nullptr;
}

template <class Sets, class Record, class ReadRecord>
SetTaken takeSet(Sets& sets, Bytes unit, const Read<Record>& read, uint64_t firstBitOfId, uint32_t id,
                 const ReadRecord& readRecord) {
    SetTaken taken;
    taken.event = SetEvent::Broken;
    taken.fault = read.fault;
    taken.hasId = !read.fault || read.fault.firstBit > firstBitOfId;
    if (taken.hasId) {
        taken.id = id;
        taken.event = detail::store(sets[id], unit, kHeaderBytes, read.fault, readRecord);
    }
    return taken;
}

}  // namespace

SetTaken ParameterSets::takeSps(Bytes unit) {
    const Read<Sps> read = readSps(unit);
    const SetTaken taken =
        takeSet(sps_, unit, read, kFirstBitOfSpsId, read.record.data.seq_parameter_set_id, readSps);
    if (taken.hasId) {
        last_ = taken.id;
    }
    return taken;
}

SetTaken ParameterSets::takeSubsetSps(Bytes unit) {
    const Read<SubsetSps> read = readSubsetSps(unit);
    return takeSet(subsetSps_, unit, read, kFirstBitOfSpsId, read.record.data.seq_parameter_set_id,
                   readSubsetSps);
}

SetTaken ParameterSets::takeSpsExtension(Bytes unit) {
    const Read<SpsExtension> read = readSpsExtension(unit);
    const SetTaken taken = takeSet(spsExtension_, unit, read, kFirstBitOfOtherId,
                                   read.record.seq_parameter_set_id, readSpsExtension);
    if (taken.hasId) {
        serialOfExtendedSps_[taken.id] = sps_[taken.id] != nullptr ? sps_[taken.id]->serial : 0;
    }
    return taken;
}

// The elements up to the scaling lists do not depend on the SPS, which may still be to come.
SetTaken ParameterSets::takePps(Bytes unit) {
    Read<Pps> read = readPps(unit, kChromaFormat420);
    const uint32_t spsId = read.record.seq_parameter_set_id;
    const bool spsIsKnown = sps_[spsId] != nullptr || subsetSps_[spsId] != nullptr;
    const bool isWhole = read.ok() && read.trailing.bits == 0;
    bool is444 = spsIsKnown ? chromaFormatIs444(spsId, sps_[spsId] == nullptr) : !isWhole;
    if (is444) {
        const Read<Pps> read444 = readPps(unit, kChromaFormat444);
        is444 = spsIsKnown || read444.ok() || !read.ok();
        read = is444 ? read444 : read;
    }
    const uint32_t chroma_format_idc = is444 ? kChromaFormat444 : kChromaFormat420;
    const uint32_t id = read.record.pic_parameter_set_id;
    bool isReadNow = false;
    const SetTaken taken = takeSet(pps_, unit, read, kFirstBitOfOtherId, id, [&](Bytes copy) {
        isReadNow = true;
        return readPps(copy, chroma_format_idc);
    });
    if (isReadNow) {
        pps_[id]->is444 = is444;
    }
    if (taken.hasId) {
        lastPps_ = taken.id;
    }
    return taken;
}

SetTaken ParameterSets::take(Bytes unit) {
    SetTaken taken;
    if (unit.empty()) {
        return taken;
    }
    const uint32_t nal_unit_type = unit[0] & 0x1FU;
    const bool isSet = nal_unit_type == kNalSps || nal_unit_type == kNalPps ||
                       nal_unit_type == kNalSpsExtension || nal_unit_type == kNalSubsetSps;
    if (isSet && unit.size > kMostSetBytes) {
        taken.event = SetEvent::TooLong;
    } else if (nal_unit_type == kNalSps) {
        taken = takeSps(unit);
    } else if (nal_unit_type == kNalPps) {
        taken = takePps(unit);
    } else if (nal_unit_type == kNalSpsExtension) {
        taken = takeSpsExtension(unit);
    } else if (nal_unit_type == kNalSubsetSps) {
        taken = takeSubsetSps(unit);
    } else if (nal_unit_type == kNalSei) {
        takeSei(unit);
    }
    taken.nal_unit_type = nal_unit_type;
    return taken;
}

void ParameterSets::takeSei(Bytes unit) noexcept {
    for (const SeiMessage& message : SeiMessages(unit, Codec::Avc)) {
        uint32_t id = 0;
        if (sei::namesSps(message, Codec::Avc, id)) {
            announce(id);
        }
    }
}

const Sps* ParameterSets::sps(uint32_t seq_parameter_set_id) const noexcept {
    return recordAt(sps_, seq_parameter_set_id);
}

const SubsetSps* ParameterSets::subsetSps(uint32_t seq_parameter_set_id) const noexcept {
    return recordAt(subsetSps_, seq_parameter_set_id);
}

const SpsExtension* ParameterSets::spsExtension(uint32_t seq_parameter_set_id) const noexcept {
    const SpsExtension* const extension = recordAt(spsExtension_, seq_parameter_set_id);
    if (extension == nullptr || sps_[seq_parameter_set_id] == nullptr ||
        sps_[seq_parameter_set_id]->serial != serialOfExtendedSps_[seq_parameter_set_id]) {
        return nullptr;
    }
    return extension;
}

// False where the SPS that a PPS refers to is not there.
bool ParameterSets::chromaFormatIs444(uint32_t seq_parameter_set_id, bool ofSubsetSps) const noexcept {
    if (ofSubsetSps) {
        const SubsetSps* const subset = subsetSps(seq_parameter_set_id);
        return subset != nullptr && subset->data.chroma_format_idc == kChromaFormat444;
    }
    const Sps* const plain = sps(seq_parameter_set_id);
    return plain != nullptr && plain->data.chroma_format_idc == kChromaFormat444;
}

const Read<Pps>* ParameterSets::readOfPps(uint32_t pic_parameter_set_id, bool ofSubsetSps) noexcept {
    if (pic_parameter_set_id >= kPpsIds || pps_[pic_parameter_set_id] == nullptr) {
        return nullptr;
    }
    StoredPps& set = *pps_[pic_parameter_set_id];
    const uint32_t spsId = set.read.record.seq_parameter_set_id;
    const bool spsIsKnown = ofSubsetSps ? subsetSps_[spsId] != nullptr : sps_[spsId] != nullptr;
    if (!spsIsKnown || chromaFormatIs444(spsId, ofSubsetSps) == set.is444) {
        return &set.read;
    }
    if (set.otherSerial != set.serial) {
        set.other = readPps(set.bytes(), set.is444 ? kChromaFormat420 : kChromaFormat444);
        set.otherSerial = set.serial;
    }
    return &set.other;
}

const Pps* ParameterSets::pps(uint32_t pic_parameter_set_id, bool ofSubsetSps) noexcept {
    const Read<Pps>* const read = readOfPps(pic_parameter_set_id, ofSubsetSps);
    return read != nullptr ? &read->record : nullptr;
}

void ParameterSets::activateSps(Activation& activation, uint32_t id, SliceBegins begins) noexcept {
    const detail::StoredSet<Sps>* const set = sps_[id].get();
    detail::note(activation.problem, set == nullptr, ActivationProblem::NoSps);
    if (set == nullptr) {
        return;
    }
    activation.sps = &set->read.record.data;
    detail::note(activation.problem, !set->read.ok(), ActivationProblem::FaultySps);
    const detail::ActiveSet next = {true, id, set->serial};
    activation.spsIsNew = activeSps_ != next;
    const bool mayNot =
        activeSps_.isActive && activation.spsIsNew && begins != SliceBegins::CodedVideoSequence;
    detail::note(activation.problem, mayNot && activeSps_.id != id, ActivationProblem::OtherSps);
    detail::note(activation.problem, mayNot, ActivationProblem::SpsChanged);
    activeSps_ = next;
}

void ParameterSets::activateSubsetSps(Activation& activation, uint32_t id, SliceBegins begins) noexcept {
    const detail::StoredSet<SubsetSps>* const set = subsetSps_[id].get();
    detail::note(activation.problem, set == nullptr, ActivationProblem::NoSps);
    if (set == nullptr) {
        return;
    }
    activation.sps = &set->read.record.data;
    detail::note(activation.problem, !set->read.ok(), ActivationProblem::FaultySps);
    uint64_t& active = activeSubsetSps_[id];
    activation.spsIsNew = active != set->serial;
    const bool mayNot = active != 0 && activation.spsIsNew && begins != SliceBegins::CodedVideoSequence;
    detail::note(activation.problem, mayNot, ActivationProblem::SpsChanged);
    active = set->serial;
}

Activation ParameterSets::activate(uint32_t pic_parameter_set_id, SliceBegins begins,
                                   bool ofSubsetSps) noexcept {
    Activation activation;
    announced_ = kSpsIds;
    const Read<Pps>* const read = readOfPps(pic_parameter_set_id, ofSubsetSps);
    if (read == nullptr) {
        activation.problem = ActivationProblem::NoPps;
        return activation;
    }
    activation.pps = &read->record;
    detail::note(activation.problem, !read->ok(), ActivationProblem::FaultyPps);

    detail::ActiveSet& active = activePps_[ofSubsetSps ? 1 : 0];
    const detail::ActiveSet next = {true, pic_parameter_set_id, pps_[pic_parameter_set_id]->serial};
    const bool changed = active.isActive && active.id == pic_parameter_set_id && active != next;
    detail::note(activation.problem, changed && begins == SliceBegins::Nothing,
                 ActivationProblem::PpsChanged);
    active = next;

    if (ofSubsetSps) {
        activateSubsetSps(activation, read->record.seq_parameter_set_id, begins);
    } else {
        activateSps(activation, read->record.seq_parameter_set_id, begins);
    }
    return activation;
}

const Sps* ParameterSets::announce(uint32_t seq_parameter_set_id) noexcept {
    const Sps* const announced = sps(seq_parameter_set_id);
    if (announced != nullptr) {
        announced_ = seq_parameter_set_id;
    }
    return announced;
}

const Sps* ParameterSets::ofNextPicture() const noexcept {
    if (announced_ != kSpsIds) {
        return sps(announced_);
    }
    return sps(activeSps_.isActive ? activeSps_.id : last_);
}

const Pps* ParameterSets::ppsOfSlice(uint32_t pic_parameter_set_id) const noexcept {
    return recordAt(pps_, pic_parameter_set_id);
}

const SpsData* ParameterSets::spsOfSlice(const Pps& pps, bool ofSubsetSps) const noexcept {
    if (ofSubsetSps) {
        const SubsetSps* const subset = subsetSps(pps.seq_parameter_set_id);
        return subset != nullptr ? &subset->data : nullptr;
    }
    const Sps* const plain = sps(pps.seq_parameter_set_id);
    return plain != nullptr ? &plain->data : nullptr;
}

const Pps* ParameterSets::ppsOfNextPicture() const noexcept {
    return recordAt(pps_, activePps_[0].isActive ? activePps_[0].id : lastPps_);
}

}  // namespace qv::avc
