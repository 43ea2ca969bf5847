// Pictures of a sphere.
#include "bitstream/sei/Omnidirectional.h"

#include "bitstream/sei/OmnidirectionalSyntax.h"
#include "bitstream/sei/PayloadTemplates.h"

namespace qv::sei {

QV_SEI_PAYLOAD(EquirectangularProjection, equirectangular_projection);
QV_SEI_PAYLOAD(CubemapProjection, cubemap_projection);
QV_SEI_PAYLOAD(FisheyeVideoInfo, fisheye_video_info);
QV_SEI_PAYLOAD(SphereRotation, sphere_rotation);
QV_SEI_PAYLOAD(RegionwisePacking, regionwise_packing);
QV_SEI_PAYLOAD(OmniViewport, omni_viewport);

CodedEntries<FisheyeVideoInfo, FisheyeActiveArea> fisheyeActiveAreasOf(
    const FisheyeVideoInfo& info) noexcept {
    return {info, info.active_areas, uint64_t{info.fisheye_num_active_areas_minus1} + 1,
            [](Reader& reader, const FisheyeVideoInfo& /*info*/, uint32_t i, FisheyeActiveArea& area) {
                fisheye_active_area(reader, i, area);
            }};
}

CodedEntries<RegionwisePacking, PackedRegion> packedRegionsOf(const RegionwisePacking& packing) noexcept {
    return {packing, packing.packed_regions, packing.num_packed_regions,
            [](Reader& reader, const RegionwisePacking& /*packing*/, uint32_t i, PackedRegion& region) {
                packed_region(reader, Context(Codec::Hevc), i, region);
            }};
}

}  // namespace qv::sei
