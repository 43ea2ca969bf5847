// green_metadata(), ISO/IEC 23001-11 (2019) Annex A, carried in H.264 SEI payloadType 56.
#include <cstdint>

#include "QVNaluParser.h"
#include "detail/Log.h"
#include "detail/PlainBits.h"

using namespace qv_detail;

namespace {

constexpr uint8_t kComplexityMetrics = 0;
constexpr uint8_t kQualityMetric = 1;
constexpr uint8_t kPeriodSeconds = 2;
constexpr uint8_t kPeriodPictures = 3;

uint8_t readU8(PlainBits& in) {
    return static_cast<uint8_t>(in.u(8));
}

uint16_t readU16(PlainBits& in) {
    return static_cast<uint16_t>(in.u(16));
}

void readQualityMetric(PlainBits& in, QVAvcSeiGreenMetaData* greenMetaData) {
    greenMetaData->xsd_metric_type = readU8(in);
    greenMetaData->xsd_metric_value = readU16(in);
}

void readComplexityMetrics(PlainBits& in, QVAvcSeiGreenMetaData* greenMetaData) {
    greenMetaData->period_type = readU8(in);
    if (greenMetaData->period_type == kPeriodSeconds) {
        greenMetaData->num_seconds = readU16(in);
    } else if (greenMetaData->period_type == kPeriodPictures) {
        greenMetaData->num_pictures = readU16(in);
    }
    greenMetaData->percent_non_zero_macroblocks = readU8(in);
    greenMetaData->percent_intra_coded_macroblocks = readU8(in);
    greenMetaData->percent_six_tap_filtering = readU8(in);
    greenMetaData->percent_alpha_point_deblocking_instance = readU8(in);
}

}  // namespace

int QVNaluParser::parserAvcGreenMetaData(QVByteStream& stream, int /*payloadSize*/,
                                         QVAvcSeiGreenMetaData* greenMetaData) {
    if (greenMetaData == nullptr) {
        QV_LOG(QVTraceError, "parserAvcGreenMetaData", "parserAvcGreenMetaData: greenMetaData is NULL!\n");
        return QVResultFailed;
    }
    PlainBits in(stream);
    greenMetaData->green_metadata_type = readU8(in);
    if (greenMetaData->green_metadata_type == kQualityMetric) {
        readQualityMetric(in, greenMetaData);
    } else if (greenMetaData->green_metadata_type == kComplexityMetrics) {
        readComplexityMetrics(in, greenMetaData);
    }
    return QVResultOk;
}
