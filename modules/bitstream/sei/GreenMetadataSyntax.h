// Green metadata as syntax functions.
#ifndef QV_BITSTREAM_SEI_GREENMETADATASYNTAX_H
#define QV_BITSTREAM_SEI_GREENMETADATASYNTAX_H

#include "bitstream/sei/GreenMetadata.h"
#include "bitstream/sei/PayloadSyntax.h"

namespace qv::sei {

template <class Syntax>
void complexity_metrics(Syntax& s, GreenMetadata& payload) {
    constexpr uint32_t kSeconds = 2;
    constexpr uint32_t kPictures = 3;
    s.u(8, "period_type", payload.period_type);
    if (payload.period_type == kSeconds) {
        s.u(16, "num_seconds", payload.num_seconds);
    } else if (payload.period_type == kPictures) {
        s.u(16, "num_pictures", payload.num_pictures);
    }
    s.u(8, "percent_non_zero_macroblocks", payload.percent_non_zero_macroblocks);
    s.u(8, "percent_intra_coded_macroblocks", payload.percent_intra_coded_macroblocks);
    s.u(8, "percent_six_tap_filtering", payload.percent_six_tap_filtering);
    s.u(8, "percent_alpha_point_deblocking_instance", payload.percent_alpha_point_deblocking_instance);
}

// green_metadata(), H.264 D.1.28, H.265 D.2.18
template <class Syntax>
void green_metadata(Syntax& s, const Context& context, GreenMetadata& payload) {
    static constexpr SharedStructure kStructure = sharedStructure("green_metadata()", "D.1.28", "D.2.18");
    const Within<Syntax> within(s, kStructure.of(context));
    s.u(8, "green_metadata_type", payload.green_metadata_type);
    switch (payload.green_metadata_type) {
        case 0:
            complexity_metrics(s, payload);
            break;
        case 1:
            s.u(8, "xsd_metric_type", payload.xsd_metric_type);
            s.u(16, "xsd_metric_value", payload.xsd_metric_value);
            break;
        default:
            s.payload_bytes("extension_data", payload.extension_data);
            break;
    }
}

}  // namespace qv::sei

#endif
