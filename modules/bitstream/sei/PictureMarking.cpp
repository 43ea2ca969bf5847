// Reference picture marking and spare pictures.
#include "bitstream/sei/PictureMarking.h"

#include "bitstream/sei/PayloadTemplates.h"
#include "bitstream/sei/PictureMarkingSyntax.h"

namespace qv::sei {

QV_SEI_PAYLOAD(DecRefPicMarkingRepetition, dec_ref_pic_marking_repetition);
QV_SEI_PAYLOAD(SparePic, spare_pic);

SpareAreas::SpareAreas(const SparePic& payload, uint32_t i) noexcept
    : reader_(i < SparePic::kMostSparePics ? payload.spare_area[i] : CodedBits()),
      isRunLengths_(i < SparePic::kMostSparePics && payload.spare_area_idc[i] == 2) {}

bool SpareAreas::next(uint32_t& value) noexcept {
    value = 0;
    if (!reader_.more_rbsp_data()) {
        return false;
    }
    if (isRunLengths_) {
        reader_.ue("zero_run_length", value);
    } else {
        reader_.u(1, "spare_unit_flag", value);
    }
    return true;
}

}  // namespace qv::sei
