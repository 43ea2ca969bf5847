// Captions in output order.
#include "bitstream/sei/CaptionOrder.h"

#include <algorithm>
#include <numeric>

namespace qv::sei {

namespace {

uint32_t fieldsOf(const CaptionedPicture& picture) noexcept {
    return picture.isField ? 1 : 2;
}

// Only constructs that are set.
void copy(const CaptionedPicture& from, CaptionedPicture& to) noexcept {
    to.number = from.number;
    to.picOrderCnt = from.picOrderCnt;
    to.startsSequence = from.startsSequence;
    to.isField = from.isField;
    to.count = from.count;
    to.dropped = from.dropped;
    std::copy(from.begin(), from.end(), to.constructs);
}

}  // namespace

CaptionOrder::CaptionOrder(uint32_t frames) noexcept {
    setFrames(frames);
    std::iota(order_, order_ + kSlots, uint8_t{0});
}

void CaptionOrder::setFrames(uint32_t frames) noexcept {
    frames_ = std::min(frames, kMostFrames);
}

// One field more than the frames: the second field of a frame may be output before the first.
void CaptionOrder::push(const CaptionedPicture& picture, CaptionSink& sink) {
    if (picture.startsSequence) {
        flush(sink);
    }
    insert(picture);
    while (fields_ > 2 * frames_ + 1) {
        deliverFirst(sink);
    }
}

void CaptionOrder::flush(CaptionSink& sink) {
    while (count_ > 0) {
        deliverFirst(sink);
    }
    hasDelivered_ = false;
}

void CaptionOrder::insert(const CaptionedPicture& picture) noexcept {
    copy(picture, slots_[order_[count_]]);
    uint8_t* const place = std::upper_bound(
        order_, order_ + count_, picture.picOrderCnt,
        [this](int32_t picOrderCnt, uint8_t slot) { return picOrderCnt < slots_[slot].picOrderCnt; });
    std::rotate(place, order_ + count_, order_ + count_ + 1);
    ++count_;
    fields_ += fieldsOf(picture);
    if (hasDelivered_ && picture.picOrderCnt < lastPicOrderCnt_) {
        ++late_;
    }
}

void CaptionOrder::deliverFirst(CaptionSink& sink) {
    const CaptionedPicture& first = slots_[order_[0]];
    std::rotate(order_, order_ + 1, order_ + count_);
    --count_;
    fields_ -= fieldsOf(first);
    lastPicOrderCnt_ = hasDelivered_ ? std::max(lastPicOrderCnt_, first.picOrderCnt) : first.picOrderCnt;
    hasDelivered_ = true;
    sink.picture(first);
}

}  // namespace qv::sei
