/// \file
/// The marking of decoded reference pictures of H.264.
#ifndef QV_BITSTREAM_AVC_DECREFPICMARKING_H
#define QV_BITSTREAM_AVC_DECREFPICMARKING_H

#include <cstdint>

#include "bitstream/syntax/CodedBits.h"
#include "bitstream/syntax/Reader.h"

namespace qv::avc {

/// dec_ref_pic_marking(), H.264 7.3.3.3 and 7.4.3.3.
struct DecRefPicMarking {
    bool no_output_of_prior_pics_flag;        ///< u(1), of IDR pictures
    bool long_term_reference_flag;            ///< u(1), of IDR pictures
    bool adaptive_ref_pic_marking_mode_flag;  ///< u(1), of other pictures; 0 is the sliding window

    /// With adaptive_ref_pic_marking_mode_flag the operations up to and including the one that is 0, borrowed
    /// from the unit; see MemoryManagementControlOperations.
    CodedBits memory_management_control_operations;
};

/// One memory management control operation, Table 7-9. An element that it does not have is 0.
struct MemoryManagementControlOperation {
    uint32_t memory_management_control_operation;  ///< ue(v), 1..6
    uint32_t difference_of_pic_nums_minus1;        ///< ue(v), of operations 1 and 3
    uint32_t long_term_pic_num;                    ///< ue(v), of operation 2
    uint32_t long_term_frame_idx;                  ///< ue(v), of operations 3 and 6
    uint32_t max_long_term_frame_idx_plus1;        ///< ue(v), of operation 4, 0..max_num_ref_frames
};

/// Reads the memory management control operations of a dec_ref_pic_marking(), in order.
class MemoryManagementControlOperations {
public:
    /// \param marking  read without a fault; the unit that it was read from is borrowed
    explicit MemoryManagementControlOperations(const DecRefPicMarking& marking) noexcept;

    /// Stores the next operation. False at the one that is 0, which is the last, and when there is none.
    bool next(MemoryManagementControlOperation& operation) noexcept;

private:
    Reader reader_;
};

}  // namespace qv::avc

#endif
