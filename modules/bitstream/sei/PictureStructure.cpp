// Frames and fields, and how pictures follow each other.
#include "bitstream/sei/PictureStructure.h"

#include "bitstream/sei/PayloadTemplates.h"
#include "bitstream/sei/PictureStructureSyntax.h"

namespace qv::sei {

QV_SEI_PAYLOAD(FrameFieldInfo, frame_field_info);
QV_SEI_PAYLOAD(DeinterlacedFieldIdentification, deinterlaced_field_identification);
QV_SEI_PAYLOAD(StructureOfPicturesInfo, structure_of_pictures_info);
QV_SEI_PAYLOAD(TemporalSubLayerZeroIdx, temporal_sub_layer_zero_idx);
QV_SEI_PAYLOAD(CodedRegionCompletion, coded_region_completion);

bool SopEntryReader::next(SopEntry& entry) noexcept {
    if (next_ >= count_) {
        return false;
    }
    sop_entry(reader_, next_++, hevc::Sps::kMostShortTermRefPicSets - 1, entry);
    return !reader_.failed();
}

}  // namespace qv::sei
