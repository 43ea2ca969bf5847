/// \file
/// The caption constructs of a picture.
#ifndef QV_BITSTREAM_SEI_CAPTIONS_H
#define QV_BITSTREAM_SEI_CAPTIONS_H

#include <cstdint>

#include "bitstream/Read.h"
#include "bitstream/sei/A53.h"
#include "bitstream/sei/SeiContext.h"
#include "bitstream/sei/SeiMessages.h"

namespace qv::sei {

/// A picture and its caption constructs, in the order of the messages. Plain data; it holds no pointers.
struct CaptionedPicture {
    /// The most constructs that a picture keeps: those of four cc_data(). Most streams have one.
    static constexpr uint32_t kMostConstructs = 4 * CcData::kMostConstructs;

    uint64_t number = 0;      ///< the caller's number of the picture; it is not looked at
    int32_t picOrderCnt = 0;  ///< PicOrderCnt, H.264 8.2.1, PicOrderCntVal, H.265 8.3.1

    /// True when picture order counts from here on do not compare with those before: an IDR picture, an IRAP
    /// picture of H.265 with NoRaslOutputFlag 1, and a picture of H.264 with a
    /// memory_management_control_operation of 5, whose picOrderCnt is then the one after decoding.
    bool startsSequence = false;

    bool isField = false;  ///< H.264: one field of a frame. Each field is a picture with its own constructs.

    uint32_t count = 0;    ///< constructs that are set
    uint32_t dropped = 0;  ///< constructs that there was no room for

    CcConstruct constructs[kMostConstructs] = {};  ///< the first \ref count of them are set

    /// The first construct.
    const CcConstruct* begin() const noexcept { return constructs; }

    /// The end: after the last construct.
    const CcConstruct* end() const noexcept { return constructs + count; }

    /// Adds the constructs of \p cc_data, valid or not. With process_cc_data_flag 0 there are none.
    void add(const CcData& cc_data) noexcept { add(cc_data, cc_data.cc_count); }

    /// Adds the constructs of a cc_data() as it was read. With a fault in it, those before the fault.
    void add(const CcData& cc_data, const Fault& fault) noexcept;

    /// Adds the constructs of a message, AtscCaptions or SatelliteCaptions.
    ///
    /// \return false when it is neither
    bool add(const SeiMessage& message, const Context& context) noexcept;

private:
    void add(const CcData& cc_data, uint32_t constructsRead) noexcept;
};

}  // namespace qv::sei

#endif
