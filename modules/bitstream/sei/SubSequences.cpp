// Sub-sequences.
#include "bitstream/sei/SubSequences.h"

#include <cstddef>

#include "bitstream/sei/PayloadTemplates.h"
#include "bitstream/sei/SubSequencesSyntax.h"

template <>
constexpr size_t qv::detail::kClearedBytes<qv::sei::SubSeqLayerCharacteristics> =
    offsetof(qv::sei::SubSeqLayerCharacteristics, accurate_statistics_flag);

template <>
constexpr size_t qv::detail::kClearedBytes<qv::sei::SubSeqCharacteristics> =
    offsetof(qv::sei::SubSeqCharacteristics, ref_sub_seq_layer_num);

namespace qv::sei {

QV_SEI_PAYLOAD(SubSeqInfo, sub_seq_info);
QV_SEI_PAYLOAD(SubSeqLayerCharacteristics, sub_seq_layer_characteristics);
QV_SEI_PAYLOAD(SubSeqCharacteristics, sub_seq_characteristics);

}  // namespace qv::sei
