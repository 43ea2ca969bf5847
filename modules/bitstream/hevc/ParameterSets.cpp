// The H.265 parameter sets in force, and which of them are active.
#include "bitstream/hevc/ParameterSets.h"

#include <cstring>
#include <tuple>

#include "bitstream/hevc/NalUnitType.h"
#include "bitstream/sei/AnnouncedSps.h"

namespace qv::hevc {

namespace {

constexpr size_t kHeaderBytes = NalUnitHeader::kBytes;

// The identifiers of VPS and PPS follow the NAL unit header.
constexpr uint64_t kFirstBitOfVpsOrPpsId = 8 * kHeaderBytes;

// Looks for the identifier of an SPS with a fault: the element's position depends on the ones before it.
class SpsIdFinder : public TraceVisitor {
public:
    void element(const TracedElement& element) override {
        isRead = isRead || std::strcmp(element.element.name, "sps_seq_parameter_set_id") == 0;
    }

    bool isRead = false;
};

bool spsIdIsRead(Bytes unit) {
    SpsIdFinder finder;
    traceSps(unit, finder);
    return finder.isRead;
}

// An active set's identifier, with the layer that has sent it.
constexpr uint32_t idInLayer(uint32_t id, uint32_t nuh_layer_id) {
    return nuh_layer_id << 8 | id;
}

}  // namespace

void ParameterSets::takeVps(SetTaken& taken, Bytes unit) {
    const Read<Vps> read = readVps(unit);
    taken.fault = read.fault;
    taken.hasId = !read.fault || read.fault.firstBit > kFirstBitOfVpsOrPpsId;
    if (taken.hasId) {
        taken.id = read.record.vps_video_parameter_set_id;
        taken.event = detail::store(vps_[taken.id], unit, kHeaderBytes, read.fault, readVps);
        readLayersAgain(taken.id);
    }
}

// Keeps an SPS or a PPS whose layer and identifier are known.
template <class Sets, class Record, class ReadRecord>
void ParameterSets::takeOfLayer(SetTaken& taken, Sets LayerSets::*sets, Bytes unit, const Read<Record>& read,
                                const ReadRecord& readRecord) {
    std::unique_ptr<LayerSets>& layer = layers_[taken.nuh_layer_id];
    const bool isNew = layer == nullptr || ((*layer).*sets)[taken.id] == nullptr;
    if (isNew && taken.nuh_layer_id > 0 && setsAboveBaseLayer_ == kMostSetsAboveBaseLayer) {
        taken.event = SetEvent::TooMany;
        return;
    }
    if (layer == nullptr) {
        layer = std::make_unique<LayerSets>();
    }
    taken.event = detail::store(((*layer).*sets)[taken.id], unit, kHeaderBytes, read.fault, readRecord);
    if (isNew && taken.nuh_layer_id > 0) {
        ++setsAboveBaseLayer_;
    }
}

void ParameterSets::takeSps(SetTaken& taken, Bytes unit) {
    Read<Sps> read = readSps(unit);
    const uint32_t vpsId = read.record.sps_video_parameter_set_id;
    const Vps* const vpsOfSps = multiLayerExtSpsFlag(read.record) ? vps(vpsId) : nullptr;
    if (vpsOfSps != nullptr) {
        read = readSps(unit, vpsOfSps);
    }
    taken.fault = read.fault;
    taken.hasId = !read.fault || spsIdIsRead(unit);
    if (!taken.hasId) {
        return;
    }
    taken.id = read.record.sps_seq_parameter_set_id;
    bool isReadNow = false;
    takeOfLayer(taken, &LayerSets::sps, unit, read, [vpsOfSps, &isReadNow](Bytes copy) {
        isReadNow = true;
        return readSps(copy, vpsOfSps);
    });
    if (isReadNow) {
        layers_[taken.nuh_layer_id]->sps[taken.id]->vpsSerial = vpsOfSps != nullptr ? vps_[vpsId]->serial : 0;
    }
    if (taken.nuh_layer_id == 0) {
        last_ = taken.id;
    }
}

void ParameterSets::takePps(SetTaken& taken, Bytes unit) {
    const Read<Pps> read = readPps(unit);
    taken.fault = read.fault;
    taken.hasId = !read.fault || read.fault.firstBit > kFirstBitOfVpsOrPpsId;
    if (taken.hasId) {
        taken.id = read.record.pps_pic_parameter_set_id;
        takeOfLayer(taken, &LayerSets::pps, unit, read, readPps);
    }
}

// Reads every SPS that takes elements from a VPS with its content of now.
void ParameterSets::readLayersAgain(uint32_t vps_video_parameter_set_id) noexcept {
    const VpsSet& vpsSet = *vps_[vps_video_parameter_set_id];
    for (const std::unique_ptr<LayerSets>& layer : layers_) {
        if (layer == nullptr) {
            continue;
        }
        for (const std::unique_ptr<SpsSet>& set : layer->sps) {
            if (set != nullptr && multiLayerExtSpsFlag(set->read.record) &&
                set->read.record.sps_video_parameter_set_id == vps_video_parameter_set_id &&
                set->vpsSerial != vpsSet.serial) {
                set->read = readSps(set->bytes(), &vpsSet.read.record);
                set->vpsSerial = vpsSet.serial;
                ++set->serial;
            }
        }
    }
}

SetTaken ParameterSets::take(Bytes unit) {
    SetTaken taken;
    if (unit.size < kHeaderBytes) {
        return taken;
    }
    taken.nal_unit_type = unit[0] >> 1 & 0x3FU;
    taken.nuh_layer_id = (unit[0] & 1U) << 5 | unit[1] >> 3;
    if (isSei(taken.nal_unit_type) && taken.nuh_layer_id == 0) {
        takeSei(unit);
    }
    const bool isSet =
        taken.nal_unit_type == kNalVps || taken.nal_unit_type == kNalSps || taken.nal_unit_type == kNalPps;
    if (!isSet || taken.nuh_layer_id >= kLayers) {
        return taken;
    }
    if (unit.size > kMostSetBytes) {
        taken.event = SetEvent::TooLong;
        return taken;
    }
    taken.event = SetEvent::Broken;
    if (taken.nal_unit_type == kNalVps) {
        takeVps(taken, unit);
    } else if (taken.nal_unit_type == kNalSps) {
        takeSps(taken, unit);
    } else {
        takePps(taken, unit);
    }
    return taken;
}

void ParameterSets::takeSei(Bytes unit) noexcept {
    for (const SeiMessage& message : SeiMessages(unit, Codec::Hevc)) {
        uint32_t id = 0;
        if (sei::namesSps(message, Codec::Hevc, id)) {
            announce(id);
        }
    }
}

// The set of the nearest layer at or below nuh_layer_id, which becomes that layer; null when there is none.
template <class Sets>
auto ParameterSets::find(Sets LayerSets::*sets, uint32_t id, uint32_t& nuh_layer_id) const noexcept {
    typename Sets::value_type::pointer found = nullptr;
    if (id >= std::tuple_size<Sets>::value || nuh_layer_id >= kLayers) {
        return found;
    }
    for (uint32_t layer = nuh_layer_id + 1; layer-- > 0;) {
        if (layers_[layer] != nullptr && ((*layers_[layer]).*sets)[id] != nullptr) {
            found = ((*layers_[layer]).*sets)[id].get();
            nuh_layer_id = layer;
            break;
        }
    }
    return found;
}

const Vps* ParameterSets::vps(uint32_t vps_video_parameter_set_id) const noexcept {
    const bool isThere = vps_video_parameter_set_id < kVpsIds && vps_[vps_video_parameter_set_id] != nullptr;
    return isThere ? &vps_[vps_video_parameter_set_id]->read.record : nullptr;
}

const Sps* ParameterSets::sps(uint32_t sps_seq_parameter_set_id, uint32_t nuh_layer_id) const noexcept {
    const SpsSet* const set = find(&LayerSets::sps, sps_seq_parameter_set_id, nuh_layer_id);
    return set != nullptr ? &set->read.record : nullptr;
}

const Pps* ParameterSets::pps(uint32_t pps_pic_parameter_set_id, uint32_t nuh_layer_id) const noexcept {
    const PpsSet* const set = find(&LayerSets::pps, pps_pic_parameter_set_id, nuh_layer_id);
    return set != nullptr ? &set->read.record : nullptr;
}

void ParameterSets::activateVps(Activation& activation, uint32_t id, SliceBegins begins) noexcept {
    const VpsSet* const set = vps_[id].get();
    detail::note(activation.problem, set == nullptr, ActivationProblem::NoVps);
    if (set == nullptr) {
        return;
    }
    activation.vps = &set->read.record;
    detail::note(activation.problem, !set->read.ok(), ActivationProblem::FaultyVps);
    const detail::ActiveSet next = {true, id, set->serial};
    activation.vpsIsNew = activeVps_ != next;
    const bool mayNot =
        activeVps_.isActive && activation.vpsIsNew && begins != SliceBegins::CodedVideoSequence;
    detail::note(activation.problem, mayNot && activeVps_.id != id, ActivationProblem::OtherVps);
    detail::note(activation.problem, mayNot, ActivationProblem::VpsChanged);
    activeVps_ = next;
}

void ParameterSets::activateSps(Activation& activation, uint32_t id, SliceBegins begins,
                                uint32_t nuh_layer_id) noexcept {
    uint32_t layerOfSet = nuh_layer_id;
    const SpsSet* const set = find(&LayerSets::sps, id, layerOfSet);
    detail::note(activation.problem, set == nullptr, ActivationProblem::NoSps);
    if (set == nullptr) {
        return;
    }
    activation.sps = &set->read.record;
    detail::note(activation.problem, !set->read.ok(), ActivationProblem::FaultySps);
    detail::ActiveSet& active = active_[nuh_layer_id].sps;
    const detail::ActiveSet next = {true, idInLayer(id, layerOfSet), set->serial};
    activation.spsIsNew = active != next;
    const bool mayNot = active.isActive && activation.spsIsNew && begins != SliceBegins::CodedVideoSequence;
    detail::note(activation.problem, mayNot && active.id != next.id, ActivationProblem::OtherSps);
    detail::note(activation.problem, mayNot, ActivationProblem::SpsChanged);
    active = next;
    activateVps(activation, set->read.record.sps_video_parameter_set_id, begins);
}

Activation ParameterSets::activate(uint32_t slice_pic_parameter_set_id, SliceBegins begins,
                                   uint32_t nuh_layer_id) noexcept {
    Activation activation;
    announced_ = kSpsIds;
    uint32_t layerOfSet = nuh_layer_id;
    const PpsSet* const set = find(&LayerSets::pps, slice_pic_parameter_set_id, layerOfSet);
    if (set == nullptr) {
        activation.problem = ActivationProblem::NoPps;
        return activation;
    }
    activation.pps = &set->read.record;
    detail::note(activation.problem, !set->read.ok(), ActivationProblem::FaultyPps);
    detail::ActiveSet& active = active_[nuh_layer_id].pps;
    const detail::ActiveSet next = {true, idInLayer(slice_pic_parameter_set_id, layerOfSet), set->serial};
    const bool mayNot = active.isActive && active != next && begins == SliceBegins::Nothing;
    detail::note(activation.problem, mayNot && active.id != next.id, ActivationProblem::OtherPps);
    detail::note(activation.problem, mayNot, ActivationProblem::PpsChanged);
    active = next;
    activateSps(activation, set->read.record.pps_seq_parameter_set_id, begins, nuh_layer_id);
    return activation;
}

const Sps* ParameterSets::announce(uint32_t sps_seq_parameter_set_id) noexcept {
    const Sps* const announced = sps(sps_seq_parameter_set_id);
    if (announced != nullptr) {
        announced_ = sps_seq_parameter_set_id;
    }
    return announced;
}

const Sps* ParameterSets::ofNextPicture() const noexcept {
    if (announced_ != kSpsIds) {
        return sps(announced_);
    }
    const detail::ActiveSet& active = active_[0].sps;
    return sps(active.isActive ? active.id : last_);
}

}  // namespace qv::hevc
