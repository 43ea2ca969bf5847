#include "HevcSeiRecords.h"

#include "SyntaxElements.h"

namespace qv_test {

namespace {

template <class Record>
void addPrimaries(Fields& fields, const Record& record) {
    for (size_t c = 0; c < 3; ++c) {
        fields.emplace_back(indexed("display_primaries_x", c), record.display_primaries_x[c]);
        fields.emplace_back(indexed("display_primaries_y", c), record.display_primaries_y[c]);
    }
    fields.emplace_back("white_point_x", record.white_point_x);
    fields.emplace_back("white_point_y", record.white_point_y);
    fields.emplace_back("max_display_mastering_luminance", record.max_display_mastering_luminance);
    fields.emplace_back("min_display_mastering_luminance", record.min_display_mastering_luminance);
}

}  // namespace

Fields fieldsOf(const QVHevcSeiMasteringDisplay& record) {
    Fields fields = {{"isValid", record.isValid}};
    addPrimaries(fields, record);
    return fields;
}

Fields fieldsOf(const QVHDR10StaticMetadata& record) {
    Fields fields;
    addPrimaries(fields, record);
    return fields;
}

Fields fieldsOf(const QVHevcSeiContentLight& record) {
    return {{"isValid", record.isValid},
            {"max_content_light_level", record.max_content_light_level},
            {"max_pic_average_light_level", record.max_pic_average_light_level}};
}

Fields fieldsOf(const QVHevcSeiAlternativeTransfer& record) {
    return {{"isValid", record.isValid},
            {"preferred_transfer_characteristics", record.preferred_transfer_characteristics}};
}

Fields fieldsOf(const QVHevcSeiPictureTiming& record) {
    return {{"fieldParity", record.fieldParity}};
}

Fields fieldsOf(const QVHevcSeiPictureHash& record) {
    Fields fields;
    for (size_t cIdx = 0; cIdx < 3; ++cIdx) {
        for (size_t i = 0; i < 16; ++i) {
            fields.emplace_back(indexed(indexed("picture_md5", cIdx), i), record.picture_md5[cIdx][i]);
        }
    }
    fields.emplace_back("md5Present", record.md5Present);
    return fields;
}

Fields fieldsOf(const QVHevcSeiFramePacking& record) {
    return {{"isValid", record.isValid},
            {"frame_packing_arrangement_type", record.frame_packing_arrangement_type},
            {"content_interpretation_type", record.content_interpretation_type},
            {"quincunx_sampling_flag", record.quincunx_sampling_flag},
            {"current_frame_is_frame0_flag", record.current_frame_is_frame0_flag}};
}

Fields fieldsOf(const QVHevcSeiDisplayOrientation& record) {
    return {{"isValid", record.isValid},
            {"anticlockwise_rotation", record.anticlockwise_rotation},
            {"hor_flip", record.hor_flip},
            {"ver_flip", record.ver_flip}};
}

}  // namespace qv_test
