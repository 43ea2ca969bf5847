// Objects in a picture.
#include "bitstream/sei/AnnotatedRegions.h"

#include "bitstream/sei/AnnotatedRegionsSyntax.h"
#include "bitstream/sei/PayloadTemplates.h"

namespace qv::sei {

QV_SEI_PAYLOAD(AnnotatedRegions, annotated_regions);

CodedEntries<AnnotatedRegions, LabelUpdate> labelUpdatesOf(const AnnotatedRegions& regions) noexcept {
    return {regions, regions.label_updates, regions.ar_num_label_updates,
            [](Reader& reader, const AnnotatedRegions& /*regions*/, uint32_t i, LabelUpdate& update) {
                label_update(reader, i, update);
            }};
}

CodedEntries<AnnotatedRegions, ObjectUpdate> objectUpdatesOf(const AnnotatedRegions& regions) noexcept {
    return {regions, regions.object_updates, regions.ar_num_object_updates,
            [](Reader& reader, const AnnotatedRegions& all, uint32_t i, ObjectUpdate& update) {
                object_update(reader, all, i, update);
            }};
}

}  // namespace qv::sei
