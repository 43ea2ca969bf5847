/// \file
/// Captions in output order.
#ifndef QV_BITSTREAM_SEI_CAPTIONORDER_H
#define QV_BITSTREAM_SEI_CAPTIONORDER_H

#include <cstdint>

#include "bitstream/sei/Captions.h"

namespace qv::sei {

/// Receives pictures in output order.
class CaptionSink {
public:
    /// A sink without state.
    CaptionSink() = default;

    /// Sinks may be copied.
    CaptionSink(const CaptionSink&) = default;

    /// Sinks may be assigned.
    CaptionSink& operator=(const CaptionSink&) = default;

    /// Sinks are owned by the caller.
    virtual ~CaptionSink() = default;

    /// The next picture. The reference is valid during the call.
    virtual void picture(const CaptionedPicture& picture) = 0;
};

/// Puts pictures that come in decoding order in output order: the "bumping" process of H.264 C.4.5.3 and
/// H.265 C.5.2.4, for pictures that are all output. CTA-608 pairs and DTVCC packets go on from picture to
/// picture in output order, while cc_data() comes in decoding order.
///
///     CaptionOrder order(maxNumReorderFrames(sps).value_or(CaptionOrder::kMostFrames));
///     order.push(picture, sink);  // every picture, also one without captions
///     order.flush(sink);          // at the end of the stream
///
/// Nothing is allocated: an object holds as many pictures as can be reordered, about 23 KB. Each picture is
/// delivered once, and work for a picture is bounded.
class CaptionOrder {
public:
    static constexpr uint32_t kMostFrames = 16;  ///< the most frames that are reordered (H.264 A.3.1 h)

    /// As setFrames().
    explicit CaptionOrder(uint32_t frames = kMostFrames) noexcept;

    /// Sets how many frames can come before a frame in decoding order and after it in output order:
    /// max_num_reorder_frames or max_dec_frame_buffering of H.264, sps_max_num_reorder_pics of H.265. More
    /// than 16 are 16. A greater number than the stream needs delays pictures and keeps their order.
    void setFrames(uint32_t frames) noexcept;

    /// Takes the next picture in decoding order, and delivers those whose place in output order is known.
    /// Pictures with equal picOrderCnt are delivered in decoding order.
    void push(const CaptionedPicture& picture, CaptionSink& sink);

    /// Delivers all pictures that wait. The next one may be of another stream.
    void flush(CaptionSink& sink);

    /// Pictures that came too late: one with a greater picOrderCnt had been delivered, because more pictures
    /// are reordered than announced.
    uint64_t late() const noexcept { return late_; }

private:
    // A picture of 16 frames waits as two fields, and a frame or two fields come in.
    static constexpr uint32_t kSlots = 2 * kMostFrames + 2;

    void insert(const CaptionedPicture& picture) noexcept;
    void deliverFirst(CaptionSink& sink);

    uint32_t frames_ = kMostFrames;
    uint32_t count_ = 0;   // pictures that wait
    uint32_t fields_ = 0;  // fields that wait; a frame is two
    uint64_t late_ = 0;
    bool hasDelivered_ = false;    // since the start of the sequence
    int32_t lastPicOrderCnt_ = 0;  // of the last one delivered

    // Slots: those of pictures that wait, in output order, then those that are free.
    uint8_t order_[kSlots];
    CaptionedPicture slots_[kSlots];
};

}  // namespace qv::sei

#endif
